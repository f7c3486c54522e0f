// With debug on, each statement prints its call before it runs, so a run reads like a log.
#pragma once
#include "script/tscript.h"

// "  <word>|<p1>|<p2>|" with the parameters of the statement.
void echoline(tscript& s, const utf16& word);
// "  <word>|<text>|" with a text of the caller's choice (for loops: "for|1..3|").
void echotext(tscript& s, const utf16& word, const utf16& text);
// "<target> := [<name>]|<p1>|<p2>|"
void echofunction(tscript& s, const utf16& name);
// "<target> <op> <value>"
void echoassign(tscript& s, const utf16& target, const utf16& op, const utf16& value);
