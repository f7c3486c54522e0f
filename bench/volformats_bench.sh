#!/usr/bin/env bash
# Amira (hxzip, raw) and VTK ascii structured points loading of voxmill, against its own
# .nii.gz load of the same volume and against vtk's legacy reader.
#   bench/volformats_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/volformats_bench.py" "$binary"
