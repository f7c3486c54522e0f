#include "shell/subprogram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "shell/console.h"
#include "shell/files.h"

namespace {
bool hasextension(const std::string& name) {
  const size_t slash = name.find_last_of('/');
  const size_t dot = name.find_last_of('.');
  return dot != std::string::npos && (slash == std::string::npos || dot > slash);
}

bool executable(const std::string& path) { return access(path.c_str(), X_OK) == 0 && fileexists(utf16(path)); }
}  // namespace

utf16 findprogram(const utf16& name) {
  if (fileexists(name)) return name;
  const std::string plain = utf16toutf8(name);
  std::vector<std::string> dirs;
  if (const char* path = std::getenv("PATH")) {
    std::string all(path);
    for (size_t start = 0; start <= all.size();) {
      size_t colon = all.find(':', start);
      if (colon == std::string::npos) colon = all.size();
      if (colon > start) dirs.push_back(all.substr(start, colon - start) + "/");
      start = colon + 1;
    }
  }
  for (const char* d : {"/bin/", "/usr/bin/", "/usr/local/bin/", "/sbin/", "/usr/sbin/", "/usr/local/sbin/"}) dirs.emplace_back(d);
  std::vector<std::string> forms = {plain};
  if (!hasextension(plain)) {
    forms.push_back(plain + ".exe");
    forms.push_back(plain + ".com");
  }
  for (const std::string& dir : dirs)
    for (const std::string& form : forms)
      if (executable(dir + form)) return utf16(dir + form);
  println("Possible wrong binary (" + plain + ")!");
  return name;
}

int runprogram(const utf16& path, const std::vector<std::string>& arguments) {
  const std::string program = utf16toutf8(path);
  std::vector<char*> argv;
  argv.push_back(const_cast<char*>(program.c_str()));
  for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  flushconsole();
  const pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) < 0 || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status) == 127 ? -1 : WEXITSTATUS(status);
}
