# The value-range measures against numpy on random volumes: mean and SD with n - 1, the
# quantiles by the lower element, count, sum, extremes, the bounding box, centroid and
# centre of gravity, the inertia tensor of a box against its closed form, and box counting
# by -log10(n) / log10(L) with L from the object size.
source "$(dirname "$0")/lib.sh"
need_python "nibabel"
$PY - <<'PYEOF'
import numpy as np, nibabel as nib
rng = np.random.default_rng(22)
nib.save(nib.Nifti1Image(rng.integers(0, 3000, (23, 17, 11)).astype(np.uint16), np.eye(4)), "r.nii")
box = np.zeros((20, 16, 12), np.uint16)
box[3:10, 5:9, 2:11] = 7      # a box of 7 x 4 x 9 voxels
box[15, 2, 1] = 300           # one heavy voxel off the box
nib.save(nib.Nifti1Image(box, np.eye(4)), "b.nii")
lines = ["debug.no", "scalar.16bit", 'scalar.load "r.nii"']
for name, args in [("statistic", ""), ("statistic", "100 2 2500"), ("quantile", "100 2500"), ("quantile", "0 1 2999"),
                   ("count", "100 2500"), ("sum", "100 2500"), ("min", "100 2500"), ("max", "100 2500"),
                   ("statistic", "5000 6000"), ("quantile", "5000 6000")]:
    lines.append(f"a := scalar.{name} {args}")
    lines.append("print a")
lines += ['scalar.load "b.nii"']
for name, args in [("object.center", "1 7"), ("object.size", "1 7"), ("centroid", "1 7"), ("cog", "1 300"),
                   ("inertia", "7 7 0.5 1"), ("boxcounting", "7 7"), ("boxcounting", "8 9")]:
    lines.append(f"a := scalar.{name} {args}")
    lines.append("print a")
open("run.macro", "w").write("\n".join(lines + [""]))
PYEOF
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'PYEOF' 2>&1
import numpy as np, nibabel as nib
text = open("console.txt").read().replace("\r", "\n")
got = [l for l in text.split("Script runs...")[-1].splitlines() if l and "% ready" not in l and not l.startswith((" ", "Script", "Read file"))]
def nums(line):
    return [float(t) for t in line.replace("<", "").replace(">", "").replace(",", " ").split()]
v = np.asarray(nib.load("r.nii").dataobj).astype(np.float64).transpose(2, 1, 0).ravel()
sel = v[(v >= 100) & (v <= 2500)]
def quant(a, f=1):
    a = np.sort(a); n = len(a); k = 1 if n % 2 else 0
    return [f * a[i - 1] for i in (1, n // 4 + k, n // 2 + k, (n // 4) * 3 + k, n)]
want = [[v.mean(), v.std(ddof=1)], [2 * sel.mean(), 2 * sel.std(ddof=1)], quant(sel), quant(v),
        [len(sel)], [sel.sum()], [sel.min()], [sel.max()], [0, 0], [0, 0, 0, 0, 0]]
b = np.asarray(nib.load("b.nii").dataobj).astype(np.float64)
x, y, z = np.nonzero(b == 7); x, y, z = x + 1.0, y + 1.0, z + 1.0
lo, hi = np.array([x.min(), y.min(), z.min()]), np.array([x.max(), y.max(), z.max()])
X, Y, Z = np.nonzero(b); w = b[X, Y, Z]
cog = [((X + 1) * w).sum() / w.sum(), ((Y + 1) * w).sum() / w.sum(), ((Z + 1) * w).sum() / w.sum()]
# A box of a x b x c unit masses: sum of squared offsets from the middle is n (a^2 - 1) / 12 per axis.
n = 7 * 4 * 9; s = [n * (k * k - 1) / 12 for k in (7, 4, 9)]
inertia = [0.5 * t + 1 for t in (s[1] + s[2], s[0] + s[2], s[0] + s[1], 0, 0, 0)]
size = hi - lo
want += [list((lo + hi) / 2), list(size), [x.mean(), y.mean(), z.mean()], cog, inertia,
         [-np.log10(n) / np.log10(np.cbrt(size.prod()))], [0]]
assert len(got) == len(want), f"{len(got)} results for {len(want)}: {got}"
for line, w in zip(got, want):
    assert np.allclose(nums(line), w, rtol=1e-9, atol=1e-9), f"{line} against {w}"
PYEOF
) || fail "measures against numpy: $out"
finish
