"""Writes the damaged raster files beside this script: headers that claim far more than the
file holds, each a crash, a hang or a huge allocation once for some decoder. Run once; the
files are kept in the repository."""
import os
import struct
import zlib

os.chdir(os.path.dirname(os.path.abspath(__file__)))


def put(name, data):
    with open(name, "wb") as f:
        f.write(data)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


put("wide.pbm", b"P1\n100000000000000000000000000000 2\n" + b"0 1 " * 100)
head = b"P5\n100000000000000000000000000000 3\n255\n"
put("wide.pgm", head + bytes(456 - len(head)))
put("wide4.pbm", b"P4\n10000000000 3\n" + bytes(64))
head = struct.pack("<BBBHHBHHHHBB", 0, 0, 10, 0, 0, 0, 0, 0, 32781, 32768, 24, 0)
put("huge.tga", head + bytes(395 - len(head)))
put("huge.bmp", b"BM" + struct.pack("<IHHI", 200, 0, 0, 54)
    + struct.pack("<IiiHHIIiiII", 40, 60000, 60000, 1, 24, 0, 0, 0, 0, 0, 0) + bytes(146))
put("huge.png", b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 1000000, 1000000, 8, 2, 0, 0, 0))
    + chunk(b"IDAT", zlib.compress(bytes(3000))) + chunk(b"IEND", b""))
entries = [(256, 4, 3000000), (257, 4, 3000000), (258, 3, 8), (273, 4, 70)]
put("huge.tif", b"II*\x00" + struct.pack("<IH", 8, len(entries))
    + b"".join(struct.pack("<HHII", t, k, 1, v) for t, k, v in entries) + bytes(44))
put("huge.gif", b"GIF89a" + struct.pack("<HHBBB", 65535, 65535, 0, 0, 0)
    + b",\x00\x00\x00\x00\xff\xff\xff\xff\x00\x08\x02\x4c\x01\x00;")
put("huge.jpg", b"\xff\xd8\xff\xc0" + struct.pack(">HBHHB", 11, 8, 65000, 65000, 1) + b"\x01\x11\x00\xff\xd9")
put("huge.pam", b"P7\nWIDTH 100000\nHEIGHT 100000\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n" + bytes(100))
