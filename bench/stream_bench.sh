#!/usr/bin/env bash
# Streamlines on a 128^3 phantom field (the true tube axes as vectors): vector.stream.random
# 100000 and vector.stream.mask against dipy's LocalTracking (peaks direction getter from
# the same vectors, threshold stopping, step 1 voxel) and MRtrix3's tckgen FACT on the same
# vectors as a peaks image, and the .trk save against nibabel.streamlines.save, in one run.
# Tracing is timed in CPU seconds, the save in wall time.
#   bench/stream_bench.sh [path/to/voxmill]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
binary=${1:-$here/../build/voxmill}
if ! command -v tckgen >/dev/null; then
    echo "tckgen missing: installing Debian mrtrix3 for the FACT rows"
    apt-get install -y --no-install-recommends mrtrix3 >/dev/null 2>&1 || echo "could not install mrtrix3: the tckgen rows are skipped"
fi
exec /usr/bin/python3 "$here/stream_bench.py" "$binary"
