# Every snippet of the user guide runs without an error, and a line marked "// → text" prints
# that text, in the order of the marks.
source "$(dirname "$0")/lib.sh"
GUIDE=$(realpath "$(dirname "$0")/../../docs/guide.md")
/usr/bin/python3 - "$GUIDE" <<'PY' || fail "cutting the snippets"
import re, sys
blocks = re.findall(r"^```\n(.*?)^```$", open(sys.argv[1]).read(), re.S | re.M)
for i, block in enumerate(blocks, 1):
    open(f"snippet{i}.macro", "w").write("debug.no\n" + block)
    open(f"snippet{i}.want", "w").write("".join(m + "\n" for m in re.findall(r"// → (.*)$", block, re.M)))
PY
n=0
for macro in snippet*.macro; do
  n=$((n + 1))
  out=$("$BIN" -strict -macro="$macro" | script_part)
  check_not_contains "$out" "rror" "$macro runs cleanly"
  # The marked lines, in order, among the printed ones.
  got=$(grep -xFf "${macro%.macro}.want" <<<"$out")
  [ -s "${macro%.macro}.want" ] && check_eq "$got" "$(cat "${macro%.macro}.want")" "what $macro prints"
done
[ "$n" -ge 7 ] || fail "only $n snippets found"
finish
