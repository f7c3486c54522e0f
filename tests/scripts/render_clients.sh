# Renders and field colours of a ball's surface against its geometry (vtk, Pillow, nibabel).
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/render_clients.py"
source "$(dirname "$0")/lib.sh"
PY=/usr/bin/python3

if ! "$PY" -c "import vtk, nibabel, PIL" 2>/dev/null; then
  fail "python3-vtk9, python3-nibabel and python3-pil are needed (tools/install-deps.sh)"
  finish
fi
generate_and_run
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "$out"
finish
