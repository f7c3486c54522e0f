#!/usr/bin/env python3
"""Runs one macro test through the real binary.

A test is <name>.macro with <name>.expected beside it: the console text that follows the
option header, with progress lines (rewritten by carriage returns) removed. Optional:
  <name>.in/      files copied into the working directory before the run
  <name>.files/   files that must exist afterwards with exactly these bytes
Leading comment lines of the macro may hold directives:
  // test.args: -foo=1 bar      further command-line words
  // test.exit: 7               the expected exit code (default 0)
Set VOXMILL_UPDATE_EXPECTED=1 to write the actual output as the new expectation.
"""
import os
import shlex
import shutil
import subprocess
import sys
import tempfile

HEADER_END = "  -h : shows this help without waiting"


def directives(macro_path):
    found = {}
    with open(macro_path, "rb") as f:
        for raw in f.read().splitlines():
            line = raw.decode("utf-8", "replace").strip()
            if not line.startswith("// test."):
                if line and not line.startswith("//"):
                    break
                continue
            key, _, value = line[len("// test."):].partition(":")
            found[key.strip()] = value.strip()
    return found


def console_text(stdout):
    lines = []
    for line in stdout.split("\n"):
        if "\r" in line:
            line = line.split("\r")[-1]
            if not line.strip():
                continue
        lines.append(line)
    text = "\n".join(lines)
    at = text.find(HEADER_END)
    if at >= 0:
        text = text[at + len(HEADER_END):]
        text = text.split("\n", 2)[2] if text.count("\n") >= 2 else ""
    return text


def main():
    binary, macro = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    base = macro[: -len(".macro")]
    name = os.path.basename(macro)
    opts = directives(macro)
    with tempfile.TemporaryDirectory(prefix="voxmill-test-") as work:
        if os.path.isdir(base + ".in"):
            shutil.copytree(base + ".in", work, dirs_exist_ok=True)
        shutil.copy(macro, os.path.join(work, name))
        args = [binary, "-strict", "-macro=" + name] + shlex.split(opts.get("args", ""))
        run = subprocess.run(args, cwd=work, stdin=subprocess.DEVNULL, capture_output=True, timeout=600)
        actual = console_text(run.stdout.decode("utf-8", "replace"))
        failures = []
        expected_exit = int(opts.get("exit", "0"))
        if run.returncode != expected_exit:
            failures.append(f"exit code {run.returncode}, expected {expected_exit}")
        if run.stderr:
            failures.append("stderr:\n" + run.stderr.decode("utf-8", "replace"))
        if os.environ.get("VOXMILL_UPDATE_EXPECTED") == "1":
            with open(base + ".expected", "w", encoding="utf-8", newline="") as f:
                f.write(actual)
        with open(base + ".expected", encoding="utf-8", newline="") as f:
            expected = f.read()
        if actual != expected:
            import difflib
            diff = difflib.unified_diff(expected.splitlines(True), actual.splitlines(True), "expected", "actual")
            failures.append("console differs:\n" + "".join(diff))
        if os.path.isdir(base + ".files"):
            for root, _, files in os.walk(base + ".files"):
                for file in files:
                    want = os.path.join(root, file)
                    rel = os.path.relpath(want, base + ".files")
                    got = os.path.join(work, rel)
                    if not os.path.exists(got):
                        failures.append(f"file {rel} was not written")
                    elif open(got, "rb").read() != open(want, "rb").read():
                        failures.append(f"file {rel} differs")
    if failures:
        print(f"FAIL {name}\n" + "\n".join(failures))
        return 1
    print(f"ok {name}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
