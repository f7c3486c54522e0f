# Vector NIfTI files between nibabel and voxmill: nibabel writes float64, float32 with the
# components in dim[4], a big-endian int16 pair and RGB24; voxmill loads each and saves
# it (float and integer storage); nibabel reads back the same vectors
# and affines.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, numpy"
"$PY" - <<'PYEOF' || fail "writing the inputs"
import nibabel as nib, numpy as np
rng = np.random.default_rng(5)
affine = np.array([[0, -0.5, 0, 3], [0.75, 0, 0, -2], [0, 0, 1.5, 7], [0, 0, 0, 1]])
v = rng.normal(0, 10, (5, 4, 3, 1, 3))
np.save("v.npy", v)
img = nib.Nifti1Image(v, affine); img.header.set_intent("vector"); img.to_filename("a.nii")
nib.Nifti1Image(v[:, :, :, 0, :].astype(np.float32), affine).to_filename("b.nii.gz")
pair = nib.Nifti1Pair(np.round(v).astype(">i2"), affine); pair.to_filename("c.hdr")
rgb = np.zeros((5, 4, 3), dtype=[("R", "u1"), ("G", "u1"), ("B", "u1")])
rgb["R"], rgb["G"], rgb["B"] = 255, 51, rng.integers(0, 256, (5, 4, 3))
np.save("rgb.npy", rgb["B"])
nib.Nifti1Image(rgb, affine).to_filename("d.nii")
PYEOF
cat > run.macro <<'MACRO'
vector.load "a.nii"
vector.save "out_a.nii"
vector.load.nii.gz "b.nii.gz"
vector.save "out_b.hdr"
vector.load "c.img"
vector.save "out_c.nii"
vector.load "d.nii"
vector.save "out_d.nii"
vector.integer
vector.use ints
vector.load "a.nii"
vector.save "out_int.nii"
vector.use props
vector.load.properties "a.nii"
m := vector.matrix
print "matrix " m
MACRO
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
check_contains "$(cat console.txt)" "matrix (<0, 0.75, 0>;<-0.5, 0, 0>;<0, 0, 1.5>)" "load.properties takes the matrix"
out=$("$PY" - <<'PYEOF' 2>&1
import nibabel as nib, numpy as np
v = np.load("v.npy")[:, :, :, 0, :]
src = nib.load("a.nii")
def got(name, dtype=np.float64):
    img = nib.load(name)
    assert img.header["dim"][0] == 5 and img.header["dim"][5] == 3 and img.header["intent_code"] == 1007, name
    assert img.get_data_dtype() == dtype, (name, img.get_data_dtype())
    assert np.allclose(img.affine, src.affine, atol=1e-6), (name, img.affine)
    return np.asarray(img.dataobj)[:, :, :, 0, :]
assert np.array_equal(got("out_a.nii"), v)
assert np.array_equal(got("out_b.hdr"), v.astype(np.float32).astype(np.float64))
assert np.array_equal(got("out_c.nii"), np.round(v))
d = got("out_d.nii")
assert np.allclose(d[..., 0], 1) and np.allclose(d[..., 1], 0.2) and np.allclose(d[..., 2], np.load("rgb.npy") / 255)
assert np.array_equal(got("out_int.nii", np.int64), np.round(v))
PYEOF
) || fail "nibabel on voxmill's vector files: $out"
finish
