# Groups against scipy.ndimage.label with face connectivity: random masks of several
# densities in gray and fullgray volumes (NIfTI) and in gray images (PGM). The count of
# groups, the labels voxel for voxel (scipy's numbered again by first voxel with x
# fastest, the scan order of the groups) and the sizes per group must agree. Image labels
# stay below 256, in a gray target.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, scipy, PIL"
$PY - <<'PYEOF'
import numpy as np, nibabel as nib
from PIL import Image
rng = np.random.default_rng(11)
lines = ["debug.no"]
for i, (density, dtype) in enumerate([(0.2, np.uint8), (0.31, np.uint16), (0.5, np.uint8), (0.7, np.uint16)]):
    top = 255 if dtype == np.uint8 else 40000
    values = rng.integers(0, top, (23, 17, 11))
    mask = rng.random((23, 17, 11)) < density
    data = np.where(mask, np.maximum(values, 100), np.minimum(values, 99)).astype(dtype)
    nib.save(nib.Nifti1Image(data, np.eye(4)), "v%d.nii" % i)
    lines += ["scalar.%s" % ("8bit" if dtype == np.uint8 else "16bit"), "scalar.use src%d" % i, 'scalar.load "v%d.nii"' % i,
              "scalar.16bit", "lab%d := scalar.group src%d <100, %d>" % (i, i, top), 'print "volume %d " scalar.groups' % i,
              "scalar.use lab%d" % i, 'scalar.save "l%d.nii"' % i]
for i, density in enumerate([0.3, 0.6]):
    img = np.where(rng.random((29, 41)) < density, 200, 7).astype(np.uint8)
    Image.fromarray(img).save("p%d.pgm" % i)
    lines += ["image.8bit", "image.use src%d" % i, 'image.load "p%d.pgm"' % i,
              "plab%d := image.group src%d 200" % (i, i), 'print "image %d " image.groups' % i,
              "image.use plab%d" % i, 'image.save "pl%d.pgm"' % i]
open("run.macro", "w").write("\n".join(lines) + "\n")
PYEOF
timeout 120 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'PYEOF' 2>&1
import re, numpy as np, nibabel as nib
from scipy import ndimage
from PIL import Image
console = open("console.txt", encoding="utf-8", errors="replace").read()

def scanorder(labels, order):
    """scipy's labels numbered again by their first voxel in the given scan order."""
    flat = labels.ravel(order=order)
    first = {}
    for v in flat[flat > 0]:
        first.setdefault(v, len(first) + 1)
    table = np.zeros(labels.max() + 1, dtype=np.int64)
    for v, n in first.items():
        table[v] = n
    return table[labels]

def compare(name, ours, mask, reported, order):
    peer, n = ndimage.label(mask)  # default structure: faces only
    assert reported == n, "%s: %d groups reported, scipy finds %d" % (name, reported, n)
    assert np.array_equal(ours.astype(np.int64), scanorder(peer, order)), "%s: labels differ" % name
    assert sorted(np.bincount(ours.ravel())[1:]) == sorted(np.bincount(peer.ravel())[1:]), "%s: sizes differ" % name

for i in range(4):
    src = np.asarray(nib.load("v%d.nii" % i).dataobj)
    ours = np.asarray(nib.load("l%d.nii" % i).dataobj)
    reported = int(re.search(r"volume %d (\d+)" % i, console).group(1))
    compare("volume %d" % i, ours, src >= 100, reported, "F")
for i in range(2):
    src = np.asarray(Image.open("p%d.pgm" % i))
    ours = np.asarray(Image.open("pl%d.pgm" % i)).astype(np.int64)
    reported = int(re.search(r"image %d (\d+)" % i, console).group(1))
    compare("image %d" % i, ours, src == 200, reported, "C")
print("ok")
PYEOF
)
check_eq "$out" "ok" "groups against scipy.ndimage.label"
finish
