// Lists of names: 512-byte records holding a text of at most 254 characters, and a
// sorted view (order) over them for lookups.
#pragma once
#include "field/array_numbers.h"
#include "script/utf16.h"

// Low and high bytes of the 16-bit characters in two planes; byte 0 of each plane holds
// the length, the text follows and ends with a zero byte.
struct tname {
  uint8_t lo[256];
  uint8_t hi[256];
};
static_assert(sizeof(tname) == 512);

tname namerecord(const utf16& text);  // longer texts are cut to 254 characters
utf16 nametext(const tname& name);

// How names compare when they are sorted: the text order of the language, optionally
// without regard to the case of ASCII letters.
extern bool namecompareignorecase;
bool nameless(const utf16& a, const utf16& b);

struct tnamelist : tarraylist<tname, 241> {
  tcountlist order{};         // (index of the k-th name in sort order, k)
  bool sortflags[2] = {};     // [0] the names stand in order, [1] order is current

  void create(int64_t count);
  void createdynamic();
  void release();

  tname& record(int64_t i) const { return items()[i - 1]; }
  utf16 get(int64_t i) const { return nametext(record(i)); }
  utf16 getchecked(int64_t i) const { return i >= 1 && i <= length ? get(i) : utf16(); }
  void put(int64_t i, const utf16& name);
  void putgrow(int64_t i, const utf16& name);
  void add(const utf16& name) { putgrow(length + 1, name); }

  // Index of the first name equal to the text, 0 if none; through order when current.
  int64_t find(const utf16& name) const;
  void sort();       // reorders the names themselves
  void sortorder();  // builds order and leaves the names where they are
};
