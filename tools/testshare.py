#!/usr/bin/python3
"""Reports the test share: lines of tests against lines of program code.

Code: src/**/*.cpp and *.h. Tests: the unit tests, the macro tests with their expected
console text, the script tests, the fuzz targets and the test drivers; inputs (.in/) and
expected files (.files/) are data, not tests. Blank lines count in neither.
"""
import pathlib
import sys


def lines(paths):
    total = 0
    for p in paths:
        with open(p, "rb") as f:
            total += sum(1 for line in f if line.strip())
    return total


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent.parent)
    code = [p for p in (root / "src").rglob("*") if p.suffix in (".cpp", ".h")]
    tests = root / "tests"
    groups = {
        "unit": [p for p in (tests / "unit").rglob("*") if p.suffix in (".cpp", ".h")],
        "macro": [p for p in (tests / "macro").rglob("*")
                  if p.suffix in (".macro", ".expected")
                  and not any(part.endswith((".in", ".files")) for part in p.relative_to(tests).parts[:-1])],
        "scripts": list((tests / "scripts").glob("*.sh")),
        "fuzz": list((tests / "fuzz").glob("*.cpp")),
        "drivers": list(tests.glob("*.py")),
    }
    code_lines = lines(code)
    test_lines = 0
    for name, paths in groups.items():
        n = lines(paths)
        test_lines += n
        print(f"{name:>8}: {n:6d} lines in {len(paths)} files")
    expected = lines([p for p in groups["macro"] if p.suffix == ".expected"])
    print(f"    code: {code_lines:6d} lines in {len(code)} files")
    print(f"   share: {test_lines / code_lines:.2f} (tests {test_lines} / code {code_lines})")
    print(f"   share without the expected console texts: {(test_lines - expected) / code_lines:.2f}")


if __name__ == "__main__":
    main()
