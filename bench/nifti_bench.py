#!/usr/bin/python3
"""NIfTI load and save of a 256^3 16-bit volume: voxmill against nibabel on the same files.

  nifti_bench.py VOXMILL [FOLDER]

voxmill is timed as whole runs of a macro that does an operation once and one that does it
six times: the difference over five is the time of one operation, free of the process's
start (a save is timed after one load). Each figure is the best of several runs. nibabel is
timed in this process: nib.load with the voxels read into memory (np.asanyarray(dataobj) as
uint16, the .nii without a memory map, and get_fdata as float64), and nib.save (which packs
at level 1). gzip -6 on the same bytes is the mark for saving .nii.gz.

Peak memory (maximum resident set of /usr/bin/time -v) is taken of one load in a process of
its own, for each program with the process that loads nothing beside it.
"""
import os
import shutil
import subprocess
import sys
import tempfile

import nibabel as nib
import numpy as np

from benchlib import best, bestcpu

N = 256


def volume():
    """Smooth structure with noise in 12 bits, as a scanner gives it."""
    rng = np.random.default_rng(1)
    x = np.linspace(-1, 1, N, dtype=np.float32)
    r2 = x[:, None, None] ** 2 + (x[None, :, None] * 1.2) ** 2 + (x[None, None, :] * 0.9) ** 2
    v = 2400 * np.exp(-3 * r2) + 600 * (r2 < 0.5) + rng.normal(0, 40, (N, N, N)).astype(np.float32)
    return np.clip(v, 0, 4095).astype(np.uint16)


def voxmill(binary, folder, lines, clock=best):
    macro = os.path.join(folder, "bench.macro")
    with open(macro, "w") as f:
        f.write("\n".join(["debug.no", "scalar.16bit"] + lines) + "\n")

    def run():
        subprocess.run([binary, "-strict", "-macro=bench.macro"], cwd=folder, stdout=subprocess.DEVNULL, check=True)
    return clock(run)


def peakmb(command, folder):
    """Maximum resident set of a command, in MB, as /usr/bin/time -v reports it."""
    done = subprocess.run(["/usr/bin/time", "-v"] + command, cwd=folder, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True, check=True)
    line = next(l for l in done.stderr.splitlines() if "Maximum resident set size" in l)
    return int(line.split(":")[1]) / 1024


def peaks(binary, folder, name):
    """Peak memory of voxmill and nibabel: loading nothing, and loading name."""
    def macro(lines):
        with open(os.path.join(folder, "peak.macro"), "w") as f:
            f.write("\n".join(["debug.no", "scalar.16bit"] + lines) + "\n")
        return peakmb([binary, "-strict", "-macro=peak.macro"], folder)

    def python(load):
        code = "import nibabel as nib, numpy as np\n" + (f"np.asanyarray(nib.load({name!r}, mmap=False).dataobj)" if load else "")
        return peakmb([sys.executable, "-c", code], folder)
    return macro([]), macro([f'scalar.load "{name}"']), python(False), python(True)


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp(prefix="nifti-bench-")
    os.makedirs(folder, exist_ok=True)
    data = volume()
    img = nib.Nifti1Image(data, np.diag([0.9, 0.9, 1.2, 1]), dtype=np.uint16)
    nii, gz = os.path.join(folder, "v.nii"), os.path.join(folder, "v.nii.gz")
    nib.save(img, nii)
    nib.save(img, gz)
    voxels = data.size
    mb = data.nbytes / 1e6

    def each(first, line, clock=best):
        once = voxmill(binary, folder, first + [line], clock)
        return (voxmill(binary, folder, first + [line] * 6, clock) - once) / 5

    empty = voxmill(binary, folder, [])
    ours = {
        "load .nii": each([], 'scalar.load "v.nii"'),
        "load .nii.gz": each([], 'scalar.load "v.nii.gz"'),
        "save .nii": each(['scalar.load "v.nii"'], 'scalar.save "o.nii"'),
        "save .nii.gz": each(['scalar.load "v.nii"'], 'scalar.save "o.nii.gz"'),
    }

    theirs = {
        "load .nii": best(lambda: np.asanyarray(nib.load(nii, mmap=False).dataobj)),
        "load .nii.gz": best(lambda: np.asanyarray(nib.load(gz).dataobj)),
        "save .nii": best(lambda: nib.save(img, os.path.join(folder, "n.nii"))),
        "save .nii.gz": best(lambda: nib.save(img, os.path.join(folder, "n.nii.gz"))),
    }
    loads = {"load .nii": nii, "load .nii.gz": gz}
    cpu = {op: (each([], f'scalar.load "{os.path.basename(name)}"', bestcpu),
                bestcpu(lambda: np.asanyarray(nib.load(name, mmap=False).dataobj)))
           for op, name in loads.items()}
    fdata = {"load .nii": best(lambda: nib.load(nii).get_fdata()),
             "load .nii.gz": best(lambda: nib.load(gz).get_fdata())}

    def copy():
        with open(nii, "rb") as f:
            f.read()
    cache = best(copy)
    gzip6 = best(lambda: subprocess.run(["gzip", "-6", "-c", nii], stdout=subprocess.DEVNULL, check=True))

    print(f"256^3 uint16 volume: {voxels} voxels, {mb:.1f} MB; .nii.gz of {os.path.getsize(gz) / 1e6:.1f} MB")
    print(f"process start and end of voxmill: {empty * 1000:.0f} ms (not counted)")
    print(f"{'':14}{'voxmill Mvox/s':>16}{'MB/s':>8}{'nibabel Mvox/s':>16}{'ratio':>8}{'nibabel fdata':>15}"
          f"{'CPU ms: voxmill':>17}{'nibabel':>9}{'ratio':>7}")
    for op in ours:
        o, t = ours[op], theirs[op]
        f = f"{voxels / fdata[op] / 1e6:15.1f}" if op in fdata else ""
        c = f"{cpu[op][0] * 1000:17.0f}{cpu[op][1] * 1000:9.0f}{cpu[op][1] / cpu[op][0]:7.2f}" if op in cpu else ""
        print(f"{op:14}{voxels / o / 1e6:16.1f}{mb / o:8.0f}{voxels / t / 1e6:16.1f}{t / o:8.2f}{f:15}{c}")
    print(f"reading the .nii from the disk cache: {mb / cache:.0f} MB/s; gzip -6 on the .nii: {mb / gzip6:.0f} MB/s "
          f"(voxmill's .nii.gz save: {mb / ours['save .nii.gz']:.0f} MB/s)")
    print("peak memory (MB)  voxmill: base  load  nibabel: base  load  (field or array: %.1f)" % mb)
    for name in ("v.nii", "v.nii.gz"):
        ob, ol, tb, tl = peaks(binary, folder, name)
        print(f"load {name[1:]:9}{ob:15.1f}{ol:6.1f}{tb:15.1f}{tl:6.1f}")
    if len(sys.argv) <= 2:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
