// The statement loop: one recursive routine walks lines to the end of a block.
#pragma once
#include <cstdint>

#include "script/tscript.h"

// Runs the whole store; does nothing without lines or, unless told otherwise, without
// registered members (a sub-script of run has none and runs all the same).
void runscript(tscript& s, bool needmembers = true);
// Walks from the line behind `line` to the end of the block; returns the line at which it
// stopped (its end or until, or the last line). With execute false the block is passed over.
int64_t run(tscript& s, int64_t line, bool execute);
// Runs the block behind the current line under a stack name; returns the line of its end.
int64_t runblock(tscript& s, const utf16& stackname, bool execute);
// The text of line n prepared for the loop: trimmed, comment cut; empty for nothing to do.
utf16 preparedline(const tscript& s, int64_t n);
