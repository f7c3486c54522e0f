// Printing and the debug switch.
#include "commands/families.h"
#include "library/output.h"
#include "script/registry.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

std::string joined(tscript& s, const char* separator) { return utf16toutf8(joinparams(s, separator)); }

void writecmd(tscript& s) { scriptwrite(s, joined(s, "")); }
void writetab(tscript& s) { scriptwrite(s, joined(s, "\t")); }
void writelncmd(tscript& s) { scriptwriteln(s, joined(s, "")); }

template <tcolor color>
void colorprint(tscript& s) {
  scriptwriteln(s, colorbegin(color) + joined(s, "") + colorend());
}

void debugon(tscript& s) { s.debug = true; }
void debugoff(tscript& s) { s.debug = false; }

constexpr tcommand rows[] = {
    {"debug", tcommandkind::procedure, debugon, nullptr, "debug // echo each statement before it runs"},
    {"debug.no", tcommandkind::procedure, debugoff, nullptr, "debug.no // no echo of statements"},
    {"write", tcommandkind::procedure, writecmd, nullptr, "write \"text \" a // write the parameters without a line end"},
    {"write.tab", tcommandkind::procedure, writetab, nullptr, "write.tab a b c // write the parameters separated by tabs"},
    {"writeln", tcommandkind::procedure, writelncmd, nullptr, "writeln \"text \" a // write the parameters and a line end"},
    {"print", tcommandkind::procedure, writelncmd, nullptr, "print \"Hello world!\" // print the parameters and a line end"},
    {"echo", tcommandkind::procedure, writelncmd, nullptr, "echo \"text\" // same as print"},
    {"print.red", tcommandkind::procedure, colorprint<tcolor::red>, nullptr, "print.red \"text\" // print in red on a console"},
    {"print.green", tcommandkind::procedure, colorprint<tcolor::green>, nullptr, "print.green \"text\" // print in green on a console"},
    {"print.blue", tcommandkind::procedure, colorprint<tcolor::blue>, nullptr, "print.blue \"text\" // print in blue on a console"},
    {"print.yellow", tcommandkind::procedure, colorprint<tcolor::yellow>, nullptr, "print.yellow \"text\" // print in yellow on a console"},
    {"print.cyan", tcommandkind::procedure, colorprint<tcolor::cyan>, nullptr, "print.cyan \"text\" // print in cyan on a console"},
    {"print.purple", tcommandkind::procedure, colorprint<tcolor::purple>, nullptr, "print.purple \"text\" // print in purple on a console"},
};

}  // namespace

tcommandfamily printcommands() { return {"", rows}; }
