# Mutants of small valid raster files (PNM, PAM, BMP, TGA, TIFF, PNG, GIF, JPEG): flipped
# bytes, huge numbers in the header, cut tails. All load in one script with FreeImage and
# ImageMagick enabled; whatever a mutant does, the script reaches its end in time.
source "$(dirname "$0")/lib.sh"
need_python "PIL"
$PY - <<'PY'
import io, random
from PIL import Image
random.seed(27)
rgb = Image.new("RGB", (13, 7))
rgb.putdata([(random.randrange(256), random.randrange(256), random.randrange(256)) for _ in range(13 * 7)])
seeds = {}
for ext, image, options in [("ppm", rgb, {}), ("pgm", rgb.convert("L"), {}), ("pbm", rgb.convert("1"), {}),
                            ("bmp", rgb, {}), ("tga", rgb, {}), ("tif", rgb, {}), ("png", rgb, {}),
                            ("gif", rgb, {}), ("jpg", rgb, {"quality": 90})]:
    out = io.BytesIO()
    image.save(out, format={"jpg": "JPEG", "tif": "TIFF", "pgm": "PPM", "pbm": "PPM"}.get(ext, ext.upper()), **options)
    seeds[ext] = out.getvalue()
seeds["pam"] = b"P7\nWIDTH 13\nHEIGHT 7\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n" + bytes(range(256)) * 2
seeds["ppm.txt"] = b"P3\n2 2\n255\n" + b"1 2 3 " * 4
huge = [b"100000000000000000000000000000", b"4294967295", b"65535", b"0", b"-1", b"99999"]
names = []
for n in range(360):
    ext = sorted(seeds)[n % len(seeds)]
    data = bytearray(seeds[ext])
    kind = random.randrange(4)
    if kind == 0:  # a few flipped bytes in the first hundred
        for _ in range(random.randint(1, 4)):
            data[random.randrange(min(100, len(data)))] = random.randrange(256)
    elif kind == 1:  # extreme values in a header field
        at = random.randrange(2, min(40, len(data) - 4))
        if ext in ("ppm", "pgm", "pbm", "pam", "ppm.txt"):
            data[at:at + 2] = random.choice(huge)
        else:
            data[at:at + 4] = random.choice([b"\xff\xff\xff\xff", b"\xff\xff\xff\x7f", b"\x00\x00\x00\x80", b"\x00\x00\x00\x00"])
    elif kind == 2:  # the tail cut off
        del data[random.randrange(8, len(data)):]
    else:  # a run of bytes overwritten
        at = random.randrange(len(data))
        data[at:at + random.randint(1, 16)] = bytes([random.randrange(256)]) * 16
    name = "m%03d.%s" % (n, ext.split(".")[0])
    open(name, "wb").write(bytes(data))
    names.append(name)
with open("mutants.macro", "w") as m:
    m.write("debug.no\n")
    for i, name in enumerate(names):
        m.write("image.%dbit\nimage.load \"%s\"\n" % ([8, 16, 24, 32][i % 4], name))
    m.write("print \"all \" image.size\n")
PY
timeout 120 "$BIN" -strict -macro=mutants.macro >out 2>err
check_eq "$?" 0 "exit code"
check_eq "$(grep -o 'Read file (m' out | wc -l)" 360 "every mutant was read"
check_eq "$(script_part <out | tail -1)" "Script ends." "the script's end"
check_eq "$(cat err)" "" "standard error"
finish
