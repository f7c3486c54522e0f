# Tensor NIfTI files and the eigen-solver against independent readers: random symmetric
# tensors (also repeated eigenvalues, diagonal, rank one and zero) written by nibabel in the
# order xx, xy, xz, yy, yz, zz are loaded and saved again byte for byte; nibabel reads our
# file as SYMMATRIX; eigenvalues and first eigenvectors agree with numpy.linalg.eigh, FA and
# MD with dipy's formulas.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, numpy, dipy"
"$PY" - <<'PYEOF' || fail "making the tensors"
import nibabel as nib, numpy as np
rng = np.random.default_rng(5)
n = (10, 9, 8)
count = n[0] * n[1] * n[2]
q, _ = np.linalg.qr(rng.normal(size=(count, 3, 3)))
lam = rng.uniform(0.1, 1.5, size=(count, 3))
lam[::7, 1] = lam[::7, 0]                  # two equal eigenvalues
lam[::11] = lam[::11, :1]                  # three equal
m = q @ (lam[:, :, None] * np.swapaxes(q, 1, 2))
m[5] = np.diag([0.3, 0.2, 0.1]); m[6] = np.diag([1.0, 0, 0]); m[7] = 0
m[8] = np.diag([0.5, 0.5 + 1e-9, 0.5 - 1e-9])  # nearly degenerate
six = np.stack([m[:, 0, 0], m[:, 0, 1], m[:, 0, 2], m[:, 1, 1], m[:, 1, 2], m[:, 2, 2]], -1)
data = six.reshape(n[2], n[1], n[0], 6).transpose(2, 1, 0, 3)[:, :, :, None, :]
img = nib.Nifti1Image(data.astype(np.float64), np.eye(4))
img.header.set_intent("symmetric matrix", (3,))
img.to_filename("in.nii")
np.save("m.npy", m)
PYEOF
cat > run.macro <<'MACRO'
tensor.load "in.nii"
tensor.save "out.nii"
tensor.eigenvalues
vector.save "ev.nii"
tensor.eigenvector.max
vector.save "v1.nii"
scalar.16bit
scalar.new
tensor.measure.fa
scalar.save "fa.nii"
tensor.measure.md
scalar.save "md.nii"
MACRO
timeout 120 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
out=$("$PY" - <<'PYEOF' 2>&1
import nibabel as nib, numpy as np
from dipy.reconst.dti import fractional_anisotropy, mean_diffusivity
m = np.load("m.npy")
a, b = nib.load("in.nii"), nib.load("out.nii")
assert b.header["intent_code"] == 1005 and b.header["intent_p1"] == 3 and b.header["dim"][5] == 6
assert np.array_equal(np.asarray(a.dataobj), np.asarray(b.dataobj)), "tensors changed on the way"
def flat(name):
    d = np.asarray(nib.load(name).dataobj, dtype=float)
    return d.reshape(d.shape[0], d.shape[1], d.shape[2], -1).transpose(2, 1, 0, 3).reshape(len(m), -1)
ev, v1 = flat("ev.nii"), flat("v1.nii")
w, vec = np.linalg.eigh(m)
order = np.argsort(-np.abs(w), axis=1, kind="stable")
want = np.take_along_axis(w, order, 1)
want[:, 1:][want[:, 1:] <= 0] = 2.225069246690772e-308
nonzero = np.abs(m).sum((1, 2)) > 0
scale = np.abs(w).max(1, keepdims=True)
assert (np.abs(ev - want)[nonzero] <= 1e-12 * scale[nonzero]).all(), np.abs(ev - want)[nonzero].max()
first = np.take_along_axis(vec, order[:, None, :1], 2)[:, :, 0]
distinct = nonzero & (np.abs(want[:, 0] - want[:, 1]) > 1e-6 * scale[:, 0])
cos = np.abs((first * v1).sum(1))
assert (np.abs(cos[distinct] - 1) < 1e-9).all(), cos[distinct].min()
assert np.allclose(np.linalg.norm(v1[nonzero], axis=1), 1)
guarded = want.copy(); guarded[guarded < 1e-300] = 0
fa, md = flat("fa.nii")[:, 0], flat("md.nii")[:, 0]
want_fa = np.where(nonzero, np.rint(np.clip(fractional_anisotropy(guarded) * 32768, 0, 65535)), 0)
want_md = np.where(nonzero, np.rint(np.clip(mean_diffusivity(guarded) * 32768, 0, 65535)), 0)
assert np.abs(fa - want_fa).max() <= 1 and np.abs(md - want_md).max() <= 1, (np.abs(fa - want_fa).max(), np.abs(md - want_md).max())
print(f"{nonzero.sum()} tensors: eigenvalues within 1e-12, {distinct.sum()} first eigenvectors within 1e-9")
PYEOF
) || fail "clients: $out"
echo "$out"
finish
