# The scan of one voxel as pictures: on a noisy tube along x the sphere map marks the one
# direction of lowest SD (rings in the map's lowest and highest value, the tie count "1" at
# the top left) near the x pole of the map, the 8-bit copy is the map capped at 255, and the
# tie count and window sweeps are charts that xmllint accepts, with their axis titles.
source "$(dirname "$0")/lib.sh"
$PY -c "
import numpy as np, nibabel as nib
n = 32
z, y, x = np.mgrid[0:n, 0:n, 0:n]
d = np.sqrt((y - 16) ** 2 + (z - 16) ** 2)
v = np.where(d < 5, 200 - 10 * d + np.random.default_rng(1).normal(0, 3, d.shape), 0).clip(0, 255)
nib.save(nib.Nifti1Image(v.astype(np.uint8).transpose(2, 1, 0), np.eye(4)), 'tube.nii')"
cat > run.macro <<'EOF2'
debug.no
scalar.load "tube.nii"
scalar.diffusion.map "map.pgm" 8 <16, 16, 16>
scalar.diffusion.histogram "ties.svg" <16, 16, 16>
scalar.diffusion.sd "windows.svg" <16, 16, 16>
EOF2
timeout 60 "$BIN" -strict -macro=run.macro > console.txt 2>&1 || fail "voxmill ran the macro"
for f in ties.svg windows-mean.svg windows-sd.svg; do xmllint --noout "$f" 2>/dev/null || fail "$f is well-formed SVG"; done
for pair in "ties.svg:number of maximas" "windows-mean.svg:minimal &amp; maximal Mean" "windows-sd.svg:minimal &amp; maximal SD"; do
  grep -qF "${pair#*:}" "${pair%%:*}" || fail "${pair%%:*} has the title ${pair#*:}"
  grep -qF "scansize" "${pair%%:*}" || fail "${pair%%:*} has the x title scansize"
done
out=$($PY - <<'EOF2'
import numpy as np
from PIL import Image
m = np.array(Image.open("map.pgm")).astype(int)
low = np.array(Image.open("map-low.pgm")).astype(int)
print("side", m.shape[0], m.shape[1])
print("low copy", "capped" if (low == np.minimum(m, 255)).all() else "differs")
top = m.max()
text = m[0:16, 0:8] == top
print("tie count drawn", "yes" if text.sum() >= 6 else "no")
# The outer ring away from the text: its rows lie around the equator (row R*pi/2 = 12.6).
ring = np.argwhere(m == top)
ring = ring[(ring[:, 1] >= 8) | (ring[:, 0] >= 16)]
print("ring rows", "equator" if len(ring) and abs(ring[:, 0].mean() + 1 - 12.6) < 3 else ring[:, 0].mean())
EOF2
)
check_eq "$out" "side 25 25
low copy capped
tie count drawn yes
ring rows equator" "the sphere map"
finish
