#!/usr/bin/env bash
# Local thickness of a 128^3 trabecular-like phantom against twice scipy's distance
# transform, and the statistics of a 256^3 volume against numpy.
#   bench/measures_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/measures_bench.py" "$binary"
