# The repair dialogue: only with debug on and a console that may be read.
source "$(dirname "$0")/lib.sh"

printf 'print "start"\nfrobnicate 1\nprint "after"\n' > r.macro
out=$(printf 'nop\n' | "$BIN" -macro=r.macro | script_part)
check_contains "$out" "Would you like to change the whole command line?" "the dialogue opens"
check_contains "$out" "after" "nop lets the script go on"
check_not_contains "$out" "Unknown procedure!" "a mended word is no error"

out=$(printf 'print "mended"\n' | "$BIN" -macro=r.macro | script_part)
check_contains "$out" "mended" "a new command line runs in place of the old one"

# An empty answer reloads the line from the file, which the user may have fixed meanwhile.
out=$( (sleep 0.5; sed -i 's/^frobnicate 1$/print "fixed in the file"/' r.macro; printf '\n') | "$BIN" -macro=r.macro | script_part)
check_contains "$out" "fixed in the file" "an empty answer reloads the line"

printf 'print "start"\nfrobnicate 1\nprint "after"\n' > r.macro
out=$(printf 'stop\n' | "$BIN" -macro=r.macro | script_part)
check_contains "$out" "Script stop." "stop ends the script"
check_not_contains "$out" "after" "nothing runs after stop"

printf 'halt\n' | "$BIN" -macro=r.macro >/dev/null; check_eq "$?" 0 "halt from the dialogue"

out=$("$BIN" -strict -macro=r.macro < /dev/null | script_part)
check_not_contains "$out" "Would you like" "no dialogue with -strict"
check_contains "$out" "Syntax error (frobnicate) in line 2 (r.macro)! Unknown procedure!" "the error with -strict"

printf 'debug.no\nfrobnicate 1\n' > q.macro
out=$(printf 'nop\n' | "$BIN" -macro=q.macro | script_part)
check_not_contains "$out" "Would you like" "no dialogue after debug.no"

# Input that ends leaves the dialogue instead of asking forever.
out=$(timeout 10 "$BIN" -macro=r.macro < /dev/null | script_part); rc=$?
check_eq "$rc" 0 "ended input ends the dialogue"
check_contains "$out" "Unknown procedure!" "ended input reports the word"
finish
