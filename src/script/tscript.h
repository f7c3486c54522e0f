// The script engine object: lines, variables, syntax members and open output files.
#pragma once
#include <cstdint>
#include <deque>
#include <vector>

#include "script/linestore.h"
#include "script/memberindex.h"
#include "script/statementcache.h"
#include "script/variableindex.h"
#include "script/utf16.h"
#include "shell/files.h"

struct tscript;
using thandler = void (*)(tscript&);

// Kind byte of a syntax member: the low nibble says what it is, bits 4..6 how it is called.
enum : uint8_t {
  kind_block = 0x01,
  kind_procedure = 0x02,
  kind_function = 0x03,
  kind_varfunction = 0x04,
  kind_k0 = 0x02,  // procedure, handler without arguments
  kind_k1 = 0x12,  // procedure, handler gets the script
  kind_k2 = 0x13,  // function with parameters
  kind_k4 = 0x14,  // variable function
};
inline uint8_t lownibble(uint8_t kind) { return kind & 0x0F; }

// A built-in command or a procedure or function that a script defined.
struct tmember {
  utf16 name;  // full name: lower case, blanks made into '.', prefix in front
  uint8_t kind = 0;
  thandler handler1 = nullptr;
  thandler handler2 = nullptr;
  int64_t bodyline = 0;  // line of the header for script members; 0 for built-ins
  int64_t usecount = 0;
  utf16 text1, text2, text3;
  int64_t level = 0;
};

// A number given to a variable and not printed yet: it is printed at the first read, in the
// number format of the moment it was given, so a loop variable that no one reads costs no
// printing.
struct tpendingnumber {
  enum : uint8_t { none, nat, real } kind = none;
  bool scientific = false, decimal = true, digit = false;
  int64_t natvalue = 0;
  double realvalue = 0;
};

struct tvariable {
  utf16 name;  // lower case, blanks made into '.'
  mutable utf16 value;  // at most 254 characters; read it through variablevalue
  int64_t level = 0;
  mutable tpendingnumber pending;
};

// An output file of a store/append block or of output.store.
struct toutputfile {
  utf16 name;
  int64_t level = 0;
  tfile file;
  bool redirect = false;  // print and dumps go here while it is the newest entry
  bool appending = false;
};

// Parameter kinds, as splitparams assigns them.
enum : uint8_t {
  param_plain = 0,
  param_literal = 1,
  param_quoted = 2,
  param_bracketed = 3,
  param_element = 4,
  param_function = 8,
  param_varfunction = 9,
};

struct tscript {
  utf16field prefix;
  utf16field lasterror;
  utf16field target;
  utf16field result;
  utf16field keyword;

  std::vector<tmember> members;  // changed only through the registry, which keeps the index
  tmemberindex memberindex;
  std::vector<int64_t> modulestart, modulelevel;
  std::vector<tvariable> variables;  // changed only through variables.cpp, which keeps the index
  mutable tvariableindex variableindex;  // brought up to date by lookups too
  std::vector<utf16> withnames;
  std::vector<int64_t> withlevels;
  std::vector<toutputfile> files;

  int64_t level = 0;
  std::vector<utf16> blocknames;
  std::vector<utf16> redo;
  std::deque<utf16> undo;  // the last 100 procedure names called: the oldest goes at each call
  bool running = false;
  bool halted = false;
  int64_t parallelpart = 0, paralleltotal = 0;

  tlinestore store;
  int64_t line = 0;

  std::vector<utf16> params;
  std::vector<uint8_t> paramkinds;
  std::vector<utf16> rawparams;
  std::vector<uint8_t> rawparamkinds;
  utf16 paramtext;              // the text of the last split, for the raw split on demand
  bool rawparamsready = false;
  tstatementcache cache;

  bool debug = true;           // echo of statements and syntax repair
  bool repairallowed = true;   // the repair dialogue may open
  // Lines a run may still execute before it halts, -1 for no limit: a caller that cannot wait
  // for the loops without end that the language allows (a fuzzer) bounds them with it.
  int64_t linebudget = -1;
};

// The one engine of the program; sub-scripts of "run" make engines of their own.
extern tscript script;
