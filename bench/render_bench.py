#!/usr/bin/python3
"""mesh.render of a bumpy sphere of about a million triangles onto a 256 x 256 camera,
against vtkCellLocator's first hit (IntersectWithLine) on the same rays.

  render_bench.py VOXMILL [FOLDER]

Both sides build their search structure inside the timed part: voxmill its hierarchy in
`mesh.render.color` (load and process start taken out: runs with the render less runs
without), VTK BuildLocator and then one IntersectWithLine per ray from Python. Wall and CPU
time (user + system, all threads) are given: on a shared machine the CPU time is steadier. A separate run saves voxmill's depths and compares them with VTK's hits.
"""
import os
import shutil
import struct
import sys
import tempfile
import time

import numpy as np

from benchlib import REPEAT, extra

SIDE, SCALE, CENTRE = 256, 2.4, (0.0, 0.0, -3.0)
SETUP = ['mesh.load "bumpy.ply"', "mesh.name object", "mesh.color <1, 1, 1>", "mesh.use screen", f"mesh.add.camera <{SIDE}, {SIDE}>",
         f"cam := mesh.copyscale <{SCALE}, {SCALE}, 1>", "mesh.use object"]


def bumpy(folder, around=1000, down=500):
    """A sphere of radius 1 + 0.05 sin 8a sin 8b about CENTRE, as binary PLY."""
    a = np.linspace(0, 2 * np.pi, around, endpoint=False)
    b = np.linspace(0, np.pi, down + 1)[1:-1]
    bb, aa = np.meshgrid(b, a, indexing="ij")
    r = 1 + 0.05 * np.sin(8 * aa) * np.sin(8 * bb)
    ring = np.stack([r * np.sin(bb) * np.cos(aa), r * np.sin(bb) * np.sin(aa), r * np.cos(bb)], -1).reshape(-1, 3)
    pts = np.vstack([[0, 0, 1], ring, [0, 0, -1]]) + CENTRE
    tris = []
    idx = lambda i, j: 1 + i * around + j % around
    for j in range(around):
        tris.append((0, idx(0, j), idx(0, j + 1)))
        tris.append((len(pts) - 1, idx(down - 2, j + 1), idx(down - 2, j)))
    i, j = np.meshgrid(np.arange(down - 2), np.arange(around), indexing="ij")
    i, j = i.ravel(), j.ravel()
    quads = np.stack([1 + i * around + j, 1 + i * around + (j + 1) % around, 1 + (i + 1) * around + (j + 1) % around,
                      1 + (i + 1) * around + j], -1)
    faces = np.vstack([np.array(tris), quads[:, [0, 2, 1]], quads[:, [0, 3, 2]]])
    with open(os.path.join(folder, "bumpy.ply"), "wb") as f:
        f.write(("ply\nformat binary_little_endian 1.0\nelement vertex %d\nproperty float x\nproperty float y\n"
                 "property float z\nelement face %d\nproperty list uchar int vertex_indices\nend_header\n"
                 % (len(pts), len(faces))).encode())
        f.write(pts.astype("<f4").tobytes())
        rows = np.zeros(len(faces), dtype=[("n", "u1"), ("v", "<i4", 3)])
        rows["n"], rows["v"] = 3, faces
        f.write(rows.tobytes())
    return len(faces)


def rays():
    s = (np.arange(SIDE + 1) / SIDE - 0.5) * SCALE
    y, x = np.meshgrid(s, s, indexing="ij")
    return np.stack([x.ravel(), y.ravel(), np.zeros(x.size)], -1)


def vtk_hits(folder):
    import vtk
    reader = vtk.vtkPLYReader()
    reader.SetFileName(os.path.join(folder, "bumpy.ply"))
    reader.Update()
    mesh = reader.GetOutput()
    origins = rays()
    length = 10.0
    depths = np.full(len(origins), np.inf)

    def run():
        locator = vtk.vtkCellLocator()
        locator.SetDataSet(mesh)
        locator.BuildLocator()
        t, x, pc, sub, cell = vtk.reference(0.0), [0.0, 0.0, 0.0], [0.0, 0.0, 0.0], vtk.reference(0), vtk.reference(0)
        for k, o in enumerate(origins):
            p1 = (o[0], o[1], o[2])
            if locator.IntersectWithLine(p1, (o[0], o[1], o[2] - length), 0.0, t, x, pc, sub, cell):
                depths[k] = float(t) * length
    walls, cpus = [], []
    for _ in range(REPEAT):
        start, cpu = time.perf_counter(), time.process_time()
        run()
        walls.append(time.perf_counter() - start)
        cpus.append(time.process_time() - cpu)
    return (min(walls), min(cpus)), depths


def voxmill_depths(binary, folder):
    with open(os.path.join(folder, "check.macro"), "w") as f:
        f.write("\n".join(["debug.no"] + SETUP + ["cam := mesh.render", "mesh.use cam", 'mesh.save.ply.ascii "cam.ply"']) + "\n")
    import subprocess
    subprocess.run([binary, "-strict", "-macro=check.macro"], cwd=folder, stdout=subprocess.DEVNULL, check=True)
    lines = open(os.path.join(folder, "cam.ply")).read().split("end_header\n")[1].splitlines()
    n = (SIDE + 1) ** 2
    normals = np.array([[float(v) for v in line.split()[3:6]] for line in lines[:n]])
    d = np.linalg.norm(normals, axis=1)
    return np.where(d > 0, d, np.inf)


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp()
    try:
        faces = bumpy(folder)
        count = (SIDE + 1) ** 2
        print(f"bumpy sphere of {faces} triangles, {count} rays of a {SIDE} x {SIDE} camera; builds included")
        vtime, vdepth = vtk_hits(folder)
        mdepth = voxmill_depths(binary, folder)
        with np.errstate(invalid="ignore"):
            same = (np.isinf(vdepth) & np.isinf(mdepth)) | (np.abs(vdepth - mdepth) < 1e-5)
        nearer = (mdepth < vdepth)[~same].sum()
        print(f"  first hits agree on {same.mean() * 100:.3f} % of the rays; of the other {(~same).sum()},"
              f" voxmill's is the nearer in {nearer} (VTK slips through shared edges)")
        print(f"  vtkCellLocator (build + IntersectWithLine from Python): wall {vtime[0]:.3f} s, cpu {vtime[1]:.3f} s,"
              f" {count / vtime[0]:,.0f} rays/s")
        for threads in (1, 2):
            wall, cpu = extra(binary, folder, [f"thread.max := {threads}"] + SETUP, ["cam := mesh.render.color"])
            print(f"  voxmill mesh.render.color, thread.max {threads}: wall {wall:.3f} s, cpu {cpu:.3f} s,"
                  f" {count / wall:,.0f} rays/s, ratio {vtime[0] / wall:.2f}x wall, {vtime[1] / cpu:.2f}x cpu")
    finally:
        if len(sys.argv) <= 2:
            shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
