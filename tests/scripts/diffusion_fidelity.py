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


def image():
    """A 17 x 15 plane with a bright diagonal band, noise and a background corner."""
    rng = np.random.default_rng(4)
    x, y = np.meshgrid(np.arange(17), np.arange(15), indexing="ij")
    v = 120 + 60 * np.exp(-((x - y - 1) / 3.0) ** 2) + rng.normal(0, 6, x.shape)
    return np.where(x + y > 4, np.clip(v, 1, 255), 0).astype(np.uint8)


def check_image(method):
    plane = image()
    vol = plane[:, :, None]
    dirs = dm.directions2d(4)
    data = open(f"o{method}.pgm", "rb").read()
    top = int(data.split()[3])  # the target takes the default kind: 8 or 16 bits
    got = np.frombuffer(data[-plane.size * (2 if top > 255 else 1):], ">u2" if top > 255 else np.uint8)
    got = got.reshape(plane.shape[1], plane.shape[0]).T
    want = np.zeros(plane.shape, int)
    for x in range(1, plane.shape[0] + 1):
        for y in range(1, plane.shape[1] + 1):
            if plane[x - 1, y - 1] >= 1:
                want[x - 1, y - 1] = dm.pixellevel(dm.voxel(vol, (x, y, 1), 4, method=method, dirs=dirs), top)
    differ = int((got != want).sum())
    print(f"image method {method}: {np.count_nonzero(want)} oriented pixels, {differ} differ")
    return int(differ > 0 or np.count_nonzero(want) == 0)


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
    plane = image()
    with open("plane.pgm", "wb") as f:
        f.write(b"P5 %d %d 255\n" % (plane.shape[0], plane.shape[1]) + plane.T.tobytes())
    for m in (1, 5, 6):
        lines += ['image.load "plane.pgm"', f"image.diffusion.method {m}", f"o{m} := image.diffusion 4",
                  f"image.use o{m}", f'image.save "o{m}.pgm"']
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
    bad += sum(check_image(m) for m in (1, 5, 6))
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
