# Damaged raster files whose headers claim far more than the file holds, loaded with
# FreeImage and ImageMagick enabled: each ends in the own reader's usual line and an empty
# field, at once and without a large allocation, and the script goes on.
source "$(dirname "$0")/lib.sh"
/usr/bin/python3 - <<'PY'
import struct, zlib
def put(name, data): open(name, "wb").write(data)
def chunk(kind, data): return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
put("wide.pbm", b"P1\n100000000000000000000000000000 2\n" + b"0 1 " * 100)
head = b"P5\n100000000000000000000000000000 3\n255\n"
put("wide.pgm", head + bytes(456 - len(head)))
put("wide4.pbm", b"P4\n10000000000 3\n" + bytes(64))
head = struct.pack("<BBBHHBHHHHBB", 0, 0, 10, 0, 0, 0, 0, 0, 32781, 32768, 24, 0)
put("huge.tga", head + bytes(395 - len(head)))
put("huge.bmp", b"BM" + struct.pack("<IHHI", 200, 0, 0, 54) + struct.pack("<IiiHHIIiiII", 40, 60000, 60000, 1, 24, 0, 0, 0, 0, 0, 0) + bytes(146))
put("huge.png", b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 1000000, 1000000, 8, 2, 0, 0, 0))
    + chunk(b"IDAT", zlib.compress(bytes(3000))) + chunk(b"IEND", b""))
entries = [(256, 4, 3000000), (257, 4, 3000000), (258, 3, 8), (273, 4, 70)]
put("huge.tif", b"II*\x00" + struct.pack("<IH", 8, len(entries)) + b"".join(struct.pack("<HHII", t, k, 1, v) for t, k, v in entries) + bytes(44))
put("huge.gif", b"GIF89a" + struct.pack("<HHBBB", 65535, 65535, 0, 0, 0) + b",\x00\x00\x00\x00\xff\xff\xff\xff\x00\x08\x02\x4c\x01\x00;")
put("huge.jpg", b"\xff\xd8\xff\xc0" + struct.pack(">HBHHB", 11, 8, 65000, 65000, 1) + b"\x01\x11\x00\xff\xd9")
put("huge.pam", b"P7\nWIDTH 100000\nHEIGHT 100000\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n" + bytes(100))
PY
cat > hostile.macro <<'EOF'
debug.no
image.8bit
image.load "wide.pbm"
image.load "wide.pgm"
image.load "wide4.pbm"
image.load "huge.tga"
image.load "huge.bmp"
image.load "huge.png"
image.load "huge.tif"
image.load "huge.gif"
image.load "huge.jpg"
image.32bit
image.load "huge.pam"
print "next line " image.size
EOF
expected='Script runs...
  debug.no|
Read file (wide.pbm).
Wrong file size (436).
Read file (wide.pgm).
Wrong file size (456).
Read file (wide4.pbm).
  Bad Magic Identifier (4)!
Read file (huge.tga).
  Couldn'"'"'t read File (huge.tga)! Create empty field.
Read file (huge.bmp).
Wrong file size (200).
Read file (huge.png).
  Couldn'"'"'t read File (huge.png)! Create empty field.
Read file (huge.tif).
  Couldn'"'"'t read File (huge.tif)! Create empty field.
Read file (huge.gif).
  Couldn'"'"'t read File (huge.gif)! Create empty field.
Read file (huge.jpg).
  Couldn'"'"'t read File (huge.jpg)! Create empty field.
Read file (huge.pam).
Wrong file size (175).
next line <0, 0>
Script ends.'
status=$("$BIN" -strict -h 2>&1)
grep -qF "FreeImage (" <<<"$status" || echo "note: FreeImage is not installed"
grep -qF "Imagemagick® (" <<<"$status" || echo "note: ImageMagick is not installed"
# Peak memory in kilobytes, the program's and its children's.
/usr/bin/time -f %M -o peak timeout 60 "$BIN" -strict -macro=hostile.macro >out 2>err
check_eq "$?" 0 "exit code"
check_eq "$(script_part <out | sed 's/\x1b\[[0-9;]*m//g')" "$expected" "console"
check_eq "$(cat err)" "" "standard error"
[ "$(tail -1 peak)" -lt 300000 ] || fail "peak memory $(tail -1 peak) kB"
finish
