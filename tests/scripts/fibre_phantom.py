"""A synthetic fibre volume with known axes: straight tubes along x and y, two oblique
ones, a curved one (a quarter-free circle) and one along z, with a bright core and
Gaussian noise on a background of 0.

  fibre_phantom.py make N out.nii [seed]     writes the volume (uint8, identity affine)
  fibre_phantom.py score N field.nii.gz       angular errors of a voxmill vector field
  fibre_phantom.py skimage N                  the same for the structure tensor

Scores print one line per group: tubes used for the check (x, y, oblique, curved) and
the tube along z, which the direction lattice cannot represent well.
"""
import sys
import time

import numpy as np

RADIUS = 4.5
SLOPE = 10.0
NOISE = 1.5
POWER = 2.0


def tubes(n):
    s = n / 64.0
    c = np.array
    return [
        ("x", "line", c([0, 12, 12]) * s, c([1.0, 0, 0])),
        ("y", "line", c([52, 0, 28]) * s, c([0, 1.0, 0])),
        ("xy", "line", c([20, 0, 44]) * s, c([1.0, 1.0, 0]) / np.sqrt(2)),
        ("xz", "line", c([0, 52, 0]) * s, c([1.0, 0, 1.0]) / np.sqrt(2)),
        ("curve", "circle", c([-40, -40, 56]) * s, 96 * s),
        ("z", "line", c([40, 36, 0]) * s, c([0, 0, 1.0])),
    ]


def geometry(n):
    """Distance to each tube's axis and the axis direction there, per voxel (0-based x, y, z)."""
    g = np.stack(np.meshgrid(*[np.arange(n, dtype=float) + 1] * 3, indexing="ij"), -1)
    dists, axes, names = [], [], []
    for name, kind, p, a in tubes(n):
        if kind == "line":
            rel = g - p
            along = rel @ a
            d = np.linalg.norm(rel - along[..., None] * a, axis=-1)
            axis = np.broadcast_to(a, g.shape)
        else:  # circle in the plane z = p[2], centre (p[0], p[1]), radius a
            rx, ry = g[..., 0] - p[0], g[..., 1] - p[1]
            rho = np.hypot(rx, ry)
            d = np.hypot(g[..., 2] - p[2], rho - a)
            axis = np.stack([-ry, rx, np.zeros_like(rx)], -1) / np.maximum(rho, 1e-9)[..., None]
        dists.append(d)
        axes.append(axis)
        names.append(name)
    return np.stack(dists), np.stack(axes), names


def make(n, seed=7, slope=SLOPE, noise=NOISE):
    d, _, _ = geometry(n)
    near = d.min(0)
    rng = np.random.default_rng(seed)
    # A core that darkens linearly towards the wall: lines that tilt out of the axis cross it.
    v = 220 - slope * near ** POWER + rng.normal(0, noise, near.shape)
    v = np.where(near <= RADIUS, np.clip(v, 1, 255), 0)
    return v.astype(np.uint8)


def groups(n):
    """Voxels of exactly one tube (away from the others), by tube name, with their axes."""
    d, axes, names = geometry(n)
    inside = d <= RADIUS
    single = inside.sum(0) == 1
    apart = (d <= RADIUS + 3).sum(0) == 1
    out = {}
    for i, name in enumerate(names):
        m = inside[i] & single & apart
        out[name] = (m, axes[i][m])
    return out


def errors(vectors, n):
    """Angle in degrees between each vector and its tube axis (90 for no vector)."""
    res = {}
    for name, (m, axis) in groups(n).items():
        v = vectors[m]
        length = np.linalg.norm(v, axis=-1)
        cos = np.abs((v * axis).sum(-1)) / np.maximum(length, 1e-300)
        res[name] = np.where(length > 0, np.degrees(np.arccos(np.clip(cos, 0, 1))), 90.0)
    return res


def report(label, res):
    checked = np.concatenate([res[k] for k in ("x", "y", "xy", "xz", "curve")])
    print(f"{label} tubes: within10={np.mean(checked <= 10):.4f} mean={checked.mean():.2f} voxels={checked.size}")
    z = res["z"]
    print(f"{label} ztube: within10={np.mean(z <= 10):.4f} mean={z.mean():.2f} median={np.median(z):.2f}")


def structure_tensor_axes(vol, sigma=1.0, rho=2.0):
    from skimage.feature import structure_tensor, structure_tensor_eigenvalues
    start = time.perf_counter()
    from scipy.ndimage import gaussian_filter
    smooth = gaussian_filter(vol.astype(float), sigma)
    a = structure_tensor(smooth, sigma=rho, order="rc")
    structure_tensor_eigenvalues(a)
    t = np.stack([np.stack([a[0], a[1], a[2]], -1), np.stack([a[1], a[3], a[4]], -1),
                  np.stack([a[2], a[4], a[5]], -1)], -2)
    _, vecs = np.linalg.eigh(t)
    axes = vecs[..., :, 0]  # the direction of least change
    return axes, time.perf_counter() - start


def main():
    cmd, n = sys.argv[1], int(sys.argv[2])
    if cmd == "make":
        import nibabel as nib
        nib.Nifti1Image(make(n, int(sys.argv[4]) if len(sys.argv) > 4 else 7), np.eye(4)).to_filename(sys.argv[3])
    elif cmd == "score":
        import nibabel as nib
        img = nib.load(sys.argv[3])
        v = np.asarray(img.dataobj, dtype=float).reshape(n, n, n, 3)
        report(sys.argv[4] if len(sys.argv) > 4 else "voxmill", errors(v, n))
    elif cmd == "skimage":
        vol = make(n)
        axes, seconds = structure_tensor_axes(vol)
        axes[vol == 0] = 0
        report("skimage", errors(axes, n))
        print(f"skimage seconds={seconds:.3f}")


if __name__ == "__main__":
    main()
