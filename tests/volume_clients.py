#!/usr/bin/python3
"""Volume files of devices and other software, made here and loaded by voxmill.

  volume_clients.py generate DIR   the files (VTK by vtk's own legacy writer, the device
                                   formats byte by byte from their published field lists,
                                   Amira's packed blocks by an encoder here) and DIR/run.macro
                                   that loads each into voxmill and saves it as NIfTI
  volume_clients.py check DIR      voxmill's NIfTI files read by nibabel: voxels against the
                                   conversion computed here with numpy, affine against the header

Prints one line per failure and exits 1 when there was any.
"""
import json
import os
import sys
import zlib

import nibabel as nib
import numpy as np

SHAPE = (3, 4, 5)  # z, y, x: the files hold x fastest
rng = np.random.default_rng(20261124)
cases = {}  # name -> (load line, bits, expected voxels in z, y, x order, expected affine)


def case(name, load, bits, expected, offset=(0, 0, 0), scale=(1, 1, 1), rows=None):
    affine = np.eye(4)
    affine[:3, :3] = np.diag(scale) if rows is None else np.array(rows).T
    affine[:3, 3] = offset
    cases[name] = (load, bits, expected, affine)


def put(d, name, data, mode="wb"):
    with open(os.path.join(d, name), mode) as f:
        f.write(data)


def words(dtype):
    info = np.iinfo(dtype)
    a = rng.integers(info.min, info.max, size=SHAPE, dtype=dtype, endpoint=True)
    a.reshape(-1)[:3] = [info.min, info.max, 0]
    return a


def top(a, bits):
    """The top byte of unsigned voxels, signed ones moved to start at 0."""
    u = a.astype(np.int64) - (np.iinfo(a.dtype).min if a.dtype.kind == "i" else 0)
    return (u.astype(np.uint64) >> np.uint64(bits - 8)).astype(np.int64)


def rle(data):
    """Byte runs: a count below 128 repeats the next byte, 128 + n starts n literal bytes."""
    out, i = bytearray(), 0
    while i < len(data):
        j = i
        while j < len(data) and j - i < 127 and data[j] == data[i]:
            j += 1
        if j - i >= 3:
            out += bytes([j - i, data[i]])
            i = j
            continue
        j = i + 1
        while j < len(data) and j - i < 127 and not (j + 2 < len(data) and data[j] == data[j + 1] == data[j + 2]):
            j += 1
        out += bytes([128 + j - i]) + data[i:j]
        i = j
    return bytes(out)


def amira(d, name, word, body, packing="", order="BINARY-LITTLE-ENDIAN", box=(2, 4.5, -1, 3, 0, 6)):
    z, y, x = SHAPE
    suffix = f"({packing},{len(body)})" if packing else ""
    head = (f"# AmiraMesh {order} 2.1\n\ndefine Lattice {x} {y} {z}\n\nParameters {{\n"
            f"    BoundingBox {' '.join(map(str, box))},\n    CoordType \"uniform\"\n}}\n\n"
            f"Lattice {{ {word} Data }} @1{suffix}\n\n# Data section follows\n@1\n")
    put(d, name, head.encode() + body)
    lo = box[0::2]
    return lo, [(box[2 * a + 1] - box[2 * a]) / (x, y, z)[a] for a in range(3)]


def generate(d):
    z, y, x = SHAPE
    # MIF: the voxels are read as 64-bit words whatever the header says.
    q = words(np.uint64)
    put(d, "m.mif", f"SIZEX={x}\nSIZEY={y}\nSIZEZ={z}\nBITSALLOCATED=64\n".encode())
    put(d, "m.mdf", q.astype("<u8").tobytes())
    case("mif", 'scalar.load "m.mif"', 8, top(q, 64))
    # MIFX: int16 is the unsigned 16-bit code; origin and axis vectors place the field.
    w = words(np.uint16)
    rows = [(0.5, 0.1, 0), (0, 2, 0), (0.2, 0, 3)]
    put(d, "mx.mifx", ("<MIFX>\n<Origin><-3, 4.5, 7></Origin>\n" + "".join(
        f"<NumberOf{a}Voxels>{n}</NumberOf{a}Voxels>\n" for a, n in zip("XYZ", (x, y, z))) + "".join(
        f"<{a}Vector><{r[0]}, {r[1]}, {r[2]}></{a}Vector>\n" for a, r in zip("XYZ", rows)) +
        "<BinaryType>int16</BinaryType>\n</MIFX>\n").encode())
    put(d, "mx.raw", w.astype("<u2").tobytes())
    case("mifx_full", 'scalar.load "mx.mifx"', 16, w, (-3, 4.5, 7), rows=rows)
    # PCR with VOL data, format 5: 16-bit words; volume sizes after ROI sizes win.
    p = words(np.uint16)
    put(d, "p.pcr", (f"[VolumeData]\nROI_SizeX=1\nROI_OffX=10\nROI_OffY=-2\nROI_OffZ=0.5\nVolume_SizeX={x}\n"
                     f"Volume_SizeY={y}\nVolume_SizeZ={z}\nVoxelSizeRec=0.25\nFormat=5\n").encode())
    put(d, "p.vol", p.astype("<u2").tobytes())
    case("pcr", 'scalar.load.pcr "p.pcr"', 8, top(p, 16), (10, -2, 0.5), (0.25, 0.25, 0.25))
    case("pcr_full", 'scalar.load "p.pcr"', 16, p, (10, -2, 0.5), (0.25, 0.25, 0.25))
    # XML clip: one line of reals a slice, stored as twice the value within 0..255.
    c = rng.uniform(-10, 140, size=SHAPE)
    c = np.array([float(f"{v:.6f}") for v in c.reshape(-1)]).reshape(SHAPE)
    slices = "".join("<cells>" + " ".join(f"{v:.6f}" for v in c[k].reshape(-1)) + "</cells>\n" for k in range(z))
    put(d, "c.xml", ("<clip>\n<data>\n<begin begin=\"4\"/>\n<frequency frequency=\"2\"/>\n"
                     f"<count count=\"{z}\"/>\n<cell_count>{x} {y}</cell_count>\n<cell_size>0.5 0</cell_size>\n"
                     f"<cell_begin>1 2</cell_begin>\n{slices}<\\data>\n<\\clip>\n").encode())
    xml = np.clip(np.rint(2 * c), 0, 255).astype(np.int64)
    case("xml", 'scalar.load.xml "c.xml"', 8, xml, (1, 2, 4), (0.5, 1, 0.5))
    case("xml_mono", 'scalar.load.xml "c.xml"', 1, (xml > 0).astype(np.int64), (1, 2, 4), (0.5, 1, 0.5))
    # Amira: plain little- and big-endian words, byte runs and zlib.
    a = words(np.uint16)
    lo, sc = amira(d, "a.am", "ushort", a.astype("<u2").tobytes())
    case("amira_full", 'scalar.load "a.am"', 16, a, lo, sc)
    s = words(np.int16)
    lo, sc = amira(d, "b.am", "short", s.astype(">i2").tobytes(), order="3D BINARY")
    case("amira_big", 'scalar.load.amira "b.am"', 8, top(s, 16), lo, sc)
    b = words(np.uint8)
    b.reshape(-1)[10:40] = 77  # a long run
    lo, sc = amira(d, "r.am", "byte", rle(b.tobytes()), "HxByteRLE")
    case("amira_rle", 'scalar.load "r.am"', 8, b.astype(np.int64), lo, sc)
    case("amira_rle_mono", 'scalar.load "r.am"', 1, (b > 127).astype(np.int64), lo, sc)
    lo, sc = amira(d, "z.am", "ushort", zlib.compress(a.astype("<u2").tobytes()), "HxZip")
    case("amira_zip", 'scalar.load "z.am"', 16, a, lo, sc)
    case("amira_zip_gray", 'scalar.load "z.am"', 8, top(a, 16), lo, sc)
    # VGL: the project names a data file beside it.
    v = words(np.int16)
    p = "/".join(["Project", "vgl", "object", "SampleGrid", "objectlink", "object", "ImportSettings", "objectlink",
                  "object", "FileIOList", "objectlink", "object"])
    tags = {"FileGridHint/objectlink/object/GridSize/vector4": f"{x} {y} {z} 1",
            "FileGridHint/objectlink/object/Origin/vector3": "-1 -2 -3",
            "FileGridHint/objectlink/object/SampleDataType/typeinfo": "int16",
            "FileGridHint/objectlink/object/SamplingDistance/vector3": "0.5 0.5 2",
            "FileName/string": "g_data.raw"}
    put(d, "g.vgl", ("<?xml version=\"1.0\"?>\n<!-- project -->\n" + "".join(xmlpath(p + "/" + k, t)
                     for k, t in tags.items())).encode())
    put(d, "g_data.raw", v.astype("<i2").tobytes())
    case("vgl", 'scalar.load "g.vgl"', 8, top(v, 16), (-1, -2, -3), (0.5, 0.5, 2))
    # ARF: big-endian sizes at 0x51, 0x59, 0x5D, frames of big-endian words at the end.
    f = words(np.uint16)
    head = bytearray(0x600)
    for at, n in ((0x51, x), (0x59, y), (0x5D, z)):
        head[at:at + 4] = n.to_bytes(4, "big")
    put(d, "f.arf", bytes(head) + f.astype(">u2").tobytes())
    case("arf_full", 'scalar.load.arf "f.arf"', 16, f)
    # Raw: header bytes passed over.
    r = words(np.int16)
    put(d, "w.bin", bytes(100) + r.astype("<i2").tobytes())
    case("raw", f'scalar.load.raw "w.bin" 100 "signword" <{x}, {y}, {z}>', 8, top(r, 16))
    vtkfile(d)
    with open(os.path.join(d, "run.macro"), "w") as m:
        m.write("debug.no\n")
        for name, (load, bits, _, _) in cases.items():
            m.write(f"scalar.{bits}bit\n{load}\nscalar.save \"out/{name}.{'hdr' if bits == 1 else 'nii'}\"\n")
    os.makedirs(os.path.join(d, "out"), exist_ok=True)
    json.dump({k: (v[1], v[2].tolist(), v[3].tolist()) for k, v in cases.items()}, open(os.path.join(d, "cases.json"), "w"))


def xmlpath(path, text):
    """The elements of a path, properties by name and objects without class, around text."""
    parts = path.split("/")
    opening, closing = "", ""
    for i, part in enumerate(parts):
        word = "property" if i > 0 and parts[i - 1] == "object" else part
        opening += f'<property name="{part}">' if word == "property" else f"<{part}>"
        closing = ("</property>" if word == "property" else f"</{part}>") + closing
    return opening + text + closing + "\n"


def vtkfile(d):
    """Structured points of float scalars by vtk's legacy writer; the lower half is zero, so
    that equal lines follow one another."""
    import vtk
    from vtk.util import numpy_support
    z, y, x = 8, 6, 9
    values = rng.uniform(-20, 300, size=(z, y, x)).astype(np.float32)
    values[: z // 2] = 0
    image = vtk.vtkImageData()
    image.SetDimensions(x, y, z)
    image.SetSpacing(0.5, 1.5, 2.0)
    image.SetOrigin(-4, 3, 1.25)
    array = numpy_support.numpy_to_vtk(values.reshape(-1), deep=True)
    array.SetName("density")
    image.GetPointData().SetScalars(array)
    writer = vtk.vtkStructuredPointsWriter()
    writer.SetFileName(os.path.join(d, "s.vtk"))
    writer.SetInputData(image)
    writer.SetFileTypeToASCII()
    writer.Write()
    stored = np.clip(np.rint(values.astype(np.float64)), 0, 255).astype(np.int64)
    affine = np.diag([0.5, 1.5, 2.0, 1.0])
    affine[:3, 3] = (-4, 3, 1.25)
    cases["vtk"] = ('scalar.load "s.vtk"', 8, stored, affine)
    cases["vtk_mono"] = ('scalar.load "s.vtk"', 1, (values > 0).astype(np.int64), affine)


def check(d):
    failures = []
    for name, (bits, expected, affine) in json.load(open(os.path.join(d, "cases.json"))).items():
        path = os.path.join(d, "out", name + (".hdr" if bits == 1 else ".nii"))
        if not os.path.exists(path):
            failures.append(f"{name}: voxmill wrote no file")
            continue
        img = nib.load(path)
        got = np.asarray(img.dataobj).transpose(2, 1, 0).astype(np.int64)
        want = np.array(expected)
        if bits == 1:  # a mono .img holds the packed bits, x fastest, first bit lowest
            packed = np.fromfile(path[:-4] + ".img", np.uint8)[: (want.size + 7) // 8]
            got = np.unpackbits(packed, bitorder="little")[: want.size].reshape(want.shape).astype(np.int64)
        if got.shape != want.shape:
            failures.append(f"{name}: shape {got.shape}, expected {want.shape}")
        elif not np.array_equal(got, want):
            bad = np.argwhere(got != want)[0]
            failures.append(f"{name}: voxel z,y,x={tuple(bad)} is {got[tuple(bad)]}, expected {want[tuple(bad)]}")
        if not np.allclose(img.affine, np.array(affine), atol=1e-5):
            failures.append(f"{name}: affine\n{img.affine}\nexpected\n{np.array(affine)}")
    for line in failures:
        print(line)
    return 1 if failures else 0


if __name__ == "__main__":
    if sys.argv[1] == "generate":
        generate(sys.argv[2])
    else:
        sys.exit(check(sys.argv[2]))
