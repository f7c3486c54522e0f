"""Streamlines per second and points per second of voxmill, dipy and tckgen FACT on the same
field and seeds, and the TrackVis save of voxmill and nibabel; see stream_bench.sh."""
import os
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time
import warnings

import nibabel as nib
import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "scripts"))
import benchlib  # noqa: E402
import fibre_phantom as fp  # noqa: E402

N = 128
RANDOM = 100000
DIPY_SEEDS = 5000


def field(folder):
    d, axes, _ = fp.geometry(N)
    near = d.argmin(0)
    inside = d.min(0) <= fp.RADIUS
    v = np.take_along_axis(axes, near[None, ..., None], 0)[0] * inside[..., None]
    nib.save(nib.Nifti1Image(v[..., None, :].astype(np.float32), np.eye(4)), os.path.join(folder, "field.nii"))
    nib.save(nib.Nifti1Image(inside.astype(np.uint8), np.eye(4)), os.path.join(folder, "mask.nii"))
    # tckgen FACT reads 3 volumes per fibre: the same vectors as one peak per voxel
    nib.save(nib.Nifti1Image(v.astype(np.float32), np.eye(4)), os.path.join(folder, "peaks.nii"))
    # our voxel loop never seeds the last layer of an axis: the grid seeds of tckgen leave it out too
    grid = inside.copy()
    grid[-1, :, :] = grid[:, -1, :] = grid[:, :, -1] = False
    nib.save(nib.Nifti1Image(grid.astype(np.uint8), np.eye(4)), os.path.join(folder, "seeds.nii"))
    return v, inside


def counts(binary, folder, command):
    with open(os.path.join(folder, "count.macro"), "w") as f:
        f.write(SETUP + command + "\nn := line.lines\np := line.points\nprint \"counts \" n \" \" p\n")
    out = subprocess.run([binary, "-strict", "-macro=count.macro"], cwd=folder, capture_output=True, text=True).stdout
    n, p = re.search(r"^counts (\d+) (\d+)", out, re.M).groups()
    return int(n), int(p)


SETUP = "debug.no\nvector.load \"field.nii\"\nscalar.use \"mask\"\nscalar.load \"mask.nii\"\nvector.stream.seeds 0\nvector.stream.angles 0\n"


def voxmill(binary, folder, command):
    lines, points = counts(binary, folder, command)
    setup = SETUP.strip().split("\n")[1:]
    return lines, points, benchlib.extra(binary, folder, setup, [command])[1]


def dipy(v, inside, seeds):
    from dipy.data import default_sphere
    from dipy.direction.peaks import PeaksAndMetrics
    from dipy.tracking.local_tracking import LocalTracking
    from dipy.tracking.stopping_criterion import ThresholdStoppingCriterion
    from dipy.tracking.streamline import Streamlines
    pam = PeaksAndMetrics()
    pam.sphere = default_sphere
    pam.peak_dirs = v[..., None, :]
    pam.peak_values = inside.astype(float)[..., None]
    idx = np.zeros(inside.shape + (1,), int)
    idx[inside, 0] = [default_sphere.find_closest(x) for x in v[inside]]
    pam.peak_indices = idx
    pam.ang_thr, pam.qa_thr, pam.total_weight = 90.0, 0.0, 0.5
    crit = ThresholdStoppingCriterion(inside.astype(float), 0.5)
    start = time.process_time()
    sl = Streamlines(LocalTracking(pam, crit, seeds, np.eye(4), step_size=1.0))
    seconds = time.process_time() - start
    return len(sl), sum(len(s) for s in sl), seconds, sl


def tckgen(folder, seeding):
    """Lines, points and CPU seconds of tckgen FACT on one thread: step 1 voxel, the stop angle
    of ours (90 degrees), a cutoff between the zero vectors outside and the unit ones inside,
    no length limits; the time of a one-seed run (start, image preload) is taken out."""
    def run(seeds):
        subprocess.run(["tckgen", "peaks.nii", "out.tck", "-algorithm", "FACT", "-step", "1", "-angle", "90",
                        "-cutoff", "0.5", "-minlength", "0", "-maxlength", "1000", "-select", "0",
                        "-nthreads", "1", "-quiet", "-force"] + seeds, cwd=folder, check=True)
    def cpu(seeds):
        times = []
        for _ in range(benchlib.REPEAT):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            run(seeds)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            times.append(after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime)
        return min(times)
    seconds = cpu(seeding) - cpu(["-seed_image", "mask.nii", "-seeds", "1"])
    run(seeding)
    tck = nib.streamlines.load(os.path.join(folder, "out.tck"))
    return len(tck.streamlines), sum(len(s) for s in tck.streamlines), max(seconds, 1e-9)


def row(label, ours, peer, name):
    (n, p, s), (pn, pp, ps) = ours, peer
    print("%-22s voxmill %9.0f lines/s %11.0f points/s | %-6s %8.0f lines/s %10.0f points/s | points/s ratio %.1fx"
          % (label, n / s, p / s, name, pn / ps, pp / ps, (p / s) / (pp / ps)))


def main():
    binary = os.path.abspath(sys.argv[1])
    folder = tempfile.mkdtemp(prefix="stream-bench-")
    v, inside = field(folder)
    rng = np.random.default_rng(3)
    peer_fact = shutil.which("tckgen") is not None
    print("field %d^3, %d tube voxels; voxmill 1 thread (the tracer is single-threaded), dipy %s seeds, %s"
          % (N, inside.sum(), DIPY_SEEDS, "tckgen FACT 1 thread (nearest vector, no interpolation)" if peer_fact
             else "no tckgen (Debian mrtrix3): its rows are skipped"))
    print("tracing rates per CPU second (user + system, start and loads taken out), which a shared machine disturbs less than wall time")
    ours = voxmill(binary, folder, "vector.stream.random %d" % RANDOM)
    # random seeds over the box, rounded to voxels as ours are
    seeds = np.round(rng.uniform(0, N - 1, (DIPY_SEEDS * 4, 3)))
    row("stream.random %d" % RANDOM, ours, dipy(v, inside, seeds)[:3], "dipy")
    # tckgen draws its random seeds within the tubes: as many as our random seeds that found a line
    if peer_fact:
        row("stream.random %d" % RANDOM, ours, tckgen(folder, ["-seed_image", "mask.nii", "-seeds", str(ours[0])]), "tckgen")
    ours = voxmill(binary, folder, "vector.stream.mask \"mask\" 1")
    voxels = np.argwhere(inside[:-1, :-1, :-1]).astype(float)
    peer = dipy(v, inside, voxels[rng.choice(len(voxels), DIPY_SEEDS, replace=False)])
    row("stream.mask", ours, peer[:3], "dipy")
    if peer_fact:
        row("stream.mask", ours, tckgen(folder, ["-seed_grid_per_voxel", "seeds.nii", "1"]), "tckgen")
    # the TrackVis save of the mask lines: ours against nibabel's of the same lines
    save = "line.save \"bench.trk\""
    seconds = benchlib.voxmill_once(binary, folder, SETUP.strip().split("\n")[1:] + ["vector.stream.mask \"mask\" 1"], save)
    mb = os.path.getsize(os.path.join(folder, "bench.trk")) / 1e6
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        trk = nib.streamlines.load(os.path.join(folder, "bench.trk"))
    peer = benchlib.best(lambda: nib.streamlines.save(trk.tractogram, os.path.join(folder, "peer.trk")))
    points = sum(len(s) for s in trk.streamlines)
    if seconds < 1e-6:  # the repeated saves drowned in the noise of the tracing around them
        print("trk save %.1f MB (%d points): voxmill not measurable in this run | nibabel %.0f MB/s" % (mb, points, mb / peer))
        return
    print("trk save %.1f MB (%d points): voxmill %.0f MB/s | nibabel %.0f MB/s | ratio %.1fx"
          % (mb, points, mb / seconds, mb / peer, peer / seconds))


if __name__ == "__main__":
    main()
