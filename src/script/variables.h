// Variables (names with a text, dynamically scoped, dying with their block), the split of a
// statement into parameters, and the assignment statements.
#pragma once
#include <cstdint>
#include <vector>

#include "script/tscript.h"

void setvar(tscript& s, const utf16& name, const utf16& value);
void setglobal(tscript& s, const utf16& name, const utf16& value, int64_t level);
void newlocal(tscript& s, const utf16& name, const utf16& value);
// newlocal with a number, printed (in the number format of now) only when it is read; the
// name must be plain (lower case, no blanks, a cell at most), as the loops' names are.
void newlocalnat(tscript& s, const utf16& name, int64_t value);
void newlocalreal(tscript& s, const utf16& name, double value);
utf16 getvar(const tscript& s, const utf16& name);
const utf16& variablevalue(const tvariable& v);
int64_t hasvar(const tscript& s, const utf16& name);  // index from 0, or -1
// Sets a variable without the checks of an assignment (for the engine's own variables).
void setvarquiet(tscript& s, const utf16& name, const utf16& value);

// The same for a name that is already lower case without blanks.
void storevariable(tscript& s, const utf16& key, const utf16& value);

// Drops every variable of level and above, wherever it stands.
void forgetvariables(tscript& s, int64_t level);
// Closes the current level: members, modules, variables, with entries and files of it go.
void closelevel(tscript& s);

// Splits rest into s.params with their kinds and substitutes them.
void splitparams(tscript& s, const utf16& rest);
// The cut of a parameter text into words with kinds, as splitparams makes it, for texts
// without "@" whose cut may be kept while the members are unchanged; false for a text
// whose cut depends on the number settings.
bool cutparams(const tscript& s, const utf16& text, std::vector<utf16>& words, std::vector<uint8_t>& kinds);
// Sets s.params from such a cut of text and substitutes them, as splitparams would.
void setparams(tscript& s, const utf16& text, const std::vector<utf16>& words, const std::vector<uint8_t>& kinds);
// The second split (< and > protect no blanks), made on demand from the text of the last split.
void splitrawparams(tscript& s);
utf16 joinparams(const tscript& s, const utf16& separator);
// Replaces a plain word by the value of the variable of that name, chained through older ones.
utf16 substituteword(const tscript& s, const utf16& word);
// "@name" macro substitution over all variables.
utf16 macrosubstitute(const tscript& s, const utf16& text);

// The statements var, local, global (by prefix of the keyword) and "target op ...".
void varstatement(tscript& s, const utf16& keyword, const utf16& rest);
void assignment(tscript& s, const utf16& firstword, const utf16& rest);
// The same for a statement of the loop, made once and kept while the members are unchanged.
void assignment(tscript& s, tstatement& statement);
