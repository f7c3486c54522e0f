#!/usr/bin/env bash
# Surface figures of voxmill, scikit-image and VTK on the same 256^3 volumes.
#   bench/surface_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/surface_bench.py" "$binary"
