# Scaled copies of vector and tensor fields, each component a volume of reals: binning by
# the mean equals numpy's block mean, signs included (no clamping as for gray values), on a
# vector field and on a tensor field's six components; trilinear upscaling reproduces a
# linear ramp inside the field (beyond the last source voxel the background takes part).
source "$(dirname "$0")/lib.sh"
$PY - <<'EOF2'
import numpy as np, nibabel as nib
rng = np.random.default_rng(3)
def save(data, intent, name):
    img = nib.Nifti1Image(data, np.eye(4))
    img.header.set_intent(intent)
    nib.save(img, name)
save(rng.normal(0, 10, (6, 4, 4, 1, 3)), 1007, "v.nii")
save(rng.normal(0, 10, (6, 4, 4, 1, 6)), 1005, "t.nii")
x = np.arange(1, 7, dtype=float)[:, None, None] * np.ones((6, 4, 4))
save(np.stack([x, -2 * x, np.full_like(x, 3)], axis=-1)[:, :, :, None, :], 1007, "ramp.nii")
EOF2
cat > run.macro <<'EOF2'
debug.no
vector.load "v.nii"
h := vector.copy 0.5
vector.use h
vector.save "v_half.nii"
tensor.load "t.nii"
th := tensor.copy 0.5
tensor.use th
tensor.save "t_half.nii"
vector.use ramp
vector.load "ramp.nii"
d := vector.resize <12, 8, 8>
vector.use d
vector.save "ramp_double.nii"
EOF2
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'EOF2'
import numpy as np, nibabel as nib
def load(name):
    return nib.load(name).get_fdata()[:, :, :, 0, :]
for source, half in (("v.nii", "v_half.nii"), ("t.nii", "t_half.nii")):
    v, h = load(source), load(half)
    block = v.reshape(3, 2, 2, 2, 2, 2, v.shape[-1]).mean(axis=(1, 3, 5))
    print(half, h.shape, "block mean" if np.allclose(h, block, atol=1e-12) else np.abs(h - block).max())
d = load("ramp_double.nii")
p = np.arange(1, 13)
want = (p - 1) / 2 + 1  # the source position of each target voxel
inside = want <= 6
ok = np.allclose(d[inside, 3, 3, 0], want[inside]) and np.allclose(d[inside, 3, 3, 1], -2 * want[inside])
print("ramp", "linear" if ok and np.allclose(d[:11, :7, :7, 2], 3) else d[:, 3, 3, :])
EOF2
)
check_eq "$out" "v_half.nii (3, 2, 2, 3) block mean
t_half.nii (3, 2, 2, 6) block mean
ramp linear" "scaled copies"
finish
