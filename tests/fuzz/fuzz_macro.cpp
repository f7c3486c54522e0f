// Feeds arbitrary bytes as a macro file through the line store and the statement loop.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

#include "commands/commandtable.h"
#include "field/memory.h"
#include "field/workspaces.h"
#include "script/run.h"
#include "script/tscript.h"
#include "shell/console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  std::string lowered = text;
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](unsigned char c) { return std::tolower(c); });
  // halt ends the process by design, waiting only costs time, and commands that start
  // programs or write files have no place in a fuzzer's working directory.
  for (const char* word : {"halt", "wait", "sleep", "delay", "execute", "store", "append", "include", "io."})
    if (lowered.find(word) != std::string::npos) return 0;
  static const std::string path = "/tmp/voxmill-fuzz-" + std::to_string(getpid()) + ".macro";
  std::ofstream(path, std::ios::binary) << text;
  consoleon = false;
  interactive = false;
  // Fields as large as the machine are allowed, but not beyond what the fuzzer may hold.
  setfieldmemorylimit(int64_t{256} << 20);
  // Each input starts from empty workspaces, so that a finding does not depend on the inputs
  // before it.
  resetworkspaces();
  tscript s;
  // Loops without end are part of the language; a run is cut after a fixed number of lines.
  s.linebudget = 20000;
  registerallcommands(s);
  load(s.store, utf16(path));
  runscript(s);
  return 0;
}
