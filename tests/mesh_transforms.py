#!/usr/bin/python3
"""Mesh rotations, moves and smoothing of voxmill against scipy and plain geometry.

  mesh_transforms.py VOXMILL DIR

A noisy sphere written by numpy is turned, turned back, mirrored, laid flat and smoothed by a
macro. The printed rotations are checked against scipy.spatial.transform.Rotation (matrix,
quaternion and X-Y'-Z'' angles), the saved points against the printed matrix, and the
smoothing by the mean distance of the points to the true radius.
"""
import pathlib
import subprocess
import sys

import numpy as np
from scipy.spatial.transform import Rotation

RADIUS, NOISE = 10.0, 0.5
ANGLES = (25.0, -40.0, 70.0)
FROM, TO = (1.0, 2.0, -0.5), (-3.0, 0.5, 1.0)
PIVOT = (3.0, -2.0, 5.0)
fails = []


def check(ok, what):
    if not ok:
        fails.append(what)


def winding(points, faces):
    a, b, c = (points[faces[:, k]] for k in range(3))
    return np.einsum("ij,ij->i", np.cross(b - a, c - a), (a + b + c) / 3)


def sphere(n):
    """n points spread evenly on the unit sphere (a Fibonacci spiral), their hull's triangles outward."""
    from scipy.spatial import ConvexHull
    z = 1 - (2 * np.arange(n) + 1) / n
    t = np.arange(n) * np.pi * (3 - 5 ** 0.5)
    points = np.stack([np.sqrt(1 - z * z) * np.cos(t), np.sqrt(1 - z * z) * np.sin(t), z], -1)
    faces = ConvexHull(points).simplices
    inward = winding(points, faces) < 0
    faces[inward] = faces[inward][:, ::-1]
    return points, faces


def write_obj(path, points, faces):
    with open(path, "w") as out:
        out.writelines("v %.17g %.17g %.17g\n" % tuple(p) for p in points)
        out.writelines("f %d %d %d\n" % tuple(c + 1) for c in faces)


def read_obj(path):
    v, n, f = [], [], []
    for line in open(path):
        w = line.split()
        if w and w[0] in ("v", "vn"):
            (v if w[0] == "v" else n).append([float(x) for x in w[1:4]])
        elif w and w[0] == "f":
            f.append([int(x.split("/")[0]) - 1 for x in w[1:]])
    return np.array(v), np.array(n), np.array(f)


def rotation_blocks(console):
    """Each printed rotation: the axis line, angles, quaternion and 3x3 matrix (rows as printed)."""
    lines, blocks = console.splitlines(), []
    for i, line in enumerate(lines):
        if line.startswith("Rotate around "):
            nums = [[float(x) for x in lines[i + k].split(": ")[1].split()] for k in (1, 2, 3)]
            blocks.append((line, np.array(nums[0]), np.array(nums[1]), np.array(nums[2]).reshape(3, 3)))
    return blocks


def check_block(block, rotation, label):
    line, angles, quat, rows = block
    q = rotation.as_quat()
    q = q if q[3] >= 0 else -q
    check(np.allclose(quat, q, atol=2e-5), "%s: quaternion %s, scipy %s" % (label, quat, q))
    # The rows are the images of the unit axes: the transpose of scipy's matrix.
    check(np.allclose(rows, rotation.as_matrix().T, atol=2e-5), "%s: matrix %s" % (label, rows))
    back = Rotation.from_euler("XYZ", angles, degrees=True)
    check(np.allclose(back.as_matrix(), rotation.as_matrix(), atol=1e-4), "%s: X-Y'-Z'' angles %s" % (label, angles))
    return rows.T


def main(binary, d):
    rng = np.random.default_rng(7)
    unit, faces = sphere(2500)
    noisy = unit * (RADIUS + rng.normal(0, NOISE, len(unit)))[:, None]
    write_obj(d / "sphere.obj", noisy, faces)
    # A binary PLY with a NaN point: text readers would not carry it.
    nan = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0], [np.nan, 1, 1]], "<f4")
    head = ("ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
            "property float z\nelement face 2\nproperty list uchar int vertex_indices\nend_header\n")
    tri = b"".join(np.array([3], "u1").tobytes() + np.array(t, "<i4").tobytes() for t in ((0, 1, 2), (1, 3, 2)))
    (d / "nan.ply").write_bytes(head.encode() + nan.tobytes() + tri)
    a, b, c = ANGLES
    v = lambda t: "<%r, %r, %r>" % tuple(t)
    macro = f"""debug.no
mesh.load "sphere.obj"
mesh.rotate {v(ANGLES)}
mesh.save "turned.obj"
mesh.rotate <{-a}, 0, 0>
mesh.rotate <0, {-b}, 0>
mesh.rotate <0, 0, {-c}>
mesh.save "back.obj"
mesh.rotate.vector {v(FROM)} {v(TO)}
mesh.save "vector.obj"
mesh.set.pivot {v(PIVOT)}
mesh.rotate.pivot {v(ANGLES)}
mesh.save "pivot.obj"
mesh.clear
mesh.load "sphere.obj"
mesh.normal.recalc
mesh.mirror.x
mesh.save "mirror.obj"
mesh.face.flip
mesh.save "flip.obj"
mesh.normal.ortho
mesh.save "ortho.obj"
mesh.clear
mesh.load "sphere.obj"
mesh.smooth 2
mesh.save "smooth.obj"
mesh.clear
mesh.load "sphere.obj"
mesh.softsmooth 2
mesh.save "softsmooth.obj"
mesh.clear
mesh.load "sphere.obj"
mesh.hardsmooth 2
mesh.save "hardsmooth.obj"
mesh.clear
mesh.load "sphere.obj"
mesh.scale <3, 2, 1>
mesh.rotate <30, 40, 50>
mesh.translate <5, 6, 7>
mesh.save "tilted.obj"
mesh.adjust 2
mesh.save "adjust.obj"
mesh.clear
mesh.load "tilted.obj"
mesh.optimal 1
mesh.save "optimal.obj"
mesh.clear
mesh.load "tilted.obj"
mesh.reduce 3
mesh.save "reduce.obj"
mesh.clear
mesh.load "tilted.obj"
mesh.enhance 0.1
mesh.save "enhance.obj"
mesh.clear
mesh.load "nan.ply"
mesh.smooth 3
mesh.rotate.vector <0, 0, 0> <1, 0, 0>
mesh.3point <0, 0, 0> <1, 1, 1> <2, 2, 2>
mesh.adjust 2
mesh.optimal 1
mesh.set.pivot.center
mesh.set.pivot.gravity
mesh.normal.recalc
mesh.rotate.pivot <0, 90, 0>
mesh.scale <2, 0, 1>
print "done"
"""
    (d / "run.macro").write_text(macro)
    run = subprocess.run([binary, "-strict", "-macro=run.macro"], cwd=d, capture_output=True, text=True, timeout=300)
    console = run.stdout
    check(run.returncode == 0 and "\ndone" in console, "macro failed: %s %s" % (run.returncode, console[-500:]))
    check("Three points on one line" in console, "degenerate three points not told")
    blocks = rotation_blocks(console)
    check(len(blocks) == 8, "%d rotations printed, 8 expected" % len(blocks))
    if fails:
        return
    original = read_obj(d / "sphere.obj")[0]
    # The angle rotation: printed angles are the given ones, all agrees with scipy and the points.
    rx = Rotation.from_euler("XYZ", ANGLES, degrees=True)
    m = check_block(blocks[0], rx, "rotate")
    check(np.allclose(blocks[0][1], ANGLES, atol=1e-5), "angles printed %s" % blocks[0][1])
    check(blocks[0][0] == "Rotate around x, y & z", "axis text %r" % blocks[0][0])
    check(np.allclose(read_obj(d / "turned.obj")[0], original @ m.T, atol=1e-6 * RADIUS * 100), "turned points")
    check(np.allclose(read_obj(d / "turned.obj")[0], rx.apply(original), atol=1e-9), "turned points vs scipy")
    check([blk[0] for blk in blocks[1:4]] == ["Rotate around x with angle %.5f" % -a, "Rotate around y with angle %.5f" % -b,
                                              "Rotate around z with angle %.5f" % -c], "one-axis texts")
    check(np.allclose(read_obj(d / "back.obj")[0], original, atol=1e-9), "rotation and its inverse restore the points")
    # The vector rotation takes FROM's direction to TO's.
    f, t = np.array(FROM), np.array(TO)
    axis = np.cross(f, t)
    angle = np.arccos(f @ t / np.linalg.norm(f) / np.linalg.norm(t))
    rv = Rotation.from_rotvec(axis / np.linalg.norm(axis) * angle)
    m = check_block(blocks[4], rv, "rotate.vector")
    check(np.allclose(m @ (f / np.linalg.norm(f)), t / np.linalg.norm(t), atol=1e-5), "rotate.vector maps from to to")
    check(np.allclose(read_obj(d / "vector.obj")[0], rv.apply(original), atol=1e-9), "vector-turned points")
    # The pivot form: p -> c + R (p - c), so the pivot stays.
    m = check_block(blocks[5], rx, "rotate.pivot")
    c0 = np.array(PIVOT)
    check(f"Pivot: {PIVOT[0]:.5f} {PIVOT[1]:.5f} {PIVOT[2]:.5f}" in console, "pivot line")
    check(np.allclose(read_obj(d / "pivot.obj")[0], c0 + rx.apply(rv.apply(original) - c0), atol=1e-9), "pivot-turned points")
    # Mirror: faces as they were, stored normals still outward, the corner order now inward.
    mp, mn, mf = read_obj(d / "mirror.obj")
    check(np.array_equal(mf, faces), "mirror keeps the faces")
    check(len(mn) == len(mp) and np.all(np.einsum("ij,ij->i", mn, mp) > 0), "mirrored normals point outward")
    check(np.all(winding(mp, mf) < 0) and np.all(winding(noisy, faces) > 0), "mirror turns the corner order inward")
    fp, _, ff = read_obj(d / "flip.obj")
    check(np.all(winding(fp, ff) > 0), "face.flip turns it outward again")
    # The flipped faces give the mirrored normals again, each turned to its nearest axis.
    axes = np.eye(3)[np.argmax(np.abs(mn), 1)] * np.sign(mn)
    check(np.array_equal(read_obj(d / "ortho.obj")[1], axes), "orthonormals are the nearest axes")
    # Smoothing: the points come nearer to the true sphere.
    noise = np.mean(np.abs(np.linalg.norm(noisy, axis=1) - RADIUS))
    for name in ("softsmooth", "smooth", "hardsmooth"):
        after = np.mean(np.abs(np.linalg.norm(read_obj(d / (name + ".obj"))[0], axis=1) - RADIUS))
        check(after < 0.6 * noise, "%s: mean distance to the sphere %.4f from %.4f" % (name, after, noise))
    # Adjust and its principal-axes form lay the tilted ellipsoid back: centred, its axes on
    # x, y, z from the longest to the shortest.
    for name in ("adjust", "optimal", "reduce", "enhance"):
        p = read_obj(d / (name + ".obj"))[0]
        w, e = np.linalg.eigh(np.cov(p.T))
        check(np.allclose(p.mean(0), 0, atol=1e-6), "%s: centred, mean %s" % (name, p.mean(0)))
        check(np.all(np.abs(e[[2, 1, 0], [0, 1, 2]]) > 0.999), "%s: axes %s" % (name, e))


if __name__ == "__main__":
    main(sys.argv[1], pathlib.Path(sys.argv[2]))
    for f in fails:
        print("FAIL:", f)
    sys.exit(1 if fails else 0)
