#include "field/scalarfield.h"

#include <cstring>
#include <vector>

const char* kindword(const tscalarfield& f) {
  switch (f.kind) {
    case scalarmono: return "mono";
    case scalargray: return "gray";
    case scalarfullgray: return "fullgray";
  }
  return nullptr;
}

void fieldrelease(tscalarfield& f) {
  f.mono.release();
  f.gray.release();
  f.full.release();
  f.labels.release();
}

int64_t kindmaximum(uint8_t kind) {
  switch (kind) {
    case scalarmono: return 1;
    case scalargray: return 255;
    case scalarfullgray: return 65535;
  }
  return 0;
}

int64_t getbackground(const tscalarfield& f) {
  int64_t v = 0;
  eachstorage(f, [&](const auto& a) { v = static_cast<int64_t>(a.defaultvalue); });
  return v;
}

void setbackground(tscalarfield& f, double v) {
  eachstorage(f, [&](auto& a) { a.defaultvalue = voxelof<std::remove_cvref_t<decltype(a)>>(v); });
}

int64_t getdrawvalue(const tscalarfield& f) {
  int64_t v = 0;
  eachstorage(f, [&](const auto& a) { v = static_cast<int64_t>(a.value); });
  return v;
}

void setdrawvalue(tscalarfield& f, double v) {
  eachstorage(f, [&](auto& a) { a.value = voxelof<std::remove_cvref_t<decltype(a)>>(v); });
}

bool isplain(const tscalarfield& f) {
  if (fieldempty(f)) return true;
  if (f.kind == scalarmono) {
    // Whole bytes compare at once; the used bits of the last byte one by one.
    const bool first = f.mono.get(1);
    const int64_t bytes = f.mono.count / 8;
    const uint8_t pattern = first ? 0xFF : 0x00;
    for (int64_t b = 0; b < bytes; ++b)
      if (f.mono.data[b] != pattern) return false;
    for (int64_t i = bytes * 8 + 1; i <= f.mono.count; ++i)
      if (f.mono.get(i) != first) return false;
    return true;
  }
  bool plain = true;
  eachstorage(f, [&](const auto& a) {
    if constexpr (!std::same_as<typename std::remove_cvref_t<decltype(a)>::elementtype, bool>) {
      const auto* p = a.items();
      plain = std::all_of(p, p + a.length, [&](auto v) { return v == p[0]; });
    }
  });
  return plain;
}

void remap(tscalarfield& f, const int64_t* table, int64_t entries) {
  const auto apply = [&](auto& a) {
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    if constexpr (!std::same_as<T, bool>) {
      T* p = a.items();
      for (int64_t i = 0; i < a.length; ++i)
        if (p[i] < entries) p[i] = toelement<T>(static_cast<double>(table[p[i]]));
      a.sorted = false;
    }
  };
  eachstorage(f, apply);
}

void setendian(tscalarfield& f) {
  if (f.kind != scalarfullgray) return;
  std::vector<int64_t> table(65536);
  for (int64_t v = 0; v < 65536; ++v) table[v] = ((v & 0xFF) << 8) | (v >> 8);
  remap(f, table.data(), 65536);
}

void setlabel(tscalarfield& f, int64_t i, const utf16& name) {
  if (f.kind == scalarmono || i < 0 || i > kindmaximum(f.kind)) return;
  if (f.labels.unallocated()) f.labels.createdynamic();
  // The positions that the growing write passes over hold empty names.
  for (int64_t p = f.labels.length + 1; p <= i; ++p) f.labels.putgrow(p, utf16());
  f.labels.putgrow(i + 1, name);
}

utf16 getlabel(const tscalarfield& f, int64_t i) {
  if (f.kind == scalarmono || i < 0 || i > kindmaximum(f.kind)) return utf16();
  const utf16 star("*");
  for (int64_t p = i + 1; p >= 1; --p) {
    const utf16 name = f.labels.getchecked(p);
    if (p > f.labels.length || !equal(name, star)) return name;
  }
  return utf16();
}

int64_t labelcount(const tscalarfield& f) { return f.labels.length; }

void clearlabels(tscalarfield& f) { f.labels.release(); }

void dumplabels(const tscalarfield& f) {
  println("***** dump.labels *****");
  if (f.labels.length < 1) println("  No labels.");
  for (int64_t p = 1; p <= f.labels.length; ++p) println("  " + nattext(p - 1) + ": " + f.labels.get(p));
  println("***** dump.labels end *****");
}

void copylabels(tscalarfield& to, const tscalarfield& from) {
  to.labels.release();
  if (from.labels.length < 1) return;
  to.labels.createdynamic();
  for (int64_t p = 1; p <= from.labels.length; ++p) to.labels.putgrow(p, from.labels.get(p));
}

void setloadfilter(tscalarfield& f, int64_t add, int64_t mul) {
  f.filteradd = add;
  f.filtermul = mul;
}
