#!/usr/bin/python3
"""3x3x3 box smoothing of a 256^3 16-bit volume: voxmill against scipy on the same array.

  filter_bench.py VOXMILL [FOLDER]

voxmill is timed as whole runs of a macro that loads the volume and smooths it once, and one
that smooths it six times: the difference over five is the time of one pass, free of the
process's start and the load. Each figure is the best of several runs, for thread.max 1 and
2. The peer is scipy.ndimage.uniform_filter(size=3) on the same uint16 array, in this process
(its border rule differs: it mirrors, the program cuts the window; the work is the same).
scalar.filter.median.mean (a median of three axis means, on one thread) is set beside
scipy.ndimage.median_filter(size=3), a true 27-value median: related work, not the same.
"""
import os
import shutil
import sys
import tempfile

import nibabel as nib
import numpy as np
from scipy import ndimage

from benchlib import REPEAT, best, voxmill_once

N = 256


def volume():
    rng = np.random.default_rng(1)
    return rng.integers(0, 4096, (N, N, N), dtype=np.uint16)


def voxmill(binary, folder, command, threads):
    return voxmill_once(binary, folder, ["scalar.16bit", 'scalar.load "v.nii"'], "scalar." + command, threads)


def rate(seconds):
    return N ** 3 / seconds / 1e6


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="filter-bench-")
    os.makedirs(folder, exist_ok=True)
    data = volume()
    nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
    peer = best(lambda: ndimage.uniform_filter(data, size=3))
    print("volume %d^3 uint16, best of %d" % (N, REPEAT))
    print("%-34s %9.1f Mvoxel/s" % ("scipy uniform_filter(size=3)", rate(peer)))
    for command in ("hardsmooth", "smooth"):
        for threads in (1, 2):
            one = voxmill(binary, folder, command, threads)
            print("%-34s %9.1f Mvoxel/s  %5.2fx scipy" % ("voxmill scalar.%s threads %d" % (command, threads), rate(one), peer / one))
    median = best(lambda: ndimage.median_filter(data, size=3))
    print("%-34s %9.1f Mvoxel/s" % ("scipy median_filter(size=3)", rate(median)))
    one = voxmill(binary, folder, "filter.median.mean", 1)
    print("%-34s %9.1f Mvoxel/s  %5.2fx scipy" % ("voxmill scalar.filter.median.mean", rate(one), median / one))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
