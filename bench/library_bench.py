#!/usr/bin/python3
"""The default image.load (libraries enabled) against Pillow's open, load and a copy, in one run.

Usage: /usr/bin/python3 bench/library_bench.py build/voxmill [size]

A picture of size x size pixels (default 4096) as 8-bit PGM, PPM and PNG. voxmill loads each
with FreeImage and ImageMagick enabled, as a macro does by default: binary PNM goes to the
own reader, PNG to FreeImage in a child process. Seconds of one load (process start taken
out), best of three; ratio = Pillow time / voxmill time.
"""
import os
import sys
import tempfile
import time

import numpy as np
from PIL import Image

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from benchlib import best, voxmill_once  # noqa: E402

binary = os.path.abspath(sys.argv[1])
n = int(sys.argv[2]) if len(sys.argv) > 2 else 4096

with tempfile.TemporaryDirectory(prefix="voxmill-bench-") as work:
    gray = Image.blend(Image.linear_gradient("L").resize((n, n)), Image.effect_noise((n, n), 40), 0.3)
    rgb = Image.merge("RGB", (gray, gray.transpose(Image.FLIP_LEFT_RIGHT), gray.transpose(Image.FLIP_TOP_BOTTOM)))
    cases = [("g.pgm", gray, "image.8bit"), ("c.ppm", rgb, "image.24bit"), ("c.png", rgb, "image.24bit")]
    print(f"{n} x {n} pixels; seconds of one load, best of 3; ratio = Pillow time / voxmill time")
    print(f"{'file':8} {'voxmill':>9} {'Pillow':>9} {'ratio':>6}")
    for name, image, kind in cases:
        image.save(os.path.join(work, name))

        def pillow():
            with Image.open(os.path.join(work, name)) as f:
                f.load()
                np.array(f)
        ours = voxmill_once(binary, work, [kind], f'image.load "{name}"')
        theirs = best(pillow)
        print(f"{name:8} {ours:9.4f} {theirs:9.4f} {theirs / ours:6.2f}")
