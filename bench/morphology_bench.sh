#!/usr/bin/env bash
# Morphology figures of voxmill and scipy on the same 256^3 gray volume.
#   bench/morphology_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/morphology_bench.py" "$binary"
