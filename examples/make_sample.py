#!/usr/bin/python3
"""Sample data for the demo job: a noisy 16-bit volume with two spheres of different
brightness in 0.5 mm voxels (NIfTI), a colour image of three overlapping discs (PPM), and
a fibre volume: a straight and a curved tube with a bright core (8-bit NIfTI).

  make_sample.py FOLDER
"""
import os
import sys

import nibabel as nib
import numpy as np
from PIL import Image


def phantom(rng):
    z, y, x = np.mgrid[0:64, 0:96, 0:96].astype(np.float32)
    v = np.full(x.shape, 200.0, np.float32)
    v[(x - 32) ** 2 + (y - 48) ** 2 + (z - 32) ** 2 < 14 ** 2] = 1000
    v[(x - 66) ** 2 + (y - 48) ** 2 + (z - 32) ** 2 < 10 ** 2] = 1800
    v += rng.normal(0, 80, v.shape).astype(np.float32)
    # nibabel's arrays are indexed x, y, z.
    data = np.clip(v, 0, 4095).astype(np.uint16).transpose(2, 1, 0)
    affine = np.diag([0.5, 0.5, 0.5, 1.0])
    affine[:3, 3] = [-24, -24, -16]
    return nib.Nifti1Image(data, affine, dtype=np.uint16)


def discs(rng):
    y, x = np.mgrid[0:120, 0:160]
    rgb = np.zeros((120, 160, 3), np.float32) + 30
    for channel, (cx, cy) in enumerate([(60, 50), (100, 50), (80, 80)]):
        rgb[..., channel] += 180 * (((x - cx) ** 2 + (y - cy) ** 2) < 35 ** 2)
    rgb += rng.normal(0, 12, rgb.shape)
    return Image.fromarray(np.clip(rgb, 0, 255).astype(np.uint8), "RGB")


def fibres(rng):
    x, y, z = np.mgrid[0:48, 0:48, 0:48].astype(np.float32)
    straight = np.hypot(y - 14, z - 24)
    curved = np.hypot(np.hypot(x + 8, y + 8) - 52, z - 20)
    near = np.minimum(straight, curved)
    v = 220 - 10 * near ** 2 + rng.normal(0, 1.5, near.shape)
    return nib.Nifti1Image(np.where(near <= 4.5, np.clip(v, 1, 255), 0).astype(np.uint8), np.eye(4))


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    rng = np.random.default_rng(7)
    nib.save(phantom(rng), os.path.join(folder, "phantom.nii.gz"))
    discs(rng).save(os.path.join(folder, "discs.ppm"))
    nib.save(fibres(rng), os.path.join(folder, "fibres.nii.gz"))


if __name__ == "__main__":
    main()
