// Renumbering the groups of the current field through a table of 65536 16-bit entries,
// and the group table as a text file.
#include <cmath>
#include <string>
#include <utility>

#include "field/array_sort.h"
#include "library/random.h"
#include "ops/group.h"
#include "ops/leveladjust.h"
#include "script/values.h"
#include "shell/console.h"
#include "base/filebuffer.h"

namespace {

constexpr int64_t mapentries = 65536;

double groupkey(const tgrouptables& t, size_t i, tgroupkey key, double base) {
  const double count = static_cast<double>(t.count[i]);
  if (count < 1) return 0;
  const double border = static_cast<double>(t.border[i]);
  switch (key) {
    case tgroupkey::count: return count;
    case tgroupkey::border: return border;
    case tgroupkey::fraction: return border / count;
    case tgroupkey::logfraction: return border > 0 ? std::log(border / count) / std::log(base) : 0;
  }
  return 0;
}

// Positions in the sorted list are 1-based; the map keeps 16 bits of each number.
std::vector<int64_t> sortmap(tgroupkey key, int64_t bins, double base) {
  const tgrouptables& t = grouptables();
  const int64_t n = static_cast<int64_t>(t.count.size());
  std::vector<std::pair<int64_t, double>> pairs(n);
  for (int64_t i = 0; i < n; ++i) pairs[i] = {i + 1, groupkey(t, i, key, base)};
  std::vector<int64_t> map(mapentries, 0);
  const auto entry = [&](int64_t i, double v) {
    if (i < mapentries) map[i] = static_cast<uint16_t>(v);
  };
  if (bins >= 1) {
    double lo = 0, hi = 0;
    for (int64_t i = 0; i < n; ++i) {
      lo = i == 0 ? pairs[i].second : std::min(lo, pairs[i].second);
      hi = i == 0 ? pairs[i].second : std::max(hi, pairs[i].second);
    }
    for (const auto& [i, k] : pairs) {
      if (!(k > 0)) continue;
      const double bin = hi == lo ? static_cast<double>(roundnat((1 + bins) * 0.5))
                                  : static_cast<double>(roundnat((bins - 1) / (hi - lo) * (k - lo) + 1));
      entry(i, std::clamp<double>(bin, 1, static_cast<double>(bins)));
    }
    return map;
  }
  heapsort(
      n, [&](int64_t a, int64_t b) { return pairs[a - 1].second < pairs[b - 1].second; },
      [&](int64_t a, int64_t b) { std::swap(pairs[a - 1], pairs[b - 1]); });
  if (t.inverse) std::reverse(pairs.begin(), pairs.end());
  std::vector<int64_t> position(n + 1, 0);
  for (int64_t p = 0; p < n; ++p) position[pairs[p].first] = p + 1;
  // The test reads the pair at position i, the number given is that of group i.
  for (int64_t i = 1; i <= n; ++i)
    if (pairs[i - 1].second > 0) entry(i, static_cast<double>(position[i]));
  return map;
}

template <class F>
void applymap(F& f, std::vector<int64_t> map, const std::string& word) {
  const int64_t top = leveltop(f);
  if (top < 1) return;
  progress(word, 0);
  map.resize(top + 1);
  applytable(f, map);
  progressend();
}

template <class F>
void sortrun(F& f, tgroupkey key, int64_t bins, double base) {
  if (fieldempty(f) || grouptables().count.empty()) return;
  const std::string word = bins >= 1 ? "  Sort fraction (" + std::to_string(bins) + ")" : "  Sort fraction";
  applymap(f, sortmap(key, bins, base), word);
}

template <class F>
void unsortrun(F& f) {
  if (fieldempty(f)) return;
  const int64_t n = static_cast<int64_t>(grouptables().count.size());
  std::vector<int64_t> map(mapentries, 0);
  int64_t next = 1;
  for (int64_t i = 1; i <= n; ++i) {
    const int64_t r = randombelow(n) + 1;
    if (r < mapentries && map[r] == 0) map[r] = static_cast<uint16_t>(next++);
  }
  for (int64_t e = 1; e < mapentries; ++e)
    if (map[e] == 0) map[e] = static_cast<uint16_t>(next++);
  applymap(f, std::move(map), "  Unsort");
}

}  // namespace

void groupsort(tscalarfield& f, tgroupkey key, int64_t bins, double base) { sortrun(f, key, bins, base); }
void groupsort(timagefield& f, tgroupkey key, int64_t bins, double base) { sortrun(f, key, bins, base); }
void groupunsort(tscalarfield& f) { unsortrun(f); }
void groupunsort(timagefield& f) { unsortrun(f); }

bool groupstat(const utf16& name) {
  const tgrouptables& t = grouptables();
  if (t.count.empty()) return false;
  std::string text;
  for (size_t i = 0; i < t.count.size(); ++i) {
    // Numbers below the run's start that no group of the tables holds have no fraction: 0.
    const double fraction =
        t.count[i] > 0 ? static_cast<double>(t.border[i]) / static_cast<double>(t.count[i]) : 0;
    text += std::to_string(i + 1) + "\t" + std::to_string(t.border[i]) + "\t" + std::to_string(t.count[i]) + "\t" +
            utf16toutf8(realtext(fraction)) + "\n";
  }
  // The table is made whole before the file opens: an error leaves no half of it.
  return bufferwrite(name, text);
}
