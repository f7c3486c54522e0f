#!/usr/bin/python3
"""Sample data for the demo job: a noisy 16-bit volume with two spheres of different
brightness in 0.5 mm voxels (NIfTI), and a fibre volume of two straight tubes with a bright
core, one along x and one along the diagonal (1, 1, 0) (8-bit NIfTI).

  make_sample.py FOLDER
"""
import os
import sys

import nibabel as nib
import numpy as np


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


def fibres(rng):
    """Two tubes with a bright core that do not touch: one along x, one along the
    diagonal (1, 1, 0) of the lower half."""
    x, y, z = np.mgrid[0:48, 0:48, 0:48].astype(np.float32)
    straight = np.hypot(y - 24, z - 34)
    diagonal = np.hypot((x - y) / np.sqrt(2), z - 12)
    near = np.minimum(straight, diagonal)
    v = 220 - 10 * near ** 2 + rng.normal(0, 1.5, near.shape)
    return nib.Nifti1Image(np.where(near <= 4.5, np.clip(v, 1, 255), 0).astype(np.uint8), np.eye(4))


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    rng = np.random.default_rng(7)
    nib.save(phantom(rng), os.path.join(folder, "phantom.nii.gz"))
    nib.save(fibres(rng), os.path.join(folder, "fibres.nii.gz"))


if __name__ == "__main__":
    main()
