"""What the volume benchmarks share: the best of several runs, and the time of one
command of voxmill with the process start and the loads taken out."""
import os
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
