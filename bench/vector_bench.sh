#!/usr/bin/env bash
# Mean smoothing of a 128^3 vector field: voxmill against scipy.ndimage on the same vectors.
#   bench/vector_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/vector_bench.py" "$binary"
