#!/usr/bin/env bash
# Box smoothing figures of voxmill and scipy on the same 256^3 16-bit volume.
#   bench/filter_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/filter_bench.py" "$binary"
