# Meshes between voxmill and independent readers and writers: a ball's surface in vtk,
# meshio, assimp and ezdxf (closed, outward, its volume), and meshio's files in voxmill.
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/mesh_clients.py"
source "$(dirname "$0")/lib.sh"
PY=/usr/bin/python3

if ! "$PY" -c "import vtk, meshio, ezdxf, nibabel" 2>/dev/null || ! command -v assimp >/dev/null; then
  fail "python3-vtk9, python3-meshio, python3-ezdxf and assimp-utils are needed (tools/install-deps.sh)"
  finish
fi
generate_and_run
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "$out"
finish
