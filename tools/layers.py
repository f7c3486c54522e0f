#!/usr/bin/python3
"""Prints the folder graph of src/ from its #include lines and fails on a wrong edge.

The lower layers (field model, operations, formats and what joins them later) take what
they need from the handlers as plain values; they never include the engine, which is every
header of src/script except the text type and the number text, nor the command layer.
library and formats must not include each other both ways.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"
LOWER = {"field", "ops", "formats", "orientation", "geometry", "drawing"}
FOUNDATION_SCRIPT = {"script/utf16.h", "script/values.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def main():
    edges = {}  # (from folder, to folder) -> list of (file, header)
    for path in sorted(ROOT.rglob("*")):
        if path.suffix not in (".h", ".cpp") or path.parent == ROOT:
            continue
        folder = path.relative_to(ROOT).parts[0]
        for header in INCLUDE.findall(path.read_text(encoding="utf-8", errors="replace")):
            if "/" not in header:
                continue
            target = header.split("/")[0]
            if target != folder:
                edges.setdefault((folder, target), []).append((path.relative_to(ROOT), header))

    for (a, b), uses in sorted(edges.items()):
        print(f"{a:>12} -> {b:<12} {len(uses)}")

    faults = []
    for (a, b), uses in sorted(edges.items()):
        if a not in LOWER:
            continue
        for file, header in uses:
            if b == "commands" or (b == "script" and header not in FOUNDATION_SCRIPT):
                faults.append(f"{file} includes the engine header {header}")
    if ("library", "formats") in edges and ("formats", "library") in edges:
        for a, b in (("library", "formats"), ("formats", "library")):
            for file, header in edges[(a, b)]:
                faults.append(f"{file} includes {header}: library and formats include each other")
    for fault in faults:
        print("layer fault:", fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
