# Meshes between voxmill and independent readers and writers: a ball's surface in vtk,
# meshio, assimp and ezdxf (closed, outward, its volume), and meshio's files in voxmill.
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/mesh_clients.py"
source "$(dirname "$0")/lib.sh"

need_python "vtk, meshio, ezdxf, nibabel"
need_tool assimp
generate_and_run
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "$out"
finish
