// What a script defines or splices in: procedure, function, sub, module, with, include, execute.
#include <chrono>
#include <thread>

#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/variables.h"
#include "shell/console.h"
#include "shell/files.h"
#include "shell/subprogram.h"

namespace {

// Registers the member and passes over its body: the definition takes effect here.
void define(tscript& s, tframe& f, uint8_t kind, const char* stackname, bool namerequired) {
  const int64_t header = s.line;
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.params.empty()) {
    if (namerequired) {
      reportmin(s, 1);
      return;
    }
  } else {
    regscript(s, s.params[0], s.level, kind, header);
  }
  runblock(s, stackname, false);
}

void procedure(tscript& s, tframe& f) { define(s, f, kind_procedure, "procedure", false); }
void function(tscript& s, tframe& f) { define(s, f, kind_function, "function", false); }
void sub(tscript& s, tframe& f) { define(s, f, kind_procedure, "sub.ignore", true); }

void module(tscript& s, tframe& f) {
  s.modulestart.push_back(static_cast<int64_t>(s.variables.size()));
  s.modulelevel.push_back(s.level + 1);
  echotext(s, "module", utf16());
  runblock(s, "module", true);
}

void with(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  echoline(s, "with");
  if (!s.params.empty()) {
    s.withnames.push_back(lower(s.params[0]));
    s.withlevels.push_back(s.level + 1);
  }
  runblock(s, "with", true);
}

void include(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.params.empty()) {
    reportmin(s, 1);
    return;
  }
  const utf16 file = s.params[0];
  if (!fileexists(file)) {
    println("  Include file (" + utf16toutf8(file) + ") not found!");
    return;
  }
  echoline(s, "include");
  insertfile(s.store, s.line, file);
}

void subprogramframe(const std::string& title) {
  printlnempty();
  println(">>>> Sub program (" + title + ")");
  flushconsole();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
}

void execute(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.params.empty()) {
    reportcount(s, 1);
    return;
  }
  echoline(s, "execute");
  const std::string program = utf16toutf8(s.params[0]);
  if (program.find(".exe") != std::string::npos) {
    // A Windows program runs through wine, all parts quoted as one command text.
    std::string command = "\"" + program + "\"";
    for (size_t i = 1; i < s.params.size(); ++i) command += " \"" + utf16toutf8(s.params[i]) + "\"";
    subprogramframe("wine64");
    runprogram(findprogram("wine64"), {command});
  } else {
    std::vector<std::string> arguments;
    for (size_t i = 1; i < s.params.size(); ++i) arguments.push_back(utf16toutf8(s.params[i]));
    subprogramframe(program);
    runprogram(findprogram(s.params[0]), arguments);
  }
  printlnempty();
  println("<<<<< End of sub program");
}

}  // namespace

std::vector<tkeywordrow> definitionkeywords() {
  return {{"procedure", procedure}, {"function", function}, {"sub", sub},         {"module", module},
          {"with", with},           {"include", include},   {"execute", execute}};
}
