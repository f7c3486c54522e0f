// The repair dialogue for an unknown word: only with debug on and a console that may be read.
#pragma once
#include "script/tscript.h"

// The word the user typed in place of an unknown one, or an empty text.
utf16 repairword(tscript& s, const utf16& word);
