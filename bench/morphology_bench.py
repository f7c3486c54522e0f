#!/usr/bin/python3
"""Neighbour-count morphology: voxmill against scipy.ndimage on the same arrays.

  morphology_bench.py VOXMILL [FOLDER]

scalar.shrink and scalar.grow (one pass, range <128, 255>, n = 13) on a 256^3 gray volume of
smoothed noise, timed as in filter_bench.py (six passes less one, over five), against
scipy.ndimage.grey_erosion and binary_erosion/binary_dilation with a 3x3x3 footprint on the
same array: related work (scipy takes the minimum or tests all 27, the program counts), of
the same reach. scalar.fullshrink of a solid 128^3 ball: passes per second.
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

from benchlib import REPEAT, best, voxmill_once

N = 256


def save(folder, name, data):
    nib.save(nib.Nifti1Image(data.transpose(2, 1, 0), np.eye(4), dtype=np.uint8), os.path.join(folder, name))


def rate(seconds, n=N):
    return n ** 3 / seconds / 1e6


def ballpasses(ball):
    """Passes of the count rule (n = 4, outside neighbours) until nothing changes."""
    a, passes = ball.astype(np.uint8), 0
    while True:
        passes += 1
        k = ndimage.uniform_filter((a == 0).astype(np.float32), 3, mode="constant", cval=1.0) * 27
        remove = (a > 0) & (np.rint(k) > 4)
        if not remove.any():
            return passes
        a[remove] = 0


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="morphology-bench-")
    os.makedirs(folder, exist_ok=True)
    rng = np.random.default_rng(1)
    data = ndimage.uniform_filter(rng.integers(0, 256, (N, N, N)).astype(np.float32), 5)
    data = np.clip((data - 127.5) * 8 + 128, 0, 255).astype(np.uint8)
    save(folder, "v.nii", data)
    mask = data >= 128
    print("volume %d^3 uint8, best of %d" % (N, REPEAT))
    peers = {
        "scipy grey_erosion 3x3x3": best(lambda: ndimage.grey_erosion(data, size=(3, 3, 3))),
        "scipy binary_erosion 3x3x3": best(lambda: ndimage.binary_erosion(mask, np.ones((3, 3, 3), bool))),
        "scipy binary_dilation 3x3x3": best(lambda: ndimage.binary_dilation(mask, np.ones((3, 3, 3), bool))),
    }
    for name, seconds in peers.items():
        print("%-34s %9.1f Mvoxel/s" % (name, rate(seconds)))
    for command in ("shrink", "grow"):
        one = voxmill_once(binary, folder, ["scalar.8bit", 'scalar.load "v.nii"'], "scalar.%s <128, 255> 13" % command)
        peer = peers["scipy grey_erosion 3x3x3"] if command == "shrink" else peers["scipy binary_dilation 3x3x3"]
        binpeer = peers["scipy binary_erosion 3x3x3"] if command == "shrink" else peer
        print("%-34s %9.1f Mvoxel/s  %5.2fx grey, %5.2fx binary" % ("voxmill scalar." + command, rate(one), peers["scipy grey_erosion 3x3x3"] / one, binpeer / one))
    z, y, x = np.ogrid[:128, :128, :128]
    ball = ((x - 63.5) ** 2 + (y - 63.5) ** 2 + (z - 63.5) ** 2 <= 62 ** 2).astype(np.uint8) * 200
    save(folder, "ball.nii", ball)
    passes = ballpasses(ball)

    def macro(lines):
        with open(os.path.join(folder, "ball.macro"), "w") as f:
            f.write("\n".join(["debug.no", "scalar.8bit", 'scalar.load "ball.nii"'] + lines) + "\n")
        return best(lambda: subprocess.run([binary, "-strict", "-macro=ball.macro"], cwd=folder, stdout=subprocess.DEVNULL, check=True))
    seconds = max(macro(["scalar.fullshrink <1, 255> 4"]) - macro([]), 1e-9)
    print("%-34s %9.1f passes/s  (%d passes in %.3f s)" % ("voxmill scalar.fullshrink ball 128^3", passes / seconds, passes, seconds))
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
