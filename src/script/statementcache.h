// What the statement loop may keep between passes over the same text: a line's first word
// and rest and what the loop makes of them (they change only when the store does), and the
// cut of a parameter text into words with their kinds (they change only when the members
// do). Substitution, which reads the variables, is never cached.
#pragma once
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "script/memberindex.h"

struct tscript;
struct tframe;

// The words the loop itself handles before any dispatch.
enum class tflow : uint8_t { none, empty, halt, brk, end, begin };
// Where the dispatch sends a statement: a keyword of the loop, var/local/global, an
// assignment or a procedure call.
enum class tform : uint8_t { keyword, variable, assignment, call };
// The one-line branch forms "then <statement>", "else <statement>", "of <value> <statement>".
enum class toneline : uint8_t { none, then, otherwise, of };

// An assignment whose target and parameter text hold no "@" and whose cut into words is
// fixed while the members are unchanged: everything but the substitution of its words,
// the operator and the store is done once.
struct tcompiledassignment {
  int64_t memberrevision = -1;  // the members it was made for; -1: not made yet
  bool simple = false;          // false: the statement takes the general way
  bool targetismember = false;
  bool plainassign = false;     // ":=" without a function call
  utf16 target;                 // the first word, which is the variable's name as well
  utf16 op;
  utf16 (*apply)(tscript&) = nullptr;  // the operator; nullptr gives the empty text
  utf16 paramtext;
  std::vector<utf16> words;
  std::vector<uint8_t> kinds;
};

struct tstatement {
  utf16 keyword;  // lower case
  utf16 rest;
  tflow flow = tflow::none;
  tform form = tform::call;
  void (*action)(tscript&, tframe&) = nullptr;  // for tform::keyword
  std::shared_ptr<tcompiledassignment> assign;  // for tform::assignment, made at its first run
};

struct tonelineform {
  toneline kind = toneline::none;
  utf16 casevalue;     // of: the word compared with the case value
  tstatement inner;    // the statement that runs when the test holds
  tstatement passed;   // what remains when it fails: halt, break or nothing
};

struct tpreparedline {
  bool ready = false;
  bool statement = false;  // false: the line holds no statement
  tstatement whole;        // first word and rest (trimmed, through the long field)
  std::unique_ptr<tonelineform> oneline;
};

struct tcutwords {
  std::vector<utf16> words;
  std::vector<uint8_t> kinds;
};

struct tstatementcache {
  int64_t storerevision = 0;
  std::vector<tpreparedline> lines;  // index = line number
  int64_t memberrevision = -1;
  std::unordered_map<utf16, tcutwords, tnamehash, tnameequal> cuts[2];  // [raw]
};
