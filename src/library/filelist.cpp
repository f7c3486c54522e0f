#include "library/filelist.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "base/linefile.h"
#include "library/filenames.h"

tfilelist scriptfiles;
tfilelist scriptdirs{{}, 1, true};

const tfileentry* filelistat(const tfilelist& l, int64_t offset) {
  const int64_t i = l.cursor + offset;
  return i >= 1 && i <= filelistcount(l) ? &l.entries[static_cast<size_t>(i - 1)] : nullptr;
}

int64_t filelistrest(const tfilelist& l) { return std::max<int64_t>(0, filelistcount(l) - std::max<int64_t>(l.cursor, 1) + 1); }

void filelistgo(tfilelist& l, int64_t i) { l.cursor = std::clamp<int64_t>(i, 0, filelistcount(l) + 1); }

void filelistclear(tfilelist& l) {
  l.entries.clear();
  l.cursor = 1;
}

namespace {

std::string doublekey(const utf16& name) { return utf16toutf8(lower(name)); }

void appendnew(tfilelist& l, const std::vector<tfileentry>& found) {
  std::unordered_set<std::string> known;
  for (const tfileentry& e : l.entries) known.insert(doublekey(e.name));
  for (const tfileentry& e : found)
    if (known.insert(doublekey(e.name)).second) l.entries.push_back(e);
}

}  // namespace

void filelistnew(tfilelist& l, const utf16& pattern, bool recursive) {
  std::vector<tfileentry> found;
  if (!expandpattern(pattern, l.directories, found, recursive)) return;
  filelistclear(l);
  appendnew(l, found);
}

void filelistadd(tfilelist& l, const utf16& pattern, bool recursive) {
  std::vector<tfileentry> found;
  if (expandpattern(pattern, l.directories, found, recursive)) appendnew(l, found);
}

bool filelistfromfile(tfilelist& l, const utf16& textfile, bool reset) {
  tlinefile f;
  if (!linefileread(f, textfile)) return false;
  std::vector<tfileentry> found;
  for (int64_t i = 1; i <= linefilecount(f); ++i) {
    const utf16 name = trimblanks(linefiletext(f, i));
    if (!empty(name)) expandpattern(name, l.directories, found);
  }
  linefilerelease(f);
  if (reset) filelistclear(l);
  appendnew(l, found);
  return true;
}

void filelistsub(tfilelist& l, const utf16& pattern, bool weak) {
  const std::string mask = utf16toutf8(weak ? namefile(pattern) : pattern);
  std::erase_if(l.entries, [&](const tfileentry& e) { return maskmatch(mask, utf16toutf8(weak ? namefile(e.name) : e.name)); });
  filelistgo(l, l.cursor);
}

namespace {
template <class Key>
void sortby(std::vector<tfileentry>& entries, Key key) {
  std::stable_sort(entries.begin(), entries.end(), [&](const tfileentry& a, const tfileentry& b) { return key(a) < key(b); });
}
}  // namespace

void filelistsort(tfilelist& l, tfileorder order) {
  switch (order) {
    case tfileorder::name: sortbyname(l.entries); break;
    case tfileorder::number: sortby(l.entries, [](const tfileentry& e) { return namenumber(e.name); }); break;
    case tfileorder::size: sortby(l.entries, [](const tfileentry& e) { return e.size; }); break;
    case tfileorder::date: sortby(l.entries, [](const tfileentry& e) { return e.date; }); break;
  }
}

void filelistflip(tfilelist& l) { std::reverse(l.entries.begin(), l.entries.end()); }

void filelistreplace(tfilelist& l, const utf16& search, const utf16& by) {
  for (tfileentry& e : l.entries) e.name = replace(e.name, search, by);
}

utf16 firstmatch(const utf16& name) {
  if (poschar('*', name) == 0 && poschar('?', name) == 0) return name;
  tfilelist files{};
  filelistnew(files, name);
  return files.entries.empty() ? name : files.entries.front().name;
}
