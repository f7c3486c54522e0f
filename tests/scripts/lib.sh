# Shared helpers of the script tests: a fresh working directory and checks that name the fault.
set -uo pipefail  # a pipe's status is the program's, not that of the last filter
BIN=$(realpath "$1")
WORK=$(mktemp -d /tmp/voxmill-script-XXXXXX)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"
FAILS=0
fail() { echo "FAIL: $*"; FAILS=$((FAILS + 1)); }
check_eq() { [ "$1" == "$2" ] || fail "$3: got [$1], expected [$2]"; }
check_contains() { grep -qF -- "$2" <<<"$1" || fail "$3: [$2] not in output"; }
check_not_contains() { ! grep -qF -- "$2" <<<"$1" || fail "$3: [$2] should not be in output"; }
# The console text behind the option header, progress lines removed.
script_part() { sed -n '/^Script runs\.\.\./,$p' | tr -d '\r'; }
finish() { [ "$FAILS" -eq 0 ] && echo "all checks passed" || exit 1; }
# The independent readers run under Debian's Python; a missing module is one failure.
PY=/usr/bin/python3
# A client test's round: CLIENTS makes the files and run.macro in $WORK, voxmill runs the
# macro within $1 seconds (default 300).
generate_and_run() {
  "$PY" "$CLIENTS" generate "$WORK" 2>gen.err || fail "generating the files: $(head -5 gen.err)"
  timeout "${1:-300}" "$BIN" -strict -macro=run.macro > console.txt 2>&1; local rc=$?
  check_eq "$rc" 0 "voxmill ran the macro"
}
need_python() { "$PY" -c "import $1" 2>/dev/null || { fail "Python modules $1 are needed (tools/install-deps.sh installs them)"; finish; }; }
need_tool() { command -v "$1" >/dev/null || { fail "$1 is needed (tools/install-deps.sh installs it)"; finish; }; }
