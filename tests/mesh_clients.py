#!/usr/bin/python3
"""Meshes between voxmill and independent readers and writers (vtk, meshio, ezdxf, assimp).

generate DIR: the volumes (a ball of radius 20 voxels, two separate balls), meshes written
              by meshio in OBJ, STL ascii and PLY ascii / binary little and big endian, and
              the macro that cuts, saves and loads them.
check DIR:    what voxmill wrote, read by the independent readers, and what voxmill printed
              for the others' files.
"""
import math
import pathlib
import re
import subprocess
import sys

import numpy as np

R = 20
# Files of meshio and our own files, each read and saved as ascii PLY under the second name.
CUBES = {"m_cube.obj": "r_obj.ply", "m_cube.stl": "r_stl.ply", "m_ascii.ply": "r_ascii.ply", "m_le.ply": "r_le.ply",
         "m_be.ply": "r_be.ply"}
OWN = {"out/s.obj": "r_own_obj.ply", "out/s.dxf": "r_own_dxf.ply", "out/s.pov": "r_own_pov.ply",
       "out/s_mesh.asc": "r_own_asc.ply"}
READS = {**CUBES, **OWN}


def ball_volume(n, centres):
    z, y, x = np.mgrid[0:n, 0:n, 0:n]
    a = np.zeros((n, n, n), np.uint8)
    for (cx, cy, cz, r) in centres:
        a[np.sqrt((x - cx) ** 2 + (y - cy) ** 2 + (z - cz) ** 2) <= r] = 255
    return a


def generate(d):
    import meshio
    import nibabel as nib
    # nibabel's first axis is x, as ours.
    nib.save(nib.Nifti1Image(ball_volume(48, [(24, 24, 24, R)]), np.eye(4)), str(d / "sphere.nii"))
    nib.save(nib.Nifti1Image(ball_volume(40, [(10, 10, 10, 6), (28, 28, 28, 8)]), np.eye(4)), str(d / "two.nii"))
    # A unit cube of 8 points and 12 triangles with coordinates that need all digits.
    pts = np.array([[x, y, z] for z in (0, 1) for y in (0, 1) for x in (0, 1)], float) * 1.25 + 0.125
    tri = np.array([[0, 2, 1], [1, 2, 3], [4, 5, 6], [5, 7, 6], [0, 1, 4], [1, 5, 4],
                    [2, 6, 3], [3, 6, 7], [0, 4, 2], [2, 4, 6], [1, 3, 5], [3, 7, 5]])
    cube = meshio.Mesh(pts, [("triangle", tri)])
    np.save(d / "cube_points.npy", pts)
    cube.write(d / "m_cube.obj")
    cube.write(d / "m_cube.stl", binary=False)
    cube.write(d / "m_ascii.ply", binary=False)
    cube.write(d / "m_le.ply", binary=True)
    text = (d / "m_le.ply").read_bytes()
    # The same mesh big endian, with the values swapped by numpy.
    head, _, body = text.partition(b"end_header\n")
    hdr = head.decode()
    assert "binary_little_endian" in hdr
    props = re.findall(r"property (\w+) (\w+)", hdr.split("element face")[0])
    kinds = {"float": "f4", "double": "f8", "float32": "f4", "float64": "f8"}
    vdt = np.dtype([(n, "<" + kinds[t]) for t, n in props])
    verts = np.frombuffer(body[:vdt.itemsize * 8], vdt)
    faces_le = body[vdt.itemsize * 8:]
    lt = re.search(r"property list (\w+) (\w+)", hdr)
    size = {"uint8": 1, "uchar": 1, "int32": 4, "int": 4, "uint32": 4}[lt.group(2)]
    out = bytearray()
    at = 0
    while at < len(faces_le):
        n = faces_le[at]
        out.append(n)
        for k in range(n):
            out += faces_le[at + 1 + k * size: at + 1 + (k + 1) * size][::-1]
        at += 1 + n * size
    big = verts.astype(vdt.newbyteorder(">")).tobytes()
    (d / "m_be.ply").write_bytes(hdr.replace("binary_little_endian", "binary_big_endian").encode() + b"end_header\n" + big + bytes(out))
    (d / "run.macro").write_text("""scalar.8bit
scalar.load "sphere.nii"
scalar.surface
print "sphere " mesh.vertices " " mesh.faces
mesh.save "out/s.ply"
mesh.save "out/s_ascii.ply.ascii"
mesh.save "out/s.vtp"
mesh.save "out/s.vtk"
mesh.save "out/s.obj"
mesh.save "out/s.dxf"
mesh.save "out/s.pov"
mesh.save.open "out/s_mesh.asc"
mesh.load "out/s.ply"
mesh.save.ply.ascii "out/s_again.ply"
scalar.load "two.nii"
mesh.clear
scalar.surface
mesh.split
mesh.save "out/two_largest.ply"
""" + "".join(f'mesh.load "{source}"\nmesh.save.ply.ascii "out/{copy}"\n' for source, copy in READS.items()))
    (d / "out").mkdir(exist_ok=True)


def triangles(path):
    """Points and triangles: vtk for our ascii PLY (meshio takes only "vertex_indices" in ascii
    files, the ascii form writes "vertex_index"), meshio for the others."""
    import meshio
    if str(path).endswith(".ply") and b"format ascii" in pathlib.Path(path).read_bytes()[:40]:
        import vtk
        from vtk.util.numpy_support import vtk_to_numpy
        r = vtk.vtkPLYReader()
        r.SetFileName(str(path))
        r.Update()
        poly = r.GetOutput()
        cells = vtk_to_numpy(poly.GetPolys().GetData()).reshape(-1, 4)[:, 1:] if poly.GetNumberOfPolys() else np.zeros((0, 3), int)
        return vtk_to_numpy(poly.GetPoints().GetData()).astype(float), cells
    m = meshio.read(path)
    cells = [c.data for c in m.cells if c.type == "triangle"]
    return m.points.astype(float), (np.concatenate(cells) if cells else np.zeros((0, 3), int))


def check(d):
    import meshio
    import vtk
    from vtk.util.numpy_support import vtk_to_numpy
    faults = []

    def expect(ok, what):
        if not ok:
            faults.append(what)

    console = (d / "console.txt").read_text(encoding="utf-8", errors="replace")
    m = re.search(r"sphere (\d+) (\d+)", console)
    npoints, nfaces = int(m.group(1)), int(m.group(2))

    # VTP and VTK in vtk: counts, closed (no boundary or non-manifold edges), volume.
    for name in ("s.vtp", "s.vtk"):
        r = vtk.vtkXMLPolyDataReader()
        r.SetFileName(str(d / "out" / name))
        r.Update()
        poly = r.GetOutput()
        expect(poly.GetNumberOfPoints() == npoints and poly.GetNumberOfPolys() == nfaces,
               f"{name}: vtk reads {poly.GetNumberOfPoints()} points, {poly.GetNumberOfPolys()} polys")
        fe = vtk.vtkFeatureEdges()
        fe.SetInputData(poly)
        fe.BoundaryEdgesOn(); fe.NonManifoldEdgesOn(); fe.FeatureEdgesOff(); fe.ManifoldEdgesOff()
        fe.Update()
        expect(fe.GetOutput().GetNumberOfCells() == 0, f"{name}: {fe.GetOutput().GetNumberOfCells()} open edges")
        mp = vtk.vtkMassProperties()
        mp.SetInputData(poly)
        mp.Update()
        ball = 4 / 3 * math.pi * R ** 3
        expect(abs(mp.GetVolume() - ball) < 0.03 * ball, f"{name}: vtk volume {mp.GetVolume()} vs {ball}")
        normals = vtk_to_numpy(poly.GetPointData().GetNormals())
        expect(np.allclose(np.linalg.norm(normals, axis=1), 1, atol=1e-5), f"{name}: normals not unit")

    # Deviation: ".vtk" carries the same XML poly data, which vtk's legacy reader refuses.
    legacy = vtk.vtkPolyDataReader()
    legacy.SetFileName(str(d / "out" / "s.vtk"))
    expect(not legacy.IsFilePolyData(), "deviation: s.vtk is XML poly data, not the legacy form")

    # PLY binary, PLY ascii and OBJ in meshio: counts, consistent outward orientation, physics.
    ref = None
    for name in ("s.ply", "s_ascii.ply.ascii", "s.obj", "s_again.ply"):
        path = d / "out" / name
        if name.endswith(".ascii"):
            path = d / "out" / "s_ascii.ply"
            path.write_bytes((d / "out" / name).read_bytes())
        p, t = triangles(path)
        expect(len(p) == npoints and len(t) == nfaces, f"{name}: meshio reads {len(p)} points, {len(t)} triangles")
        a, b, c = p[t[:, 0]], p[t[:, 1]], p[t[:, 2]]
        area = np.linalg.norm(np.cross(b - a, c - a), axis=1).sum() / 2
        volume = (a * np.cross(b, c)).sum() / 6
        ball = 4 / 3 * math.pi * R ** 3
        expect(abs(volume - ball) < 0.03 * ball, f"{name}: signed volume {volume} vs {ball} (outward faces)")
        # Vertices on the voxel lattice make a terraced skin, larger than the smooth sphere's.
        expect(1.0 < area / (4 * math.pi * R ** 2) < 1.3, f"{name}: area {area}")
        edges = np.sort(np.concatenate([t[:, [0, 1]], t[:, [1, 2]], t[:, [2, 0]]]), axis=1)
        _, counts = np.unique(edges, axis=0, return_counts=True)
        expect((counts == 2).all(), f"{name}: edges not each in two faces")
        if ref is None:
            ref = p
        expect(np.array_equal(ref, p), f"{name}: coordinates differ from s.ply")

    # assimp opens OBJ and PLY with the same counts.
    for name in ("s.obj", "s.ply"):
        info = subprocess.run(["assimp", "info", str(d / "out" / name)], capture_output=True, text=True, errors="replace").stdout
        faces = re.search(r"Faces:\s+(\d+)", info)
        expect(faces and int(faces.group(1)) == nfaces, f"assimp info {name}: {info[-400:]}")

    # DXF in ezdxf: one 3DFACE a triangle, fourth corner repeating the third.
    import ezdxf
    doc = ezdxf.readfile(str(d / "out" / "s.dxf"))
    faces = list(doc.modelspace().query("3DFACE"))
    expect(len(faces) == nfaces, f"ezdxf: {len(faces)} 3DFACE entities")
    expect(all(tuple(f.dxf.vtx2) == tuple(f.dxf.vtx3) for f in faces[:50]), "ezdxf: a triangle's 4th corner")

    # Two balls: the split keeps the larger one, which alone is saved.
    p, t = triangles(d / "out" / "two_largest.ply")
    expect(abs(p[:, 0].mean() - 28) < 1 and len(t) > 0, f"split: the kept part is centred at {p.mean(axis=0)}")
    expect("  Max (1) : " in console and "  Objects (visible) : 1" in console, "split lines")

    # Files of meshio in voxmill: 8 points (12 for stl copies: 36), 12 triangles, same coordinates.
    cube = np.load(d / "cube_points.npy")
    for name in CUBES.values():
        p, t = triangles(d / "out" / name)
        expect(len(t) == 12, f"{name}: {len(t)} triangles")
        expect(np.allclose(np.unique(p, axis=0), np.unique(cube, axis=0)), f"{name}: coordinates")
    expect("  Points  : 36" in console, "STL keeps its 36 vertices")
    # Our own OBJ, DXF, POV and ASC read back into the same surface.
    for name in OWN.values():
        p, t = triangles(d / "out" / name)
        expect(len(t) == nfaces and np.allclose(np.unique(p, axis=0), np.unique(ref, axis=0)), f"{name}: read back")
    for f in faults:
        print("FAULT:", f)
    return 1 if faults else 0


if __name__ == "__main__":
    d = pathlib.Path(sys.argv[2])
    if sys.argv[1] == "generate":
        generate(d)
        sys.exit(0)
    sys.exit(check(d))
