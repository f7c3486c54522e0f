# NIfTI files between voxmill and independent readers: nibabel writes every voxel type,
# byte order and form, voxmill loads them and saves what it got, and the voxels are
# compared with the conversion rules computed in numpy; what voxmill writes must load in
# nibabel with the same voxels and affine and pass nifti_tool's header checks.
CLIENTS="$(cd "$(dirname "$0")/.." && pwd)/nifti_clients.py"
source "$(dirname "$0")/lib.sh"

need_python "nibabel, numpy"
generate_and_run
out=$("$PY" "$CLIENTS" check "$WORK" 2>&1) || fail "nibabel's files in voxmill:
$out"
out=$("$PY" "$CLIENTS" written "$WORK" 2>&1) || fail "voxmill's files in nibabel:
$out"

if command -v nifti_tool >/dev/null; then
  for f in out/w_*.nii out/w_*.nii.gz out/w_*.hdr out/type4_le_gray.nii out/type4_le_full.nii; do
    report=$(nifti_tool -check_hdr -check_nim -infiles "$f" 2>&1)
    check_contains "$report" "header IS GOOD" "nifti_tool's header check on $f"
    check_contains "$report" "nifti_image IS GOOD" "nifti_tool's image check on $f"
  done
  # Deviation: mono volumes go out as datatype 1 with the packed bits, which the
  # published readers don't take.
  report=$(nifti_tool -check_hdr -check_nim -infiles out/type4_le_mono.nii 2>&1)
  check_contains "$report" "bad NIFTI datatype in hdr, 1" "deviation: mono .nii carries datatype 1"
else
  fail "nifti_tool is needed (package nifti-bin, tools/install-deps.sh)"
fi
finish
