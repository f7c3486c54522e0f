#!/usr/bin/python3
"""scalar.surface on 256^3 volumes against scikit-image and VTK on the same arrays.

  surface_bench.py VOXMILL [FOLDER]

Two 8-bit volumes: smooth noise cut at its median (a dense surface of some million
triangles) and a few balls (sparse). voxmill's time is that of one `mesh.clear` plus
`scalar.surface <m, 255>` with the load and process start taken out (benchlib), for
thread.max 1 and 2. The peers take the same inside set, as level m - 0.5 of the same
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

import nibabel as nib
import numpy as np
from scipy import ndimage
from skimage import measure

from benchlib import REPEAT, best, voxmill_once

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
        seconds = best(lambda: (f.Modified(), f.Update()))
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
        peer = best(lambda: measure.marching_cubes(data, m - 0.5))
        pfaces = len(measure.marching_cubes(data, m - 0.5)[1])
        print("%s (inside: value >= %d)" % (label, m))
        print("  %-30s %8.3f s %10d tri %7.2f Mtri/s" % ("skimage marching_cubes", peer, pfaces, pfaces / peer / 1e6))
        for name, (sec, n) in vtkpeers(data, m - 0.5).items():
            print("  %-30s %8.3f s %10d tri %7.2f Mtri/s" % (name, sec, n, n / sec / 1e6))
        for threads in (1, 2):
            sec = voxmill_once(binary, folder, ["scalar.8bit", 'scalar.load "v.nii"'], command, threads)
            print("  %-30s %8.3f s %10d tri %7.2f Mtri/s  %5.2fx skimage" %
                  ("voxmill scalar.surface t%d" % threads, sec, faces, faces / sec / 1e6, peer / sec))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
