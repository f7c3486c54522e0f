# The tracer on fields with known answers: a uniform field runs box to box, a sign flip
# ends a line, thinning keeps the end points, steps 0.5 with length 10 stores 20 points a
# half, seeds 0 stores whole lines despite snakes, the last layer never seeds, the
# muscle test is one-sided, the contrast stop ends a line at a step in the scalar, plane
# seeds cover their slice, random masked seeds stay in the mask, and the nodes count of
# a voxel is the number of segments ending in it.
source "$(dirname "$0")/lib.sh"
PY=/usr/bin/python3
"$PY" - <<'PYEOF' || fail "making the fields"
import nibabel as nib, numpy as np
def vec(a): nib.save(nib.Nifti1Image(a[..., None, :].astype(np.float32), np.eye(4)), a.name)
u = np.zeros((12, 10, 8, 3)); u[..., 0] = 1
nib.save(nib.Nifti1Image(u[..., None, :].astype(np.float32), np.eye(4)), "uniform.nii")
f = u.copy(); f[7:, ..., 0] = -1  # local x >= 8 points back
nib.save(nib.Nifti1Image(f[..., None, :].astype(np.float32), np.eye(4)), "flip.nii")
long = np.zeros((64, 4, 4, 3)); long[..., 0] = 1
nib.save(nib.Nifti1Image(long[..., None, :].astype(np.float32), np.eye(4)), "long.nii")
last = np.zeros((12, 10, 8, 3)); last[11, ..., 0] = 1; last[:, 9, :, 1] = 1; last[:, :, 7, 2] = 1
nib.save(nib.Nifti1Image(last[..., None, :].astype(np.float32), np.eye(4)), "last.nii")
def mask(name, shape, *voxels):
    m = np.zeros(shape, np.uint8)
    for v in voxels: m[v] = 1
    nib.save(nib.Nifti1Image(m, np.eye(4)), name)
mask("all.nii", (12, 10, 8)); m = nib.load("all.nii"); nib.save(nib.Nifti1Image(np.ones((12, 10, 8), np.uint8), np.eye(4)), "all.nii")
mask("one.nii", (12, 10, 8), (2, 4, 3))
mask("mid.nii", (64, 4, 4), (30, 1, 1))
mask("low.nii", (12, 10, 8), (1, 4, 3))
mask("high.nii", (12, 10, 8), (9, 4, 3))
m = np.zeros((12, 10, 8), np.uint8); m[:, :5] = 1
nib.save(nib.Nifti1Image(m, np.eye(4)), "half.nii")
m = np.zeros((12, 10, 8), np.uint8); m[6:] = 100
nib.save(nib.Nifti1Image(m, np.eye(4)), "contrast.nii")
# zero-vector seeds trace only where the voxel size (1.1 as float32) makes the way back
# from global to local inexact, so that a neighbour's vector weighs in a little
aff = np.diag([1.1, 1.1, 1.1, 1.0]); aff[:3, 3] = 0.1
n = u.copy(); n[3] = 0; n[:2, ..., 0] = -1  # and the backward halves turn back inside
nib.save(nib.Nifti1Image(n[..., None, :].astype(np.float32), aff), "nodes.nii")
nib.save(nib.Nifti1Image(np.zeros((12, 10, 8), np.uint8), aff), "zeros.nii")
PYEOF
cat > run.macro <<'MACRO'
scalar.8bit
vector.stream.seeds 0
vector.stream.angles 0
vector.load "uniform.nii"
vector.stream.random 20
line.save.txt "uniform.txt"
line.clear
vector.stream.angles 5
vector.stream.random 5
line.save.txt "thin.txt"
line.clear
vector.stream.angles 0
vector.load "flip.nii"
scalar.use "one"
scalar.load "one.nii"
vector.stream.mask "one" 1
line.save.txt "flip.txt"
line.clear
vector.load "long.nii"
scalar.use "mid"
scalar.load "mid.nii"
vector.stream.steps 0.5
vector.stream.stop.length 10
vector.stream.mask "mid" 1
line.save.txt "half.txt"
line.clear
vector.stream.steps 1
vector.stream.stop.length 0
vector.load "uniform.nii"
scalar.use "all"
scalar.load "all.nii"
vector.stream.snakes 1
vector.stream.mask "all" 1
n := line.lines
print "snakes " n
line.clear
vector.stream.seeds 1
vector.stream.snakes 0
vector.stream.mask "all" 1
n := line.lines
print "marked " n
line.clear
vector.load "last.nii"
vector.stream.mask "all" 1
scalar.use "low"
scalar.load "low.nii"
vector.load "uniform.nii"
vector.stream.muscle.mask "low" 1
scalar.use "high"
scalar.load "high.nii"
vector.stream.muscle.mask "high" 1
line.clear
vector.stream.seeds 0
scalar.use "contrast"
scalar.load "contrast.nii"
vector.stream.stop.contrast 99
vector.stream.mask "one" 1
vector.stream.stop.contrast 100
vector.stream.mask "one" 1
line.save.txt "contrast.txt"
line.clear
vector.stream.stop.contrast 0
vector.stream.slicex.mask 4 "all" 1
line.save.txt "slicex.txt"
line.clear
vector.stream.slice.mask <0, 0, 3> <0, 0, 1> "all" 1
line.save.txt "slice.txt"
line.clear
vector.stream.slicez 3
scalar.use "half"
scalar.load "half.nii"
vector.stream.mask.random 200 "half" 1
line.save.txt "maskrandom.txt"
line.clear
vector.load "nodes.nii"
vector.stream
line.save.txt "nodelines.txt"
line.clear
scalar.load "zeros.nii"
vector.stream.nodes
n := line.lines
print "nodes store " n
scalar.save "nodes-out.nii"
MACRO
"$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
out=$(script_part < console.txt)
check_contains "$out" "(100.00%) streamlines from seeds." "uniform field from random seeds"
check_contains "$out" "snakes 693" "seeds 0 keeps every line whatever snakes says"
check_contains "$out" "marked 63" "seed marking leaves one line a row"
# last layer: no seed; then the muscle lines: low end fails, high end passes (one-sided)
# and the unmasked slice, which seeds only where the vector is zero
check_eq "$(grep -cF '  Found 0 (0%) streamlines from seeds.' <<<"$out")" 3 "last layer, unbalanced muscle line and plain slice give none"
check_contains "$out" "nodes store 0" "nodes stores no line"
check_contains "$out" "  Found 1 (100.00%) streamlines from seeds." "a longer backward half passes the muscle test"
"$PY" - <<'PYEOF' || fail "line geometry"
import numpy as np
def lines(name):
    out, cur = [], []
    for row in open(name):
        v = row.split()
        if v and (v[0][0].isdigit() or v[0][0] in "-."):
            cur.append([float(x) for x in v])
        elif cur:
            out.append(np.array(cur)); cur = []
    if cur: out.append(np.array(cur))
    return out
u = lines("uniform.txt")
assert 10 < len(u) <= 20  # seeds rounded onto the border fall outside
for l in u:  # box -0.5..11.5 in x; the step that leaves it is stored
    assert l[0, 0] == -1 and l[-1, 0] == 12 and len(l) == 14, l
    assert np.all(np.diff(l[:, 0]) == 1) and np.ptp(l[:, 1]) == 0 and np.ptp(l[:, 2]) == 0
for l in lines("thin.txt"):
    assert len(l) == 3 and l[0, 0] == -1 and l[-1, 0] == 12, l
(f,) = lines("flip.txt")
assert f[0, 0] == -1 and f.max(0)[0] == 7 and f[-1, 0] == 6, f  # turns back at local 8
(h,) = lines("half.txt")
assert len(h) == 40 and h[0, 0] == 30 - 10 and h[-1, 0] == 30 + 9.5, (len(h), h[0], h[-1])
stopped, passed = lines("contrast.txt")  # 0 to 100 between x 5 and 6: the step onto 6 is stored
assert stopped[0, 0] == -1 and stopped[-1, 0] == 6 and passed[-1, 0] == 12, (stopped, passed)
# a line from each voxel of the slice, box to box along x: across x one per voxel, across z
# the voxels of a row share theirs
ls = lines("slicex.txt")
assert len(ls) == 80 == len({tuple(l[0, 1:]) for l in ls}) and all(len(l) == 14 for l in ls), len(ls)
ls = lines("slice.txt")
rows = [l[0, 1] for l in ls]
assert len(ls) == 120 and all(l[0, 2] == 3 and len(l) == 14 for l in ls) and all(rows.count(y) == 12 for y in range(10))
mr = lines("maskrandom.txt")
assert 50 < len(mr) < 150 and all(np.all(l[:, 1] <= 4) for l in mr), len(mr)
import nibabel as nib
ls = lines("nodelines.txt")
assert len(ls) == 63, len(ls)  # every seed of the zero plane away from the last layers
want = np.zeros((12, 10, 8), int)
for l in ls:
    v = np.rint((l[:, :3] - 0.1) / np.float32(1.1)).astype(int)  # 0-based voxels
    assert v[0, 0] == 2, v  # the line starts inside, where it turned back
    assert np.all(np.abs(np.diff(v, axis=0)).sum(1) == 1)  # unit steps: a segment covers its two ends
    ends = [v[0]] + [e for a, b in zip(v[:-1], v[1:]) for e in (a, b)]  # the first voxel counts once more
    for e in ends:
        if np.all(e >= 0) and np.all(e < want.shape): want[tuple(e)] += 1
got = np.asanyarray(nib.load("nodes-out.nii").dataobj)
assert np.array_equal(got, want), np.argwhere(got != want)[:5]
PYEOF
finish
