#!/usr/bin/python3
"""Level tables on a 256^3 16-bit volume: voxmill against a numpy table lookup.

  level_bench.py VOXMILL [FOLDER]

scalar.invert (a fixed table) and scalar.setequal (histogram, then table), timed as in
filter_bench.py, in GB/s of voxels read and written; the peer is `table[data]` in numpy.
"""
import os
import shutil
import sys
import tempfile

import nibabel as nib
import numpy as np

from benchlib import REPEAT, best, voxmill_once

N = 256


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="level-bench-")
    os.makedirs(folder, exist_ok=True)
    data = np.random.default_rng(1).integers(0, 4096, (N, N, N), dtype=np.uint16)
    nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, "v.nii"))
    moved = 2 * data.nbytes / 1e9
    table = (65535 - np.arange(65536)).astype(np.uint16)
    peer = best(lambda: table[data])
    print("volume %d^3 uint16, best of %d" % (N, REPEAT))
    print("%-28s %6.2f GB/s" % ("numpy table[data]", moved / peer))
    for command in ("invert", "setequal"):
        ours = voxmill_once(binary, folder, ["scalar.16bit", 'scalar.load "v.nii"'], "scalar." + command)
        print("%-28s %6.2f GB/s  %5.2fx numpy" % ("voxmill scalar." + command, moved / ours, peer / ours))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
