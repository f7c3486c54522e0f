// Grouping on fields: voxel states from the target and the source's range, the labelling
// core, then the numbers written back and the tables kept.
#include <algorithm>
#include <string>

#include "ops/blocks.h"
#include "ops/group.h"
#include "script/values.h"
#include "shell/console.h"

tgrouptables& grouptables() {
  static tgrouptables tables;
  return tables;
}

namespace {

// op(get) with get(i) the value at the linear index i (from 0) of the field's own storage.
template <class Op>
void withreader(const tscalarfield& f, Op op) {
  eachstorage(f, [&](const auto& a) {
    if constexpr (requires { a.items(); }) {
      const auto* p = a.items();  // a plain pointer: the loops vectorise
      op([p](int64_t i) { return static_cast<int64_t>(p[i]); });
    } else {
      op([&a](int64_t i) { return static_cast<int64_t>(a.get(i + 1)); });
    }
  });
}
template <class Op>
void withreader(const timagefield& f, Op op) {
  withkind(f, [&](auto v) {
    if constexpr (!decltype(v)::colour) {
      const auto* p = v.plane().items();
      op([p](int64_t i) { return static_cast<int64_t>(p[i]); });
    } else {
      const int64_t w = v.sizex();
      op([v, w](int64_t i) { return v.getvalue(i % w + 1, i / w + 1); });
    }
  });
}
// op(put) with put(i, v) storing v as the kind stores it.
template <class Op>
void withwriter(tscalarfield& f, Op op) {
  eachstorage(f, [&](auto& a) {
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    const int64_t top = kindmaximum(f.kind);
    op([&a, top](int64_t i, int64_t v) { a.put(i + 1, static_cast<T>(std::min(v, top))); });
  });
}
template <class Op>
void withwriter(timagefield& f, Op op) {
  withkind(f, [&](auto v) {
    const int64_t w = v.sizex();
    op([v, w](int64_t i, int64_t value) { v.setvalue(i % w + 1, i / w + 1, static_cast<double>(value)); });
  });
}

int64_t sourcetop(const tscalarfield& f) { return kindmaximum(f.kind); }
int64_t sourcetop(const timagefield& f) { return f.kind == imagefullgray ? 65535 : 255; }
int64_t valueat(const tscalarfield& f, int64_t x, int64_t y, int64_t z) { return getvalue(f, x, y, z); }
int64_t valueat(const timagefield& f, int64_t x, int64_t y, int64_t) { return getvalue(f, x, y); }

template <class F>
int64_t fieldmaximum(const F& f, int64_t threads) {
  const tnatvector size = fieldsize(f);
  const int64_t plane = size[0] * size[1];
  std::vector<int64_t> tops(static_cast<size_t>(size[2]), 0);
  withreader(f, [&](auto get) {
    inblocks(size[2], threads, [&](int64_t first, int64_t end) {
      for (int64_t z = first; z < end; ++z)
        for (int64_t i = z * plane; i < (z + 1) * plane; ++i) tops[z] = std::max(tops[z], get(i));
    });
  });
  return tops.empty() ? 0 : *std::max_element(tops.begin(), tops.end());
}

// The states of the target's voxels; a source of another size is read by position, so
// that what lies outside it reads as its background.
template <class F>
tgroupgrid groupgrid(const F& target, const F& source, int64_t lo, int64_t hi, int64_t sourcebackground,
                     const char* word, int64_t threads) {
  tgroupgrid g;
  const tnatvector size = fieldsize(target);
  g.nx = size[0], g.ny = size[1], g.nz = size[2];
  g.planar = F::axes == 2;
  g.states.resize(static_cast<size_t>(g.nx * g.ny * g.nz));
  const int64_t plane = g.nx * g.ny;
  const bool samesize = fieldsize(source) == size;
  withreader(target, [&](auto targetget) {
    const auto fill = [&](auto sourceget) {
      inblocks(g.nz, threads, [&](int64_t first, int64_t end) {
      for (int64_t z = first; z < end; ++z) {
        if (first == 0) progress(word, static_cast<double>(z + 1) / static_cast<double>(end));
        // Branch-free in 32 bits, so that the loop runs on vector units: samples are 16 bits.
        uint8_t* states = g.states.data();
        const auto low = static_cast<int32_t>(std::clamp<int64_t>(lo, -1, 65536));
        const auto high = static_cast<int32_t>(std::clamp<int64_t>(hi, -1, 65536));
        for (int64_t i = z * plane; i < (z + 1) * plane; ++i) {
          const auto v = static_cast<int32_t>(sourceget(i));
          const auto inrange = static_cast<uint8_t>((v >= low) & (v <= high));
          const auto free = static_cast<uint8_t>(targetget(i) == 0);
          states[i] = static_cast<uint8_t>((groupsfree - inrange) * free);
        }
      }
      });
    };
    if (samesize)
      withreader(source, fill);
    else
      fill([&](int64_t i) {
        const int64_t x = i % g.nx + 1, y = (i / g.nx) % g.ny + 1, z = i / plane + 1;
        return x <= fieldsize(source)[0] && y <= fieldsize(source)[1] && z <= fieldsize(source)[2]
                   ? valueat(source, x, y, z)
                   : sourcebackground;
      });
  });
  progressend();
  g.outsideborder = getbackground(target) == 0 && !(sourcebackground >= lo && sourcebackground <= hi);
  return g;
}

// The background that outside reads of the source give during the run: the kind's top
// when the range starts at 0, so that the outside falls out of the range. In the range
// conflict it stays inside the range; a position outside is still never a member (the
// fill would walk off without end), it only stops counting as border.
template <class F>
int64_t runbackground(const F& source, int64_t lo, int64_t hi) {
  if (lo != 0) return getbackground(source);
  const int64_t top = sourcetop(source);
  if (hi >= top) {
    const std::string t = std::to_string(top);
    println("Range conflict (0.." + t + "): <0, " + t + ">");
  }
  return top;
}

const char* keepword(const tgroupfilter& keep) {
  switch (keep.keep) {
    case tgroupkeep::least: return "  Min group";
    case tgroupkeep::between: return "  Min/max group";
    default: return "  Group";
  }
}

bool kept(const tgroupfilter& keep, int64_t count) {
  switch (keep.keep) {
    case tgroupkeep::least: return count >= keep.least;
    case tgroupkeep::between: return count >= keep.least && count <= keep.most;
    default: return true;
  }
}

// Writes `numbers[component]` into every voxel of the components with a number above 0.
template <class F>
void writecomponents(F& target, const tgroupgrid& g, const tgroupcomponents& c, const std::vector<int64_t>& numbers,
                     int64_t threads) {
  withwriter(target, [&](auto put) {
    inblocks(g.nz, threads, [&](int64_t first, int64_t end) {
      for (int64_t r = first * g.ny; r < end * g.ny; ++r)
        for (int64_t i = c.rowstart[r]; i < c.rowstart[r + 1]; ++i) {
          const int64_t number = numbers[c.component[i]];
          if (number > 0)
            for (int64_t x = c.runs[i].x0; x <= c.runs[i].x1; ++x) put(r * g.nx + x, number);
        }
    });
  });
}

void growtables(tgrouptables& t, int64_t length) {
  if (static_cast<int64_t>(t.count.size()) < length) {
    t.count.resize(length, 0);
    t.border.resize(length, 0);
  }
}

template <class F>
tgroupresult grouprun(F& target, const F& source, int64_t lo, int64_t hi, const tgroupfilter& keep, int64_t threads) {
  hi = std::max(hi, lo);
  const int64_t background = runbackground(source, lo, hi);
  const int64_t start = fieldmaximum(target, threads);
  tgrouptables& t = grouptables();
  t.count.resize(start, 0);
  t.border.resize(start, 0);
  println("  New groups start at: " + nattext(start + 1));
  const tgroupgrid g = groupgrid(target, source, lo, hi, background, keepword(keep), threads);
  const tgroupcomponents c = groupcomponents(g, threads);
  std::vector<int64_t> numbers(c.count.size(), 0);
  tgroupresult result{0, start + 1, start};
  for (size_t k = 0; k < c.count.size(); ++k) {
    if (!kept(keep, c.count[k])) continue;
    numbers[k] = ++result.last;
    t.count.push_back(c.count[k]);
    t.border.push_back(c.border[k]);
  }
  result.added = result.last - start;
  writecomponents(target, g, c, numbers, threads);
  println("  Groups: " + nattext(result.added));
  return result;
}

// Each region's one neighbouring group, or 0 when it touches none or two.
template <class F>
std::vector<int64_t> touchedgroups(const F& target, const tgroupgrid& g, const tgroupcomponents& c) {
  std::vector<int64_t> group(c.count.size(), 0);
  std::vector<bool> two(c.count.size(), false);
  withreader(target, [&](auto get) {
    const auto meet = [&](uint32_t k, int64_t i) {
      if (g.states[i] != groupstaken) return;
      const int64_t v = get(i);
      if (group[k] == 0)
        group[k] = v;
      else if (group[k] != v)
        two[k] = true;
    };
    const int64_t plane = g.nx * g.ny;
    for (size_t r = 0; r + 1 < c.rowstart.size(); ++r) {
      const int64_t y = static_cast<int64_t>(r) % g.ny, z = static_cast<int64_t>(r) / g.ny;
      const int64_t base = static_cast<int64_t>(r) * g.nx;
      for (int64_t i = c.rowstart[r]; i < c.rowstart[r + 1]; ++i) {
        const uint32_t k = c.component[i];
        const tgrouprun run = c.runs[i];
        if (run.x0 > 0) meet(k, base + run.x0 - 1);
        if (run.x1 < g.nx - 1) meet(k, base + run.x1 + 1);
        for (int64_t x = run.x0; x <= run.x1; ++x) {
          if (y > 0) meet(k, base + x - g.nx);
          if (y < g.ny - 1) meet(k, base + x + g.nx);
          if (z > 0) meet(k, base + x - plane);
          if (z < g.nz - 1) meet(k, base + x + plane);
        }
      }
    }
  });
  for (size_t k = 0; k < group.size(); ++k)
    if (two[k]) group[k] = 0;
  return group;
}

template <class F>
void addrun(F& target, const F& source, int64_t lo, int64_t hi) {
  hi = std::max(hi, lo);
  const int64_t background = lo == 0 ? sourcetop(source) : getbackground(source);
  const tgroupgrid g = groupgrid(target, source, lo, hi, background, "  Additional groups", 1);
  const tgroupcomponents c = groupcomponents(g);
  const std::vector<int64_t> group = touchedgroups(target, g, c);
  tgrouptables& t = grouptables();
  for (size_t k = 0; k < group.size(); ++k) {
    if (group[k] < 1) continue;
    growtables(t, group[k]);
    t.count[group[k] - 1] += c.count[k];
    t.border[group[k] - 1] += c.border[k];
  }
  writecomponents(target, g, c, group, 1);
}

}  // namespace

tgroupresult groupfield(tscalarfield& target, const tscalarfield& source, int64_t lo, int64_t hi,
                        const tgroupfilter& keep, int64_t threads) {
  return grouprun(target, source, lo, hi, keep, threads);
}
tgroupresult groupfield(timagefield& target, const timagefield& source, int64_t lo, int64_t hi,
                        const tgroupfilter& keep, int64_t threads) {
  return grouprun(target, source, lo, hi, keep, threads);
}
void groupadd(tscalarfield& target, const tscalarfield& source, int64_t lo, int64_t hi) {
  addrun(target, source, lo, hi);
}
void groupadd(timagefield& target, const timagefield& source, int64_t lo, int64_t hi) {
  addrun(target, source, lo, hi);
}
