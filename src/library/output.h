// Where print and its kin write: the newest redirected output file, or the console.
#pragma once
#include <string_view>

#include "script/tscript.h"

void scriptwrite(tscript& s, std::string_view utf8);
void scriptwriteln(tscript& s, std::string_view utf8);
