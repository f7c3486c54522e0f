// The first start: the example macro written as "voxmill.macro", without losing a user's own file.
#pragma once
#include <string>
#include <vector>

// Writes the example macro (the given lines) as "voxmill.macro" and prints the first-run text.
// A "voxmill.macro" that differs from the example is first renamed to "voxmill.macro.bak"
// (or ".bak.2", ".bak.3", ... when that is taken), with one line that says so; if it cannot be
// kept, the example is not written.
void writefirstmacro(const std::vector<std::string>& example);
