#include "shell/firstrun.h"

#include <cstdio>

#include "shell/console.h"
#include "shell/files.h"

namespace {

const char* const macroname = "voxmill.macro";
const char* const firstruntext = "This is your first run of the program, please specify the file voxmill.macro!";

std::string joinlines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line;
    text += '\n';
  }
  return text;
}

// True when "voxmill.macro" is missing or holds exactly the text about to be written.
bool nothingtokeep(const std::string& example) {
  const int64_t size = filesize(macroname);
  if (size < 0) return true;
  if (size != static_cast<int64_t>(example.size())) return false;
  std::string current;
  return readwholefile(macroname, current, true) && current == example;
}

// The first free name of "voxmill.macro.bak", "voxmill.macro.bak.2", ...
std::string backupname() {
  std::string name = std::string(macroname) + ".bak";
  for (int n = 2; fileexists(name); ++n) name = std::string(macroname) + ".bak." + std::to_string(n);
  return name;
}

bool keepusermacro(const std::string& example) {
  if (nothingtokeep(example)) return true;
  const std::string backup = backupname();
  if (std::rename(macroname, backup.c_str()) != 0) {
    println("  Couldn't keep your voxmill.macro as " + backup + "! The example is not written.");
    return false;
  }
  println("Your voxmill.macro is kept as " + backup + ".");
  return true;
}

}  // namespace

void writefirstmacro(const std::vector<std::string>& example) {
  const std::string text = joinlines(example);
  tfile f;
  if (keepusermacro(text) && writefile(f, macroname, true)) {
    writetext(f, text);
    closefile(f);
  }
  println(firstruntext);
}
