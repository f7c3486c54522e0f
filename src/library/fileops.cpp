#include "library/fileops.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <string>

#include "base/gzip.h"
#include "library/filenames.h"
#include "library/pattern.h"
#include "shell/console.h"
#include "shell/files.h"

int64_t filecopymethod = 0;

namespace {

bool gzipnamed(const utf16& name) {
  const utf16 l = lower(name);
  return length(l) > 3 && equal(copy(l, length(l) - 2, 3), ".gz");
}

bool samefile(const utf16& a, const utf16& b) {
  struct stat sa, sb;
  return stat(systempath(a).c_str(), &sa) == 0 && stat(systempath(b).c_str(), &sb) == 0 && sa.st_dev == sb.st_dev &&
         sa.st_ino == sb.st_ino;
}

bool writebytes(const utf16& name, std::string_view bytes) {
  tfile f;
  if (!writefile(f, name)) return false;
  const bool written = writeblock(f, bytes.data(), bytes.size());
  return closefile(f) && written;
}

// The file system a name lives on, or of the directory that would hold it.
bool device(const utf16& name, dev_t& out) {
  struct stat st;
  std::string path = systempath(name);
  if (stat(path.c_str(), &st) != 0) {
    const utf16 dir = namedir(name);
    path = systempath(empty(dir) ? utf16(".") : dir);
    if (stat(path.c_str(), &st) != 0) return false;
  }
  out = st.st_dev;
  return true;
}

// lstat without following the last part; trailing slashes would make it follow.
bool entrykind(const utf16& name, mode_t& mode) {
  std::string path = systempath(name);
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  struct stat st;
  if (lstat(path.c_str(), &st) != 0) return false;
  mode = st.st_mode;
  return true;
}

utf16 child(const utf16& dir, const std::string& entry) {
  return (charat(dir, length(dir)) == '/' ? dir : dir + "/") + utf16fromutf8(entry);
}

struct tbudget {
  int64_t left = scanlimit;
  bool spend() {
    if (--left >= 0) return true;
    if (left == -1) println("  Too much subdirs or loops (> 99,999)!");
    return false;
  }
};

bool harddelete(const utf16& name, tbudget& budget) {
  mode_t mode = 0;
  if (!entrykind(name, mode) || !S_ISDIR(mode)) return removedir(name);  // reports why
  std::vector<std::string> names;
  if (!readdirectory(name, names, false)) return false;
  if (!names.empty()) println("  Directory not empty! Delete files.");
  bool all = true;
  for (const std::string& n : names) {
    if (!budget.spend()) return false;
    const utf16 entry = child(name, n);
    if (entrykind(entry, mode) && S_ISDIR(mode))
      all = harddelete(entry, budget) && all;
    else
      all = deletefile(entry) && all;
  }
  return removedir(name) && all;
}

bool copytree(const utf16& from, const utf16& to, tbudget& budget) {
  std::vector<std::string> names;
  if (!readdirectory(from, names, false) || !makedirs(to)) return false;
  bool all = true;
  for (const std::string& n : names) {
    if (!budget.spend()) return false;
    const utf16 source = child(from, n), target = child(to, n);
    mode_t mode = 0;
    if (!entrykind(source, mode)) continue;
    if (S_ISDIR(mode))
      all = copytree(source, target, budget) && all;
    else if (fileexists(source))  // a link to a file copies the file; links to directories stay behind
      all = copyfile(source, target, false) && all;
  }
  return all;
}

}  // namespace

bool copyfile(const utf16& from, const utf16& to, bool convert) {
  if (empty(to)) return writebytes(to, {});  // reports the empty name
  if (samefile(from, to)) return true;
  std::string bytes;
  if (!readwholefile(from, bytes, true)) return false;
  const bool inflate = convert && gzipnamed(from) && !gzipnamed(to);
  const bool deflate = convert && gzipnamed(to) && !gzipnamed(from);
  std::string converted;
  if (inflate && !gunzip(bytes, converted)) return !checkio(from, io_readerror);
  if (deflate && !gzipcompress(bytes, converted)) return !checkio(to, io_writeerror);
  return writebytes(to, inflate || deflate ? converted : bytes);
}

bool movefile(const utf16& from, const utf16& to) {
  if (!fileexists(from)) return !checkio(from, io_notfound);
  if (samefile(from, to)) return true;
  dev_t a = 0, b = 0;
  if (!device(from, a) || !device(to, b) || a == b) return renamefile(from, to);
  return copyfile(from, to, false) && deletefile(from);
}

bool joinfiles(const std::vector<utf16>& patterns, const utf16& target) {
  std::string joined, part;
  for (const utf16& p : patterns) {
    std::vector<tfileentry> found;
    expandpattern(p, false, found);
    if (found.empty()) return !checkio(p, io_notfound);
    for (const tfileentry& e : found) {
      if (samefile(e.name, target)) continue;
      if (!readwholefile(e.name, part, true)) return false;
      joined += part;
    }
  }
  return writebytes(target, joined);
}

int64_t deletefiles(const utf16& pattern) {
  std::vector<tfileentry> found;
  expandpattern(pattern, false, found);
  int64_t n = 0;
  for (const tfileentry& e : found) n += deletefile(e.name) ? 1 : 0;
  return n;
}

void repairfiles(const utf16& pattern) {
  std::vector<tfileentry> found;
  expandpattern(pattern, false, found);
  for (const tfileentry& e : found) {
    const utf16 repaired = repairedname(e.name);
    if (notequal(repaired, e.name)) renamefile(e.name, repaired);
  }
}

utf16 intodir(const utf16& dir, const utf16& name) { return child(dir, utf16toutf8(namefile(name))); }

bool makedirs(const utf16& name) {
  if (direxists(name)) return true;
  const utf16 parent = trimright(namedir(trimright(name, '/')), '/');
  if (!empty(parent) && !makedirs(parent)) return false;
  return makedir(trimright(name, '/'));
}

bool deleteemptydir(const utf16& name) {
  std::vector<std::string> names;
  if (!readdirectory(name, names, false)) return false;
  if (!names.empty()) {
    println("  Directory not empty!");
    return false;
  }
  return removedir(name);
}

bool harddeletedir(const utf16& name) {
  tbudget budget;
  return harddelete(name, budget);
}

bool copydir(const utf16& from, const utf16& to) {
  tbudget budget;
  return copytree(from, to, budget);
}

int64_t fileage(const utf16& name) {
  struct stat st;
  if (empty(name) || stat(systempath(name).c_str(), &st) != 0) return -1;
  return static_cast<int64_t>(std::time(nullptr) - st.st_mtime);
}

utf16 fileattributes(const utf16& name) {
  mode_t mode = 0;
  if (empty(name) || !entrykind(name, mode)) return utf16();
  std::string a = S_ISDIR(mode) ? "d" : S_ISLNK(mode) ? "l" : "-";
  const char* letters = "rwxrwxrwx";
  for (int bit = 0; bit < 9; ++bit) a += (mode & (0400 >> bit)) ? letters[bit] : '-';
  return utf16(a);
}

utf16 workingdir() {
  std::string buffer(4096, '\0');
  if (!getcwd(buffer.data(), buffer.size())) return utf16();
  buffer.resize(std::char_traits<char>::length(buffer.c_str()));
  return utf16fromutf8(buffer);
}
