#!/usr/bin/env bash
# Combining figures of voxmill and numpy on the same 256^3 16-bit volumes.
#   bench/combine_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/combine_bench.py" "$binary"
