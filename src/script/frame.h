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
  utf16 joiner;
  std::vector<utf16> memory;
  int64_t storefile = -1;   // index into s.files while this frame writes a store block
};

struct tkeywordrow {
  const char* word;
  void (*action)(tscript& s, struct tframe& frame);
};

// A statement word of the loop itself; it leaves the number of its last line in s.line.
using tkeywordaction = void (*)(tscript& s, tframe& frame);

// The statement words of each family of the language.
std::vector<tkeywordrow> conditionkeywords();
std::vector<tkeywordrow> loopkeywords();
std::vector<tkeywordrow> definitionkeywords();
std::vector<tkeywordrow> outputkeywords();
std::vector<tkeywordrow> searchkeywords();
// Writes one line of a store block to its file (raw text; @ and @@ lines are processed).
void storeline(tscript& s, tframe& frame, const utf16& raw);
// Runs the block behind the current line as a new frame that writes to output file `file`.
int64_t runstoreblock(tscript& s, const utf16& stackname, int64_t file);

// The action of a keyword, or nullptr when the word is none.
tkeywordaction findkeyword(const utf16& keyword);
// Words that open a block which a pass-over must step over to find the right end.
bool opensblock(const utf16& keyword);
void halt(tscript& s);
void breakscript(tscript& s);
