# Histograms against numpy.bincount (a 16-bit volume and a colour image's gray values),
# and the analysis of a bimodal histogram against a numpy model of its steps: smoothing
# passes of length div 100, the two derivatives, the sign tests and the merging.
source "$(dirname "$0")/lib.sh"
need_python "nibabel, PIL"
$PY - <<'PYEOF'
import numpy as np, nibabel as nib
from PIL import Image
rng = np.random.default_rng(4)
nib.save(nib.Nifti1Image(rng.integers(0, 3000, (31, 20, 9)).astype(np.uint16), np.eye(4)), "v.nii")
Image.fromarray(rng.integers(0, 256, (13, 17, 3)).astype(np.uint8)).save("c.ppm")
two = np.concatenate([rng.normal(60, 9, 4000), rng.normal(170, 14, 6000)]).clip(0, 255).astype(np.uint8)
Image.fromarray(two.reshape(100, 100)).save("two.pgm")
open("run.macro", "w").write("\n".join([
    "debug.no", "scalar.16bit", 'scalar.load "v.nii"', 'scalar.histogram.raw "v.txt"',
    "image.24bit", 'image.load "c.ppm"', 'image.histogram.raw "c.txt"',
    "image.8bit", 'image.load "two.pgm"', 'print "analysis"', "image.analysis", ""]))
PYEOF
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'PYEOF' 2>&1
import numpy as np, nibabel as nib
from PIL import Image

def table(name):
    return {int(v): int(c) for v, c in (line.split("\t") for line in open(name).read().splitlines())}

def occurring(counts):
    return {v: int(c) for v, c in enumerate(counts) if c > 0}

v = np.asarray(nib.load("v.nii").dataobj).ravel()
assert table("v.txt") == occurring(np.bincount(v)), "volume histogram"
rgb = np.asarray(Image.open("c.ppm")).astype(np.int64)
assert table("c.txt") == occurring(np.bincount(rgb.sum(axis=2).ravel() // 3)), "colour histogram of the gray values"

def derivative(x):
    d = np.empty_like(x)
    d[1:] = x[1:] - x[:-1]
    d[0] = d[1]
    for i in range(1, len(x) - 1):
        d[i] = (d[i] + d[i + 1]) * 0.5
    return d

counts = np.bincount(np.asarray(Image.open("two.pgm")).ravel())
values = np.nonzero(counts)[0]
f = counts[values].astype(float)
for _ in range(len(f) // 100):
    for i in range(1, len(f) - 1):
        f[i] = (f[i] + (f[i - 1] + f[i + 1]) * 0.5) * 0.5
f1 = derivative(f); f2 = derivative(f1)
found = []
for i in range(2, len(f) - 2):
    if not f[i] > 0.5:
        continue
    if f1[i - 1] > 0 and f1[i + 1] < 0: kind = "Maximum point:"
    elif f1[i - 1] < 0 and f1[i + 1] > 0: kind = "Minimum point:"
    elif f2[i - 1] * f2[i + 1] < 0: kind = "Inflection point:"
    else: continue
    if found and found[-1][0] == kind: found[-1][1].append(values[i])
    else: found.append((kind, [values[i]]))
expected = []
for kind, members in found:
    m = int(np.round(np.mean(members)))
    p = min(np.searchsorted(values, m), len(values) - 1)
    expected.append((kind, m, f[p], f1[p], f2[p]))
console = open("console.txt").read().split("analysis\n", 1)[1].splitlines()
lines = [l for l in console if l.endswith(tuple("0123456789")) and " f=" in l]
assert len(lines) == len(expected), "%d points, the model finds %d" % (len(lines), len(expected))
for line, (kind, m, a, b, c) in zip(lines, expected):
    head, rest = line.split(" f=")
    fa, rest = rest.split(" f'=")
    fb, fc = rest.split(" f''=")
    assert head == "%s %d" % (kind, m), "%s against %s %d" % (head, kind, m)
    for got, want in ((fa, a), (fb, b), (fc, c)):
        assert abs(float(got) - want) <= 1e-9 * max(1, abs(want)), "%s: %s against %r" % (head, got, want)
assert any(l.startswith("Maximum point: 6") for l in lines) and any(l.startswith("Maximum point: 1") for l in lines)
print("ok")
PYEOF
)
check_eq "$out" "ok" "histograms and the analysis against numpy"
finish
