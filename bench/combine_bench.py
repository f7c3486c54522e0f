#!/usr/bin/python3
"""Combining 256^3 16-bit volumes: voxmill's scalar.add, sub, mul and median against the
numpy expressions a user would write for the same result, on the same arrays.

  combine_bench.py VOXMILL [FOLDER]

voxmill's figure is one command with the process start and the loads taken out (see
benchlib). The numpy lines compute in 64 bits and clip, as the program does.
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
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="combine-bench-")
    os.makedirs(folder, exist_ok=True)
    rng = np.random.default_rng(2)
    volumes = [rng.integers(0, 65536, (N, N, N), dtype=np.uint16) for _ in range(3)]
    for name, data in zip("abc", volumes):
        nib.save(nib.Nifti1Image(data, np.eye(4), dtype=np.uint16), os.path.join(folder, name + ".nii"))
    a, b, c = volumes
    wide = [v.astype(np.int64) for v in volumes]
    peers = {
        "add a b": lambda: np.clip(a.astype(np.int64) + b, 0, 65535).astype(np.uint16),
        "sub a b": lambda: np.clip(a.astype(np.int64) - b, 0, 65535).astype(np.uint16),
        "mul a b": lambda: (a.astype(np.int64) * b // 65535).astype(np.uint16),
        "median a b c": lambda: np.median(np.stack(wide), axis=0).astype(np.uint16),
    }
    setup = ["scalar.16bit"] + ['scalar.use %s\nscalar.load "%s.nii"' % (n, n) for n in "abc"]
    print("volumes %d^3 uint16, best of %d" % (N, REPEAT))
    for operation, peer in peers.items():
        theirs = best(peer)
        ours = voxmill_once(binary, folder, setup, "r := scalar." + operation)
        rate = N ** 3 / ours / 1e6
        print("%-22s voxmill %7.1f Mvoxel/s  numpy %7.1f Mvoxel/s  %5.2fx" % (operation, rate, N ** 3 / theirs / 1e6, theirs / ours))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
