#!/usr/bin/env bash
# Tensor fields of a 128^3 fibre phantom: scalar.connection r = 4, 8 on 1 and 2 threads, and
# the eigen-decomposition per voxel against numpy.linalg.eigh, in one run.
#   bench/connection_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/connection_bench.py" "$binary"
