# What the script knows before its first line: thread.max and the command line.
source "$(dirname "$0")/lib.sh"

printf 'debug.no\nprint thread.max\n' > t.macro
out=$("$BIN" -strict -macro=t.macro | script_part)
check_eq "$(sed -n 3p <<<"$out")" "$(nproc)" "thread.max is the processor count"

printf 'debug.no\nprint parameter.foo "/" parameter.last "/" image.input\n' > p.macro
out=$("$BIN" -strict -macro=p.macro -foo=1 bar '-image.input=*.ppm' | script_part)
check_eq "$(sed -n 3p <<<"$out")" "1/bar/*.ppm" "command-line words reach the script"

out=$("$BIN" -strict -macro=p.macro -h); rc=$?
check_eq "$rc" 1 "-h ends with code 1"
check_contains "$out" "Example: voxmill -image.input=*.ppm -image.type=png" "-h shows the example"
check_not_contains "$out" "Script runs..." "-h runs no script"
finish
