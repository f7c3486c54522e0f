# Neighbour-count morphology against a brute-force numpy model on random fields, hole
# filling against scipy's binary_fill_holes, and the threaded convex fill for several
# thread counts.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, scipy"

$PY - <<'EOF'
import numpy as np, nibabel as nib
rng = np.random.default_rng(21)
def nii(name, a, dtype):
    img = nib.Nifti1Image(a.astype(dtype).transpose(2, 1, 0), np.eye(4))  # a is [z, y, x]
    img.header.set_data_dtype(dtype)
    nib.save(img, name)
# Blobs of a few levels, so that every count from 0 to 26 occurs.
g = (rng.random((9, 11, 13)) < 0.55) * rng.integers(0, 4, (9, 11, 13)) * 70
nii("g8.nii", g, np.uint8)
nii("g16.nii", g * 200 + rng.integers(0, 3, g.shape), np.uint16)
nii("labels.nii", rng.integers(0, 4, (7, 8, 9)) * (rng.random((7, 8, 9)) < 0.6), np.uint8)
# Masks with cavities: hollow boxes and random noise.
m = np.zeros((12, 14, 16), np.uint8)
m[2:10, 2:12, 2:14] = 1; m[4:8, 4:10, 4:12] = 0; m[5, 6, 6] = 1
m |= (rng.random(m.shape) < 0.25).astype(np.uint8)
nii("mask.nii", m * 9, np.uint8)
nii("blob.nii", (rng.random((10, 12, 14)) < 0.1) * 200, np.uint8)
from PIL import Image
m2 = np.zeros((20, 24), np.uint8); m2[3:15, 4:20] = 200; m2[6:10, 8:12] = 0; m2[12, 10] = 0
m2[rng.random(m2.shape) < 0.2] = 200
Image.fromarray(m2).save("mask.pgm")
z = rng.integers(1, 256, (9, 11)).astype(np.uint8); z[rng.random(z.shape) < 0.5] = 0; z[:, :3] = 0
Image.fromarray(z).save("zeros.pgm")
Image.fromarray(((rng.random((17, 19)) < 0.6) * rng.integers(0, 4, (17, 19)) * 80).astype(np.uint8)).save("g2.pgm")
EOF

# Each round: load a file, the commands, save the result.
round() { local kind=$1 in=$2 out=$3; shift 3; printf '%s.load "%s"\n' "$kind" "$in"; printf '%s\n' "$@"; printf '%s.save "%s"\n' "$kind" "$out"; }
{
  printf '%s\n' debug.no scalar.8bit
  round scalar g8.nii o_shrink.nii "scalar.shrink <100, 255> 9"
  round scalar g8.nii o_grow.nii "scalar.grow <70, 140> 5"
  round scalar g8.nii o_growv.nii "scalar.grow 210 13 7"
  round scalar g8.nii o_skel.nii "scalar.skeleton <1, 255> 3"
  round scalar labels.nii o_shrinklabel.nii "scalar.shrink.label <1, 2> 6"
  round scalar labels.nii o_growlabel.nii "scalar.grow.label <2, 3> 4"
  printf '%s\n' scalar.16bit "scalar.use wide"
  round scalar g16.nii o_shrink16.nii "scalar.shrink <14000, 65535> 11"
  echo scalar.8bit
  round scalar g8.nii o_outliers.nii "scalar.remove.outliers 1"
  echo image.8bit
  round image mask.pgm o_holes.pgm "image.value 99" "image.fill.holes <128, 255>"
  round image g2.pgm o_shrink2.pgm "image.shrink <100, 255> 3"
  round image g2.pgm o_grow2.pgm "image.grow <1, 170> 4"
  round image zeros.pgm o_zero.pgm image.fill.zero
  round image zeros.pgm o_gap.pgm image.fill.gap
  round image zeros.pgm o_gapbox.pgm "image.fill.gap <2, 2> <6, 5>"
  echo "scalar.use masks"
  round scalar mask.nii o_holes.nii "scalar.fill.holes <9, 9> 9"
  round scalar blob.nii o_hullz.nii "scalar.value 200" scalar.convex.z
  round scalar blob.nii o_hullx.nii "scalar.value 200" scalar.convex.x
  for n in 1 2 5; do
    echo "thread.max := $n"
    round scalar blob.nii "o_convex$n.nii" "scalar.value 200" scalar.fill.convex
  done
} > m.macro
out=$("$BIN" -strict -macro=m.macro | script_part)
check_not_contains "$out" "error" "the macro runs"

result=$($PY - <<'EOF'
import numpy as np, nibabel as nib
from scipy import ndimage
def load(name):
    return np.asarray(nib.load(name).dataobj).transpose(2, 1, 0).astype(np.int64)
def frequent(values):
    # The most frequent value; ties go to the one the frequency sort leaves last.
    u, c = np.unique(values, return_counts=True)
    return u, c
def model(a, lo, hi, n, kind, value=None, label=False, planar=False):
    p = np.pad(a, ((0, 0) if planar else (1, 1), (1, 1), (1, 1)))  # outside reads the background 0
    out = a.copy()
    for z, y, x in np.ndindex(a.shape):
        w = p[z:z + (1 if planar else 3), y:y + 3, x:x + 3].reshape(-1)
        w = np.delete(w, 4 if planar else 13)
        inr = (w >= lo) & (w <= hi)
        centre = lo <= a[z, y, x] <= hi
        deciding = w[inr] if kind == "grow" else w[~inr]
        if centre == (kind == "grow"):
            continue
        k = len(deciding)
        if not (n < k and (kind != "skeleton" or k < 21)):
            continue
        if value is not None:
            out[z, y, x] = value
        elif label:
            u, c = frequent(deciding)
            best = c.max()
            out[z, y, x] = -1 if (c == best).sum() > 1 else u[c.argmax()]  # ties: any of them
        else:
            out[z, y, x] = deciding.sum() // k
    return out
bad = []
def same(name, got, want):
    tie = want == -1
    if not np.array_equal(got[~tie], want[~tie]):
        bad.append("%s: %d voxels differ" % (name, int((got[~tie] != want[~tie]).sum())))
g = load("g8.nii")
same("shrink", load("o_shrink.nii"), model(g, 100, 255, 9, "shrink"))
same("grow", load("o_grow.nii"), model(g, 70, 140, 5, "grow"))
same("grow value", load("o_growv.nii"), model(g, 210, 210, 13, "grow", 7))
same("skeleton", load("o_skel.nii"), model(g, 1, 255, 3, "skeleton"))
same("shrink 16", load("o_shrink16.nii"), model(load("g16.nii"), 14000, 65535, 11, "shrink"))
lab = load("labels.nii")
same("shrink.label", load("o_shrinklabel.nii"), model(lab, 1, 2, 6, "shrink", label=True))
same("grow.label", load("o_growlabel.nii"), model(lab, 2, 3, 4, "grow", label=True))
m = load("mask.nii")
want = np.where(ndimage.binary_fill_holes(m == 9), 9, m)
same("fill.holes", load("o_holes.nii"), want)
def outliers(a, f):
    p = np.pad(a, 1)
    out = a.copy()
    for z, y, x in np.ndindex(a.shape):
        w = np.sort(p[z:z + 3, y:y + 3, x:x + 3].reshape(-1))
        q1, med, q3 = w[6], w[13], w[18]  # positions 7, 14 and 19 of 27
        if abs(a[z, y, x] - med) > f * (q3 - q1): out[z, y, x] = med
    return out
same("remove.outliers", load("o_outliers.nii"), outliers(g, 1))
from PIL import Image
m2 = np.asarray(Image.open("mask.pgm")).astype(np.int64)
want = np.where(ndimage.binary_fill_holes(m2 >= 128) & (m2 < 128), 99, m2)
got = np.asarray(Image.open("o_holes.pgm")).astype(np.int64)
if not np.array_equal(got, want) or not (got == 99).any(): bad.append("image.fill.holes")
def zeros(a, enclosed, box=None):
    out = a.copy()
    h, w = a.shape
    steps = [(1, 0), (-1, 0), (0, 1), (0, -1), (1, 1), (-1, -1), (1, -1), (-1, 1)]
    for y, x in np.ndindex(a.shape):
        if a[y, x] or (box and not (box[0] <= x + 1 <= box[2] and box[1] <= y + 1 <= box[3])): continue
        s = wt = 0.0
        found = []
        for dx, dy in steps:
            px, py, d = x + dx, y + dy, 1
            while 0 <= px < w and 0 <= py < h and a[py, px] == 0: px, py, d = px + dx, py + dy, d + 1
            found.append(0 <= px < w and 0 <= py < h)
            if found[-1]: s, wt = s + a[py, px] / d, wt + 1 / d
        closed = any(found[2 * k] and found[2 * k + 1] for k in range(4))
        if wt > 0 and (closed or not enclosed): out[y, x] = np.rint(s / wt)
    return out
g2 = np.asarray(Image.open("g2.pgm")).astype(np.int64)[None]  # one plane: 8 neighbours
same("image.shrink", np.asarray(Image.open("o_shrink2.pgm")).astype(np.int64), model(g2, 100, 255, 3, "shrink", planar=True)[0])
same("image.grow", np.asarray(Image.open("o_grow2.pgm")).astype(np.int64), model(g2, 1, 170, 4, "grow", planar=True)[0])
zz = np.asarray(Image.open("zeros.pgm")).astype(np.int64)
for name, want in (("o_zero.pgm", zeros(zz, False)), ("o_gap.pgm", zeros(zz, True)), ("o_gapbox.pgm", zeros(zz, True, (2, 2, 6, 5)))):
    same(name, np.asarray(Image.open(name)).astype(np.int64), want)
from scipy.spatial import ConvexHull
def hulls(a, axis):
    out = np.moveaxis(a.copy(), axis, 0)
    for plane in out:
        pts = np.argwhere(plane > 0)
        if len(pts) < 3: continue  # not met by the random planes below
        eq = ConvexHull(pts).equations
        grid = np.argwhere(np.ones_like(plane, bool))
        inside = (grid @ eq[:, :2].T + eq[:, 2] <= 1e-9).all(axis=1)
        plane[tuple(grid[inside].T)] = 200
    return np.moveaxis(out, 0, axis)
bl = load("blob.nii")
same("convex.z", load("o_hullz.nii"), hulls(bl, 0))
same("convex.x", load("o_hullx.nii"), hulls(bl, 2))
c1, c2, c5 = load("o_convex1.nii"), load("o_convex2.nii"), load("o_convex5.nii")
if not (np.array_equal(c1, c2) and np.array_equal(c1, c5)): bad.append("fill.convex depends on the thread count")
b = load("blob.nii")
if not ((c1 >= b).all() and (c1 > b).any()): bad.append("fill.convex did not fill")
print("\n".join(bad) if bad else "ok")
EOF
)
check_eq "$result" "ok" "morphology against the model"
finish
