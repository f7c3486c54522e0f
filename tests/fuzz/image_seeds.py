"""Seeds of fuzz_images: small valid raster files and the damaged ones of argv[1], each behind
the byte that makes the target read it with the reader of its format (low byte % 11) into
each field kind (high nibble % 5)."""
import io
import os
import sys

from PIL import Image

readers = {"pbm": (0, 10), "pgm": (0, 10), "ppm": (0, 10), "pam": (0, 10), "bmp": (1,), "png": (5,),
           "tif": (6,), "tga": (7,), "gif": (8,), "jpg": (9,)}


def selector(reader, kind):
    return next(b for b in range(256) if b % 11 == reader and (b >> 4) % 5 == kind)


files = {}
rgb = Image.linear_gradient("L").resize((9, 5)).convert("RGB")
for ext, image in [("ppm", rgb), ("pgm", rgb.convert("L")), ("pbm", rgb.convert("1")), ("bmp", rgb),
                   ("tga", rgb), ("tif", rgb), ("png", rgb), ("gif", rgb), ("jpg", rgb)]:
    data = io.BytesIO()
    image.save(data, format={"jpg": "JPEG", "tif": "TIFF", "pgm": "PPM", "pbm": "PPM"}.get(ext, ext.upper()))
    files["valid." + ext] = data.getvalue()
for name in sorted(os.listdir(sys.argv[1])):
    if name.split(".")[-1] in readers:
        files[name] = open(os.path.join(sys.argv[1], name), "rb").read()
for name, data in files.items():
    for reader in readers[name.split(".")[-1]]:
        for kind in range(5):
            with open(os.path.join(sys.argv[2], f"{name}.{reader}.{kind}"), "wb") as out:
                out.write(bytes([selector(reader, kind)]) + data)
