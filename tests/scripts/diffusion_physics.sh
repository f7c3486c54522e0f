# Orientation of a synthetic fibre volume (tubes along x, y, two diagonals and a gentle
# curve, with noise): at r = 8, methods 1, 5 and 6 put at least 90% of the tube voxels
# within 10 degrees of the tube axis, as nibabel reads the vector files; the files carry
# the volume's affine, the vector intent and dim[5] = 3; and thread.max 1, 2 and 32 give
# the same bytes.
source "$(dirname "$0")/lib.sh"
HERE="$(cd "$(dirname "$0")" && pwd)"
need_python "nibabel, numpy"
"$PY" - "$HERE" <<'PYEOF' || fail "making the phantom"
import sys
sys.path.insert(0, sys.argv[1])
import nibabel as nib, numpy as np
import fibre_phantom as fp
affine = np.array([[0.5, 0, 0, -10], [0, 0.5, 0, 4], [0, 0, 0.75, 2.5], [0, 0, 0, 1]])
nib.Nifti1Image(fp.make(64), affine).to_filename("phantom.nii")
PYEOF
cat > run.macro <<'MACRO'
scalar.8bit
scalar.load "phantom.nii"
scalar.diffusion.method 1
scalar.diffusion 8
vector.save "m1.nii.gz"
scalar.diffusion.method 6
scalar.diffusion 8
vector.save "m6.nii.gz"
scalar.diffusion.method 5
thread.max = 1
scalar.diffusion 8
vector.save "m5t1.nii"
thread.max = 2
scalar.diffusion 8
vector.save "m5t2.nii"
thread.max = 32
scalar.diffusion 8
vector.save "m5.nii.gz"
vector.save "m5t32.nii"
MACRO
timeout 300 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
cmp -s m5t1.nii m5t2.nii || fail "thread.max 1 and 2 give different vector fields"
cmp -s m5t1.nii m5t32.nii || fail "thread.max 1 and 32 give different vector fields"
for m in 1 5 6; do
  out=$("$PY" "$HERE/fibre_phantom.py" score 64 "m$m.nii.gz" "method$m" 2>&1)
  echo "$out"
  share=$(sed -n 's/.* tubes: within10=\([0-9.]*\).*/\1/p' <<<"$out")
  "$PY" -c "import sys; sys.exit(0 if float('$share') >= 0.90 else 1)" 2>/dev/null ||
    fail "method $m: only $share of the tube voxels within 10 degrees"
done
out=$("$PY" - <<'PYEOF' 2>&1
import nibabel as nib, numpy as np
src, vec = nib.load("phantom.nii"), nib.load("m5.nii.gz")
h = vec.header
assert h["dim"][0] == 5 and h["dim"][5] == 3 and h["dim"][4] == 1, h["dim"]
assert h["intent_code"] == 1007, h["intent_code"]
assert h["datatype"] == 64 and h["sform_code"] == 1 and h["qform_code"] == 0
assert np.allclose(vec.affine, src.affine), (vec.affine, src.affine)
assert vec.shape == (64, 64, 64, 1, 3), vec.shape
PYEOF
) || fail "vector file header: $out"
finish
