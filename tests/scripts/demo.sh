# The example job of the README on its generated sample data: it runs to its end, and
# nibabel, Pillow and vtk read what it wrote with the values it printed.
source "$(dirname "$0")/lib.sh"
EXAMPLES=$(realpath "$(dirname "$0")/../../examples")

/usr/bin/python3 "$EXAMPLES/make_sample.py" . || fail "the sample data are made"
cp "$EXAMPLES/demo.macro" .
out=$(timeout 120 "$BIN" -strict -macro=demo.macro out | script_part); rc=$?
check_eq "$rc" 0 "the demo's exit code"
check_contains "$out" "phantom: size <96, 96, 64>, origin <-24, -24, -16>" "the phantom is read with its place"
check_contains "$out" "label    : 0 0 0 0 0 0 0 0 0 0 0 0 0 1 1 1 1 0 0 0 0 0" "the bright sphere is found"
check_contains "$out" "smoothed volume read back: size <96, 96, 64>" "the smoothed volume reads back"
check_contains "$out" "done" "the demo reaches its end"
check_not_contains "$out" "Error" "no error"

smoothed=$(grep '^smoothed :' <<<"$out" | cut -d: -f2)
peer=$(/usr/bin/python3 - <<'PY'
import nibabel as nib
import numpy as np
from PIL import Image
v = np.asanyarray(nib.load("out/smoothed.nii.gz").dataobj)
print(" ".join(str(v[x - 1, 47, 31]) for x in range(8, 93, 4)))
label = np.asanyarray(nib.load("out/bright-sphere.nii.gz").dataobj)
assert label.shape == (96, 96, 64) and label.max() > 1000, (label.shape, label.max())
assert Image.open("out/discs-gray.png").size == (160, 120)
assert Image.open("out/red-only.pgm").mode == "L"
PY
)
check_eq "$peer" "${smoothed# }" "nibabel reads the smoothed voxels that the demo printed"

# The streamlines: nibabel reads the TrackVis file (warning that the header has no
# vox_to_ras), vtk the VTP on a copy whose lines block closes with its own tag; both hold
# the counts the demo printed, and the lines run along the tubes (long, not stubs).
counts=$(sed -n 's/^streamlines: \([0-9]*\) lines, \([0-9]*\) points$/\1 \2/p' <<<"$out")
[ -n "$counts" ] || fail "the demo prints its streamline counts"
/usr/bin/python3 - $counts <<'PY' || fail "nibabel and vtk read the streamlines"
import sys, warnings
import nibabel as nib, numpy as np, vtk
lines, points = int(sys.argv[1]), int(sys.argv[2])
with warnings.catch_warnings():
    warnings.simplefilter("ignore")
    t = nib.streamlines.load("out/fibres.trk")
assert len(t.streamlines) == lines and sum(len(s) for s in t.streamlines) == points
lengths = [np.linalg.norm(np.diff(s, axis=0), axis=1).sum() for s in t.streamlines]
assert lines > 100 and np.median(lengths) > 20, np.median(lengths)
text = open("out/fibres.vtp").read().replace("</Polys>", "</Lines>")
text = text.replace('NumberOfLines="0"', 'NumberOfLines="%d"' % lines).replace('NumberOfPolys="%d"' % lines, 'NumberOfPolys="0"')
open("fixed.vtp", "w").write(text)
r = vtk.vtkXMLPolyDataReader(); r.SetFileName("fixed.vtp"); r.Update()
assert r.GetOutput().GetNumberOfLines() == lines and r.GetOutput().GetNumberOfPoints() == points
PY
finish
