#!/usr/bin/python3
"""scalar.measure.thickness 16 on a 128^3 phantom (smooth noise thresholded to a third of
the volume) on one and two threads, against 2 * scipy.ndimage.distance_transform_edt on
the same mask, with the agreement of the two maps; scalar.statistic and scalar.quantile on
a 256^3 16-bit volume against numpy mean/std and percentile.

  measures_bench.py VOXMILL

One run each (the thickness is slow to repeat); a voxmill time is that of a macro with
the command less that of the same macro without it, so start and load are taken out.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time

import nibabel as nib
import numpy as np
from scipy import ndimage


def seconds(run):
    start = time.perf_counter()
    run()
    return time.perf_counter() - start


def voxmill(binary, folder, lines):
    with open(os.path.join(folder, "bench.macro"), "w") as f:
        f.write("\n".join(["debug.no"] + lines) + "\n")
    return seconds(lambda: subprocess.run([binary, "-strict", "-macro=bench.macro"], cwd=folder,
                                          stdout=subprocess.DEVNULL, check=True))


def command(binary, folder, setup, line, threads=1):
    setup = ["thread.max := %d" % threads] + setup
    return max(voxmill(binary, folder, setup + [line]) - voxmill(binary, folder, setup), 1e-9)


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = tempfile.mkdtemp(prefix="measures-bench-")
    rng = np.random.default_rng(5)
    n = 128
    noise = ndimage.gaussian_filter(rng.random((n, n, n)), 3)
    mask = noise > np.quantile(noise, 2 / 3)
    nib.save(nib.Nifti1Image(np.where(mask, 255, 0).astype(np.uint8), np.eye(4)), os.path.join(folder, "p.nii"))
    peer = seconds(lambda: 2 * ndimage.distance_transform_edt(mask))
    setup = ["scalar.8bit", 'scalar.load "p.nii"']
    line = "t := scalar.measure.thickness 16\nscalar.use t\nscalar.save \"t.nii\"\nscalar.use default"
    print("phantom %d^3, %.0f%% object; scipy 2 edt %.3f s" % (n, 100 * mask.mean(), peer))
    for threads in (1, 2):
        one = command(binary, folder, setup, line, threads)
        print("thickness 16 threads %d: %.2f s  %.2f Mvoxel/s  %.3fx scipy" % (threads, one, n ** 3 / one / 1e6, peer / one))
    ours = np.asarray(nib.load(os.path.join(folder, "t.nii")).dataobj).astype(float)[mask]
    edt = (2 * ndimage.distance_transform_edt(mask))[mask]
    print("agreement on object voxels: median ours %.1f, 2 edt %.1f; correlation %.2f"
          % (np.median(ours), np.median(edt), np.corrcoef(ours, edt)[0, 1]))
    data = rng.integers(0, 4096, (256, 256, 256), dtype=np.uint16)
    nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
    setup = ["scalar.16bit", 'scalar.load "v.nii"']
    peer = seconds(lambda: (data.mean(), data.std(ddof=1)))
    one = command(binary, folder, setup, "a := scalar.statistic")
    print("statistic 256^3: numpy mean+std %.3f s  voxmill %.3f s  %.2fx numpy" % (peer, one, peer / one))
    peer = seconds(lambda: np.percentile(data, [0, 25, 50, 75, 100]))
    one = command(binary, folder, setup, "a := scalar.quantile")
    print("quantile 256^3: numpy percentile %.3f s  voxmill %.3f s  %.2fx numpy" % (peer, one, peer / one))
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
