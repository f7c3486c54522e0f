# The example job of the README on its generated sample data: it runs to its end, and its
# report agrees with scipy's labelling, with the tubes' known axes and with what nibabel
# and vtk read from the files it wrote.
source "$(dirname "$0")/lib.sh"
EXAMPLES=$(realpath "$(dirname "$0")/../../examples")

/usr/bin/python3 "$EXAMPLES/make_sample.py" . || fail "the sample data are made"
cp "$EXAMPLES/demo.macro" .
out=$(timeout 120 "$BIN" -strict -macro=demo.macro out | script_part); rc=$?
check_eq "$rc" 0 "the demo's exit code"
check_not_contains "$out" "Error" "no error"
check_not_contains "$out" "Attention" "no field overwritten by accident"
report=$(sed -n '/^What the demo found$/,$p' <<<"$out")
check_contains "$report" "Phantom: <96, 96, 64> voxels of 0.5 mm; 2 objects brighter than 600 after smoothing" "the objects' headline"
check_contains "$report" "Fibres: 2 tubes" "the tubes' headline"
for f in smoothed.nii.gz objects.nii.gz objects.ply orientation.nii.gz tubes.nii.gz fibres.trk fibres.vtp; do
  [ -s "out/$f" ] || fail "out/$f is written"
  check_contains "$report" "  out/$f: " "the report names out/$f"
done

/usr/bin/python3 - <<'PY' "$report" || fail "the report agrees with independent computations"
import re, sys, warnings
import nibabel as nib, numpy as np, scipy.ndimage as nd, vtk
report = sys.argv[1]
def vec(text):
    return np.array([float(c) for c in text.split(",")])

# Objects: scipy's labelling (faces touch) of the smoothed volume that the demo saved.
img = nib.load("out/smoothed.nii.gz")
labels, n = nd.label(np.asanyarray(img.dataobj) >= 600)
sizes = nd.sum_labels(np.ones(labels.shape), labels, range(1, n + 1))
keep = [i + 1 for i in range(n) if sizes[i] >= 100]
want = sorted((int(sizes[k - 1]), nib.affines.apply_affine(img.affine, nd.center_of_mass(labels == k))) for k in keep)
got = sorted((int(v), vec(c)) for v, c in re.findall(r"object \d+: (\d+) voxels = \d+ mm³, centre at <([^>]*)> mm", report))
assert [v for v, _ in got] == [v for v, _ in want], (got, want)
assert all(np.allclose(a, b, atol=0.051) for (_, a), (_, b) in zip(got, want)), (got, want)
for v, mm in re.findall(r"object \d+: (\d+) voxels = (\d+) mm³", report):
    assert int(mm) == round(int(v) * 0.125), (v, mm)
# The phantom's spheres: the smaller at x = 9 mm, the larger at -8 mm.
assert np.allclose([c for _, c in got], [[9, 0, 0], [-8, 0, 0]], atol=0.3), got

# Their surfaces: closed shells with the counts the demo printed.
points, faces = map(int, re.search(r"their surfaces: (\d+) points, (\d+) triangles", report).groups())
r = vtk.vtkPLYReader(); r.SetFileName("out/objects.ply"); r.Update()
mesh = r.GetOutput()
assert (mesh.GetNumberOfPoints(), mesh.GetNumberOfCells()) == (points, faces)
edges = vtk.vtkFeatureEdges(); edges.SetInputData(mesh)
edges.FeatureEdgesOff(); edges.NonManifoldEdgesOff(); edges.Update()
assert edges.GetOutput().GetNumberOfCells() == 0, "no open edges"

# Tubes: the printed mean orientations lie along the known axes, and agree with the means
# that numpy takes of the saved orientation field over scipy's tubes.
fibres = np.asanyarray(nib.load("fibres.nii.gz").dataobj)
tubes, ntubes = nd.label(fibres > 0)
assert ntubes == 2
field = np.asanyarray(nib.load("out/orientation.nii.gz").dataobj, dtype=float).reshape(fibres.shape + (3,))
axes = [np.array([1.0, 0, 0]), np.array([1.0, 1, 0]) / np.sqrt(2)]
printed = re.findall(r"tube (\d+): mean orientation <([^>]*)>, agreement ([\d.]+)", report)
assert len(printed) == 2, report
for number, axis, agreement in printed:
    axis = vec(axis)
    assert max(abs(axis @ a) for a in axes) > np.cos(np.radians(5)), axis
    # The tube of this number: the one whose voxels' mean orientation is nearest.
    means = []
    for t in (1, 2):
        v = field[tubes == t]
        v = v[np.linalg.norm(v, axis=1) > 0]
        v /= np.linalg.norm(v, axis=1)[:, None]
        v[v.sum(axis=1) < 0] *= -1
        means.append(v.mean(axis=0))
    m = min(means, key=lambda m: np.linalg.norm(m / np.linalg.norm(m) - axis))
    assert np.allclose(m / np.linalg.norm(m), axis, atol=0.006), (m, axis)
    assert abs(np.linalg.norm(m) - float(agreement)) <= 0.006, (m, agreement)
assert len({tuple(vec(a)) for _, a, _ in printed}) == 2, "two different tubes"

# Streamlines: nibabel reads the TrackVis file (warning that the header has no vox_to_ras),
# vtk the VTP on a copy whose lines block closes with its own tag; both hold the printed
# counts, and the lines run along the tubes (long, not stubs).
lines, points = map(int, re.search(r"(\d+) streamlines with (\d+) points", report).groups())
with warnings.catch_warnings():
    warnings.simplefilter("ignore")
    t = nib.streamlines.load("out/fibres.trk")
assert len(t.streamlines) == lines and sum(len(s) for s in t.streamlines) == points
lengths = [np.linalg.norm(np.diff(s, axis=0), axis=1).sum() for s in t.streamlines]
assert lines > 100 and np.median(lengths) > 20, np.median(lengths)
text = open("out/fibres.vtp").read().replace("</Polys>", "</Lines>")
text = text.replace('NumberOfLines="0"', 'NumberOfLines="%d"' % lines).replace('NumberOfPolys="%d"' % lines, 'NumberOfPolys="0"')
open("fixed.vtp", "w").write(text)
r = vtk.vtkXMLPolyDataReader(); r.SetFileName("fixed.vtp"); r.Update()
assert r.GetOutput().GetNumberOfLines() == lines and r.GetOutput().GetNumberOfPoints() == points
PY
finish
