# The command line and the ini file: quoting, precedence, help, log and update.
source "$(dirname "$0")/lib.sh"
cp "$BIN" ./voxmill
BIN=$PWD/voxmill

printf 'debug.no\nprint "[" parameter.name "][" parameter.quoted "][" parameter.fromini "][" parameter.both "]"\nprint "[" image.input "][" image.type "][" mesh.translate "]"\n' > o.macro
printf 'fromini=ini value\n-both=from ini\nimage.type=TGA\n' > voxmill.ini
out=$("$BIN" -strict -macro=o.macro -name=plain '-quoted="a ""b"" c"' -both=cmd '-mesh.transform=<1, 2, 3>' | script_part)
check_eq "$(sed -n 3p <<<"$out")" '[plain][a "b" c][ini value][cmd]' "option values from the command line and the ini file"
check_eq "$(sed -n 4p <<<"$out")" '[image.ppm][tga][<1, 2, 3>]' "declared options as variables; mesh.transform kept as mesh.translate"

printf 'x=1\n' > other.ini
out=$("$BIN" -strict -macro=o.macro -optionsfile=other.ini | script_part)
check_eq "$(sed -n 4p <<<"$out")" '[image.ppm][png][]' "-optionsfile replaces the default ini file"

out=$("$BIN" -strict -macro=o.macro -optionsfile=missing.ini); rc=$?
check_eq "$rc" 0 "a missing ini file is passed over"

out=$("$BIN" -strict '-?' < /dev/null); rc=$?
check_eq "$rc" 1 "-? ends with code 1"
check_contains "$out" "*** press enter ***" "-? asks for enter"
check_contains "$out" "  -image.input : image input file = image.ppm" "help line of a text option"
check_contains "$out" "  +/-first : Write first macro file example = off" "help line of a boolean option"
check_contains "$out" "      HDR, NII, gz NII, FLD, AM" "format notes in the help"
check_contains "$out" "      HDR, NII, gz NII, NHDR, NRRD" "tensor output notes"
check_contains "$out" "      HDR, NII, gz NII, TXT, image stacks with *" "vector input notes: what loads"
out=$(printf '\n' | timeout 10 "$BIN" '-?'); rc=$?
check_eq "$rc" 1 "-? waits for enter on a console, then ends with 1"

rm -f voxmill.log
"$BIN" -strict -macro=o.macro -logfile >/dev/null
[ -f voxmill.log ] || fail "-logfile writes the log beside the program"
grep -q "Script ends." voxmill.log || fail "the log holds the run"
grep -q "Done (" voxmill.log || fail "the log is closed with its time"

out=$("$BIN" -strict -macro=o.macro -verbose=off | script_part)
check_eq "$out" "" "-verbose=off silences the console"

# -update with a stand-in for wget: no network is touched.
printf '#!/bin/sh\nexit 4\n' > fakewget; chmod +x fakewget
out=$(VOXMILL_WGET=$PWD/fakewget "$BIN" -update); rc=$?
check_eq "$rc" 0 "-update ends with code 0"
check_contains "$out" "Network failure." "wget's exit code 4 is explained"
check_not_contains "$out" "Script runs" "-update runs no script"
printf '#!/bin/sh\nexit 0\n' > fakewget
out=$(VOXMILL_WGET=$PWD/fakewget "$BIN" -update)
check_contains "$out" "You can find the new file at \"$BIN.n\"." "a successful update names the new file"
out=$(VOXMILL_WGET=$PWD/nowhere "$BIN" -update)
check_contains "$out" "Wget not found!" "a missing wget is reported"
finish
