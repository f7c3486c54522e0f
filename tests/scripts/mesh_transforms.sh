# Mesh rotations against scipy, the inverse and pivot forms, mirror and face order, and the
# smoothing of a noisy sphere; a mesh with a NaN point goes through every kind of command.
SCRIPT="$(cd "$(dirname "$0")/.." && pwd)/mesh_transforms.py"
source "$(dirname "$0")/lib.sh"
PY=/usr/bin/python3

if ! "$PY" -c "import numpy, scipy.spatial.transform" 2>/dev/null; then
  fail "python3-numpy and python3-scipy are needed (tools/install-deps.sh)"
  finish
fi
out=$(timeout 600 "$PY" "$SCRIPT" "$BIN" "$WORK" 2>&1) || fail "$out"
finish
