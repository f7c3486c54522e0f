// The state of one run of a block: what the if family, case and the output blocks keep.
#pragma once
#include <vector>

#include "script/tscript.h"

struct tframe {
  utf16 rest;               // the line behind its first word
  bool execute = true;      // false while the block is passed over
  bool condition = true;    // written by the if family, read by then and else
  bool loopcondition = true;
  utf16 casevalue;          // written by case, read by of
  utf16 separator;          // the @@ lines of store blocks
  std::vector<utf16> memory;
};

// A statement word of the loop itself; it leaves the number of its last line in s.line.
using tkeywordaction = void (*)(tscript& s, tframe& frame);

// The action of a keyword, or nullptr when the word is none.
tkeywordaction findkeyword(const utf16& keyword);
// Words that open a block which a pass-over must step over to find the right end.
bool opensblock(const utf16& keyword);
void halt(tscript& s);
void breakscript(tscript& s);
