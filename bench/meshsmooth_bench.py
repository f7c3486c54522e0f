#!/usr/bin/python3
"""mesh.smooth 10 on a surface of about a million triangles against VTK's smoothing.

  meshsmooth_bench.py VOXMILL [FOLDER]

The surface is a torus of 1000 x 500 quads cut into 1,000,000 triangles (500,000 points),
written by numpy as binary PLY. voxmill's time is that of `mesh.smooth 10` alone: the macro
with the command less the macro with the load only (best of two each), the building of the
neighbour lists included. VTK's vtkSmoothPolyDataFilter runs 10 iterations (convergence 0)
on the same points and triangles; its time is that of Update(), its links included. The
figure is points times passes per second by wall time; the ratios are voxmill's speed over
VTK's by wall and by CPU time (the steadier one on a shared machine).
"""
import os
import sys
import tempfile
import time

import numpy as np

from benchlib import extra

PASSES = 10
NU, NV = 1000, 500


def torus():
    u, v = np.meshgrid(np.arange(NU) * 2 * np.pi / NU, np.arange(NV) * 2 * np.pi / NV, indexing="ij")
    r = 10 + 3 * np.cos(v)
    points = np.stack([r * np.cos(u), r * np.sin(u), 3 * np.sin(v)], -1).reshape(-1, 3)
    i, j = np.meshgrid(np.arange(NU), np.arange(NV), indexing="ij")
    a, b = i * NV + j, ((i + 1) % NU) * NV + j
    c, d = ((i + 1) % NU) * NV + (j + 1) % NV, i * NV + (j + 1) % NV
    faces = np.concatenate([np.stack([a, b, c], -1).reshape(-1, 3), np.stack([a, c, d], -1).reshape(-1, 3)])
    return points, faces


def write_ply(path, points, faces):
    head = ("ply\nformat binary_little_endian 1.0\nelement vertex %d\nproperty float x\nproperty float y\n"
            "property float z\nelement face %d\nproperty list uchar int vertex_indices\nend_header\n"
            % (len(points), len(faces)))
    rows = np.zeros(len(faces), dtype=[("n", "u1"), ("i", "<i4", 3)])
    rows["n"], rows["i"] = 3, faces
    with open(path, "wb") as f:
        f.write(head.encode())
        f.write(points.astype("<f4").tobytes())
        f.write(rows.tobytes())


def vtk_smooth(points, faces):
    import vtk
    from vtk.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray
    poly = vtk.vtkPolyData()
    pts = vtk.vtkPoints()
    pts.SetData(numpy_to_vtk(points.astype(np.float32), deep=True))
    poly.SetPoints(pts)
    cells = np.hstack([np.full((len(faces), 1), 3), faces]).astype(np.int64).ravel()
    polys = vtk.vtkCellArray()
    polys.SetCells(len(faces), numpy_to_vtkIdTypeArray(cells, deep=True))
    poly.SetPolys(polys)
    walls, cpus = [], []
    for _ in range(2):
        smooth = vtk.vtkSmoothPolyDataFilter()
        smooth.SetInputData(poly)
        smooth.SetNumberOfIterations(PASSES)
        smooth.SetConvergence(0.0)
        start, cpu = time.perf_counter(), time.process_time()
        smooth.Update()
        walls.append(time.perf_counter() - start)
        cpus.append(time.process_time() - cpu)
    return min(walls), min(cpus)


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="meshsmooth-")
    points, faces = torus()
    write_ply(os.path.join(folder, "torus.ply"), points, faces)
    wall, cpu = extra(binary, folder, ['mesh.load "torus.ply"'], ["mesh.smooth %d" % PASSES])
    ours = len(points) * PASSES / wall
    peerwall, peercpu = vtk_smooth(points, faces)
    peer = len(points) * PASSES / peerwall
    print("mesh.smooth %d, %d points, %d triangles (machine possibly loaded)" % (PASSES, len(points), len(faces)))
    print("  voxmill   %.3g points x passes / s (wall %.3f s, cpu %.3f s)" % (ours, wall, cpu))
    print("  VTK       %.3g points x passes / s (vtkSmoothPolyDataFilter; wall %.3f s, cpu %.3f s)" % (peer, peerwall, peercpu))
    print("  ratio voxmill / VTK: %.2f by wall time, %.2f by cpu time" % (ours / peer, peercpu / cpu))


if __name__ == "__main__":
    main()
