"""Cases of the diffusion scan on 13^3 volumes against the model in diffusion_model.py.

  diffusion_fidelity.py make     writes the volumes and run.macro into the working directory
  diffusion_fidelity.py check    compares voxmill's vector files with the model
"""
import math
import sys

import nibabel as nib
import numpy as np

import diffusion_model as dm

N = 13


def volumes():
    rng = np.random.default_rng(3)
    x, y, z = np.meshgrid(*[np.arange(N)] * 3, indexing="ij")
    blob = ((x - 6) ** 2 / 36 + (y - 6) ** 2 / 16 + (z - 6) ** 2 / 25) <= 1
    # Three gray levels: equal statistics everywhere, and lines that leave the object.
    ties = np.where(blob, rng.integers(1, 4, blob.shape), 0)
    # A tube along a diagonal with a smooth core and noise: few ties.
    d = np.abs((x - y) / math.sqrt(2))
    tube = np.where((d <= 3) & (np.abs(z - 6) <= 3), 200 - 20 * d + rng.normal(0, 3, d.shape), 0)
    return {"ties": ties.astype(np.uint8), "tube": np.clip(tube, 0, 255).astype(np.uint8)}


def cases():
    """(volume, r, command, settings) in macro order; settings are the model's keywords."""
    out = []
    for r in (3, 4, 5):
        out += [("ties", r, "diffusion", dict(method=m)) for m in range(1, 7)]
    out += [("tube", 4, "diffusion", dict(method=1, sub=s)) for s in (0, 1, 3, 4, 5, 6, 7, 9)]
    out += [("tube", 4, "diffusion", dict(method=m)) for m in range(1, 7)]
    out += [("ties", 4, "diffusion", dict(method=m, fullscan=True)) for m in (1, 5)]
    out += [("ties", 4, "diffusion", dict(method=m, cone=math.radians(40), mx=0.6)) for m in (4, 5, 6)]
    out += [("ties", 3, "diffusion.x2", dict(method=5)), ("ties", 3, "diffusion.adaptive.x2", dict(method=1)),
            ("ties", 3, "diffusion.adaptive.x2", dict(method=5))]
    return out


def make():
    for name, vol in volumes().items():
        nib.Nifti1Image(vol, np.eye(4)).to_filename(name + ".nii")
    lines = ["scalar.8bit"]
    loaded = None
    for i, (vol, r, command, s) in enumerate(cases()):
        if vol != loaded:
            lines.append(f'scalar.load "{vol}.nii"')
            loaded = vol
        lines += [f"scalar.diffusion.method {s['method']}", f"scalar.submethod {s.get('sub', 2)}",
                  f"scalar.fullscan {'true' if s.get('fullscan') else 'false'}",
                  f"scalar.diffusion.angle {s.get('cone', 5 * math.pi / 180)!r}",
                  f"scalar.diffusion.max {s.get('mx', 0.25)!r}", f"scalar.{command} {r}",
                  f'vector.save "case{i}.nii"']
    lines += ['scalar.load "ties.nii"', 'scalar.diffusion.dump "dump.txt" 3 <0, 0, 0> <1, 0, -2>']
    with open("run.macro", "w") as f:
        f.write("\n".join(lines) + "\n")


def check():
    vols = volumes()
    groups = {}
    for i, (vol, r, command, s) in enumerate(cases()):
        groups.setdefault((vol, r, command), []).append((i, s))
    bad = 0
    for (vol, r, command), items in groups.items():
        k = int(command[-1]) if command[-2] == "x" else 1
        fields = dm.field(vols[vol], r, [s for _, s in items], k=k, adaptive="adaptive" in command)
        for (i, s), want in zip(items, fields):
            got = np.asarray(nib.load(f"case{i}.nii").dataobj, dtype=float).reshape(want.shape)
            wrong = ~np.isclose(got, want, rtol=1e-12, atol=1e-12).all(-1)
            nonzero = np.count_nonzero(np.abs(want).sum(-1))
            print(f"case {i} {vol} r={r} {command} {s}: {nonzero} oriented voxels, {wrong.sum()} differ")
            if wrong.any() or nonzero == 0:
                bad += 1
                for p in list(zip(*np.nonzero(wrong)))[:3]:
                    print("   at", tuple(int(c) + 1 for c in p), "voxmill", got[p], "model", want[p])
    bad += check_dump(vols["ties"], 3, (7, 6, 4))
    sys.exit(1 if bad else 0)


def check_dump(vol, r, p):
    """The dump walks the raw rows: each line's values as the model scans them."""
    rows = [l for l in open("dump.txt").read().split("\n") if " u:" in l]
    raw = dm.raw_points(r)
    wrong = len(rows) != len(raw)
    accepted = 0
    for line, d in zip(rows, raw):
        values = dm.scanline(vol, tuple(p[a] + d[a] for a in range(3)), tuple(p[a] - d[a] for a in range(3)))
        fields = line.split()
        got = [int(v) for v in fields[fields.index(next(f for f in fields if f.startswith("SD:"))) + 1:]] \
            if "len:0" not in fields else []
        index = str(accepted + 1) if len(values) >= r else "-"
        accepted += len(values) >= r
        wrong |= got != values or fields[0] != index
    print(f"dump: {len(rows)} lines, {'differ' if wrong else 'agree'}")
    return int(wrong)


if __name__ == "__main__":
    {"make": make, "check": check}[sys.argv[1]]()
