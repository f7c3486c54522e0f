#!/usr/bin/env bash
# Connected regions of a 256^3 random mask: voxmill's scalar.group against scipy.ndimage.label.
#   bench/groups_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/groups_bench.py" "$binary"
