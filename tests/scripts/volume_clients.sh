# Volume files made outside voxmill: VTK structured points by vtk's legacy writer, the
# device formats (MIF, MIFX, PCR, XML clips, VGL, ARF, raw) byte by byte from their field
# lists and Amira's packed blocks by an encoder in the test; voxmill loads each and saves
# NIfTI, which nibabel reads back for the voxels and the affine.
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/volume_clients.py"
source "$(dirname "$0")/lib.sh"

need_python "nibabel, numpy, vtk"
generate_and_run 120
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "the files in voxmill:
$out
$(script_part < console.txt | head -80)"
finish
