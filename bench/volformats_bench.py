#!/usr/bin/python3
"""Loading of foreign volume files, in MB of voxels a second.

  volformats_bench.py VOXMILL [FOLDER]

A 256^3 16-bit volume as Amira with a zlib-packed block (hxzip), as plain Amira and as
.nii.gz (the reference: hxzip should load as fast), each loaded by voxmill; a 128^3 float
volume as VTK ascii structured points, loaded by voxmill and by vtk's own legacy reader
(vtkStructuredPointsReader). voxmill's times are of one load with the process start taken
out (benchlib.voxmill_once); vtk is timed in this process.
"""
import os
import shutil
import sys
import tempfile
import zlib

import nibabel as nib
import numpy as np
import vtk
from vtk.util import numpy_support

from benchlib import best, voxmill_once


def volume(n):
    """Smooth structure with noise in 12 bits, as a scanner gives it."""
    rng = np.random.default_rng(1)
    x = np.linspace(-1, 1, n, dtype=np.float32)
    r2 = x[:, None, None] ** 2 + (x[None, :, None] * 1.2) ** 2 + (x[None, None, :] * 0.9) ** 2
    v = 2400 * np.exp(-3 * r2) + 600 * (r2 < 0.5) + rng.normal(0, 40, (n, n, n)).astype(np.float32)
    return np.clip(v, 0, 4095).astype(np.uint16)


def amira(path, data, packing):
    n = data.shape[0]
    body = zlib.compress(data.tobytes(), 6) if packing else data.tobytes()
    tail = f"(HxZip,{len(body)})" if packing else ""
    head = (f"# AmiraMesh BINARY-LITTLE-ENDIAN 2.1\n\ndefine Lattice {n} {n} {n}\n\n"
            f"Parameters {{\n    BoundingBox 0 {n} 0 {n} 0 {n},\n    CoordType \"uniform\"\n}}\n\n"
            f"Lattice {{ ushort Data }} @1{tail}\n\n# Data section follows\n@1\n")
    with open(path, "wb") as f:
        f.write(head.encode() + body)


def vtkwrite(path, values):
    n = values.shape[0]
    image = vtk.vtkImageData()
    image.SetDimensions(n, n, n)
    image.GetPointData().SetScalars(numpy_support.numpy_to_vtk(values.reshape(-1), deep=True))
    writer = vtk.vtkStructuredPointsWriter()
    writer.SetFileName(path)
    writer.SetInputData(image)
    writer.SetFileTypeToASCII()
    writer.Write()


def vtkread(path):
    reader = vtk.vtkStructuredPointsReader()
    reader.SetFileName(path)
    reader.Update()
    return reader.GetOutput()


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="volformats-bench-")
    os.makedirs(folder, exist_ok=True)
    data = volume(256)
    amira(os.path.join(folder, "z.am"), data, True)
    amira(os.path.join(folder, "p.am"), data, False)
    nib.save(nib.Nifti1Image(data.transpose(2, 1, 0), np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii.gz"))
    mb = data.nbytes / 1e6
    load = {name: voxmill_once(binary, folder, ["scalar.16bit"], f'scalar.load "{name}"')
            for name in ("z.am", "p.am", "v.nii.gz")}
    print(f"256^3 uint16 volume, {mb:.1f} MB of voxels; hxzip block {os.path.getsize(os.path.join(folder, 'z.am')) / 1e6:.1f} MB")
    print(f"{'voxmill load':24}{'MB/s':>8}{'ratio to .nii.gz':>18}")
    for name, label in (("z.am", "Amira hxzip"), ("p.am", "Amira raw"), ("v.nii.gz", ".nii.gz")):
        print(f"{label:24}{mb / load[name]:8.0f}{load['v.nii.gz'] / load[name]:18.2f}")

    values = (volume(128).astype(np.float32) / 16).round(2)
    text = os.path.join(folder, "s.vtk")
    vtkwrite(text, values)
    size = os.path.getsize(text) / 1e6
    ours = voxmill_once(binary, folder, ["scalar.8bit"], 'scalar.load "s.vtk"')
    theirs = best(lambda: vtkread(text))
    print(f"128^3 float VTK ascii structured points, {size:.1f} MB of text")
    print(f"{'':24}{'MB/s':>8}{'ratio':>8}")
    print(f"{'voxmill load':24}{size / ours:8.1f}{theirs / ours:8.2f}")
    print(f"{'vtkStructuredPointsReader':24}{size / theirs:8.1f}")
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
