// Prints docs/commands.md, the command reference, from the command tables:
//   build/tests/commands_md > docs/commands.md
#include <iostream>
#include <string>

#include "commands/commandtable.h"

namespace {

const char* kindname(tcommandkind kind) {
  switch (kind) {
    case tcommandkind::plainprocedure:
    case tcommandkind::procedure: return "procedure";
    case tcommandkind::function: return "function";
    case tcommandkind::procedureandfunction: return "procedure and function";
    case tcommandkind::variablefunction: return "variable";
  }
  return "";
}

// A code span that survives backticks inside the text.
std::string code(const std::string& text) {
  const std::string fence = text.find('`') == std::string::npos ? "`" : "`` ";
  const std::string close = fence == "`" ? "`" : " ``";
  return fence + text + close;
}

std::string familytitle(const tcommandfamily& family) {
  if (*family.prefix) return family.prefix;
  const std::string first = family.rows.empty() ? "" : family.rows.front().name;
  return first.substr(0, first.find('.')) + " (library)";
}

}  // namespace

int main() {
  std::cout << "# Command reference\n\n"
               "Generated from the command tables; do not edit. Regenerate with\n"
               "`build/tests/commands_md > docs/commands.md`.\n"
               "Each line: the command with its parameters, how it is called, and what it does.\n";
  for (const tcommandfamily& family : commandfamilies()) {
    std::cout << "\n## " << familytitle(family) << "\n\n";
    for (const tcommand& c : family.rows) {
      const std::string name = std::string(family.prefix) + c.name, doc = c.doc;
      const size_t cut = doc.find("//");
      std::string usage = cut == std::string::npos ? doc : doc.substr(0, cut);
      while (!usage.empty() && usage.back() == ' ') usage.pop_back();
      const std::string comment = cut == std::string::npos ? "" : doc.substr(cut + 2);
      std::cout << "- " << code(name) << " (" << kindname(c.kind) << ")";
      if (!usage.empty() && usage != name) std::cout << ": " << code(usage);
      if (comment.find_first_not_of(' ') != std::string::npos) std::cout << " —" << comment;
      std::cout << "\n";
    }
  }
}
