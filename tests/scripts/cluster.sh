# One folder macro run by four processes, each with its share of the parallel loop: every
# file is done exactly once and the outputs equal those of a single run.
MACRO=$(realpath "$(dirname "$0")/../../examples/cluster/smooth_folder.macro")
source "$(dirname "$0")/lib.sh"
/usr/bin/python3 -c "
import numpy as np, nibabel as nib, os
os.mkdir('in')
rng = np.random.default_rng(7)
for i in range(20):
    nib.save(nib.Nifti1Image(rng.integers(0, 3000, (7, 6, 5)).astype(np.int16), np.eye(4)), 'in/v%02d.nii' % i)
"
names=$(ls in)
run_in() {  # directory, then options
  local dir=$1; shift
  mkdir -p "$dir/out"
  (cd "$dir" && "$BIN" -strict -macro="$MACRO" "$@" ../in | script_part)
}

run_in single > single.txt
for part in 0 1 2 3; do run_in split -parallel.part=$part -parallel.total=4 > split$part.txt & done
wait
check_eq "$(ls single/out)" "$names" "a single run writes every file"
done_names=$(cat split?.txt | sed -n 's/^part [0-3] of 4: //p' | sort)
check_eq "$done_names" "$names" "four parts process every file exactly once"
check_eq "$(sed -n 's/^part 2 of 4: //p' split2.txt | tr '\n' ' ')" "v01.nii v05.nii v09.nii v13.nii v17.nii " "part 2 takes the passes 2, 6, 10, ..."
for f in $names; do cmp -s "single/out/$f" "split/out/$f" || fail "$f differs between the single and the split run"; done

out=$(SLURM_ARRAY_TASK_ID=3 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=4 run_in slurm)
check_eq "$(sed -n 's/^part 2 of 4: //p' <<<"$out" | tr '\n' ' ')" "v01.nii v05.nii v09.nii v13.nii v17.nii " "a Slurm array task takes its part"

# Bad pairs: the loop's error, nothing written, code 0 unless +exitcode asks for 1.
for pair in "5 3" "-1 4" "0 -2"; do
  set -- $pair
  out=$(run_in "bad$1$2" -parallel.part=$1 -parallel.total=$2); rc=$?
  check_contains "$out" "Error (Wrong parallel initialization (<$1, $2>)!) in line" "part $1 of $2 is refused"
  check_eq "$(ls "bad$1$2/out")" "" "part $1 of $2 processes nothing"
  check_eq "$rc" 0 "a refused pair ends with code 0 by default"
done
out=$(SLURM_ARRAY_TASK_ID=x SLURM_ARRAY_TASK_COUNT=4 run_in badslurm)
check_contains "$out" "Wrong parallel initialization (<-1, -1>)!" "a Slurm id that is no number is refused"
(cd single && "$BIN" -strict -macro="$MACRO" -parallel.part=x +exitcode ../in >/dev/null); rc=$?
check_eq "$rc" 1 "+exitcode ends with 1 after an error"
(cd single && "$BIN" -strict -macro="$MACRO" -parallel.part=0 -parallel.total=2 +exitcode ../in >/dev/null); rc=$?
check_eq "$rc" 0 "+exitcode ends with 0 after a clean run"
finish
