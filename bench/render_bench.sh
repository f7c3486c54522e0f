#!/usr/bin/env bash
# mesh.render of a 1-million-triangle surface onto a 256x256 camera against VTK's cell locator.
#   bench/render_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/render_bench.py" "$binary"
