# Vector and tensor files for other tools: tensor NRRD (attached, detached) read by teem's
# unu; AVS field and AmiraMesh parsed by their published layouts; the numbered and the pair
# text; an RGB image stack written by Pillow. All compared with the numpy source fields.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, numpy, PIL"
UNU=$(command -v teem-unu || command -v unu) || need_tool teem-unu
"$PY" - <<'PYEOF' || fail "writing the inputs"
import nibabel as nib, numpy as np
from PIL import Image
rng = np.random.default_rng(3)
affine = np.array([[0.5, 0, 0, 10], [0, 0.75, 0, -4], [0, 0, 2, 1], [0, 0, 0, 1]])
v = rng.normal(0, 3, (4, 3, 2, 1, 3)); v[1, 2, 0] = 0; v[3, 0, 1] = 0
v[2, 1, 1, 0] = [-1, 0, 2]
nib.Nifti1Image(v, affine).to_filename("v.nii")
nib.Nifti1Image(np.zeros_like(v), affine).to_filename("zero.nii")
t = rng.normal(0, 1, (4, 3, 2, 1, 6))
tensor = nib.Nifti1Image(t, affine); tensor.header.set_intent("symmetric matrix", (3,)); tensor.to_filename("t.nii")
np.save("v.npy", v[:, :, :, 0]); np.save("t.npy", t[:, :, :, 0])
for k in (1, 2):
    rgb = rng.integers(0, 256, (4, 5, 3), dtype=np.uint8)  # rows y, columns x
    Image.fromarray(rgb, "RGB").save(f"s_{k}.png"); np.save(f"s_{k}.npy", rgb)
PYEOF
cat > run.macro <<'MACRO'
vector.load "v.nii"
vector.save "v.fld"
vector.save "v.am"
vector.save "scaled.nii" <2, 1, 0.5>
vector.save "v.txt"
vector.save "v.tessler"
vector.use back
vector.load "v.nii"
vector.load.txt "v.txt"
vector.save "back.nii"
vector.use zero
vector.load "zero.nii"
vector.save "zero.txt"
vector.use stack
vector.load "s_*.png"
vector.save "stack.nii"
vector.integer
vector.use ints
vector.load "v.nii"
vector.save "ints.fld"
tensor.load "t.nii"
tensor.save "t.nrrd"
tensor.save "t.nhdr"
tensor.save "t.other"
MACRO
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
check_eq "$(stat -c %s zero.txt 2>&1)" 0 "a zero field as text is an empty file"
for f in t.nrrd t.nhdr t.other; do
  "$UNU" head "$f" > "$f.head" 2>&1 || fail "unu head $f: $(cat "$f.head")"
  check_contains "$(cat "$f.head")" "sizes: 6 4 3 2" "NRRD sizes of $f"
  "$UNU" save -i "$f" -f nrrd -e ascii -o "$f.ascii" 2>"$f.err" || fail "unu save $f: $(cat "$f.err")"
done
check_contains "$(cat t.nhdr.head)" "data file: t.raw" "the detached header names its data"
out=$("$PY" - <<'PYEOF' 2>&1
import re, struct, numpy as np
v, t = np.load("v.npy"), np.load("t.npy")
first, last = np.array([10, -4, 1.0]), np.array([11.5, -2.5, 3.0])
voxels = lambda a: a.transpose(2, 1, 0, 3).reshape(-1, a.shape[3])  # x fastest
# NRRD through unu: the tensors voxel by voxel, the space of the affine.
for name in ("t.nrrd", "t.nhdr", "t.other"):
    text = open(name + ".ascii").read()
    head, body = text.split("\n\n", 1)
    assert np.allclose(np.array(body.split(), float).reshape(-1, 6), voxels(t)), name
    head = open(name + ".head").read()
    assert "kinds: 3D-symmetric-matrix domain domain domain" in head and "type: double" in head, head
    assert "space directions: none (0.5,0,0) (0,0.75,0) (0,0,2)" in head, head
    assert "space origin: (10,-4,1)" in head, head
# AVS field: key=value lines up to two form feeds, then little-endian 32-bit values.
raw = open("v.fld", "rb").read()
head, data = raw.split(b"\f\f", 1)
lines = head.decode().splitlines()
assert lines[0] == "# AVS field file" and lines[1] == "# v.fld", lines[:2]
keys = dict(l.split("=", 1) for l in lines[2:])
assert keys == {"ndim": "3", "dim1": "4", "dim2": "3", "dim3": "2", "nspace": "3", "veclen": "3", "data": "float",
                "field": "uniform", "min_ext": "10 -4 1", "max_ext": "11.5 -2.5 3"}, keys
assert np.allclose(np.frombuffer(data, "<f4").reshape(-1, 3), voxels(v), atol=1e-6)
ints = open("ints.fld", "rb").read().split(b"\f\f", 1)
assert b"data=integer" in ints[0] and np.array_equal(np.frombuffer(ints[1], "<i4").reshape(-1, 3), np.round(voxels(v)))
# AmiraMesh as a reader takes it: the define and Parameters of the header, the data block
# named in the Lattice line after its "@1" marker.
def amira(name):
    text = open(name).read()
    assert text.startswith("# AmiraMesh 3D ASCII 2.0\n"), text[:40]
    head, data = re.split(r"^@1\s*$", text, maxsplit=1, flags=re.M)
    assert tuple(map(int, re.search(r"define Lattice (\d+) (\d+) (\d+)", head).groups())) == (4, 3, 2)
    assert re.search(r'Content "4x3x2 float\[3\], uniform coordinates"', head), head
    box = np.array(re.search(r"BoundingBox ([^,\n]+),", head).group(1).split(), float)
    assert np.allclose(box, [first[0], last[0], first[1], last[1], first[2], last[2]]), box
    assert 'CoordType "uniform"' in head and re.search(r"Lattice \{ float\[3\] Data \} @1", head)
    return np.array(data.split(), float).reshape(-1, 3)
assert np.allclose(amira("v.am"), voxels(v))
assert np.allclose(amira("scaled.nii"), voxels(v) * [2, 1, 0.5])
# Pair text: position and tip for each voxel with a vector; back to the same field.
pairs = [l for l in open("v.txt").read().split("\n\n") if l]
assert len(pairs) == np.count_nonzero(np.any(voxels(v) != 0, 1)), len(pairs)
import nibabel as nib
assert np.allclose(np.asarray(nib.load("back.nii").dataobj)[:, :, :, 0], v)
# Numbered text: running point numbers, then for each vector the diagonal of its cell
# along the signs of its components.
rows = [l.split(", ") for l in open("v.tessler").read().splitlines()]
points = {int(r[0]): np.array(r[1:], float) for r in rows if len(r) == 4}
links = [tuple(map(int, r)) for r in rows if len(r) == 2]
assert sorted(points) == list(range(1, len(points) + 1)) and len(rows) == len(points) + len(links)
nonzero = [w for w in voxels(v) if np.any(w != 0)]
assert len(links) == len(nonzero)
for (a, b), w in zip(links, nonzero):
    step = (points[b] - points[a]) / [0.5, 0.75, 2]
    assert np.array_equal(step, np.where(w >= 0, 1, -1)), (step, w)
# RGB stack: each pixel's colour over 255, slice z the z-th image.
s = np.asarray(nib.load("stack.nii").dataobj)[:, :, :, 0]
assert s.shape == (5, 4, 2, 3), s.shape
for k in (1, 2):
    assert np.allclose(s[:, :, k - 1], np.load(f"s_{k}.npy").transpose(1, 0, 2) / 255), k
PYEOF
) || fail "independent readers on voxmill's vector and tensor files: $out"
finish
