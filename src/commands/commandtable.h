// The one truth about commands: each family's table gives name, kind, handler and the line
// that documents it in the example macro. Registration and the example macro both read it.
#pragma once
#include <span>
#include <vector>

#include "script/tscript.h"

// How a name is registered: a procedure whose handler needs no script, a procedure, a
// function (`a := name ...`), one name as both, or a variable function (read like a variable).
enum class tcommandkind { plainprocedure, procedure, function, procedureandfunction, variablefunction };

struct tcommand {
  const char* name;
  tcommandkind kind;
  thandler handler;
  thandler function;  // the function handler of a procedureandfunction name; nullptr otherwise
  const char* doc;    // the example macro's line: a usage and a comment behind "//"; "" for none
};

struct tcommandfamily {
  const char* prefix;  // "" for the builtin libraries, "image." and so on for the fields
  std::span<const tcommand> rows;
};

// All families in registration order.
const std::vector<tcommandfamily>& commandfamilies();
// Registers every family, each under its prefix, and clears the prefix at the end.
void registerallcommands(tscript& s);
// The example macro: header, one line per documented command, group closers.
std::vector<std::string> examplemacro(const std::string& versiontext);
// The documentation lines of the commands whose full names contain word (without case).
std::vector<std::string> commandsmatching(const std::string& word);

// A procedureandfunction command whose procedure and function are the same handler: `new := op ...` and
// `op ...` alike.
constexpr tcommand eitherway(const char* name, thandler handler, const char* doc) {
  return {name, tcommandkind::procedureandfunction, handler, handler, doc};
}
