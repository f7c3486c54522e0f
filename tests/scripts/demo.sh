# The example job of the README on its generated sample data: it runs to its end, and
# nibabel and Pillow read what it wrote with the values it printed.
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
finish
