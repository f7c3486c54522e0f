#!/usr/bin/env bash
# Orientation of a 128^3 fibre phantom: scalar.diffusion r = 4, 8, 16 against skimage's
# structure tensor, time and angular error, in one run.
#   bench/diffusion_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/diffusion_bench.py" "$binary"
