// Feeds arbitrary bytes as a macro file through the line store and the statement loop.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

#include "commands/commandtable.h"
#include "script/run.h"
#include "script/tscript.h"
#include "shell/console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  std::string lowered = text;
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](unsigned char c) { return std::tolower(c); });
  // halt ends the process by design, and waiting commands only cost time.
  if (lowered.find("halt") != std::string::npos || lowered.find("wait") != std::string::npos ||
      lowered.find("sleep") != std::string::npos || lowered.find("delay") != std::string::npos)
    return 0;
  static const std::string path = "/tmp/voxmill-fuzz-" + std::to_string(getpid()) + ".macro";
  std::ofstream(path, std::ios::binary) << text;
  consoleon = false;
  interactive = false;
  tscript s;
  registerallcommands(s);
  load(s.store, utf16(path));
  runscript(s);
  return 0;
}
