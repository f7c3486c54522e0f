# The damaged raster files of tests/data/hostile, whose headers claim far more than the file
# holds, loaded with FreeImage and ImageMagick enabled: each ends in the own reader's usual
# line and an empty field, at once and without a large allocation, and the script goes on.
hostile=$(realpath "$(dirname "$0")/../data/hostile")
source "$(dirname "$0")/lib.sh"
cp "$hostile"/*.* .
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
