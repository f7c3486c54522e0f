# Charts against independent readers: xmllint accepts the SVG, rsvg-convert renders it with
# the frame where the chart's lines say, Ghostscript renders the EPS, the SVGZ and .svg.gz
# forms gunzip to the same text, Pillow reads the raster forms; an empty histogram has
# axes and labels and no bars.
source "$(dirname "$0")/lib.sh"
for tool in xmllint rsvg-convert gs; do
  command -v $tool >/dev/null || { fail "$tool is needed (tools/install-deps.sh)"; finish; }
done
$PY -c "
import numpy as np
from PIL import Image
rng = np.random.default_rng(2)
a = np.concatenate([rng.normal(60, 9, 4000), rng.normal(170, 14, 6000)]).clip(0, 255).astype(np.uint8)
Image.fromarray(a.reshape(100, 100)).save('two_peaks.pgm')"
cat > run.macro <<'EOF2'
debug.no
image.8bit
image.load "two_peaks.pgm"
image.histogram.image "h.svg"
image.histogram.image "h.svgz"
image.histogram.image "h.svg.gz"
image.histogram.image "h.eps"
image.histogram.image "h.ppm"
image.histogram.image "h.bmp"
image.analysis.image "a.svg"
image.use empty
image.histogram.image "e.svg"
EOF2
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
for f in h.svg a.svg e.svg; do xmllint --noout "$f" 2>xml.err || fail "xmllint rejects $f: $(head -3 xml.err)"; done
for f in h a e; do rsvg-convert "$f.svg" -o "$f-svg.png" 2>/dev/null || fail "rsvg-convert renders $f.svg"; done
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -dEPSCrop -sOutputFile=h-eps.png h.eps >/dev/null 2>&1 || fail "gs renders h.eps"
check_eq "$(gunzip -c h.svgz | cmp - h.svg && echo same)" "same" "svgz is the gzip of the svg text"
check_eq "$(gunzip -c h.svg.gz | cmp - h.svg && echo same)" "same" "svg.gz is the gzip of the svg text"
check_contains "$(cat a.txt 2>/dev/null)" "Maximum point:" "analysis.image writes its points beside the chart"
out=$($PY - <<'PYEOF' 2>&1
import re
import numpy as np
from PIL import Image

def frame(svg):
    """The chart's frame: the longest black vertical and horizontal lines."""
    lines = [tuple(float(v) for v in m.groups()) for m in re.finditer(
        r'<line x1="([-\d.]+)" y1="([-\d.]+)" x2="([-\d.]+)" y2="([-\d.]+)" style="[^"]*stroke:#000000', svg)]
    vertical = max((l for l in lines if l[0] == l[2]), key=lambda l: abs(l[3] - l[1]))
    horizontal = max((l for l in lines if l[1] == l[3]), key=lambda l: abs(l[2] - l[0]))
    return vertical, horizontal

for name in ("h", "e"):
    svg = open(name + ".svg").read()
    png = np.asarray(Image.open(name + "-svg.png").convert("L")).astype(int)
    assert png.shape == (320, 640), "%s: rendered %r" % (name, png.shape)
    (x, y0, _, y1), (hx0, hy, hx1, _) = frame(svg)
    column = png[int(min(y0, y1)) + 2:int(max(y0, y1)) - 2, int(x) - 1:int(x) + 2].min(axis=1)
    assert (column < 128).all(), "%s: the left axis is not drawn at x=%g" % (name, x)
    row = png[int(hy) - 1:int(hy) + 2, int(min(hx0, hx1)) + 2:int(max(hx0, hx1)) - 2].min(axis=0)
    assert (row < 128).all(), "%s: the bottom axis is not drawn at y=%g" % (name, hy)
    assert "log10 frequency" in svg and ">values<" in svg, "%s: axis titles" % name
bars = lambda svg: len(re.findall(r"stroke:#466EB4", svg))
assert bars(open("h.svg").read()) > 50, "the bimodal histogram has bars"
assert bars(open("e.svg").read()) == 0, "an empty histogram draws no bars"
for name in ("h-eps.png", "h.ppm", "h.bmp"):
    img = np.asarray(Image.open(name).convert("L"))
    assert img.min() < 100 and img.max() > 200, "%s is blank" % name
assert Image.open("h.ppm").size == (640, 320) and Image.open("h.ppm").mode == "RGB"
print("ok")
PYEOF
)
check_eq "$out" "ok" "charts in rsvg-convert, Ghostscript and Pillow"
finish
