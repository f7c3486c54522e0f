#include "shell/update.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "shell/console.h"
#include "shell/platform.h"

namespace {
std::string basename(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The exit code of wget, or -1 when it could not be started. VOXMILL_WGET names another
// wget, so that the update can be tried without a network.
int runwget(const std::string& address, const std::string& target) {
  const char* chosen = std::getenv("VOXMILL_WGET");
  const std::string wget = chosen && *chosen ? chosen : "/usr/bin/wget";
  flushconsole();
  const pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    execl(wget.c_str(), "wget", "-O", target.c_str(), address.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) < 0 || !WIFEXITED(status)) return -1;
  const int code = WEXITSTATUS(status);
  return code == 127 ? -1 : code;
}

const char* wgetmessage(int code) {
  switch (code) {
    case 1: return "Generic error code.";
    case 2: return "Parse error\u2014for instance, when parsing command-line options, the \u2018.wgetrc\u2019 or \u2018.netrc\u2019...";
    case 3: return "File I/O error.";
    case 4: return "Network failure.";
    case 5: return "SSL verification failure.";
    case 6: return "Username/password authentication failure.";
    case 7: return "Protocol errors.";
    case 8: return "Server issued an error response.";
    default: return nullptr;
  }
}
}  // namespace

utf16 updateaddress(const utf16& site, const utf16& programpath) {
  std::string path = "/";
  path += buildmachine;
  path += '-';
  path += buildsystem;
  path += '/';
  path += basename(utf16toutf8(programpath));
  return site + utf16(path);
}

void runupdate(const utf16& address, const utf16& programpath) {
  printlnempty();
  const std::string name = utf16toutf8(programpath);
  const int code = runwget(utf16toutf8(address), name + ".n");
  if (code == 0) {
    println("You can find the new file at \"" + name + ".n\".");
  } else if (const char* message = code > 0 ? wgetmessage(code) : nullptr) {
    println(message);
  } else {
    printlnempty();
    println("Wget not found! Please install wget from https://www.gnu.org/software/wget/ or https://ftp.gnu.org/gnu/wget/ !");
  }
}
