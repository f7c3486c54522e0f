# "-h WORD" adds the matching commands' lines after the usual help; the update address names this platform.
source "$(dirname "$0")/lib.sh"

plain=$("$BIN" -strict -h); rc=$?
check_eq "$rc" 1 "exit code of -h"
out=$("$BIN" -strict -h histogram.raw); rc=$?
check_eq "$rc" 1 "exit code of -h WORD"
check_eq "$(head -n "$(wc -l <<<"$plain")" <<<"$out" | grep -v '^  : ')" "$(grep -v '^  : ' <<<"$plain")" "the usual help comes first, unchanged"
check_eq "$(sed -n '/^Commands with "histogram.raw":$/,$p' <<<"$out")" 'Commands with "histogram.raw":
image.histogram.raw "histogram.txt" // write value count
scalar.histogram.raw "histogram.txt" // write value count
vector.histogram.raw "histogram.txt" // write value count' "the matching commands"
check_not_contains "$plain" "Commands with" "plain -h lists no commands"
[ -e voxmill.macro ] && fail "help wrote a macro"

check_contains "$plain" "      lines: skein2 text" "the line files are among the formats"
check_contains "$plain" "  -update : Load a new version from https://voxmill.org/download/$(uname -m)-$(uname -s)/" "update address"
check_contains "$plain" " for $(uname -s) ($(uname -m)_" "version line"
finish
