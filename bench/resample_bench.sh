#!/usr/bin/env bash
# Scaled copies: voxmill against skimage and scipy on the same 256^3 16-bit volume.
#   bench/resample_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/resample_bench.py" "$binary"
