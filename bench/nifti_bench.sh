#!/usr/bin/env bash
# NIfTI load and save figures of voxmill and nibabel on the same 256^3 16-bit volume.
#   bench/nifti_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
exec /usr/bin/python3 "$here/nifti_bench.py" "$binary"
