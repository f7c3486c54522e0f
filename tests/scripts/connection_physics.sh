# Tensors of the connection scan on a synthetic fibre volume: the first eigenvector follows
# the axis of the straight tubes (methods 3 and 6, within 15 degrees for 90% of their voxels), FA is
# higher in the tubes than in an isotropic ball, FA and MD match dipy's formulas on our
# eigenvalues, and methods 3 and 5 give the same bytes for thread.max 1, 2 and 32.
source "$(dirname "$0")/lib.sh"
HERE="$(cd "$(dirname "$0")" && pwd)"
need_python "nibabel, numpy, dipy"
"$PY" - "$HERE" <<'PYEOF' || fail "making the phantoms"
import sys
sys.path.insert(0, sys.argv[1])
import nibabel as nib, numpy as np
import fibre_phantom as fp
nib.Nifti1Image(fp.make(64), np.eye(4)).to_filename("phantom.nii")
g = np.indices((32, 32, 32)) - 15.5
ball = np.where((g ** 2).sum(0) <= 12 ** 2, 200 + np.random.default_rng(3).normal(0, 1.5, g.shape[1:]), 0)
nib.Nifti1Image(ball.astype(np.uint8), np.eye(4)).to_filename("ball.nii")
PYEOF
cat > run.macro <<'MACRO'
scalar.8bit
scalar.load "phantom.nii"
scalar.connection.method 3
scalar.connection 6
tensor.eigenvector.max
vector.save "v3.nii"
scalar.connection.method 6
scalar.connection 6
tensor.eigenvector.max
vector.save "v6.nii"
tensor.eigenvalues
vector.save "e6.nii"
scalar.16bit
scalar.new
tensor.measure.fa
scalar.save "fa6.nii"
tensor.measure.md
scalar.save "md6.nii"
scalar.8bit
scalar.load "phantom.nii"
scalar.connection.method 5
thread.max = 1
scalar.connection 4
tensor.eigenvalues
vector.save "e5t1.nii"
scalar.connection.method 3
scalar.connection 4
tensor.eigenvalues
vector.save "e3t1.nii"
thread.max = 32
scalar.connection 4
tensor.eigenvalues
vector.save "e3t32.nii"
scalar.connection.method 5
thread.max = 2
scalar.connection 4
tensor.eigenvalues
vector.save "e5t2.nii"
scalar.load "ball.nii"
scalar.connection.method 6
scalar.connection 6
scalar.16bit
scalar.new
tensor.measure.fa
scalar.save "faball.nii"
MACRO
timeout 300 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
cmp -s e3t1.nii e3t32.nii || fail "method 3: thread.max 1 and 32 give different tensors"
cmp -s e5t1.nii e5t2.nii || fail "method 5: thread.max 1 and 2 give different tensors"
out=$("$PY" - "$HERE" <<'PYEOF' 2>&1
import sys
sys.path.insert(0, sys.argv[1])
import nibabel as nib, numpy as np
import fibre_phantom as fp
from dipy.reconst.dti import fractional_anisotropy, mean_diffusivity
def load(name):
    return np.asarray(nib.load(name).dataobj, dtype=float)
for m in (3, 6):
    res = fp.errors(load(f"v{m}.nii").reshape(64, 64, 64, 3), 64)
    angles = np.concatenate([res[k] for k in ("x", "y", "xy", "xz")])
    share = np.mean(angles <= 15)
    print(f"method {m}: {share:.3f} of straight tube voxels within 15 degrees")
    assert share >= 0.9, share
e = load("e6.nii").reshape(64, 64, 64, 3)
mask = e[..., 0] > 0
e = e[mask]
e[e <= 1e-300] = 0  # the guard value stands for 0
fa, md = load("fa6.nii")[mask], load("md6.nii")[mask]
want_fa = np.clip(np.rint(fractional_anisotropy(e) * 32768), 0, 65535)
want_md = np.clip(np.rint(mean_diffusivity(e) * 32768), 0, 65535)
assert np.abs(fa - want_fa).max() <= 1, np.abs(fa - want_fa).max()
assert (np.abs(md - want_md) <= np.maximum(1, want_md * 1e-12)).all()
tube = np.median(fa) / 32768
ball = load("faball.nii")
g = np.indices(ball.shape) - 15.5
inner = ((g ** 2).sum(0) <= 6 ** 2)
round_ = np.median(ball[inner]) / 32768
print(f"median FA: tubes {tube:.3f}, ball {round_:.3f}")
assert tube > 2 * round_ and tube > 0.3, (tube, round_)
PYEOF
) || fail "physics: $out"
echo "$out"
finish
