# Macro files in unusual shapes: gzip, corrupt gzip, very long lines, missing files.
source "$(dirname "$0")/lib.sh"

printf 'debug.no\nprint "from gzip"\nhalt 3\n' | gzip -c > g.macro
out=$("$BIN" -strict -macro=g.macro | script_part); rc=$?
check_contains "$out" "from gzip" "a gzip macro named .macro runs"
check_eq "$rc" 3 "halt 3 in a gzip macro"

printf 'debug.no\nprint "plain but named gz"\n' > p.macro.gz
out=$("$BIN" -strict -macro=p.macro.gz)
check_not_contains "$out" "plain but named gz" "a plain file named .gz is read as gzip and fails"

printf 'debug.no\nprint "x"\n' | gzip -c | head -c 20 > broken.macro
out=$(timeout 20 "$BIN" -strict -macro=broken.macro); rc=$?
check_eq "$rc" 0 "a corrupt gzip macro ends normally"
check_contains "$out" "I/O-Error" "a corrupt gzip macro is reported"
check_not_contains "$out" "Script runs..." "a corrupt gzip macro runs nothing"

{ printf 'debug.no\nprint "'; head -c 100000 /dev/zero | tr '\0' 'a'; printf '"\nprint "after the long line"\n'; } > long.macro
out=$(timeout 20 "$BIN" -strict -macro=long.macro | script_part); rc=$?
check_eq "$rc" 0 "a 100 KB line"
check_contains "$out" "after the long line" "the line behind a 100 KB line runs"
long=$(sed -n 3p <<<"$out")
check_eq "${#long}" 254 "a long parameter is cut to 254 characters"

head -c 300000 /dev/urandom > random.macro
timeout 20 "$BIN" -strict -macro=random.macro >/dev/null 2>&1; rc=$?
[ "$rc" -lt 124 ] || fail "random bytes as a macro: exit code $rc"

finish
