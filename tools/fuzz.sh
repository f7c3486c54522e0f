#!/usr/bin/env bash
# Builds the libFuzzer targets of tests/fuzz with clang into BUILD_DIR (default build-fuzz/)
# and runs each for FUZZ_SECONDS (default 30) and at most FUZZ_RUNS inputs (default no limit),
# or only those named as arguments. Each starts from its corpus in BUILD_DIR/corpus/<target>,
# seeded by tests/fuzz/seeds.sh. FUZZ_SEED (default 1) fixes the mutations, so that a run is
# a repeatable sequence of inputs: a fresh corpus with the same seed and runs tries the same
# inputs again. A crash, leak, undefined behaviour, timeout or excess memory fails the run; the
# input is kept in BUILD_DIR/findings/ (add it to tests/fuzz/regressions/<target>/ once fixed).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$(realpath -m "${BUILD_DIR:-build-fuzz}")
seconds=${FUZZ_SECONDS:-30}
runs=${FUZZ_RUNS:--1}
seed=${FUZZ_SEED:-1}
CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVOXMILL_FUZZ=ON \
  -DVOXMILL_TESTS=OFF -DVOXMILL_BENCH=OFF >/dev/null
ninja -C "$dir"
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(find "$dir/tests/fuzz" -maxdepth 1 -type f -executable -name 'fuzz_*' -printf '%f\n' | sort)
mkdir -p "$dir/findings"
failed=()
for t in "${targets[@]}"; do
  corpus="$dir/corpus/$t"
  mkdir -p "$corpus"
  bash tests/fuzz/seeds.sh "$t" "$corpus"
  echo "== $t for $seconds s"
  # A run works in its own directory, where the macros of fuzz_macro may write files.
  work="$dir/work/$t"
  rm -rf "$work" && mkdir -p "$work"
  if ! (cd "$work" && ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1 \
        "$dir/tests/fuzz/$t" -max_total_time="$seconds" -runs="$runs" -seed="$seed" -timeout=20 -rss_limit_mb=2560 -print_final_stats=1 \
        -artifact_prefix="$dir/findings/$t-" "$corpus" 2>"$dir/$t.log"); then
    failed+=("$t")
    tail -40 "$dir/$t.log"
  fi
  grep -E '^stat::number_of_executed_units|^stat::peak_rss_mb|^#[0-9]+ *DONE' "$dir/$t.log" || true
done
[ ${#failed[@]} -eq 0 ] || { echo "fuzz findings in: ${failed[*]} (inputs in $dir/findings/)"; exit 1; }
