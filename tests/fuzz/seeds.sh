#!/usr/bin/env bash
# Writes the starting inputs of fuzz target $1 into directory $2: small valid files of what
# it reads, the damaged files of tests/data/hostile, and the inputs that once broke it
# (tests/fuzz/regressions/$1). A target without seeds starts empty.
set -euo pipefail
root="$(cd "$(dirname "$0")/../.." && pwd)"
out=$2
if [ -d "$root/tests/fuzz/regressions/$1" ]; then cp "$root/tests/fuzz/regressions/$1"/* "$out/"; fi
case "$1" in
  fuzz_macro)
    for m in $(find "$root/tests/macro" -name '*.macro' -size -3k); do
      cp "$m" "$out/$(basename "$(dirname "$m")")_$(basename "$m")"
    done ;;
  fuzz_images)
    /usr/bin/python3 "$root/tests/fuzz/image_seeds.py" "$root/tests/data/hostile" "$out" ;;
  fuzz_nifti)
    /usr/bin/python3 - "$out" <<'PY'
import sys, nibabel, numpy
for kind in ("int16", "uint8", "float32"):
    image = nibabel.Nifti1Image(numpy.arange(24, dtype=kind).reshape(2, 3, 4), numpy.eye(4))
    nibabel.save(image, f"{sys.argv[1]}/seed_{kind}.nii")
PY
    ;;
  fuzz_meshes)
    printf 'v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n' >"$out/seed.obj"
    printf 'ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\nelement face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n' >"$out/seed.ply"
    printf 'solid s\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\nendsolid s\n' >"$out/seed.stl" ;;
  fuzz_vectorfiles)
    # The first byte picks the storage kind; a vector, a tensor and a pair text follow.
    /usr/bin/python3 - "$out" <<'PY'
import io, sys, nibabel, numpy
for name, n, intent in (("vector", 3, "vector"), ("tensor", 6, "symmetric matrix")):
    image = nibabel.Nifti1Image(numpy.arange(2 * 3 * 2 * n, dtype="float32").reshape(2, 3, 2, 1, n), numpy.eye(4))
    image.header.set_intent(intent, (3,) if n == 6 else ())
    with open(f"{sys.argv[1]}/seed_{name}.nii", "wb") as f:
        f.write(b"\0" + image.to_bytes())
open(f"{sys.argv[1]}/seed_pairs.txt", "wb").write(b"\1<1, 2, 3>\n<1.5, 2, 2>\n\n<2, 2, 3>\n<2, 3, 3>\n\n")
PY
    ;;
  fuzz_volumes)
    # The device and foreign files of the volume client test, each whole.
    tmp=$(mktemp -d)
    /usr/bin/python3 "$root/tests/volume_clients.py" generate "$tmp" >/dev/null
    find "$tmp" -maxdepth 1 -type f ! -name '*.json' ! -name '*.macro' -exec cp {} "$out/" \;
    rm -rf "$tmp" ;;
esac
