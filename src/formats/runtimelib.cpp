#include "formats/runtimelib.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "shell/console.h"

void* searchlibrary(const char* base, std::initializer_list<const char*> suffixes, const std::vector<std::string>& endings) {
  for (const char* dir : {"/lib/", "/usr/local/lib/", ""}) {
    for (const char* suffix : suffixes) {
      for (const std::string& ending : endings) {
        const std::string path = std::string(dir) + base + suffix + ending;
        if (void* h = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return h;
      }
    }
  }
  return nullptr;
}

bool routineaddress(void* handle, void*& out, const char* name) {
  void* p = dlsym(handle, name);
  if (!p && name[0] == '_') {
    std::string plain(name + 1);
    plain = plain.substr(0, plain.find('@'));
    p = dlsym(handle, plain.c_str());
  }
  if (!p) println(std::string("Wrong ProcName: ") + name);
  out = p;
  return p != nullptr;
}

// The libraries' own codecs write warnings to the standard error stream; the program
// reports in its own words, so their chatter is muted for the length of a call.
tquiet::tquiet() {
  std::fflush(stderr);
  saved = dup(2);
  const int null = open("/dev/null", O_WRONLY);
  if (null >= 0) {
    dup2(null, 2);
    close(null);
  }
}

tquiet::~tquiet() {
  std::fflush(stderr);
  if (saved >= 0) {
    dup2(saved, 2);
    close(saved);
  }
}
