// The language's one value type: text of 16-bit characters, held as two parallel
// byte planes (low and high bytes), so that pure ASCII text is a plain byte string.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

struct utf16 {
  std::string lo;  // low byte of each character
  std::string hi;  // high byte of each character

  utf16() = default;
  utf16(const char* utf8);  // literals of the program are UTF-8
  utf16(std::string_view utf8);
  utf16(const std::string& utf8) : utf16(std::string_view(utf8)) {}
};

// The central limit of the language: no name, value or parameter holds more characters.
constexpr int64_t cellmax = 254;

// --- construction and conversion -------------------------------------------------------
utf16 utf16fromutf8(std::string_view s);
std::string utf16toutf8(const utf16& v);  // character 0 is left out
uint16_t charfromutf8(std::string_view s);
utf16 utf16char(uint16_t c);
utf16 celfromutf16(const utf16& v);  // cut to the first 254 characters
// The same cut, assigned into the storage `to` already has: the engine stores values at
// every statement.
void assigncel(utf16& to, const utf16& v);
inline utf16 cellfromutf8(std::string_view s) { return celfromutf16(utf16fromutf8(s)); }

// --- comparison ----------------------------------------------------------------------
bool equal(const utf16& a, const utf16& b);
inline bool notequal(const utf16& a, const utf16& b) { return !equal(a, b); }
bool equalutf8(const utf16& a, std::string_view s);
inline bool cellequal(const utf16& a, const utf16& b) { return equal(a, b); }
bool less(const utf16& a, const utf16& b);
bool lessequal(const utf16& a, const utf16& b);
inline bool operator==(const utf16& a, const utf16& b) { return equal(a, b); }
// The comparison mode set by io.align: false = shorter text is less (default).
extern bool stringcomparealigned;

// --- length and parts (positions count from 1) ----------------------------------------------
inline int64_t length(const utf16& v) { return static_cast<int64_t>(v.lo.size()); }
inline bool empty(const utf16& v) { return v.lo.empty(); }
uint16_t charat(const utf16& v, int64_t i);  // 0 outside the text
utf16 copy(const utf16& v, int64_t start, int64_t count);
utf16 copyrange(const utf16& v, int64_t from, int64_t to);
void deletechars(utf16& v, int64_t start, int64_t count);
utf16 concat(const utf16& a, const utf16& b);
inline utf16 operator+(const utf16& a, const utf16& b) { return concat(a, b); }
void appendchar(utf16& v, uint16_t c);
void append(utf16& v, const utf16& tail);

// --- searching (results from 1, 0 for none) -------------------------------------------------
int64_t pos(const utf16& needle, const utf16& hay);
int64_t lastpos(const utf16& needle, const utf16& hay);
int64_t poschar(uint16_t c, const utf16& hay);

// --- changing ----------------------------------------------------------------------
utf16 lower(const utf16& v);  // only A..Z in the low plane
utf16 upper(const utf16& v);
utf16 replacechar(const utf16& v, uint16_t a, uint16_t b);
utf16 replace(const utf16& v, const utf16& pattern, const utf16& by);
utf16 trimleft(const utf16& v, uint16_t c);
utf16 trimright(const utf16& v, uint16_t c);
utf16 trimleft2(const utf16& v, uint16_t a, uint16_t b);
utf16 trimright2(const utf16& v, uint16_t a, uint16_t b);
utf16 trimblanks(const utf16& v);  // blanks and tabs at both ends

// --- cutting words off a text: how the whole language is parsed --------------------------------
// Each returns the part before the first separator and removes it and the separator from v;
// with none, all of v is returned and v becomes empty.
utf16 cutword(utf16& v, const utf16& sep);
utf16 cutparam(utf16& v, const utf16& sep);     // separator outside quotes and brackets
utf16 cutrawparam(utf16& v, const utf16& sep);  // as cutparam, but < and > are no brackets
utf16 untilfirst(const utf16& v, const utf16& sep);

// The engine's long fields: two cells in a row. Text beyond 254 characters is split into
// characters 1..255 and 256..510, each cut to a cell, so character 255 is lost.
struct utf16field {
  utf16 first, second;
  void set(const utf16& v);
  utf16 get() const { return second.lo.empty() ? first : concat(first, second); }
  void clear() { first = utf16(); second = utf16(); }
  bool isempty() const { return empty(first) && empty(second); }
};
