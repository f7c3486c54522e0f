# First start writes the example macro; -first overwrites it; -macro chooses another file.
source "$(dirname "$0")/lib.sh"

out=$("$BIN" -strict); rc=$?
check_eq "$rc" 0 "exit code of a first run"
check_contains "$out" "This is your first run of the program, please specify the file voxmill.macro!" "first-run text"
check_not_contains "$out" "Script runs..." "the example is not run"
[ -f voxmill.macro ] || fail "voxmill.macro was not written"
check_eq "$(sed -n 1p voxmill.macro)" "//!./voxmill // Version: 8.12.18" "example line 1"
check_eq "$(sed -n 2p voxmill.macro)" "// This is a list of voxmill commands - you can use this macro like a programing language" "example line 2"
check_eq "$(sed -n 5,7p voxmill.macro)" $'io.file.remove "voxmill.macro" // remove old command list\nexecute ./voxmill // make new command list\nhalt // Do not interpret the rest' "example lines 5 to 7"
check_eq "$(tail -n 1 voxmill.macro)" "// For more line commands, look at Skein2!" "example last line"
grep -q '^print "Hello world!" // ' voxmill.macro || fail "the print command is not documented in the example"
# every line but the header is a comment or a documented command
bad=$(sed -n '8,$p' voxmill.macro | grep -v '^//' | grep -v ' // ' | head -n 3)
check_eq "$bad" "" "undocumented lines in the example"

# An existing macro runs; -first overwrites voxmill.macro and does not run anything.
printf 'debug.no\nprint "mine"\n' > voxmill.macro
out=$("$BIN" -strict)
check_contains "$out" "mine" "an existing voxmill.macro runs"
printf 'print "other"\n' > x.macro
out=$("$BIN" -strict -first -macro=x.macro)
check_contains "$out" "This is your first run" "-first prints the first-run text"
check_not_contains "$out" "other" "-first runs nothing"
check_eq "$(sed -n 1p voxmill.macro)" "//!./voxmill // Version: 8.12.18" "-first overwrote voxmill.macro"

for form in '-macro="x.macro"' "-macro='x.macro'" '-macro=x.macro'; do
  out=$("$BIN" -strict "$form" | script_part)
  check_contains "$out" "other" "macro chosen by $form"
done

# Running the example macro itself ends with code 0.
"$BIN" -strict -first >/dev/null
"$BIN" -strict >/dev/null 2>&1; rc=$?
check_eq "$rc" 0 "the example macro ends with code 0"
finish
