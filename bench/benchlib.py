"""What the volume benchmarks share: the best of several runs, and the time of one
command of voxmill with the process start and the loads taken out."""
import os
import resource
import subprocess
import time

REPEAT = 3
PASSES = 6


def best(run):
    times = []
    for _ in range(REPEAT):
        start = time.perf_counter()
        run()
        times.append(time.perf_counter() - start)
    return min(times)


def bestcpu(run):
    """Least CPU seconds of several runs: this process's and its children's, which a loaded
    machine disturbs far less than the wall time."""
    times = []
    for _ in range(REPEAT):
        start = os.times()
        run()
        end = os.times()
        times.append(sum(getattr(end, k) - getattr(start, k) for k in ("user", "system", "children_user", "children_system")))
    return min(times)


def voxmill_once(binary, folder, setup, command, threads=1):
    """Seconds of one `command`: a macro of `setup` lines and the command once, and one with
    it PASSES times; the difference over PASSES - 1."""
    def timed(passes):
        lines = ["debug.no", "thread.max := %d" % threads] + setup + [command] * passes
        with open(os.path.join(folder, "bench.macro"), "w") as f:
            f.write("\n".join(lines) + "\n")

        def run():
            subprocess.run([binary, "-strict", "-macro=bench.macro"], cwd=folder, stdout=subprocess.DEVNULL, check=True)
        return best(run)
    once = timed(1)
    many = timed(PASSES)
    return max((many - once) / (PASSES - 1), 1e-9)


def run_cpu(binary, folder, lines):
    """Wall seconds and CPU seconds (user + system) of one run."""
    with open(os.path.join(folder, "bench.macro"), "w") as f:
        f.write("\n".join(["debug.no"] + lines) + "\n")
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    subprocess.run([binary, "-strict", "-macro=bench.macro"], cwd=folder, stdout=subprocess.DEVNULL, check=True)
    wall = time.perf_counter() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)


def extra(binary, folder, setup, work):
    """Wall and CPU seconds of `work` alone: best of two with it less best of two without."""
    base = [run_cpu(binary, folder, setup) for _ in range(2)]
    full = [run_cpu(binary, folder, setup + work) for _ in range(2)]
    wall = min(f[0] for f in full) - min(b[0] for b in base)
    cpu = min(f[1] for f in full) - min(b[1] for b in base)
    return max(wall, 1e-9), max(cpu, 1e-9)
