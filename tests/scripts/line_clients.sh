# Line files read by independent readers: TrackVis by nibabel, VTP by vtk (on a copy with
# the lines block mended), DXF by ezdxf, OBJ by assimp (t column dropped), SWC and MV3D by their columns; the
# native text read back, also as scaled copies; a failed save leaves no file behind.
source "$(dirname "$0")/lib.sh"
"$PY" - <<'PYEOF' || fail "making the inputs"
import nibabel as nib, numpy as np
u = np.zeros((12, 10, 8, 1, 3), np.float32); u[..., 0] = 1
nib.save(nib.Nifti1Image(u, np.diag([2.0, 2.0, 2.0, 1.0])), "uniform.nii")
m = np.zeros((4, 3, 2), np.uint8); m[1, 2, 1] = m[3, 0, 0] = 2; m[0, 0, 0] = 1
nib.save(nib.Nifti1Image(m, np.diag([1.0, 1.0, 1.0, 1.0])), "m.nii")
open("mixed.txt", "w").write("object:\tmixed\n1 2 3 4\n\n0 0 0 1\n1 0 0 2\n\n0 0 0 0\n1 0 0 0\n1 1 0 0\n0 0 0 0\n\ngarbage here\n5\t5\t5\t5\n")
PYEOF
cat > run.macro <<'MACRO'
vector.load "uniform.nii"
vector.stream.random 30
line.save "s.trk"
line.save "s.vtp"
line.save "s.dxf"
line.save "s.obj"
line.save "s.swc"
line.save "s.mv3d"
line.save "s.mel"
line.save "s.txt"
line.save "s.txt"
p := line.points
n := line.lines
print "cloud " n " " p
line.clear
line.load "s.txt"
line.save.txt "again.txt"
line.clear
line.load "s.txt" 100
p := line.points
print "dropped " p
line.clear
line.load "mixed.txt"
line.save.obj "mixed.obj"
line.save.swc "nodir/x.swc"
line.save.txt "mixed-again.txt"
one := line.copyscale 2
four := line.copyscale <2, 2, 2, 3>
line.use one
line.save.txt "one.txt"
line.use four
line.save.txt "four.txt"
line.clear
scalar.8bit
scalar.use "m"
scalar.load "m.nii"
scalar.samples <2, 3> m m
n := line.lines
p := line.points
print "samples " n " " p
line.save.txt "samples.txt"
MACRO
"$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
out=$(script_part < console.txt)
check_contains "$out" "dropped 0" "a share of 100 drops every line"
check_contains "$out" "samples 2 4" "scalar.samples: a line per voxel in the range, a point per field"
check_eq "$(grep -c $'\t2$' samples.txt)" 4 "scalar.samples: the fields' values as t"
check_contains "$(cat samples.txt)" "$(printf '1\t2\t1\t2')" "scalar.samples: the voxel's place"
cmp -s s.txt again.txt || fail "the native text does not read back to the same file"
[ -f s.txt.bak ] || fail "an existing native file is kept as .bak"
ls nodir/x.swc* s.*.part 2>/dev/null && fail "a failed save left a file"
check_eq "$(tr -d '\r' < mixed.obj | grep -E '^[plf] ')" "$(printf 'p 1\nl 2 3\nf 4 5 6\np 8')" "OBJ point, line and closed line rows"
cloud=$(sed -n 's/^cloud //p' <<<"$out")
"$PY" - $cloud <<'PYEOF' || fail "independent readers"
import sys, warnings, numpy as np
lines, points = int(sys.argv[1]), int(sys.argv[2])
def native(name):
    out, cur = [], []
    for row in open(name):
        v = row.split()
        if v and (v[0][0].isdigit() or v[0][0] in "-."): cur.append([float(x) for x in v])
        elif cur: out.append(np.array(cur)); cur = []
    return out + ([np.array(cur)] if cur else [])
ref = native("s.txt")
assert len(ref) == lines and sum(map(len, ref)) == points
# TrackVis: the header leaves vox_to_ras zero, so nibabel warns and takes the identity
import nibabel as nib
raw = open("s.trk", "rb").read()
assert len(raw) == 1000 + sum(4 + 12 * len(l) for l in ref)
assert np.frombuffer(raw[988:992], "<i4")[0] == lines
with warnings.catch_warnings(record=True) as w:
    warnings.simplefilter("always")
    t = nib.streamlines.load("s.trk")
assert any("vox_to_ras" in str(x.message) for x in w), "deviation: the vox_to_ras warning is expected"
vs, dim = t.header["voxel_sizes"], t.header["dimensions"]
assert list(dim) == [12, 10, 8] and np.allclose(vs, 2)
assert len(t.streamlines) == lines
for s, l in zip(t.streamlines, ref):
    vox = l[:, :3] / vs - 0.5  # corner convention, then LPS to RAS flips x and y
    ras = np.stack([dim[0] - 1 - vox[:, 0], dim[1] - 1 - vox[:, 1], vox[:, 2]], 1)
    assert np.allclose(s, ras, atol=1e-4), (s, ras)
# VTP: the lines block closes with </Polys> and its count stands in NumberOfPolys (deviation)
text = open("s.vtp").read()
assert "</Polys>" in text and "</Lines>" not in text and 'NumberOfLines="0"' in text
fixed = text.replace("</Polys>", "</Lines>").replace('NumberOfLines="0"', 'NumberOfLines="%d"' % lines).replace(
    'NumberOfPolys="%d"' % lines, 'NumberOfPolys="0"')
open("fixed.vtp", "w").write(fixed)
import vtk
from vtk.util.numpy_support import vtk_to_numpy
r = vtk.vtkXMLPolyDataReader(); r.SetFileName("fixed.vtp"); r.Update()
pd = r.GetOutput()
assert pd.GetNumberOfPoints() == points and pd.GetNumberOfLines() == lines
assert np.allclose(vtk_to_numpy(pd.GetPoints().GetData()), np.vstack(ref)[:, :3], atol=1e-4)
# DXF
import ezdxf
doc = ezdxf.readfile("s.dxf")
polys = [e for e in doc.modelspace() if e.dxftype() == "POLYLINE"]
assert len(polys) == lines and sum(len(list(p.vertices)) for p in polys) == points
assert np.allclose([list(v.dxf.location) for v in polys[0].vertices], ref[0][:, :3])
# SWC: id type x y z radius parent; a line's first point has parent -1
swc = np.loadtxt("s.swc")
assert len(swc) == points and (swc[:, 6] == -1).sum() == lines
assert np.all((swc[:, 6] == -1) | (swc[:, 6] == swc[:, 0] - 1))
# MV3D: commented head with the counts, then line x y z t
head = [l for l in open("s.mv3d") if l.startswith("#")]
assert head[1].split()[-1] == str(lines) and head[2].split()[-1] == str(points)
mv = np.loadtxt("s.mv3d", comments="#")
assert len(mv) == points and mv[:, 0].max() == lines and np.allclose(mv[:, 1:], np.vstack(ref))
# copyscale: one factor scales x, y, z; a fourth entry scales t too
a = native("mixed-again.txt")
for name, f in (("one.txt", [2, 2, 2, 1]), ("four.txt", [2, 2, 2, 3])):
    c = native(name)
    assert len(c) == len(a) and all(np.array_equal(x, y * f) for x, y in zip(c, a)), name
mel = open("s.mel").read().splitlines()
import re
assert re.fullmatch(r"// Last modified: \d{4}/\d\d/\d\d \d\d:\d\d:\d\d", mel[2]), mel[2]
assert mel[0] == "// Maya MEL" and sum(l.startswith("curve") for l in mel) == lines and mel[-1] == "// End of s.mel"
PYEOF
# OBJ: t stands as a fourth vertex value, which assimp takes for w and refuses when 0
# (deviation); the copy without it reads with every point and one segment a step.
refused=$(timeout 60 assimp info s.obj 2>&1)
check_contains "$refused" "homogeneous" "deviation: assimp refuses t = 0 as w"
awk '/^v /{print $1, $2, $3, $4; next} {print}' s.obj > fixed.obj
info=$(timeout 60 assimp info fixed.obj 2>&1 | grep -v '%$')
read -r lines points <<<"$cloud"
check_contains "$info" "Vertices:           $points" "assimp reads every OBJ point"
check_contains "$info" "Faces:              $((points - lines))" "assimp reads the OBJ lines as segments"
finish
