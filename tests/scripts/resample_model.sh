# Scaling against independent models: trilinear upscaling against scipy's map_coordinates
# (order 1, the background outside) at the positions (p - 1) / f, binning by mean against
# skimage's downscale_local_mean, median and max against numpy block statistics, and the
# label form against the most frequent value of each block.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, scipy, skimage"

$PY - <<'EOF'
import numpy as np, nibabel as nib
rng = np.random.default_rng(5)
def nii(name, a, dtype):
    nib.save(nib.Nifti1Image(a.astype(dtype).transpose(2, 1, 0), np.eye(4), dtype=dtype), name)
nii("v16.nii", rng.integers(0, 60000, (8, 12, 16)), np.uint16)
nii("v8.nii", rng.integers(0, 256, (7, 9, 10)), np.uint8)
nii("labels.nii", rng.integers(0, 3, (8, 8, 8)) * 3, np.uint8)
EOF

# A scaled copy NAME := scalar.COPY saved as FILE, then the source selected again if given.
scaled() { printf '%s := scalar.%s\nscalar.use %s\nscalar.save "%s"\n' "$1" "$2" "$1" "$3"; [ -z "${4:-}" ] || echo "scalar.use $4"; }
{
  printf '%s\n' debug.no scalar.16bit 'scalar.load "v16.nii"'
  scaled a "copy 0.5" o_mean.nii default
  echo "scalar.copy.method 5"
  scaled b "copy 0.25" o_median.nii default
  echo "scalar.copy.method 7"
  scaled c "copy <0.5, 0.25, 0.5>" o_max.nii
  printf '%s\n' scalar.8bit "scalar.use bytes" 'scalar.load "v8.nii"'
  scaled d "copy 2" o_up2.nii bytes
  scaled e "copy <3, 1.5, 2.5>" o_up_aniso.nii bytes
  echo "scalar.copy.method 2"
  scaled l "copy 2" o_lanczos.nii
  printf '%s\n' "scalar.use labels" 'scalar.load "labels.nii"'
  scaled f "copy.label 0.5" o_label.nii
} > r.macro
out=$("$BIN" -strict -macro=r.macro | script_part)
check_not_contains "$out" "error" "the macro runs"

result=$($PY - <<'EOF'
import numpy as np, nibabel as nib
from scipy import ndimage
from skimage.transform import downscale_local_mean
def load(name):
    return np.asarray(nib.load(name).dataobj).transpose(2, 1, 0).astype(np.int64)
bad = []
def same(name, got, want):
    if got.shape != want.shape:
        bad.append("%s: shape %s, expected %s" % (name, got.shape, want.shape))
    elif not np.array_equal(got, want):
        bad.append("%s: %d voxels differ" % (name, int((got != want).sum())))
def blocks(a, b):
    z, y, x = a.shape
    return a.reshape(z // b[0], b[0], y // b[1], b[1], x // b[2], b[2]).transpose(0, 2, 4, 1, 3, 5).reshape(z // b[0], y // b[1], x // b[2], -1)
v = load("v16.nii")
same("mean", load("o_mean.nii"), np.rint(downscale_local_mean(v, (2, 2, 2))).astype(np.int64))
# The median of an even list is its lower middle element.
same("median", load("o_median.nii"), np.sort(blocks(v, (4, 4, 4)), axis=-1)[..., 31])
same("max", load("o_max.nii"), blocks(v, (2, 4, 2)).max(axis=-1))
def trilinear(a, f):
    # Target index p (from 0) samples the source at p / f; outside reads 0.
    out = [int(np.floor(n * k + 0.5)) for n, k in zip(a.shape, f)]
    grid = np.meshgrid(*[np.arange(n) / k for n, k in zip(out, f)], indexing="ij")
    want = ndimage.map_coordinates(a.astype(np.float64), grid, order=1, mode="grid-constant", cval=0.0)
    return want
def close(name, got, want):
    if got.shape != want.shape:
        return bad.append("%s: shape %s, expected %s" % (name, got.shape, want.shape))
    diff = np.abs(got - np.rint(want))
    tie = np.abs(want - np.floor(want) - 0.5) < 1e-6
    if (diff > 1).any() or ((diff == 1) & ~tie).any():
        bad.append("%s: %d voxels differ" % (name, int(((diff > 1) | ((diff == 1) & ~tie)).sum())))
w = load("v8.nii")
close("trilinear 2", load("o_up2.nii"), trilinear(w, (2, 2, 2)))
close("trilinear <3, 1.5, 2.5>", load("o_up_aniso.nii"), trilinear(w, (2.5, 1.5, 3)))
def lanczos(a, f):
    # Separable 4-lobe windows over i - 3 .. i + 4 clipped to the field, each axis
    # normalised by its weights; rounded and clamped to 8 bits.
    def weights(n, out):
        m = np.zeros((out, n))
        for p in range(out):
            q = p / f + 1
            i = int(np.floor(q))
            for k in range(max(i - 3, 1), min(i + 4, n) + 1):
                d = q - k
                m[p, k - 1] = 1.0 if d == 0 else 4 * np.sin(np.pi * d) * np.sin(np.pi * d / 4) / (np.pi ** 2 * d ** 2)
            m[p] /= m[p].sum()
        return m
    r = a.astype(np.float64)
    for axis in range(3):
        m = weights(a.shape[axis], int(np.floor(a.shape[axis] * f + 0.5)))
        r = np.moveaxis(np.tensordot(m, np.moveaxis(r, axis, 0), axes=1), 0, axis)
    return np.clip(r, 0, 255)
want = lanczos(w, 2)
close("lanczos 2", load("o_lanczos.nii"), want)
if not ((lanczos(w, 2) == 255).any() or (lanczos(w, 2) == 0).any()): bad.append("lanczos: no overshoot to clamp")
lab = load("labels.nii")
got = load("o_label.nii")
b = blocks(lab, (2, 2, 2))
counts = np.stack([(b == k).sum(axis=-1) for k in (0, 3, 6)], axis=-1)
best = counts.max(axis=-1)
ok = np.take_along_axis(counts, (got // 3)[..., None], axis=-1)[..., 0] == best
if got.shape != lab.shape[:0] + (4, 4, 4) or not ok.all(): bad.append("copy.label: not the most frequent value")
print("\n".join(bad) if bad else "ok")
EOF
)
check_eq "$result" "ok" "scaling against the models"
finish
