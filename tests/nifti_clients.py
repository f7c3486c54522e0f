#!/usr/bin/python3
"""NIfTI files between voxmill and nibabel, checked voxel by voxel.

  nifti_clients.py generate DIR   files written by nibabel, and DIR/run.macro that loads
                                  each into voxmill and saves what it got
  nifti_clients.py check DIR      compares voxmill's results with the conversion rules,
                                  computed here with numpy, and its placement with nibabel's
  nifti_clients.py written DIR    files that voxmill wrote, read by nibabel

The expected voxels are computed from the raw data in the files, independently of voxmill.
Deviations of voxmill from the published format are checked as such, in cases whose names
say so. Prints one line per failure and exits 1 when there was any.
"""
import json
import os
import re
import sys

import nibabel as nib
import numpy as np

SHAPE = (7, 5, 3)  # 105 voxels: mono files end in a partial byte
RGB = np.dtype([("R", "u1"), ("G", "u1"), ("B", "u1")])
RGBA = np.dtype([("R", "u1"), ("G", "u1"), ("B", "u1"), ("A", "u1")])
DTYPES = {2: np.uint8, 4: np.int16, 8: np.int32, 16: np.float32, 64: np.float64, 256: np.int8, 512: np.uint16,
          768: np.uint32, 1024: np.int64, 1280: np.uint64, 128: RGB, 2304: RGBA}
KINDS = {"mono": "1bit", "gray": "8bit", "full": "16bit"}
TOP = {"gray": 255, "full": 65535}
rng = np.random.default_rng(20251218)
failures = []


def fail(case, text):
    failures.append(f"{case}: {text}")


# ---- test data --------------------------------------------------------------------------

def sample(code, shape=SHAPE):
    dt = DTYPES[code]
    if code in (128, 2304):
        a = np.zeros(shape, dtype=dt)
        for name in dt.names:
            a[name] = rng.integers(0, 256, size=shape)
        a.reshape(-1)[0] = (255,) * len(dt.names)
        return a
    if np.issubdtype(dt, np.integer):
        info = np.iinfo(dt)
        a = rng.integers(info.min, info.max, size=shape, dtype=dt, endpoint=True)
        a.reshape(-1)[:4] = [info.min, info.max, 0, info.max // 2]
        return a
    a = (rng.standard_normal(shape) * 1000).astype(dt)
    a.reshape(-1)[:2] = [-4000.5, 4000.25]
    return a


def oblique():
    """A rotated, sheared and scaled affine."""
    a = np.eye(4)
    t = 0.3
    a[:3, :3] = [[np.cos(t) * 1.5, -np.sin(t), 0.2], [np.sin(t) * 1.5, np.cos(t), 0.0], [0.0, 0.1, 2.5]]
    a[:3, 3] = [-30.5, 12.25, 7.0]
    return a


def rotated(qfac):
    """A rotation (orthogonal, as a quaternion holds it) with voxel sizes and qfac."""
    t = 0.7
    r = np.array([[np.cos(t), 0, np.sin(t)], [0, 1, 0], [-np.sin(t), 0, np.cos(t)]])
    a = np.eye(4)
    a[:3, :3] = r @ np.diag([0.8, 1.2, 2.0 * qfac])
    a[:3, 3] = [5.0, -6.5, 40.0]
    return a


def save(data, name, code, order="<", pair=False, affine=None, sform=1, qform=1, cal=None):
    hdr = (nib.Nifti1Header if not pair else nib.nifti1.Nifti1PairHeader)(endianness=order)
    cls = nib.Nifti1Pair if pair else nib.Nifti1Image
    img = cls(data, np.diag([1.5, 2.0, 2.5, 1.0]) if affine is None else affine, hdr, dtype=DTYPES[code])
    img.header.set_sform(img.affine, code=sform)
    img.header.set_qform(img.affine, code=qform)
    if cal:
        img.header["cal_min"], img.header["cal_max"] = cal
    nib.save(img, name)


# ---- the conversion rules ---------------------------------------------------------------

def filtered(v, add, mul):
    w = v + add
    if mul >= 2:
        w = w * mul
    if mul < 0:
        m = -mul
        w = np.array([abs(int(x)) // m * (1 if x >= 0 else -1) for x in w.reshape(-1)], dtype=object).reshape(w.shape)
    return w


def expected(code, data, kind, add=0, mul=1, cal=(0.0, 0.0)):
    """What a voxel becomes in a field of the kind, as an int array (mono: 0 or 1)."""
    active = mul < 0 or mul > 1 or add != 0
    if code in (128, 2304):
        s = data["R"].astype(np.int64) + data["G"] + data["B"]
        if kind == "mono":
            return (s // 3 > 127).astype(np.int64)
        return s // 3 if kind == "gray" else s
    dt = np.dtype(DTYPES[code])
    if dt.kind == "f":
        x = data.astype(np.float64)
        if active:
            w = x + add
            if mul >= 2:
                w = w * mul
            if mul < 0:
                w = w / -mul
            return (w > 0).astype(np.int64) if kind == "mono" else np.rint(np.clip(w, 0, TOP[kind])).astype(np.int64)
        lo, hi = cal if cal[1] - cal[0] > 0 else (x.min(), x.max())
        if hi - lo <= 0:
            return np.zeros(x.shape, dtype=np.int64)
        if kind == "mono":
            return ((1 / (hi - lo)) * (x - lo) >= 0.5).astype(np.int64)
        return np.clip(np.rint(TOP[kind] / (hi - lo) * (x - lo)), 0, TOP[kind]).astype(np.int64)
    v = data.astype(object)
    bits = dt.itemsize * 8
    signed = dt.kind == "i"
    if kind == "mono":
        w = filtered(v, add, mul) if (signed or active) else v - (2 ** (bits - 1) - 1)
        return (w > 0).astype(np.int64)
    if active:
        return np.clip(filtered(v, add, mul), 0, TOP[kind]).astype(np.int64)
    biased = v + 2 ** (bits - 1) if signed else v
    keep = 8 if kind == "gray" else 16
    return (biased // 2 ** max(bits - keep, 0)).astype(np.int64)


def placement(name):
    """The matrix rows and offset that voxmill takes from a header, by nibabel's reading."""
    h = nib.load(name).header
    if h["sform_code"] > 0:
        a = h.get_sform()
    elif h["qform_code"] != 0:
        a = h.get_qform()
        # voxmill scales the third axis by qform_code where the format says qfac.
        qfac = h["pixdim"][0] if h["pixdim"][0] in (-1, 1) else 1
        a[:3, 2] *= h["qform_code"] / qfac
    else:
        a = np.diag(list(h["pixdim"][1:4]) + [1])
    return a[:3, :3].T, a[:3, 3]


# ---- generate ---------------------------------------------------------------------------

def cases():
    """(case name, input file, kind, filter, data, code, cal) for every load."""
    out = []

    def add(case, name, code, data, kinds=("mono", "gray", "full"), filt=None, cal=(0.0, 0.0), **kw):
        save(data, name, code, cal=cal if cal != (0.0, 0.0) else None, **kw)
        for kind in kinds:
            out.append(dict(case=f"{case}_{kind}", file=name, kind=kind, filter=filt, code=code, cal=cal,
                            data=data))

    for code in DTYPES:
        for order in "<>":
            end = "le" if order == "<" else "be"
            add(f"type{code}_{end}", f"t{code}_{end}.nii", code, sample(code), order=order)
    add("gz_be", "g_be.nii.gz", 4, sample(4), order=">")
    add("gz_float", "g_f.nii.gz", 16, sample(16))
    add("pair_le", "p_le.hdr", 512, sample(512), pair=True)
    add("pair_be", "p_be.img", 4, sample(4), order=">", pair=True)
    add("pairgz_be", "q_be.img.gz", 64, sample(64), order=">", pair=True)
    add("calibrated", "cal.nii", 16, sample(16), cal=(-500.0, 1500.0))
    add("filter_add_mul", "fa.nii", 4, sample(4), kinds=("full", "gray", "mono"), filt=(100, 2))
    add("filter_divide", "fd.nii", 4, sample(4), kinds=("full", "mono"), filt=(-7, -3))
    add("filter_float", "ff.nii", 64, sample(64), kinds=("gray", "mono"), filt=(250, -2))
    add("filter_unsigned", "fu.nii", 768, sample(768), kinds=("full", "mono"), filt=(5, 1))
    add("sform_only", "s.nii", 512, sample(512), kinds=("full",), affine=oblique(), sform=2, qform=0)
    add("qform_only", "q.nii", 512, sample(512), kinds=("full",), affine=rotated(1), sform=0, qform=1)
    add("deviation_qfac_ignored_qform_only", "qf.nii", 512, sample(512), kinds=("full",), affine=rotated(-1), sform=0, qform=1)
    add("deviation_qform_code_third_axis", "q2.nii", 512, sample(512), kinds=("full",), affine=rotated(1), sform=0,
        qform=2)
    add("oblique_both", "o.nii.gz", 4, sample(4), kinds=("full",), affine=oblique(), sform=1, qform=1)
    series = sample(4, SHAPE + (4,))
    save(series, "series.nii", 4)
    out.append(dict(case="series_first_volume_full", file="series.nii", kind="full", filter=None, code=4,
                    cal=(0.0, 0.0), data=series[..., 0]))
    thin = sample(512, (1, 5, 3, 4))
    save(thin, "thin.nii", 512)
    out.append(dict(case="series_of_one_column_moves_down_full", file="thin.nii", kind="full", filter=None, code=512,
                    cal=(0.0, 0.0), data=thin[0]))
    return out


def writes():
    """Macro lines that give a loaded volume an oblique place and save it in every form."""
    lines, listed = [], []
    rows = oblique()[:3, :3].T
    offset = oblique()[:3, 3]
    for kind in ("full", "gray"):
        lines += ["scalar." + KINDS[kind], "scalar.use w" + kind, 'scalar.load "t512_le.nii"',
                  "scalar.matrix " + " ".join("<" + ", ".join(repr(float(x)) for x in r) + ">" for r in rows),
                  "scalar.offset <" + ", ".join(repr(float(x)) for x in offset) + ">"]
        for ext in ("nii", "nii.gz", "hdr"):
            name = f"out/w_{kind}.{ext}"
            lines.append(f'scalar.save "{name}"')
            listed.append(dict(case=f"written_{kind}_{ext}", file=name, source="t512_le.nii", kind=kind,
                               rows=rows.tolist(), offset=offset.tolist()))
    with open("written.json", "w") as f:
        json.dump(listed, f)
    return lines


def generate(folder):
    os.makedirs(os.path.join(folder, "out"), exist_ok=True)
    os.chdir(folder)
    macro = ["debug.no"]
    manifest = []
    for i, c in enumerate(cases()):
        out = f"out/{c['case']}.nii"
        macro.append("scalar." + KINDS[c["kind"]])
        macro.append("scalar.use f" + str(i))
        macro.append("scalar.load.filter " + (" ".join(map(str, c["filter"])) if c["filter"] else ""))
        macro.append(f'scalar.load "{c["file"]}"')
        macro.append("m := scalar.matrix")
        macro.append("o := scalar.offset")
        macro.append(f'print "CASE {c["case"]}|" m "|" o')
        macro.append(f'scalar.save "{out}"')
        np.save(f"out/{c['case']}.expected.npy",
                expected(c["code"], c["data"], c["kind"], *(c["filter"] or (0, 1)), cal=c["cal"]))
        manifest.append(dict(case=c["case"], file=c["file"], kind=c["kind"], out=out))
    macro += writes()
    with open("run.macro", "w") as f:
        f.write("\n".join(macro) + "\n")
    with open("manifest.json", "w") as f:
        json.dump(manifest, f)


# ---- check ------------------------------------------------------------------------------

NUMBER = r"-?[0-9.]+(?:[eE][-+]?[0-9]+)?"


def parse(console):
    placed = {}
    for line in console.splitlines():
        if line.startswith("CASE "):
            case, m, o = line[5:].split("|")
            placed[case] = (np.array(re.findall(NUMBER, m), dtype=float).reshape(3, 3),
                            np.array(re.findall(NUMBER, o), dtype=float))
    return placed


def ourvoxels(out, kind, shape):
    if kind != "mono":
        return np.asanyarray(nib.load(out).dataobj).astype(np.int64)
    raw = np.frombuffer(open(out, "rb").read()[352:], dtype=np.uint8)
    return np.unpackbits(raw, bitorder="little").astype(np.int64)


def check(folder):
    os.chdir(folder)
    placed = parse(open("console.txt", encoding="utf-8", errors="replace").read())
    for c in json.load(open("manifest.json")):
        case, want = c["case"], np.load(f"out/{c['case']}.expected.npy", allow_pickle=False)
        if not os.path.exists(c["out"]):
            fail(case, "voxmill wrote nothing")
            continue
        got = ourvoxels(c["out"], c["kind"], want.shape)
        if c["kind"] == "mono":
            # The mono payload is the packed store without its last partial byte.
            flat = want.reshape(-1, order="F")
            n = flat.size // 8 * 8
            if got.size != n or not np.array_equal(got, flat[:n]):
                bad = np.flatnonzero(got[:n] != flat[:len(got)][:n]) if got.size == n else []
                fail(case, f"mono voxels differ ({got.size} of {n} bits; first bad {list(bad[:3])})")
        elif got.shape != want.shape or not np.array_equal(got, want):
            where = np.argwhere(got != want)[:3] if got.shape == want.shape else "shape " + str(got.shape)
            fail(case, f"voxels differ at {where}")
        if case not in placed:
            fail(case, "no placement printed")
            continue
        rows, offset = placement(c["file"])
        m, o = placed[case]
        if not np.allclose(m, rows, atol=1e-5) or not np.allclose(o, offset, atol=1e-5):
            fail(case, f"placement {m.tolist()} + {o.tolist()}, nibabel {rows.tolist()} + {offset.tolist()}")
    return finish()


# ---- what voxmill wrote -----------------------------------------------------------------

def ourquaternion(rows):
    """The quaternion voxmill writes: from the diagonal's product, no voxel size divided out."""
    m = rows.reshape(-1)
    h = np.sqrt(abs(1 + m[0] * m[4] * m[8])) / 2
    if h == 0:
        return np.array([1.0, 0, 0])
    return np.array([(m[5] - m[7]) / 4 / h, (m[6] - m[2]) / 4 / h, (m[1] - m[3]) / 4 / h])


def written(folder):
    """DIR/written.json lists (file, source file, kind, matrix rows, offset) of voxmill's saves."""
    os.chdir(folder)
    for w in json.load(open("written.json")):
        case, name = w["case"], w["file"]
        try:
            img = nib.load(name)
        except Exception as e:  # noqa: BLE001 - any refusal is the finding
            fail(case, f"nibabel refuses the file: {e}")
            continue
        h = img.header
        source = np.asanyarray(nib.load(w["source"]).dataobj).astype(np.int64)
        want = source if w["kind"] == "full" else source >> 8
        got = np.asanyarray(img.dataobj).astype(np.int64)
        if got.shape != want.shape or not np.array_equal(got, want):
            fail(case, "voxels differ from the source")
        rows, offset = np.array(w["rows"]), np.array(w["offset"])
        affine = np.eye(4)
        affine[:3, :3], affine[:3, 3] = rows.T, offset
        if not np.allclose(h.get_sform(), affine, atol=1e-5):
            fail(case, f"sform {h.get_sform().tolist()}, expected {affine.tolist()}")
        if h["sform_code"] != 1 or h["qform_code"] != 1:
            fail(case, "sform_code and qform_code should be 1")
        if not np.allclose(img.affine, affine, atol=1e-5):
            fail(case, "nibabel's affine is not the sform")
        q = np.array([h["quatern_b"], h["quatern_c"], h["quatern_d"]], dtype=float)
        if not np.allclose(q, ourquaternion(rows), atol=1e-6):
            fail("deviation_written_quaternion_" + case, f"quaternion {q.tolist()}, rule {ourquaternion(rows).tolist()}")
        if not np.allclose(h["pixdim"][1:4], np.linalg.norm(rows, axis=1), atol=1e-6):
            fail(case, "pixdim is not the length of the matrix rows")
    return finish()


def finish():
    for f in failures:
        print("FAIL:", f)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    command, folder = sys.argv[1], sys.argv[2]
    if command == "generate":
        generate(folder)
        sys.exit(0)
    sys.exit({"check": check, "written": written}[command](folder))
