#!/usr/bin/python3
"""Tensor fields of a 128^3 fibre phantom: scalar.connection and the eigen-decomposition.

  connection_bench.py VOXMILL

voxmill: scalar.connection r for r = 4, 8 with methods 2 (7 fixed directions) and 5 (128
random directions) on thread.max 1 and 2, as the difference of a run that loads and scans and
one that only loads, with the CPU seconds beside it (a busy machine changes the wall time
much more). Object voxels per second are given. The eigen-decomposition: tensor.eigenvalues
and tensor.measure.fa (each three times in a run) on 128^3 random positive definite tensors
from a tensor file, against numpy.linalg.eigh plus the FA formula on the same tensors in
this process.
"""
import os
import sys
import tempfile
import time

import nibabel as nib
import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "scripts"))
import fibre_phantom as fp  # noqa: E402
from benchlib import extra  # noqa: E402

N = 128


def main():
    binary = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        vol = fp.make(N)
        nib.Nifti1Image(vol, np.eye(4)).to_filename(os.path.join(folder, "phantom.nii"))
        objects = int((vol >= 1).sum())
        print(f"phantom {N}^3, {objects} object voxels; {os.cpu_count()} cores (shared with other work)")
        for method in (2, 5):
            for r in (4, 8):
                for threads in (1, 2):
                    setup = ["scalar.8bit", 'scalar.load "phantom.nii"', f"thread.max := {threads}",
                             f"scalar.connection.method {method}"]
                    wall, cpu = extra(binary, folder, setup, [f"scalar.connection {r}"])
                    print(f"  scalar.connection {r}, method {method}, {threads} thread(s): {wall:7.2f} s wall "
                          f"({cpu:7.2f} s CPU), {objects / wall / 1e3:8.1f} k object voxels/s")
        # Dense tensors for the solver: random positive definite ones in every voxel, since
        # the scan's background tensors are zero and cost nothing.
        rng = np.random.default_rng(1)
        g = rng.normal(size=(N, N, N, 3, 3))
        m = g @ np.swapaxes(g, -1, -2) + 0.1 * np.eye(3)
        six = np.stack([m[..., 0, 0], m[..., 0, 1], m[..., 0, 2], m[..., 1, 1], m[..., 1, 2], m[..., 2, 2]], -1)
        img = nib.Nifti1Image(six[:, :, :, None, :], np.eye(4))
        img.header.set_intent("symmetric matrix", (3,))
        img.to_filename(os.path.join(folder, "t.nii"))
        setup = ['tensor.load "t.nii"', "thread.max := 1", "scalar.16bit", "scalar.new"]
        ours_ev, cpu_ev = extra(binary, folder, setup, ["tensor.eigenvalues"] * 3)
        ours_fa, cpu_fa = extra(binary, folder, setup, ["tensor.measure.fa"] * 3)
        ours_ev, ours_fa, cpu_ev, cpu_fa = ours_ev / 3, ours_fa / 3, cpu_ev / 3, cpu_fa / 3
        flat = m.reshape(-1, 3, 3)
        peer = peer_cpu = float("inf")
        for _ in range(2):
            start, start_cpu = time.perf_counter(), time.process_time()
            w = np.linalg.eigh(flat)[0]
            norm = np.linalg.norm(w, axis=1)
            np.sqrt(1.5) * np.linalg.norm(w - w.mean(1, keepdims=True), axis=1) / np.where(norm > 0, norm, 1)
            peer = min(peer, time.perf_counter() - start)
            peer_cpu = min(peer_cpu, time.process_time() - start_cpu)
        voxels = N ** 3
        print(f"  {voxels} dense tensors, 1 thread: tensor.eigenvalues {voxels / ours_ev / 1e6:6.2f} Mvoxel/s, "
              f"tensor.measure.fa {voxels / ours_fa / 1e6:6.2f} Mvoxel/s; numpy eigh + FA {voxels / peer / 1e6:6.2f} "
              f"Mvoxel/s; ratio (numpy time / ours, FA) {peer / ours_fa:5.2f}")
        print(f"  the same by CPU seconds: tensor.eigenvalues {voxels / cpu_ev / 1e6:6.2f} Mvoxel/s, tensor.measure.fa "
              f"{voxels / cpu_fa / 1e6:6.2f} Mvoxel/s; numpy eigh + FA {voxels / peer_cpu / 1e6:6.2f} Mvoxel/s; "
              f"ratio {peer_cpu / cpu_fa:5.2f}")


if __name__ == "__main__":
    main()
