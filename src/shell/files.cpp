#include "shell/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "shell/console.h"

namespace {

bool emptyname(const utf16& name) {
  if (!empty(name)) return false;
  println("Empty filename!");
  return true;
}

std::string parentdir(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

const char* classline(int code) {
  if (code <= 1) return "?\?\?-Error";
  if (code <= 17) return "DOS-Error";
  if (code <= 99) return "?\?\?-Error";
  if (code <= 106) return "I/O-Error";
  if (code >= 150 && code <= 162) return "Fatal-Error";
  return "?\?\?-Error";
}

const char* explanation(int code) {
  switch (code) {
    case 2: return "  File (%s) not found.";
    case 3: return "  Path (%s) not found.";
    case 4: return "  Too many open files with (%s).";
    case 5: return "  File (%s) access denied.";
    case 6: return "  Invalid file (%s) handle.";
    case 12: return "  Invalide file (%s) access code.";
    case 15: return "  Invalide drive (%s) number.";
    case 16: return "  Cannot remove current directory (%s).";
    case 17: return "  Cannot rename across drives (%s).";
    case 100: return "  Disk (%s) read error.";
    case 101: return "  Disk (%s) write error.";
    case 102: return "  File (%s) not assigned.";
    case 103: return "  File (%s) not open.";
    case 104: return "  File (%s) not open for input.";
    case 105: return "  File (%s) not open for output.";
    case 106: return "  Invalid numeric format from (%s).";
    case 150: return "  Disk (%s) is write-protected.";
    case 151: return "  Bad drive (%s) request struct length.";
    case 152: return "  Drive (%s) not ready.";
    case 153: return "  Unknown command (%s).";
    case 154: return "  CRC error in data (%s).";
    case 155: return "  Invalid drive (%s) specified.";
    case 156: return "  Disk (%s) seek error.";
    case 157: return "  Unknown media type (%s).";
    case 158: return "  Sector Not Found (%s).";
    case 159: return "  Printer (%s) out of paper.";
    case 160: return "  Device (%s) write fault.";
    case 161: return "  Device (%s) read fault.";
    case 162: return "  Hardware (%s) failure.";
    default: return nullptr;
  }
}

bool reportopenfailure(const utf16& name, const std::string& path) {
  return checkio(name, iocodefromerrno(errno, path));
}

bool openmode(tfile& f, const utf16& name, const char* mode) {
  if (emptyname(name)) return false;
  if (f.handle) closefile(f);
  const std::string path = systempath(name);
  struct stat st;
  if (stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
    checkio(name, io_denied);  // a directory is no file to open
    return false;
  }
  f.handle = std::fopen(path.c_str(), mode);
  f.name = name;
  if (!f.handle) {
    reportopenfailure(name, path);
    return false;
  }
  return true;
}

}  // namespace

std::string shortname(const utf16& name) {
  constexpr int64_t limit = 60;
  if (length(name) <= limit) return utf16toutf8(name);
  return "..." + utf16toutf8(copy(name, length(name) - (limit - 3) + 1, limit - 3));
}

std::string systempath(const utf16& name) {
  std::string path = utf16toutf8(name);
  // Collapse "dir/.." pairs, leaving leading ".." parts that cannot be resolved as text.
  std::vector<std::string> parts;
  const bool absolute = !path.empty() && path[0] == '/';
  size_t start = 0;
  bool collapsed = false;
  while (start <= path.size()) {
    size_t slash = path.find('/', start);
    if (slash == std::string::npos) slash = path.size();
    const std::string part = path.substr(start, slash - start);
    if (part == ".." && !parts.empty() && parts.back() != ".." && parts.back() != "." && !parts.back().empty()) {
      parts.pop_back();
      collapsed = true;
    } else {
      parts.push_back(part);
    }
    start = slash + 1;
  }
  if (!collapsed) return path;
  std::string out = absolute && (parts.empty() || !parts[0].empty()) ? "/" : "";
  for (size_t i = 0; i < parts.size(); ++i) out += (i ? "/" : "") + parts[i];
  return out.empty() ? "." : out;
}

int iocodefromerrno(int err, const std::string& path) {
  switch (err) {
    case 0: return io_ok;
    case ENOENT: {
      struct stat st;
      const std::string dir = parentdir(path);
      return stat(dir.c_str(), &st) == 0 ? io_notfound : io_nopath;
    }
    case ENOTDIR: return io_nopath;
    case EMFILE: case ENFILE: return io_toomany;
    case EACCES: case EPERM: case EROFS: case EISDIR: return io_denied;
    case EIO: return io_readerror;
    case ENOSPC: case EFBIG: case EDQUOT: return io_writeerror;
    default: return 1000 + err;
  }
}

bool checkio(const utf16& name, int code) {
  if (code == io_ok) return false;
  println(classline(code));
  const char* form = explanation(code);
  const std::string shown = shortname(name);
  if (form) {
    std::string text(form);
    text.replace(text.find("%s"), 2, shown);
    println(text);
  } else {
    println("  Error number: " + std::to_string(code) + " from " + shown);
  }
  return true;
}

bool readfile(tfile& f, const utf16& name, bool silent) {
  if (!openmode(f, name, "rb")) return false;
  if (!silent) println("Read file (" + shortname(name) + ").");
  return true;
}

bool readfilesize(tfile& f, const utf16& name, int64_t recsize) {
  if (!openmode(f, name, "rb")) return false;
  const int64_t size = filesize(name);
  println("Read file (" + shortname(name) + ") with size (" + std::to_string(recsize > 0 ? size / recsize : size) + ").");
  return true;
}

bool writefile(tfile& f, const utf16& name, bool silent) {
  if (!openmode(f, name, "wb")) return false;
  if (!silent) println("Write file (" + shortname(name) + ").");
  return true;
}

bool appendfile(tfile& f, const utf16& name, bool silent) {
  if (!openmode(f, name, "ab")) return false;
  if (!silent) println("Append file (" + shortname(name) + ").");
  return true;
}

bool closefile(tfile& f) {
  if (!f.handle) return false;
  const bool failed = std::fclose(f.handle) != 0;
  f.handle = nullptr;
  if (failed) return !checkio(f.name, io_writeerror);
  return true;
}

bool readblock(tfile& f, void* data, size_t bytes, size_t* got) {
  if (!f.handle) return !checkio(f.name, io_notopen);
  const size_t n = std::fread(data, 1, bytes, f.handle);
  if (got) *got = n;
  if (n == bytes) return true;
  if (got && !std::ferror(f.handle)) return false;  // the caller handles a short read itself
  checkio(f.name, io_readerror);
  return false;
}

bool writeblock(tfile& f, const void* data, size_t bytes) {
  if (!f.handle) return !checkio(f.name, io_notopen);
  if (bytes == 0 || std::fwrite(data, 1, bytes, f.handle) == bytes) return true;
  checkio(f.name, io_writeerror);
  return false;
}

bool writetext(tfile& f, std::string_view utf8) { return writeblock(f, utf8.data(), utf8.size()); }

bool readwholefile(const utf16& name, std::string& out, bool silent) {
  tfile f;
  out.clear();
  if (!readfile(f, name, silent)) return false;
  char buffer[1 << 16];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f.handle)) > 0) out.append(buffer, n);
  const bool failed = std::ferror(f.handle) != 0;
  closefile(f);
  if (failed) {
    checkio(name, io_readerror);
    out.clear();
    return false;
  }
  return true;
}

namespace {
template <class Operation>
bool pathoperation(const utf16& name, const std::string& success, Operation operation) {
  if (emptyname(name)) return false;
  const std::string path = systempath(name);
  if (operation(path) != 0) {
    reportopenfailure(name, path);
    return false;
  }
  println(success);
  return true;
}
}  // namespace

bool deletefile(const utf16& name) {
  return pathoperation(name, "Delete file (" + shortname(name) + ").", [](const std::string& p) { return unlink(p.c_str()); });
}

bool renamefile(const utf16& from, const utf16& to) {
  if (emptyname(to)) return false;
  const std::string target = systempath(to);
  return pathoperation(from, "Rename file (" + shortname(from) + ").",
                       [&](const std::string& p) { return std::rename(p.c_str(), target.c_str()); });
}

bool changedir(const utf16& name) {
  return pathoperation(name, "Change directory (" + shortname(name) + ").", [](const std::string& p) { return chdir(p.c_str()); });
}

bool makedir(const utf16& name) {
  return pathoperation(name, "Make directory (" + shortname(name) + ").", [](const std::string& p) { return mkdir(p.c_str(), 0777); });
}

bool removedir(const utf16& name) {
  return pathoperation(name, "Remove directory (" + shortname(name) + ").", [](const std::string& p) { return rmdir(p.c_str()); });
}

bool renamedir(const utf16& from, const utf16& to) {
  if (emptyname(to)) return false;
  const std::string target = systempath(to);
  return pathoperation(from, "Rename directory (" + shortname(from) + " -> " + shortname(to) + ").",
                       [&](const std::string& p) { return std::rename(p.c_str(), target.c_str()); });
}

bool fileexists(const utf16& name) {
  struct stat st;
  return !empty(name) && stat(systempath(name).c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

bool direxists(const utf16& name) {
  struct stat st;
  return !empty(name) && stat(systempath(name).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

int64_t filesize(const utf16& name) {
  struct stat st;
  if (empty(name) || stat(systempath(name).c_str(), &st) != 0 || S_ISDIR(st.st_mode)) return -1;
  return static_cast<int64_t>(st.st_size);
}
