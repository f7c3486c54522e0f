# The cookbook macros of docs/examples run on made inputs; independent readers check their results.
source "$(dirname "$0")/lib.sh"
EXAMPLES=$(realpath "$(dirname "$0")/../../docs/examples")
mkdir data
$PY - <<'PYEOF' || fail "making the inputs"
import numpy as np, nibabel as nib
a = np.zeros((20, 16, 6), np.uint8)
a[2:6, 2:6, 1:4] = 200; a[10:15, 8:12, 2:5] = 150; a[17:19, 1:3, 0:2] = 255; a[8, 14, 3] = 130
a[6, 2, 1] = 100  # touches the first object but lies below the threshold
nib.save(nib.Nifti1Image(a, np.eye(4)), 'cells.nii.gz')
for name, shape in (('a', (4, 5, 6)), ('b', (7, 3, 2))):
    nib.save(nib.Nifti1Image(np.ones(shape, np.uint8), np.eye(4)), f'data/{name}.nii.gz')
t = np.full((16, 16, 16), 40, np.uint8); t[:, 6:9, 6:9] = 200  # a tube along x
nib.save(nib.Nifti1Image(t, np.eye(4)), 'tubes.nii.gz')
x, y, z = np.mgrid[0:24, 0:24, 0:24]  # a ball of radius 4 mm in 0.5 mm voxels, centred at (16, 0.5, 8) mm
ball = ((x - 12) ** 2 + (y - 11) ** 2 + (z - 12) ** 2 <= 8 ** 2) * 200
a = np.diag([0.5, 0.5, 0.5, 1]); a[:3, 3] = [10, -5, 2]
nib.save(nib.Nifti1Image(ball.astype(np.uint8), a), 'sphere.nii.gz')
PYEOF
run() { "$BIN" -strict -macro="$EXAMPLES/$1.macro" | script_part; }

out=$(run walk)
check_eq "$(grep '^volume ' <<<"$out")" $'volume a.nii <4, 5, 6>\nvolume b.nii <7, 3, 2>' "directory walk"

out=$(run objects)
expected=$($PY -c "import nibabel as nib, scipy.ndimage as nd; print(nd.label(nib.load('cells.nii.gz').get_fdata() >= 128)[1])")
check_eq "$(grep '^objects ' <<<"$out")" "objects $expected" "object count against scipy's labelling"
[ -s objects.txt ] || fail "no group table"

run histogram >/dev/null
$PY -c "import xml.etree.ElementTree as E, sys; sys.exit(not E.parse('histogram.svg').getroot().tag.endswith('svg'))" \
  || fail "histogram.svg is no SVG"

out=$(run orientation)
$PY - $(sed -n 's/^streamlines \([0-9]*\) with \([0-9]*\) points$/\1 \2/p' <<<"$out") <<'PYEOF' || fail "orientation field and streamlines"
import sys, warnings
import numpy as np, nibabel as nib
v = np.asarray(nib.load('orientation.nii.gz').dataobj, dtype=float).reshape(16, 16, 16, 3)
tube = v[:, 6:9, 6:9].reshape(-1, 3)
tube = np.abs(tube[np.abs(tube).sum(axis=1) > 0])  # voxels with an orientation
m = tube.mean(axis=0)
assert len(tube) >= 20 and m[0] > 10 * max(m[1], m[2]), (len(tube), m)  # along the tube's x axis
with warnings.catch_warnings():
    warnings.simplefilter("ignore")  # the header has no vox_to_ras
    lines = nib.streamlines.load('streamlines.trk').streamlines
assert [len(lines), sum(len(s) for s in lines)] == [int(a) for a in sys.argv[1:3]], sys.argv
ends = np.array([s[-1] - s[0] for s in lines])
assert np.abs(ends[:, 0]).sum() > 0.9 * np.linalg.norm(ends, axis=1).sum(), ends  # along x
assert np.abs(ends[:, 0]).max() >= 12, ends  # some run nearly the tube's length
PYEOF

out=$(run surface)
$PY - $(sed -n 's/^surface \([0-9]*\) points, \([0-9]*\) triangles$/\1 \2/p' <<<"$out") <<'PYEOF' || fail "the sphere's surface"
import sys
import numpy as np, meshio, vtk
points, faces = (int(a) for a in sys.argv[1:3])
r = vtk.vtkXMLPolyDataReader(); r.SetFileName('sphere.vtp'); r.Update()
mesh = r.GetOutput()
assert (mesh.GetNumberOfPoints(), mesh.GetNumberOfCells()) == (points, faces)
edges = vtk.vtkFeatureEdges(); edges.SetInputData(mesh); edges.FeatureEdgesOff(); edges.NonManifoldEdgesOff(); edges.Update()
assert edges.GetOutput().GetNumberOfCells() == 0, 'no open edges'
mass = vtk.vtkMassProperties(); mass.SetInputData(mesh); mass.Update()
assert abs(mass.GetVolume() / (4 / 3 * np.pi * 4 ** 3) - 1) < 0.08, mass.GetVolume()  # radius 4 mm
for name in ('sphere.ply', 'sphere.obj'):
    m = meshio.read(name)
    assert (len(m.points), sum(len(c.data) for c in m.cells)) == (points, faces), name
    assert np.allclose(m.points.mean(axis=0), [16, 0.5, 8], atol=0.01), m.points.mean(axis=0)
PYEOF
finish
