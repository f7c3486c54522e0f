#!/usr/bin/python3
"""3x3x3 mean smoothing of a 128^3 float vector field: voxmill against scipy on the same data.

  vector_bench.py VOXMILL

voxmill builds the field in its macro from three cubes of constant vectors (sizes 128, 100
and 37 from the first corner, summed), and times vector.smooth as the difference of a run
with one pass and one with six, for thread.max 1 and 2. The peer is
scipy.ndimage.uniform_filter(size=3) on each of the three float64 components of the same
field, in this process (its border rule differs: it mirrors, voxmill keeps the outer layer).
"""
import os
import shutil
import sys
import tempfile

import numpy as np
from scipy import ndimage

from benchlib import REPEAT, best, voxmill_once

N = 128
CUBES = [(128, (0.3, -0.2, 0.5)), (100, (1.5, 0.25, -2.0)), (37, (-0.75, 3.0, 1.0))]


def components():
    field = np.zeros((3, N, N, N))
    for size, vector in CUBES:
        for c in range(3):
            field[c, :size, :size, :size] += vector[c]
    return [np.ascontiguousarray(field[c]) for c in range(3)]


def setup():
    lines = []
    names = []
    for i, (size, vector) in enumerate(CUBES):
        name = "c%d" % i
        names.append(name)
        lines += ["vector.use " + name, "vector.new %d %d %d" % (size, size, size), "vector.add <%g, %g, %g>" % vector]
    lines += ["field := vector.add " + " ".join(names), "vector.use field"]
    return lines


def rate(seconds):
    return N ** 3 / seconds / 1e6


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = tempfile.mkdtemp(prefix="vector-bench-")
    data = components()
    peer = best(lambda: [ndimage.uniform_filter(c, size=3) for c in data])
    print("vector field %d^3 float64 x 3, best of %d" % (N, REPEAT))
    print("%-34s %9.1f Mvoxel/s" % ("scipy uniform_filter(size=3) x 3", rate(peer)))
    for threads in (1, 2):
        one = voxmill_once(binary, folder, setup(), "vector.smooth", threads)
        print("%-34s %9.1f Mvoxel/s  %5.2fx scipy" % ("voxmill vector.smooth threads %d" % threads, rate(one), peer / one))
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
