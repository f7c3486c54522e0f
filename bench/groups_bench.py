#!/usr/bin/python3
"""Face-connected regions of a 256^3 16-bit random mask at densities 0.3 and 0.6:
voxmill's scalar.group against scipy.ndimage.label (default structure: faces) on the
same array, the threshold included on both sides; and the histogram of a 256^3 16-bit
volume, scalar.histogram against numpy.bincount.

  groups_bench.py VOXMILL

voxmill is timed as whole runs of a macro that loads the volume and groups it once, and
one that groups it six times (each into an emptied target): the difference over five is
one grouping, free of the process's start and the load. Best of three runs each, on one
and two threads.
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
GROUP = "lab := scalar.group src <1, 65535>\nscalar.use lab\nscalar.clear\nscalar.use src"


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = tempfile.mkdtemp(prefix="groups-bench-")
    rng = np.random.default_rng(3)
    print("mask %d^3 uint16, best of %d" % (N, REPEAT))
    for density in (0.3, 0.6):
        data = np.where(rng.random((N, N, N)) < density, 1000, 0).astype(np.uint16)
        nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
        peer = best(lambda: ndimage.label(data >= 1))
        groups = ndimage.label(data >= 1)[1]
        setup = ["scalar.16bit", "scalar.use src", 'scalar.load "v.nii"']
        for threads in (1, 2):
            one = voxmill_once(binary, folder, setup, GROUP, threads)
            print("density %.1f: %d groups  scipy label %.3f s  voxmill scalar.group threads %d %.3f s  %.2fx scipy"
                  % (density, groups, peer, threads, one, peer / one))
    data = rng.integers(0, 65536, (N, N, N), dtype=np.uint16)
    nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
    peer = best(lambda: np.bincount(data.ravel(), minlength=65536))
    one = voxmill_once(binary, folder, ["scalar.16bit", 'scalar.load "v.nii"'], "scalar.histogram")
    print("histogram: numpy bincount %.3f s  voxmill scalar.histogram %.3f s  %.2fx numpy" % (peer, one, peer / one))
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
