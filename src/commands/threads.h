// The worker count that handlers hand to the operations, which take it as a plain number.
#pragma once
#include <cstdint>

#include "script/tscript.h"

// round(thread.max), at least 1; read at each command since a macro may change it.
int64_t threadlimit(const tscript& s);
