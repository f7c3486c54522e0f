// The repair dialogue for an unknown word: only with debug on and a console that may be read.
#pragma once
#include "script/tscript.h"

// Asks the user for a replacement of an unknown procedure name. On true, `name` is the new
// name and the parameters are split anew; false when no dialogue may open or the input ended.
bool repair(tscript& s, utf16& name);
