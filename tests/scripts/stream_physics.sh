# Streamlines along the tubes of the fibre phantom: scalar.diffusion, then lines seeded on
# the tube axes stay within one voxel of their axis on average and run about the tube's
# length through the volume (the tube along z, which the direction lattice serves badly,
# is left out).
HERE="$(cd "$(dirname "$0")" && pwd)"
source "$HERE/lib.sh"
PY=/usr/bin/python3
"$PY" - "$HERE" <<'PYEOF' || fail "making the phantom"
import sys
sys.path.insert(0, sys.argv[1])
import nibabel as nib, numpy as np
import fibre_phantom as fp
nib.Nifti1Image(fp.make(64), np.eye(4)).to_filename("phantom.nii")
d, _, names = fp.geometry(64)
seeds = np.zeros(d.shape[1:], np.uint8)
for i, name in enumerate(names):  # voxels on one axis, away from the other tubes
    if name != "z":
        seeds[(d[i] <= 0.7) & ((d <= fp.RADIUS + 3).sum(0) == 1)] = i + 1
nib.Nifti1Image(seeds, np.eye(4)).to_filename("seeds.nii")
PYEOF
cat > run.macro <<'MACRO'
scalar.8bit
scalar.load "phantom.nii"
scalar.diffusion 8
scalar.use "seeds"
scalar.load "seeds.nii"
vector.stream.seeds 0
vector.stream.mask "seeds" <1, 5>
line.save.txt "lines.txt"
MACRO
timeout 300 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
"$PY" - "$HERE" <<'PYEOF' || fail "lines along the tubes"
import sys
sys.path.insert(0, sys.argv[1])
import numpy as np
import fibre_phantom as fp
lines, cur = [], []
for row in open("lines.txt"):
    v = row.split()
    if v and (v[0][0].isdigit() or v[0][0] in "-."): cur.append([float(x) for x in v[:3]])
    elif cur: lines.append(np.array(cur) + 1); cur = []  # the phantom counts voxels from 1
def axisdist(p, tube):
    name, kind, c, a = tube
    if kind == "line":
        rel = p - c
        return np.linalg.norm(rel - (rel @ a)[:, None] * a, axis=1)
    return np.hypot(p[:, 2] - c[2], np.hypot(p[:, 0] - c[0], p[:, 1] - c[1]) - a)
tubes = [t for t in fp.tubes(64) if t[0] != "z"]
# chord lengths through the box 1..64 of the straight tubes; the arc of the curve
expected = {"x": 63, "y": 63, "xy": 44 * np.sqrt(2), "xz": 63 * np.sqrt(2), "curve": None}
assert len(lines) > 50, len(lines)
for t in tubes:
    own = [l for l in lines if np.argmin([axisdist(l, u).mean() for u in tubes]) == tubes.index(t)]
    dist = np.mean(np.concatenate([axisdist(l, t) for l in own]))
    length = np.median([np.linalg.norm(np.diff(l, axis=0), axis=1).sum() for l in own])
    print(t[0], len(own), "mean distance %.2f" % dist, "median length %.1f" % length)
    assert own and dist < 1, t[0]
    if expected[t[0]]: assert abs(length - expected[t[0]]) < 0.1 * expected[t[0]], (t[0], length)
PYEOF
finish
