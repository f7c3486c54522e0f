# The diffusion scan on small volumes, every method, statistic, fullscan, cone and the
# reduced and adaptive forms, voxel for voxel against an independent model in Python.
source "$(dirname "$0")/lib.sh"
HERE="$(cd "$(dirname "$0")" && pwd)"
need_python "nibabel, numpy"
PYTHONPATH="$HERE" "$PY" "$HERE/diffusion_fidelity.py" make || fail "making the volumes"
timeout 300 "$BIN" -strict -macro=run.macro > console.txt 2>&1
check_eq "$?" 0 "voxmill ran the macro"
out=$(PYTHONPATH="$HERE" "$PY" "$HERE/diffusion_fidelity.py" check 2>&1) || fail "voxmill and the model differ:
$out"
finish
