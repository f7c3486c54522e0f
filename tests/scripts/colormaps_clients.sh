# Colour maps against matplotlib's own tables: the perceptual maps in 256 steps and the
# ColorBrewer maps in as many steps as they have anchors, within one byte.
source "$(dirname "$0")/lib.sh"
need_python "matplotlib"
{
  echo "debug.no"
  echo "procedure dump"
  echo "  for parameter[1]"
  echo "    c := color.getrgb for.count"
  echo "    print c"
  echo "  end"
  echo "end"
  for i in 1 2 3 4 5 6; do echo "color.map.special $i 256"; echo "dump 256"; done
  for i in 1 2 3 4 5 6 7 8 9; do echo "color.map.chart2 $i 11"; echo "dump 11"; done
  for i in 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27; do echo "color.map.chart2 $i 9"; echo "dump 9"; done
  for i in 6 11; do echo "color.map.chart1 $i 1"; echo "dump 12"; done
} > run.macro
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
out=$($PY - <<'PYEOF' 2>&1
import re
import numpy as np
import matplotlib
matplotlib.use("Agg")
import matplotlib as mpl
from matplotlib import _cm

text = open("console.txt").read()
blocks = re.split(r"^#\d+ .*$", text, flags=re.M)[1:]
def colours(block):
    out = []
    for line in block.strip().splitlines():
        if line.startswith("Script"):
            break
        v = [float(x) for x in re.findall(r"[-\d.]+", line)]
        out.append((v + [0, 0, 0])[:3])  # the shortest form drops trailing zeros
    return np.array(out)

names = ["viridis", "magma", "plasma", "inferno", "turbo", "cividis"]
brewer = ["BrBG", "PiYG", "PRGn", "PuOr", "RdBu", "RdGy", "RdYlBu", "RdYlGn", "Spectral", "Blues", "BuGn", "BuPu",
          "GnBu", "Greens", "Greys", "Oranges", "OrRd", "PuBu", "PuBuGn", "PuRd", "Purples", "RdPu", "Reds", "YlGn",
          "YlGnBu", "YlOrBr", "YlOrRd"]
expected = [mpl.colormaps[n](np.linspace(0, 1, 256))[:, :3] * 255 for n in names]
expected += [np.array(_cm.datad[n]) * 255 for n in brewer]
expected += [np.array(mpl.colormaps[n].colors)[:, :3] * 255 for n in ("Paired", "Set3")]
assert len(blocks) == len(expected), "%d maps printed" % len(blocks)
for name, block, want in zip(names + brewer + ["Paired", "Set3"], blocks, expected):
    got = colours(block)
    assert got.shape == want.shape, "%s: %r entries against %r" % (name, got.shape, want.shape)
    worst = np.abs(got - want).max()
    assert worst <= 1.0, "%s differs by %.2f" % (name, worst)
print("ok")
PYEOF
)
check_eq "$out" "ok" "colour maps against matplotlib"
finish
