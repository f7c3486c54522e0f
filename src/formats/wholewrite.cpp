#include "formats/wholewrite.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include "base/gzip.h"
#include "shell/console.h"
#include "shell/files.h"

bool writewhole(const utf16& name, std::string_view bytes, bool pack) {
  std::string packed;
  if (pack && !gzipcompress(bytes, packed)) return !checkio(name, io_writeerror);
  const std::string_view body = pack ? std::string_view(packed) : bytes;
  const utf16 passing = name + ".part";
  tfile f;
  if (!writefile(f, passing, true)) return false;
  println("Write file (" + name + ").");
  const bool written = writeblock(f, body.data(), body.size());
  if (!(closefile(f) && written)) {
    std::remove(systempath(passing).c_str());
    return false;
  }
  if (std::rename(systempath(passing).c_str(), systempath(name).c_str()) == 0) return true;
  return !checkio(name, iocodefromerrno(errno, systempath(name)));
}
