#include "formats/runtimelib.h"

#include <dlfcn.h>

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
