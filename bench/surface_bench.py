#!/usr/bin/python3
"""scalar.surface on 256^3 volumes against scikit-image and VTK on the same arrays.

  surface_bench.py VOXMILL [FOLDER]

Two 8-bit volumes: smooth noise cut at its median (a dense surface of some million
triangles) and a few balls (sparse). voxmill's time is that of one `mesh.clear` plus
`scalar.surface <m, 255>` with the load and process start taken out: runs with one and
with three passes, the difference over two; best of three, for thread.max 1 and 2.
Each figure is given as wall time and as CPU time (user + system, all threads): on a
machine shared with other work the CPU time is the steadier of the two. The peers take the same inside set, as level m - 0.5 of the same
array: skimage.measure.marching_cubes (Lewiner), vtkMarchingCubes and vtkFlyingEdges3D.
They interpolate vertices and share them by edge; voxmill puts them on the voxel lattice
and shares them by a point hash, so triangle counts differ a little.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

import nibabel as nib
import numpy as np
from scipy import ndimage
from skimage import measure

from benchlib import REPEAT

PASSES = 3


def timed(run):
    """Best wall and best CPU seconds of `run` (this process's CPU, or its children's)."""
    walls, cpus = [], []
    for _ in range(REPEAT):
        w0, c0, k0 = time.perf_counter(), time.process_time(), os.times()
        run()
        k1 = os.times()
        walls.append(time.perf_counter() - w0)
        cpus.append(time.process_time() - c0 + (k1.children_user - k0.children_user) + (k1.children_system - k0.children_system))
    return min(walls), min(cpus)


def voxmill_surface(binary, folder, command, threads):
    def macro(passes):
        with open(os.path.join(folder, "bench.macro"), "w") as f:
            f.write("\n".join(["debug.no", "thread.max := %d" % threads, "scalar.8bit", 'scalar.load "v.nii"'] +
                              [command] * passes) + "\n")
        return timed(lambda: subprocess.run([binary, "-strict", "-macro=bench.macro"], cwd=folder,
                                            stdout=subprocess.DEVNULL, check=True))
    (w1, c1), (wn, cn) = macro(1), macro(PASSES)
    return max((wn - w1) / (PASSES - 1), 1e-9), max((cn - c1) / (PASSES - 1), 1e-9)

N = 256


def dense():
    rng = np.random.default_rng(1)
    v = ndimage.gaussian_filter(rng.random((N, N, N), dtype=np.float32), 4)
    v = (v - v.min()) / (v.max() - v.min()) * 255
    return v.astype(np.uint8)


def sparse():
    z, y, x = np.ogrid[0:N, 0:N, 0:N]
    v = np.zeros((N, N, N), np.uint8)
    for cx, cy, cz, r in ((60, 60, 60, 30), (180, 90, 140, 45), (100, 190, 200, 25), (200, 200, 60, 20)):
        v[(x - cx) ** 2 + (y - cy) ** 2 + (z - cz) ** 2 <= r * r] = 255
    return v


def vtkpeers(data, level):
    import vtk
    from vtk.util.numpy_support import numpy_to_vtk
    image = vtk.vtkImageData()
    image.SetDimensions(N, N, N)
    # nibabel's first axis is x; VTK wants x fastest, so the array goes in Fortran order.
    image.GetPointData().SetScalars(numpy_to_vtk(data.ravel(order="F"), deep=True))
    out = {}
    for name, cls in (("vtkMarchingCubes", vtk.vtkMarchingCubes), ("vtkFlyingEdges3D", vtk.vtkFlyingEdges3D)):
        f = cls()
        f.SetInputData(image)
        f.SetValue(0, level)
        f.ComputeNormalsOff()
        f.ComputeScalarsOff()
        seconds = timed(lambda: (f.Modified(), f.Update()))
        out[name] = (seconds, f.GetOutput().GetNumberOfPolys())
    return out


def voxmill_faces(binary, folder, command):
    with open(os.path.join(folder, "count.macro"), "w") as f:
        f.write('debug.no\nscalar.8bit\nscalar.load "v.nii"\n%s\nprint "faces " mesh.faces\n' % command)
    out = subprocess.run([binary, "-strict", "-macro=count.macro"], cwd=folder, capture_output=True, text=True).stdout
    return int(re.search(r"faces (\d+)", out).group(1))


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="surface-bench-")
    os.makedirs(folder, exist_ok=True)
    print("volumes %d^3 uint8, best of %d; Mtri/s = million triangles a second" % (N, REPEAT))
    for label, data in (("dense", dense()), ("sparse", sparse())):
        m = int(np.median(data)) if label == "dense" else 128
        nib.save(nib.Nifti1Image(data, np.eye(4)), os.path.join(folder, "v.nii"))
        command = "mesh.clear\nscalar.surface <%d, 255>" % m
        faces = voxmill_faces(binary, folder, command)
        peer = timed(lambda: measure.marching_cubes(data, m - 0.5))
        pfaces = len(measure.marching_cubes(data, m - 0.5)[1])
        print("%s (inside: value >= %d)         wall s   CPU s   triangles  Mtri/CPU s" % (label, m))
        row = "  %-30s %7.3f %7.3f %11d %8.2f"
        print(row % ("skimage marching_cubes", peer[0], peer[1], pfaces, pfaces / peer[1] / 1e6))
        for name, ((wall, cpu), n) in vtkpeers(data, m - 0.5).items():
            print(row % (name, wall, cpu, n, n / cpu / 1e6))
        for threads in (1, 2):
            wall, cpu = voxmill_surface(binary, folder, command, threads)
            print((row + "  %5.2fx skimage (CPU)") %
                  ("voxmill scalar.surface t%d" % threads, wall, cpu, faces, faces / cpu / 1e6, peer[1] / cpu))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
