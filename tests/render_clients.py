#!/usr/bin/python3
"""Renders and field colours of a ball's surface, checked against the geometry it came from.

generate DIR: a smooth ball (its 128-level at radius R about (0, 0, -40) in global space), a
              ramp along x, a radial vector field, and the macro.
check DIR:    the camera's depths (vtk's PLY reader) against the sphere, the picture's disc
              (Pillow) against its cross-section, renders of 1 and 3 threads byte for byte,
              and the colours of the sampling commands against the known fields.
"""
import math
import pathlib
import sys

import numpy as np

R, N, ZC = 20.0, 56, -40.0
AFFINE = np.array([[1, 0, 0, -28], [0, 1, 0, -28], [0, 0, 1, ZC - 28], [0, 0, 0, 1]], float)
SIDE = 64  # camera pixels a side; the camera is scaled to 56 x 56 global units
CYLINDER = 64  # sides of the cylinder about the tube camera

MACRO = f"""debug.no
scalar.load "ball.nii.gz"
scalar.name ball
scalar.surface
mesh.name ball
mesh.color <1, 1, 1>
mesh.use screen
mesh.add.camera <{SIDE}, {SIDE}>
cam := mesh.copy 56
three := mesh.copy 56
mesh.use ball
thread.max := 1
cam := mesh.render
thread.max := 3
three := mesh.render
mesh.use cam
mesh.save.ply.ascii "cam.ply"
mesh.projection.color <{SIDE}, {SIDE}>
image.save "disc.png"
mesh.use three
mesh.save.ply.ascii "three.ply"
mesh.use focus
mesh.add.camera.focus <{SIDE}, {SIDE}> <0, 0, 0.5>
mesh.use ball
focus := mesh.render.depth
mesh.use focus
mesh.save.ply.ascii "focus.ply"
mesh.use tube
mesh.add.camera.tube <32, 8>
mesh.use cylinder
mesh.load "cylinder.ply"
mesh.color <1, 1, 1>
tube := mesh.render.depth
mesh.use tube
mesh.save.ply.ascii "tube.ply"
mesh.use ball
scalar.use ramp
scalar.load "ramp.nii.gz"
mesh.getdensity <0, 255>
mesh.save.ply.ascii "density.ply"
scalar.use ball
mesh.getthickness 60 128
mesh.save.ply.ascii "thickness.ply"
mesh.getcount 3
mesh.save.ply.ascii "count.ply"
mesh.color.normal
mesh.save.ply.ascii "normal.ply"
vector.load "radial.nii.gz"
mesh.getvector
mesh.save.ply.ascii "vector.ply"
mesh.save.ply.ascii "ball.ply"
mesh.use vtksphere
mesh.load "sphere.ply"
mesh.color.curvature 5
mesh.save.ply.ascii "curvature.ply"
mesh.use ball
scalar.use drawn
scalar.new {N} {N} {N}
scalar.origin <-28, -28, {ZC - 28}>
mesh.draw 200
scalar.save "drawn.nii.gz"
"""


def generate(d):
    import nibabel as nib
    z, y, x = np.meshgrid(np.arange(N), np.arange(N), np.arange(N), indexing="ij")
    g = [x - 28.0, y - 28.0, z - 28.0]
    dist = np.sqrt(g[0] ** 2 + g[1] ** 2 + g[2] ** 2)
    # 128 exactly at the radius, linear across one voxel: the cut lies on the sphere.
    ball = np.clip(np.round(128 + 127 * (R - dist)), 0, 255).astype(np.uint8)
    ramp = (2 * x + 10).astype(np.uint8)
    nib.save(nib.Nifti1Image(ball.transpose(2, 1, 0), AFFINE), str(d / "ball.nii.gz"))
    nib.save(nib.Nifti1Image(ramp.transpose(2, 1, 0), AFFINE), str(d / "ramp.nii.gz"))
    radial = np.stack(g, -1).astype(np.float32).transpose(2, 1, 0, 3)[:, :, :, None, :]
    nib.save(nib.Nifti1Image(radial, AFFINE), str(d / "radial.nii.gz"))
    (d / "run.macro").write_text(MACRO)
    import vtk
    sphere = vtk.vtkSphereSource()
    sphere.SetRadius(10)
    sphere.SetThetaResolution(96)
    sphere.SetPhiResolution(96)
    cylinder = vtk.vtkCylinderSource()  # radius 2 about y, turned to z below
    cylinder.SetRadius(2)
    cylinder.SetHeight(4)
    cylinder.SetResolution(CYLINDER)
    cylinder.CappingOff()
    turn = vtk.vtkTransformPolyDataFilter()
    turn.SetInputConnection(cylinder.GetOutputPort())
    transform = vtk.vtkTransform()
    transform.RotateX(90)
    turn.SetTransform(transform)
    for source, name in ((sphere, "sphere.ply"), (turn, "cylinder.ply")):
        writer = vtk.vtkPLYWriter()
        writer.SetInputConnection(source.GetOutputPort())
        writer.SetFileName(str(d / name))
        writer.Write()


def ply(path):
    import vtk
    from vtk.util.numpy_support import vtk_to_numpy
    r = vtk.vtkPLYReader()
    r.SetFileName(str(path))
    r.Update()
    out = r.GetOutput()
    pd = out.GetPointData()
    points = vtk_to_numpy(out.GetPoints().GetData())
    normals = vtk_to_numpy(pd.GetNormals()) if pd.GetNormals() else None
    colours = vtk_to_numpy(pd.GetScalars())[:, :3] / 255.0 if pd.GetScalars() else None
    return points, normals, colours


def check(d):
    import nibabel as nib
    from PIL import Image
    faults = []

    def expect(ok, text):
        if not ok:
            faults.append(text)

    pts, nrm, col = ply(d / "cam.ply")
    depth = np.linalg.norm(nrm, axis=1)
    r2 = pts[:, 0] ** 2 + pts[:, 1] ** 2
    # The cut's vertices lie on the lattice: within a voxel of the sphere where it is not steep.
    inner, outer = r2 < (R / 2) ** 2, r2 > (R + 1) ** 2
    truth = -ZC - np.sqrt(np.maximum(R * R - r2, 0))
    err = np.abs(depth - truth)[inner]
    expect(inner.sum() > 300 and err.max() <= 1 + 1e-6, f"depths off the sphere by up to {err.max():.3f}")
    expect((depth[outer] == 0).all() and (col[outer] == 0).all(), "rays beside the ball hit something")
    expect((col[inner] == 1).all(), "rays onto the white ball are not white")
    expect(np.allclose(nrm[inner] / depth[inner, None], [0, 0, 1]), "normals lost their direction")
    def body(name):
        return [line for line in (d / name).read_text().splitlines() if not line.startswith("comment")]
    expect(body("cam.ply") == body("three.ply"), "1 and 3 threads differ")

    # Perspective: rays from the focus (0, 0, 0.5) through the unit screen onto the ball.
    pts, nrm, _ = ply(d / "focus.ply")
    ray = pts - [0, 0, 0.5]
    ray /= np.linalg.norm(ray, axis=1)[:, None]
    towards = pts - [0, 0, ZC]
    b = np.einsum("ij,ij->i", ray, towards)
    disc = b * b - np.einsum("ij,ij->i", towards, towards) + R * R
    depth = np.linalg.norm(nrm, axis=1)
    clear = disc > R * R / 4  # incidence below 60 degrees, whose cosine is sqrt(disc) / R
    truth = -b - np.sqrt(np.maximum(disc, 0))
    normal = (np.abs(depth - truth) * np.sqrt(np.maximum(disc, 0)) / R)[clear]
    expect(clear.sum() > 100 and normal.max() <= 1 + 1e-6, f"focused depths {normal.max():.3f} off the sphere")
    # The tube camera of radius 1 inside a cylinder of radius 2: depth 1 at the sides' middles.
    _, nrm, _ = ply(d / "tube.ply")
    depth = np.linalg.norm(nrm, axis=1)
    expect(((depth > 2 * math.cos(math.pi / CYLINDER) - 1 - 1e-6) & (depth <= 1 + 1e-6)).all(), "tube depths off the cylinder")

    img = np.asarray(Image.open(d / "disc.png").convert("L"), float) / 255
    pixel = (56.0 / SIDE) ** 2
    area = img.sum() * pixel
    expect(img.shape == (SIDE, SIDE) and abs(area / (math.pi * R * R) - 1) < 0.02,
           f"disc area {area:.1f}, cross-section {math.pi * R * R:.1f}")
    ys, xs = np.nonzero(img > 0.5)
    expect(abs(xs.mean() - (SIDE - 1) / 2) < 0.5 and abs(ys.mean() - (SIDE - 1) / 2) < 0.5, "disc not centred")

    pts, nrm, col = ply(d / "density.ply")
    ramp = (2 * (pts[:, 0] + 28) + 10) / 255
    expect(np.abs(col[:, 0] - ramp).max() <= 1 / 255 + 1e-9, "density colours differ from the ramp")
    _, _, col = ply(d / "thickness.ply")
    expect(abs(np.median(col[:, 0]) - 2 * R / 60) < 1.5 / 60, f"thickness {np.median(col[:, 0]) * 60:.2f}, diameter {2 * R}")
    pts, _, col = ply(d / "count.ply")
    ball = np.asarray(nib.load(d / "ball.nii.gz").dataobj)
    grid = np.stack(np.meshgrid(*[np.arange(N)] * 3, indexing="ij"), -1).reshape(-1, 3)
    worst = 0
    for p, c in zip(pts[::40] + [28, 28, 28 - ZC], col[::40, 0]):
        near = grid[np.linalg.norm(grid - p, axis=1) <= 3]
        share = (ball[near[:, 0], near[:, 1], near[:, 2]] != 0).mean()
        worst = max(worst, abs(share - c))
    expect(worst <= 0.5 / 255 + 1e-9, f"ball share near the surface off by {worst:.4f}")
    _, nrm, col = ply(d / "normal.ply")
    unit = np.abs(nrm / np.linalg.norm(nrm, axis=1)[:, None])
    expect(np.abs(col - unit).max() <= 0.5 / 255 + 1e-9, "normal colours differ from the normals")
    pts, _, col = ply(d / "vector.ply")
    radial = np.abs(pts - [0, 0, ZC]) / np.linalg.norm(pts - [0, 0, ZC], axis=1)[:, None]
    expect(np.abs(col - radial).max() < 0.06, "vector colours differ from the radial field of the nearest voxel")
    _, _, col = ply(d / "curvature.ply")
    # 0.5 + 0.5 k 5 with k = 1 / 10: 0.75 on the whole sphere.
    expect(abs(np.median(col[:, 0]) - 0.75) < 0.05, f"curvature colour {np.median(col[:, 0]):.3f}, 0.75 expected")
    # Every drawn voxel touches the surface, and every vertex's voxel is drawn.
    import vtk
    drawn = np.asarray(nib.load(d / "drawn.nii.gz").dataobj) == 200
    r = vtk.vtkPLYReader()
    r.SetFileName(str(d / "ball.ply"))
    r.Update()
    locator = vtk.vtkCellLocator()
    locator.SetDataSet(r.GetOutput())
    locator.BuildLocator()
    far = 0
    for v in np.argwhere(drawn)[::7] - [28, 28, 28 - ZC]:
        c, cell, sub, dist2 = [0.0, 0.0, 0.0], vtk.reference(0), vtk.reference(0), vtk.reference(0.0)
        locator.FindClosestPoint(list(map(float, v)), c, cell, sub, dist2)
        far = max(far, math.sqrt(dist2))
    pts, _, _ = ply(d / "ball.ply")
    vox = np.round(pts + [28, 28, 28 - ZC]).astype(int)
    expect(far <= math.sqrt(3) / 2 + 1e-9 and drawn[vox[:, 0], vox[:, 1], vox[:, 2]].all(),
           f"drawn voxels up to {far:.3f} off the surface, or vertices not drawn")
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    {"generate": generate, "check": check}[sys.argv[1]](pathlib.Path(sys.argv[2]))
