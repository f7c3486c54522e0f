#include "library/pattern.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "shell/console.h"
#include "shell/files.h"

bool expandsorted = true;

bool maskmatch(std::string_view mask, std::string_view name) {
  // Greedy matching with one point of return: the last "*" seen.
  size_t m = 0, n = 0, star = std::string_view::npos, mark = 0;
  while (n < name.size()) {
    if (m < mask.size() && mask[m] == '*') {
      star = m++;
      mark = n;
    } else if (m < mask.size() && mask[m] == name[n]) {
      ++m;
      ++n;
    } else if (star != std::string_view::npos) {
      m = star + 1;
      n = ++mark;
    } else {
      return false;
    }
  }
  while (m < mask.size() && mask[m] == '*') ++m;
  return m == mask.size();
}

bool readdirectory(const utf16& dir, std::vector<std::string>& names, bool follow) {
  names.clear();
  const utf16 shown = empty(dir) ? utf16(".") : dir;
  const std::string path = systempath(shown);
  const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW));
  DIR* d = fd >= 0 ? fdopendir(fd) : nullptr;
  if (!d) {
    const int err = errno;
    if (fd >= 0) close(fd);
    checkio(shown, iocodefromerrno(err == ELOOP ? ENOTDIR : err, path));
    return false;
  }
  while (const dirent* e = readdir(d)) {
    const std::string_view n(e->d_name);
    if (n != "." && n != "..") names.emplace_back(n);
  }
  closedir(d);
  // The order of the file system is no order a run could be repeated by.
  std::sort(names.begin(), names.end());
  return true;
}

bool statentry(const utf16& name, bool directories, tfileentry& out) {
  struct stat st;
  if (empty(name) || stat(systempath(name).c_str(), &st) != 0) return false;
  if (S_ISDIR(st.st_mode) != directories) return false;
  out.name = name;
  out.size = directories ? 0 : static_cast<int64_t>(st.st_size);
  out.date = static_cast<double>(st.st_mtim.tv_sec) + static_cast<double>(st.st_mtim.tv_nsec) * 1e-9;
  return true;
}

void sortbyname(std::vector<tfileentry>& entries) {
  std::stable_sort(entries.begin(), entries.end(), [](const tfileentry& a, const tfileentry& b) { return less(a.name, b.name); });
}

namespace {

struct tscan {
  bool directories;
  bool recursive;
  int64_t seen = 0;
  bool stopped = false;
};

// dir is the directory part with its "/" (or empty for the working directory).
bool scan(tscan& s, const utf16& dir, const std::string& mask, std::vector<tfileentry>& out) {
  std::vector<std::string> names;
  if (!readdirectory(dir, names)) return false;
  std::vector<tfileentry> found;
  for (const std::string& n : names) {
    if (++s.seen > scanlimit) {
      println("  Too much subdirs or loops (> 99,999)!");
      s.stopped = true;
      break;
    }
    tfileentry e;
    if (maskmatch(mask, n) && statentry(dir + utf16fromutf8(n), s.directories, e)) found.push_back(e);
  }
  if (expandsorted) sortbyname(found);
  for (const tfileentry& e : found) {
    out.push_back(e);
    if (s.recursive && !s.stopped) scan(s, e.name + "/", mask, out);
  }
  return true;
}

}  // namespace

bool expandpattern(const utf16& pattern, bool directories, std::vector<tfileentry>& out, bool recursive) {
  if (empty(pattern)) return true;
  const int64_t slash = lastpos("/", pattern);
  const utf16 dir = copy(pattern, 1, slash);
  const utf16 mask = copy(pattern, slash + 1, length(pattern) - slash);
  tscan s{directories, recursive};
  if (poschar('*', mask) == 0) {
    // A plain name is that one entry, if it exists; recursion goes below it.
    utf16 name = pattern;
    while (length(name) > 1 && charat(name, length(name)) == '/') name = copy(name, 1, length(name) - 1);
    tfileentry e;
    if (!statentry(name, directories, e)) return true;
    out.push_back(e);
    if (recursive) scan(s, name + "/", "*", out);
    return true;
  }
  return scan(s, dir, utf16toutf8(mask), out);
}
