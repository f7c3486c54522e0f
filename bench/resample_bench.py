#!/usr/bin/python3
"""Scaled copies of a 256^3 16-bit volume: voxmill against skimage and scipy on the same array.

  resample_bench.py VOXMILL [FOLDER]

`x := scalar.copy 0.5` (mean of 2x2x2 blocks) against skimage.transform.downscale_local_mean,
and `x := scalar.copy 2` (trilinear) against scipy.ndimage.zoom(order=1), timed as in
filter_bench.py. The peers return floats; the program rounds into 16 bits.
"""
import os
import shutil
import sys
import tempfile

import nibabel as nib
import numpy as np
from scipy import ndimage
from skimage.transform import downscale_local_mean

from benchlib import REPEAT, best, voxmill_once

N = 256


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="resample-bench-")
    os.makedirs(folder, exist_ok=True)
    data = np.random.default_rng(1).integers(0, 4096, (N, N, N), dtype=np.uint16)
    nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
    setup = ["scalar.16bit", 'scalar.load "v.nii"']
    print("volume %d^3 uint16, best of %d" % (N, REPEAT))
    for factor, name, peer in (
        ("0.5", "skimage downscale_local_mean", lambda: downscale_local_mean(data, (2, 2, 2))),
        ("2", "scipy zoom(order=1)", lambda: ndimage.zoom(data, 2, order=1)),
    ):
        theirs = best(peer)
        ours = voxmill_once(binary, folder, setup, "x := scalar.copy " + factor)
        print("%-30s %8.3f s" % (name, theirs))
        print("%-30s %8.3f s  %5.2fx" % ("voxmill scalar.copy " + factor, ours, theirs / ours))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
