# The local maps on synthetic objects: plates of width 4, 8 and 12 have their width as the
# median thickness away from the volume's sides, also with voxels twice as long in z (a
# plate 5 voxels thick there is 10 units, over the finest size 1); a rod of diameter 8 has
# it on its axis (near twice the distance transform there) and the disc's shortest chords
# elsewhere; the plane vectors of a plate stack are normal to the plates within the
# tie angle of the sample count; block mean, SD and the local
# binary pattern against numpy; zero contours; and the same maps for thread.max 1, 2 and 32.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, scipy"
$PY - <<'PYEOF'
import numpy as np, nibabel as nib
n = 48
def save(name, v, zoom=1.0):
    nib.save(nib.Nifti1Image(v.astype(np.uint8), np.diag([1, 1, zoom, 1])), name)
for w in (4, 8, 12):
    v = np.zeros((n, n, n)); v[:, :, 20:20 + w] = 200; save(f"plate{w}.nii", v)
x, y = np.mgrid[0:n, 0:n] - 23.5
v = np.zeros((n, n, n)); v[(x * x + y * y) < 16] = 200; save("rod.nii", v)     # diameter 8 along z
v = np.zeros((n, n, n)); v[:, :, 20:25] = 200; save("aniso.nii", v, 2.0)
v = np.zeros((n, n, n))
for k in range(6): v[6 + 7 * k:10 + 7 * k, :, :] = 100                           # plates normal to x
save("stack.nii", v)
rng = np.random.default_rng(7)
save("rand.nii", rng.integers(0, 4, (12, 11, 9)) * 60)
lines = ["debug.no", "scalar.8bit"]
for name in ("plate4", "plate8", "plate12", "rod", "aniso"):
    lines += ["scalar.use default", f'scalar.load "{name}.nii"', "t := scalar.measure.thickness 16", "scalar.use t",
              f'scalar.save "t-{name}.nii"']
lines += ["scalar.use default", 'scalar.load "stack.nii"', "vector.float", "scalar.measure.plane 8", 'vector.save "plane.nii"']
lines += ["scalar.use default", 'scalar.load "rand.nii"']
for i, m in enumerate(("mean 1", "sd 1", "lbp 1", "bgc.single 2")):  # new targets: outer voxels stay 0
    lines += [f"m{i} := scalar.measure.{m}", f"scalar.use m{i}", f'scalar.save "m-{m.split()[0]}.nii"', "scalar.use default"]
for k in (1, 2, 32):
    lines += [f"thread.max := {k}", 'scalar.load "rod.nii"', "t := scalar.measure.skeleton 16", "scalar.use t",
              f'scalar.save "s{k}.nii"', "scalar.use default", "t := scalar.measure.thickness 16", "scalar.use t",
              f'scalar.save "k{k}.nii"', "scalar.use default"]
open("run.macro", "w").write("\n".join(lines + [""]))
PYEOF
timeout 300 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'PYEOF' 2>&1
import numpy as np, nibabel as nib
from scipy import ndimage
def load(name):
    return np.asarray(nib.load(name).dataobj).astype(np.int64)
inner = (slice(16, 32), slice(16, 32), slice(None))   # 16 from the sides: no line leaves the volume there
for name, width in (("plate4", 4), ("plate8", 8), ("plate12", 12), ("aniso", 10)):
    src, t = load(name + ".nii")[inner], load(f"t-{name}.nii")[inner]
    med = np.median(t[src > 0])
    assert abs(med - width) <= 1, f"{name}: median thickness {med}, width {width}"
    assert (t[src == 0] == 0).all(), f"{name}: background has a thickness"
# A disc's shortest chord through a point at rho from the centre is 2 sqrt(R^2 - rho^2): the
# full diameter on the axis, where it is also twice the distance to the background.
src, t = load("rod.nii"), load("t-rod.nii")
x, y = np.mgrid[0:48, 0:48] - 23.5
chord = np.broadcast_to((2 * np.sqrt(np.maximum(16 - x * x - y * y, 0)))[:, :, None], src.shape)
axis = t[23:25, 23:25, 16:32]
edt = 2 * ndimage.distance_transform_edt(src > 0)[23:25, 23:25, 16:32]
assert abs(np.median(axis) - 8) <= 1.5 and (np.abs(axis - edt) <= 1.5).all(), f"rod axis {np.unique(axis)}, 2 edt {np.unique(edt)}"
inside = (src > 0)[:, :, 16:32]
assert abs(np.median(t[:, :, 16:32][inside]) - np.median(chord[:, :, 16:32][inside])) <= 1, "rod chords"
p = np.asarray(nib.load("plane.nii").dataobj).reshape(48, 48, 48, 3)
src = load("stack.nii")
sel = p[12:36, 12:36, 12:36][src[12:36, 12:36, 12:36] > 0]
cos = np.abs(sel[:, 0]) / np.linalg.norm(sel, axis=1)
# A line at angle a to the normal holds about w / cos a samples of a plate of width w, so
# counts tie with the normal's up to cos a = w / (w + 1); the first of equal lines is kept.
assert cos.min() > 4 / 5, f"plane vectors {np.degrees(np.arccos(cos.min()))} degrees off the normal"
assert (np.abs(np.linalg.norm(sel, axis=1) - 4) <= 1).all(), "plane vector length is the thickness"
r = load("rand.nii"); nx, ny, nz = r.shape
mean, sd, lbp = np.zeros_like(r, float), np.zeros_like(r, float), np.zeros_like(r)
pad = np.pad(r, 1)
for x in range(nx):
    for y in range(ny):
        for z in range(nz):
            if r[x, y, z] >= 1:
                b = r[max(x - 1, 0):x + 2, max(y - 1, 0):y + 2, max(z - 1, 0):z + 2].ravel()
                mean[x, y, z], sd[x, y, z] = b.mean(), b.std(ddof=1)
            if 0 < x < nx - 1 and 0 < y < ny - 1:
                lbp[x, y, z] = int((pad[x:x + 3, y:y + 3, z:z + 3] - r[x, y, z]).sum() / 26)
lbp[0], lbp[-1], lbp[:, 0], lbp[:, -1] = 0, 0, 0, 0
assert (load("m-mean.nii") == np.clip(np.round(mean), 0, 255)).all(), "block mean"
assert (np.abs(load("m-sd.nii") - np.round(sd)) == 0).all(), "block SD"
assert (load("m-lbp.nii") == np.clip(lbp, 0, 255)).all(), "local binary pattern"
assert (load("m-bgc.single.nii") == 0).all(), "binary gradient contours are zero"
for kind in "sk":
    assert (load(f"{kind}1.nii") == load(f"{kind}2.nii")).all() and (load(f"{kind}1.nii") == load(f"{kind}32.nii")).all(), kind
PYEOF
) || fail "maps: $out"
finish
