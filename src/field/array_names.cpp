// Name records and the name list: conversion, lookup and sorting.
#include "field/array_names.h"

bool namecompareignorecase = false;

tname namerecord(const utf16& text) {
  tname name{};
  const auto n = static_cast<size_t>(std::min<int64_t>(length(text), cellmax));
  name.lo[0] = name.hi[0] = static_cast<uint8_t>(n);
  for (size_t i = 0; i < n; ++i) {
    name.lo[i + 1] = static_cast<uint8_t>(text.lo[i]);
    name.hi[i + 1] = i < text.hi.size() ? static_cast<uint8_t>(text.hi[i]) : 0;
  }
  return name;  // byte n + 1 of both planes stays 0: the terminator
}

utf16 nametext(const tname& name) {
  const size_t n = std::min<size_t>(name.lo[0], cellmax);
  utf16 text;
  text.lo.assign(reinterpret_cast<const char*>(name.lo + 1), n);
  text.hi.assign(reinterpret_cast<const char*>(name.hi + 1), n);
  return text;
}

bool nameless(const utf16& a, const utf16& b) {
  return namecompareignorecase ? less(upper(a), upper(b)) : less(a, b);
}

void tnamelist::create(int64_t count) {
  tarraylist::create(count);
  order.createdynamic();
  sortflags[0] = sortflags[1] = false;
}

void tnamelist::createdynamic() {
  tarraylist::createdynamic();
  order.createdynamic();
  sortflags[0] = sortflags[1] = false;
}

void tnamelist::release() {
  order.release();
  tfieldmemory::release();
  sortflags[0] = sortflags[1] = false;
}

void tnamelist::put(int64_t i, const utf16& name) {
  tarraylist::put(i, namerecord(name));
  sortflags[0] = sortflags[1] = false;
}

void tnamelist::putgrow(int64_t i, const utf16& name) {
  tarraylist::putgrow(i, namerecord(name));
  sortflags[0] = sortflags[1] = false;
}

int64_t tnamelist::find(const utf16& name) const {
  if (!sortflags[1] || order.length != length) {
    for (int64_t i = 1; i <= length; ++i)
      if (equal(get(i), name)) return i;
    return 0;
  }
  // Left end of the names not below the text in sort order; of the run that compares
  // equal from there, the exact match with the smallest index wins, as in the scan.
  int64_t lo = 1, hi = length + 1;
  while (lo < hi) {
    const int64_t mid = (lo + hi) / 2;
    if (!nameless(get(order.get(mid)[0]), name))
      hi = mid;
    else
      lo = mid + 1;
  }
  int64_t found = 0;
  for (int64_t k = hi; k <= length; ++k) {
    const int64_t i = order.get(k)[0];
    const utf16 candidate = get(i);
    if (nameless(name, candidate)) break;
    if (equal(candidate, name) && (found == 0 || i < found)) found = i;
  }
  return found;
}

void tnamelist::sort() {
  heapsort(
      length, [&](int64_t a, int64_t b) { return nameless(get(a), get(b)); },
      [&](int64_t a, int64_t b) { swapitems(a, b); });
  sorted = true;
  sortflags[0] = true;
  sortflags[1] = false;
}

void tnamelist::sortorder() {
  order.create(length);
  if (order.length != length) return;
  for (int64_t k = 1; k <= length; ++k) order.put(k, {k, k});
  heapsort(
      length, [&](int64_t a, int64_t b) { return nameless(get(order.get(a)[0]), get(order.get(b)[0])); },
      [&](int64_t a, int64_t b) { order.swapitems(a, b); });
  for (int64_t k = 1; k <= length; ++k) order.put(k, {order.get(k)[0], k});
  sortflags[1] = true;
}
