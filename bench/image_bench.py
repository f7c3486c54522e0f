#!/usr/bin/python3
"""Raster file throughput of voxmill against Pillow on the same files, in one run.

Usage: /usr/bin/python3 bench/image_bench.py build/bench/image_bench [size]

A picture of size x size pixels (default 4096; gradient with noise) is written as gray
PGM and PNG and as rgb PPM and PNG. build/bench/image_bench times the own code on these
files (PNM load and save, PNG save by the own encoder of stored blocks, PNG load through
FreeImage, the one PNG reader the program has); Pillow does the same on the same files.
Best of five runs each; MB/s of pixel data, and the ratio Pillow time / voxmill time.
"""
import os
import subprocess
import sys
import tempfile
import time

from PIL import Image

bench = os.path.abspath(sys.argv[1])
n = int(sys.argv[2]) if len(sys.argv) > 2 else 4096


def best(work):
    least = 1e30
    for _ in range(5):
        start = time.perf_counter()
        work()
        least = min(least, time.perf_counter() - start)
    return least


with tempfile.TemporaryDirectory(prefix="voxmill-bench-") as work:
    gray = Image.blend(Image.linear_gradient("L").resize((n, n)), Image.effect_noise((n, n), 40), 0.3)
    rgb = Image.merge("RGB", (gray, gray.transpose(Image.FLIP_LEFT_RIGHT), gray.transpose(Image.FLIP_TOP_BOTTOM)))
    files = {"gray": (gray, "g.pgm", "g.png", 1), "rgb": (rgb, "c.ppm", "c.png", 3)}
    for im, pnm, png, _ in files.values():
        im.save(os.path.join(work, pnm))
        im.save(os.path.join(work, png))
    ours = {}
    for line in subprocess.run([bench, work], capture_output=True, text=True, check=True).stdout.splitlines():
        *op, seconds = line.split()
        ours[" ".join(op)] = float(seconds)
    p = lambda name: os.path.join(work, name)
    print(f"{n} x {n} pixels; MB/s of pixel data, best of 5; ratio = Pillow time / voxmill time")
    print(f"{'operation':26} {'voxmill':>9} {'Pillow':>9} {'ratio':>6}")
    for label, (im, pnm, png, bpp) in files.items():
        megabytes = n * n * bpp / 1e6
        # From an open file, so that Pillow decodes into memory as voxmill does, rather
        # than mapping a raw PGM into its image without reading it.
        def load(name):
            with open(p(name), "rb") as handle, Image.open(handle) as f:
                f.load()
        pil = {
            "load PNM": best(lambda: load(pnm)),
            "save PNM": best(lambda: im.save(p("pil_" + pnm))),
            "load PNG": best(lambda: load(png)),
            "save PNG": best(lambda: im.save(p("pil_" + png), compress_level=0)),
        }
        for op, seconds in pil.items():
            mine = ours.get(f"{label} {op}", -1)
            shown = f"{megabytes / mine:9.1f}" if mine > 0 else f"{'-':>9}"
            ratio = f"{seconds / mine:6.2f}" if mine > 0 else f"{'-':>6}"
            print(f"{label + ' ' + op:26} {shown} {megabytes / seconds:9.1f} {ratio}")
        level6 = best(lambda: im.save(p("pil6_" + png)))
        print(f"{label + ' save PNG, Pillow level 6':26} {'':9} {megabytes / level6:9.1f}")
