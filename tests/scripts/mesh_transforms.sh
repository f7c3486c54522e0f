# Mesh rotations against scipy, the inverse and pivot forms, mirror and face order, and the
# smoothing of a noisy sphere; a mesh with a NaN point goes through every kind of command.
SCRIPT="$(cd "$(dirname "$0")/.." && pwd)/mesh_transforms.py"
source "$(dirname "$0")/lib.sh"

need_python "numpy, scipy.spatial.transform"
out=$(timeout 600 "$PY" "$SCRIPT" "$BIN" "$WORK" 2>&1) || fail "$out"
finish
