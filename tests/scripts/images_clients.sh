# Raster files against independent readers and writers: Pillow and netpbm write a corpus
# that the own readers must take pixel for pixel, and what the own writers make must open
# in Pillow, netpbm, pngcheck and tiffinfo. Where the program's formats deliberately
# differ from the published ones (16-bit PGM low byte first, the PBM length formula, the
# gray TIFF's tag values), the difference itself is checked. FreeImage and ImageMagick are
# tested where installed, each alone.
source "$(dirname "$0")/lib.sh"
need_python "PIL"

# ---- the corpus ----
$PY - <<'EOF'
import random
from PIL import Image
random.seed(7)
w, h = 37, 23
rgb = Image.new("RGB", (w, h)); rgb.putdata([tuple(random.randrange(256) for _ in range(3)) for _ in range(w * h)])
rgba = Image.new("RGBA", (w, h)); rgba.putdata([tuple(random.randrange(256) for _ in range(4)) for _ in range(w * h)])
gray = rgb.convert("L")
mono = gray.point(lambda v: 255 if v > 127 else 0).convert("1")
few = rgb.quantize(colors=12).convert("RGB")  # at most 16 colours, for 4-bit BMP
wide = Image.new("I;16", (w, h)); wide.putdata([random.randrange(65536) for _ in range(w * h)])
rgb.save("c.ppm"); gray.save("g.pgm"); mono.save("m.pbm")
# 16-bit PGM as netpbm has it: big-endian pairs.
with open("w16.pgm", "wb") as f:
    f.write(b"P5\n%d %d\n65535\n" % (w, h) + b"".join(v.to_bytes(2, "big") for v in wide.getdata()))
rgb.save("c1.bmp"); gray.save("g8.bmp"); mono.save("m1.bmp"); rgba.save("a32.bmp")
rgb.quantize(colors=200).save("p8.bmp")
few.save("few.ppm")
rgb.save("c.png"); rgba.save("a.png"); gray.save("g.png"); wide.save("w16.png")
# Lossy formats are judged on a smooth picture: noise says nothing about a codec.
smooth = Image.new("RGB", (64, 48)); smooth.putdata([(4 * x, 5 * y, 2 * (x + y)) for y in range(48) for x in range(64)])
smooth.save("s.png"); smooth.save("s.jpg", quality=95); rgb.save("c.gif"); rgb.save("c.tif")
EOF
[ -f c.tif ] || fail "the corpus could not be written"
pnmtoplainpnm c.ppm > plain.ppm; pnmtoplainpnm g.pgm > plain.pgm; pnmtoplainpnm m.pbm > plain.pbm
ppmtobmp -bpp=4 few.ppm > few4.bmp 2>/dev/null
ppmtobmp -os2 -bpp=24 c.ppm > os2.bmp 2>/dev/null
ppmtobmp -os2 -bpp=4 few.ppm > os2few.bmp 2>/dev/null
ppmtobmp -bpp=1 m.pbm > m1n.bmp 2>/dev/null

# ---- own readers and writers ----
# Each file of a list read and saved as r_<name>_<extension>.png.
reads() { for f; do printf 'image.load "%s"\nimage.save "r_%s.png"\n' "$f" "${f/./_}"; done; }
{
  cat <<'EOF'
debug.no
freeimage.disable
imagemagick.disable
image.24bit
image.load "c.ppm"
image.save "o_c.png"
image.save "o_c.bmp"
image.save "o_c.tga"
image.save "o_c.tif"
image.save "o_c.ppm"
image.save "o_c.pam"
image.save "o_c.pgm"
EOF
  reads plain.ppm c1.bmp p8.bmp few4.bmp os2.bmp os2few.bmp a32.bmp
  cat <<'EOF'
image.32bit
image.load "o_c.pam"
image.save "r_pam.png"
image.load "c.ppm"
image.save "o_a.pam"
image.8bit
image.load "g.pgm"
image.save "o_g.png"
image.save "o_g.pgm"
image.save "o_g.tif"
EOF
  reads plain.pgm plain.pbm g8.bmp m1.bmp m1n.bmp
  cat <<'EOF'
image.load "c.ppm"
image.save "r_c_gray.png"
image.load "w16.pgm"
image.save "r_w16_gray.png"
image.16bit
image.load "w16.pgm"
image.save "r_w16_full.png"
image.save "o_w16.pgm"
image.save "o_w16.tif"
image.24bit
image.new 9 8
image.save "o_pbm9.pbm"
image.new 16 8
image.save "o_pbm16.pbm"
EOF
} > own.macro
out=$("$BIN" -strict -macro=own.macro 2>&1)
check_not_contains "$out" "Error" "own readers and writers report no error"
check_not_contains "$out" "Bad" "own readers take the corpus"

$PY - <<'EOF' || fail "pixels of the own readers and writers (lines above)"
import sys
from PIL import Image
bad = []
def pixels(name, mode=None):
    im = Image.open(name); im.load()
    return list((im.convert(mode) if mode else im).getdata())
def same(label, a, b):
    if a != b:
        first = next(i for i, (x, y) in enumerate(zip(a, b)) if x != y) if len(a) == len(b) else -1
        bad.append(f"{label}: differs (first at {first}: {a[first] if first >= 0 else len(a)} vs {b[first] if first >= 0 else len(b)})")
c = pixels("c.ppm"); g = pixels("g.pgm")
mean = [(r + gg + b) // 3 for r, gg, b in c]
# What the own writers make, as Pillow reads it.
for f in ["o_c.png", "o_c.bmp", "o_c.tga", "o_c.tif", "o_c.ppm"]:
    same(f, pixels(f, "RGB"), c)
same("o_c.pgm (gray of colour is the mean)", pixels("o_c.pgm"), mean)
for f in ["o_g.png", "o_g.pgm", "o_g.tif"]:
    same(f, pixels(f), g)
# What the own readers take from files of Pillow and netpbm.
for f in ["r_plain_ppm.png", "r_c1_bmp.png", "r_os2_bmp.png", "r_pam.png"]:
    same(f, pixels(f, "RGB"), c)
same("r_a32_bmp.png (32 bit without its fourth byte)", pixels("r_a32_bmp.png", "RGB"), pixels("a.png", "RGB"))
same("r_p8_bmp.png", pixels("r_p8_bmp.png", "RGB"), pixels("p8.bmp", "RGB"))
same("r_few4_bmp.png", pixels("r_few4_bmp.png", "RGB"), pixels("few.ppm", "RGB"))
same("r_os2few_bmp.png", pixels("r_os2few_bmp.png", "RGB"), pixels("few.ppm", "RGB"))
for f in ["r_plain_pgm.png", "r_g8_bmp.png"]:
    same(f, pixels(f), g)
mono = pixels("m.pbm", "L")
same("r_m1_bmp.png", pixels("r_m1_bmp.png"), mono)
same("r_m1n_bmp.png", pixels("r_m1n_bmp.png"), mono)
# P1: a set bit (black) reads 0, a clear one 1, not 255.
same("r_plain_pbm.png (P1 gives 0 and 1)", pixels("r_plain_pbm.png"), [1 if v == 255 else 0 for v in mono])
# P6 into gray: the sum clamped to 255 before the division.
same("r_c_gray.png (P6 clamped, then divided)", pixels("r_c_gray.png"), [min(r + gg + b, 255) // 3 for r, gg, b in c])
w16 = pixels("w16.pgm")
same("r_w16_gray.png (high byte)", pixels("r_w16_gray.png"), [v >> 8 for v in w16])
# 16-bit PGM in fullgray: the pair taken as it lies, low byte first; PNG then has it big-endian.
swapped = [(v >> 8) | ((v & 255) << 8) for v in w16]
same("r_w16_full.png (pgm16 low byte first)", pixels("r_w16_full.png"), swapped)
# ... and written the same way: a published reader sees the bytes swapped back to the file's.
same("o_w16.pgm (pgm16 low byte first)", pixels("o_w16.pgm"), w16)
same("o_w16.tif", pixels("o_w16.tif"), swapped)
for line in bad:
    print("FAIL:", line)
sys.exit(1 if bad else 0)
EOF

# netpbm, pngcheck and tiffinfo on what the own writers made.
check_contains "$(pamfile o_a.pam 2>&1)" "RGB_ALPHA" "netpbm reads the own PAM with alpha"
check_contains "$(pamfile o_c.pam 2>&1)" "37 by 23" "netpbm reads the own PAM"
check_eq "$(pamtopnm o_c.pam 2>/dev/null | md5sum)" "$(pamtopnm c.ppm 2>/dev/null | md5sum)" "the own PAM holds the pixels"
for f in o_c.png o_g.png r_w16_full.png r_pam.png; do
  pngcheck -q "$f" >/dev/null 2>&1 || fail "pngcheck finds $f faulty: $(pngcheck "$f" 2>&1 | head -2)"
done
tiffinfo o_c.tif >/dev/null 2>&1 || fail "tiffinfo refuses the rgb TIFF"
# The gray TIFF's strip byte count stands at w*h*2 also for 8-bit data (tiff fixed tags).
check_contains "$(tiffinfo o_g.tif 2>&1)" "Bits/Sample: 8" "tiffinfo reads the 8-bit gray TIFF"
check_eq "$($PY -c "from PIL import Image; print(Image.open('o_g.tif').tag_v2[279])")" "(1702,)" "tiff fixed tags: StripByteCounts w*h*2"
check_eq "$($PY -c "from PIL import Image; print(Image.open('o_g.tif').tag_v2[280])")" "(1872,)" "tiff fixed tags: MinSampleValue w*h*2+170"
# The PBM length formula: w = 9 cuts the rows (9 bytes of 16), w = 16 gives one more (17).
check_eq "$(($(stat -c %s o_pbm9.pbm) - $(printf 'P4\n#o_pbm9.pbm\n9 8\n' | wc -c)))" 9 "pbm length formula cuts a width of 9"
check_eq "$(($(stat -c %s o_pbm16.pbm) - $(printf 'P4\n#o_pbm16.pbm\n16 8\n' | wc -c)))" 17 "pbm length formula extends a width of 16"
pamfile o_pbm16.pbm >/dev/null 2>&1 || fail "netpbm reads the 16-wide PBM"

# ---- the optional libraries, each alone ----
status=$("$BIN" -strict -h 2>&1)
for lib in freeimage imagemagick; do
  case $lib in
    freeimage) word="FreeImage (" other=imagemagick ;;
    imagemagick) word="Imagemagick® (" other=freeimage ;;
  esac
  if ! grep -qF "$word" <<<"$status"; then
    echo "note: $lib not installed, its checks are skipped"
    continue
  fi
  cat > lib.macro <<EOF
debug.no
$other.disable
image.24bit
image.load "c.png"
image.save "${lib}_png.png"
image.save "${lib}_tif.tif"
image.save "${lib}_gif.gif"
image.load "c.gif"
image.save "${lib}_fromgif.png"
image.load "s.png"
image.save "${lib}_jpg.jpg"
image.load "s.jpg"
image.save "${lib}_fromjpg.png"
image.load "c.tif"
image.save "${lib}_fromtif.png"
image.8bit
image.load "g.png"
image.save "${lib}_g.png"
image.32bit
image.load "a.png"
image.save "${lib}_a.png"
image.16bit
image.load "w16.png"
image.save "${lib}_w16.png"
$lib.disable
image.24bit
image.save "${lib}_off.jpg"
EOF
  out=$("$BIN" -strict -macro=lib.macro 2>&1)
  check_not_contains "$out" "Imagemagick error" "$lib: no library error"
  LIB=$lib $PY - <<'EOF' || fail "$lib: pixels through the library (lines above)"
import os, sys
from PIL import Image
lib = os.environ["LIB"]
bad = []
def pixels(name, mode):
    im = Image.open(name); im.load()
    return list(im.convert(mode).getdata())
# Lossless formats must agree exactly; lossy ones (JPEG, GIF's palette) on the mean.
def near(label, a, b, tolerance):
    errors = [abs(x - y) for p, q in zip(a, b) for x, y in zip(p if isinstance(p, tuple) else (p,), q if isinstance(q, tuple) else (q,))]
    mean = sum(errors) / max(len(errors), 1)
    if len(a) != len(b) or (max(errors) if tolerance == 0 else mean) > tolerance:
        bad.append(f"{label}: off by {max(errors)} at most, {mean:.1f} on the mean")
c = pixels("c.png", "RGB")
near("png load and save", pixels(f"{lib}_png.png", "RGB"), c, 0)
near("tif save", pixels(f"{lib}_tif.tif", "RGB"), c, 0)
near("jpg save", pixels(f"{lib}_jpg.jpg", "RGB"), pixels("s.png", "RGB"), 6)
near("gif save", pixels(f"{lib}_gif.gif", "RGB"), c, 40)
near("jpg load", pixels(f"{lib}_fromjpg.png", "RGB"), pixels("s.jpg", "RGB"), 3)
near("gif load", pixels(f"{lib}_fromgif.png", "RGB"), pixels("c.gif", "RGB"), 0)
near("tif load", pixels(f"{lib}_fromtif.png", "RGB"), c, 0)
near("gray", pixels(f"{lib}_g.png", "L"), pixels("g.png", "L"), 0)
near("rgba", pixels(f"{lib}_a.png", "RGBA"), pixels("a.png", "RGBA"), 0)
near("16 bit", pixels(f"{lib}_w16.png", "I"), pixels("w16.png", "I"), 0)
for name, magic in [(f"{lib}_jpg.jpg", b"\xff\xd8"), (f"{lib}_gif.gif", b"GIF8"), (f"{lib}_tif.tif", b"II*\0")]:
    if not open(name, "rb").read(4).startswith(magic):
        bad.append(f"{name} is not in its format")
# Disabled, the own code writes: the PNG branch takes the jpg name.
if open(f"{lib}_off.jpg", "rb").read(4) != b"\x89PNG":
    bad.append("with the library disabled, a .jpg is written by the own PNG branch")
for line in bad:
    print(f"FAIL: {lib}: {line}")
sys.exit(1 if bad else 0)
EOF
done

# The options switch both off from the command line: the own code writes.
printf 'debug.no\nimage.24bit\nimage.load "c.ppm"\nimage.save "opt.jpg"\n' > opt.macro
"$BIN" -strict -macro=opt.macro -freeimage=off -imagemagick=off >/dev/null 2>&1
check_eq "$(head -c 4 opt.jpg | od -An -c | tr -d ' ')" "211PNG" "-freeimage=off -imagemagick=off leave the own PNG branch"
finish
