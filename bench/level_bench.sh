#!/usr/bin/env bash
# Level tables of voxmill and numpy on the same 256^3 16-bit volume.
#   bench/level_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/level_bench.py" "$binary"
