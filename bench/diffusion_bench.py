#!/usr/bin/python3
"""Orientation of a 128^3 fibre phantom: scalar.diffusion against the structure tensor.

  diffusion_bench.py VOXMILL [FOLDER]

voxmill: the time of scalar.diffusion r (method 5, the default) for r = 4, 8, 16 on thread.max
1 and 2, as the difference of a run that loads and scans and one that only loads (best of
two), with the CPU seconds of the same runs beside it: the other processes of a busy machine
change the first much more than the second. Line samples are the gray values that enter the line statistics, counted by
build/bench/diffusion_count; voxels are all 128^3 (background costs one read each) and the
object voxels apart. The peer is skimage.feature.structure_tensor (after a Gaussian of
sigma 1, integration sigma 2), structure_tensor_eigenvalues and numpy.linalg.eigh for the
eigenvectors, in this process, on the same array. Accuracy: the angle between each tube
voxel's vector and its tube's axis (tests/scripts/fibre_phantom.py), mean and share within
10 degrees, for the tubes along x, y, the two diagonals and the curve, and for the tube
along z apart.
"""
import os
import subprocess
import sys
import tempfile
import time

import nibabel as nib
import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "scripts"))
import fibre_phantom as fp  # noqa: E402
from benchlib import extra, run_cpu  # noqa: E402

N = 128


def scan_seconds(binary, folder, r, threads):
    """Wall and CPU seconds of the scan alone: a run with it less one without, best of two."""
    setup = ["scalar.8bit", 'scalar.load "phantom.nii"', "thread.max := %d" % threads]
    return extra(binary, folder, setup, ["scalar.diffusion %d" % r])


def angles(errors):
    checked = np.concatenate([errors[k] for k in ("x", "y", "xy", "xz", "curve")])
    z = errors["z"]
    return "mean %5.2f deg, %5.1f%% within 10 deg; z tube mean %5.2f deg, %5.1f%% within 10 deg" % (
        checked.mean(), 100 * np.mean(checked <= 10), z.mean(), 100 * np.mean(z <= 10))


def main():
    binary = os.path.abspath(sys.argv[1])
    counter = os.path.join(os.path.dirname(binary), "bench", "diffusion_count")
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="diffusion-bench-")
    os.makedirs(folder, exist_ok=True)
    vol = fp.make(N)
    nib.Nifti1Image(vol, np.eye(4)).to_filename(os.path.join(folder, "phantom.nii"))
    objects = int((vol > 0).sum())
    print("phantom %d^3 uint8, %d object voxels; load on this machine: %s" % (N, objects, os.getloadavg()))
    print("%3s %7s %9s %14s %12s %12s %9s %18s" % ("r", "threads", "seconds", "Msamples/s", "Mvoxel/s", "Mobject/s",
                                                 "CPU s", "Msamples/CPU s"))
    seconds8 = None
    for r in (4, 8, 16):
        out = subprocess.run([counter, os.path.join(folder, "phantom.nii"), str(r)], capture_output=True, text=True,
                             check=True).stdout
        samples = int(out.split("samples=")[1].split()[0])
        for threads in (1, 2):
            s, cpu = scan_seconds(binary, folder, r, threads)
            if r == 8:
                seconds8 = s if seconds8 is None else min(seconds8, s)
            print("%3d %7d %9.3f %14.1f %12.2f %12.3f %9.3f %18.1f" % (
                r, threads, s, samples / s / 1e6, N ** 3 / s / 1e6, objects / s / 1e6, cpu, samples / cpu / 1e6))
    start = time.perf_counter()
    axes, _ = fp.structure_tensor_axes(vol)
    peer = time.perf_counter() - start
    axes[vol == 0] = 0
    print("skimage structure tensor + eigh: %.3f s; voxmill r=8 (best thread count) is %.2fx as fast" %
          (peer, peer / seconds8))
    run_cpu(binary, folder, ["scalar.8bit", 'scalar.load "phantom.nii"', "scalar.diffusion 8", 'vector.save "v.nii"'])
    vectors = np.asarray(nib.load(os.path.join(folder, "v.nii")).dataobj, dtype=float).reshape(N, N, N, 3)
    print("accuracy voxmill r=8 method 5: " + angles(fp.errors(vectors, N)))
    print("accuracy skimage            : " + angles(fp.errors(axes, N)))


if __name__ == "__main__":
    main()
