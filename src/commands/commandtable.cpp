#include "commands/commandtable.h"

#include <algorithm>
#include <cctype>

#include "commands/families.h"
#include "script/registry.h"

const std::vector<tcommandfamily>& commandfamilies() {
  static const std::vector<tcommandfamily> families = {
      printcommands(),
      librarycommands(),
      mathsettingscommands(),
      mathcommands(),
      dumpcommands(),
      subprogramcommands(),
      iocommands(),
      tablecommands(),
      textcommands(),
      listcommands(),
      stackcommands(),
      colourmapcommands(),
      // The library families stand above this line; the workspaces and the field
      // families follow them in this order.
      workspacecommands(),
      imagelibrarycommands(),
      imagecommands(),
      scalarcommands(),
      vectorcommands(),
      tensorcommands(),
      meshcommands(),
      linecommands(),
  };
  return families;
}

void registerallcommands(tscript& s) {
  for (const tcommandfamily& family : commandfamilies()) {
    setprefix(s, family.prefix);
    for (const tcommand& c : family.rows) {
      switch (c.kind) {
        case tcommandkind::plainprocedure: regproc0(s, c.name, c.handler); break;
        case tcommandkind::procedure: regproc(s, c.name, c.handler); break;
        case tcommandkind::function: regfunc(s, c.name, c.handler); break;
        case tcommandkind::procedureandfunction: regboth(s, c.name, c.handler, c.function); break;
        case tcommandkind::variablefunction: regvarfunc(s, c.name, c.handler); break;
      }
    }
  }
  clearprefix(s);
}

namespace {
// The commands that the example macro puts in front of all groups.
bool isleading(const char* prefix, const char* name) {
  const std::string full = std::string(prefix) + name;
  return full == "clean" || full == "new" || full == "dump";
}
}  // namespace

std::vector<std::string> examplemacro(const std::string& versiontext) {
  std::vector<std::string> lines = {
      "//!./voxmill // Version: " + versiontext,
      "// This is a list of voxmill commands - you can use this macro like a programing language",
      "// Each line below shows one command with its parameters; run voxmill -? for the options.",
      "// voxmill 2017-2025",
      "io.file.remove \"voxmill.macro\" // remove old command list",
      "execute ./voxmill // make new command list",
      "halt // Do not interpret the rest",
      "// @variable denotes builtin variables.",
      "// Assignment := are only used if the stack type is the same (image := image.func) or a result (10 := image.func).",
  };
  for (const tcommandfamily& family : commandfamilies())
    for (const tcommand& c : family.rows)
      if (isleading(family.prefix, c.name) && *c.doc) lines.emplace_back(c.doc);
  lines.emplace_back("// %(abs & rel): a position along an axis, given absolute or relative");
  lines.emplace_back("// absolute: -max..-1:inverse 0:center 1..max:normal");
  lines.emplace_back("// relative: -0.99999..-0.00001:inverse 0:center 0.00001..0.99999:normal");
  for (const tcommandfamily& family : commandfamilies()) {
    bool any = false;
    for (const tcommand& c : family.rows) {
      if (isleading(family.prefix, c.name) || !*c.doc) continue;
      lines.emplace_back(c.doc);
      any = true;
    }
    if (any) lines.emplace_back("// ****************************************************************");
  }
  lines.emplace_back("// For more line commands, look at Skein2!");
  return lines;
}

namespace {
std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
  return text;
}
}  // namespace

std::vector<std::string> commandsmatching(const std::string& word) {
  const std::string key = lowered(word);
  std::vector<std::string> lines;
  for (const tcommandfamily& family : commandfamilies())
    for (const tcommand& c : family.rows)
      if (lowered(std::string(family.prefix) + c.name).find(key) != std::string::npos)
        lines.emplace_back(*c.doc ? c.doc : std::string(family.prefix) + c.name);
  return lines;
}
