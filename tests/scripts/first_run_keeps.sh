# The first start keeps a user's own voxmill.macro under a .bak name before writing the example.
source "$(dirname "$0")/lib.sh"

printf 'print "my own job"\n' > voxmill.macro
out=$("$BIN" -strict -macro=nosuch.macro); rc=$?
check_eq "$rc" 0 "exit code"
check_contains "$out" "Your voxmill.macro is kept as voxmill.macro.bak." "the line that says where it went"
check_contains "$out" "This is your first run of the program, please specify the file voxmill.macro!" "first-run text"
check_eq "$(cat voxmill.macro.bak)" 'print "my own job"' "the user's macro kept whole"
check_eq "$(sed -n 1p voxmill.macro)" "//!./voxmill // Version: 8.12.18" "the example was written"

# The example itself is nothing to keep: writing it again makes no backup.
out=$("$BIN" -strict -first)
check_not_contains "$out" "is kept as" "no backup of the example"
[ -e voxmill.macro.bak.2 ] && fail "the example was backed up"

# Taken backup names are numbered on; an example edited by the user counts as the user's.
echo 'print "edited"' >> voxmill.macro
"$BIN" -strict -first >/dev/null
printf 'print "third"\n' > voxmill.macro
out=$("$BIN" -strict -first)
check_contains "$out" "Your voxmill.macro is kept as voxmill.macro.bak.3." "third backup"
check_eq "$(tail -n 1 voxmill.macro.bak.2)" 'print "edited"' "the edited example kept"
check_eq "$(cat voxmill.macro.bak.3)" 'print "third"' "third backup kept"
check_eq "$(cat voxmill.macro.bak)" 'print "my own job"' "first backup untouched"
finish
