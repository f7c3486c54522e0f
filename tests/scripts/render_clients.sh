# Renders and field colours of a ball's surface against its geometry (vtk, Pillow, nibabel).
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/render_clients.py"
source "$(dirname "$0")/lib.sh"

need_python "vtk, nibabel, PIL"
generate_and_run
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "$out"
finish
