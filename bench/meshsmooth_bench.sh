#!/usr/bin/env bash
# mesh.smooth 10 on a million-triangle surface against VTK's vtkSmoothPolyDataFilter.
#   bench/meshsmooth_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/meshsmooth_bench.py" "$binary"
