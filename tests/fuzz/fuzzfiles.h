// What the file-reading fuzz targets share: a quiet program with a memory cap, and the input
// written under the names the readers are asked to open (in /tmp, one set per process).
#pragma once
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "field/memory.h"
#include "shell/console.h"

inline void fuzzquiet(int64_t memorylimit) {
  consoleon = false;
  interactive = false;
  // Zero fields of claimed sizes are allowed, but not beyond what a fuzzer can hold.
  setfieldmemorylimit(memorylimit);
}

inline std::string fuzzbase(const char* target) { return "/tmp/" + std::string(target) + "_" + std::to_string(getpid()); }

inline void put(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
