#include "script/utf16.h"

#include <algorithm>
#include <cstring>

bool stringcomparealigned = false;

utf16::utf16(const char* utf8) : utf16(utf16fromutf8(utf8 ? std::string_view(utf8) : std::string_view())) {}
utf16::utf16(std::string_view utf8) : utf16(utf16fromutf8(utf8)) {}

namespace {

void push(utf16& v, uint16_t c) {
  v.lo.push_back(static_cast<char>(c & 0xFF));
  v.hi.push_back(static_cast<char>(c >> 8));
}

// Length of the sequence that a lead byte announces, for the lead bytes that give no character.
int skiplength(unsigned char b) {
  if ((b & 0xF8) == 0xF0) return 4;
  if ((b & 0xFC) == 0xF8) return 5;
  if ((b & 0xFE) == 0xFC) return 6;
  if (b == 0xFE) return 7;
  return 1;
}

bool matchesat(const utf16& needle, const utf16& hay, size_t at) {
  return hay.lo.compare(at, needle.lo.size(), needle.lo) == 0 &&
         hay.hi.compare(at, needle.hi.size(), needle.hi) == 0;
}

}  // namespace

utf16 utf16fromutf8(std::string_view s) {
  utf16 v;
  if (std::all_of(s.begin(), s.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    v.lo.assign(s);
    v.hi.assign(s.size(), '\0');
    return v;
  }
  v.lo.reserve(s.size());
  v.hi.reserve(s.size());
  size_t i = 0;
  const size_t n = s.size();
  while (i < n) {
    const auto b1 = static_cast<unsigned char>(s[i]);
    if (b1 < 0x80) {
      push(v, b1);
      i += 1;
    } else if ((b1 & 0xC0) == 0x80) {
      push(v, 0);  // stray continuation byte
      i += 1;
    } else if ((b1 & 0xE0) == 0xC0) {
      if (i + 1 < n) {
        push(v, static_cast<uint16_t>(((b1 & 31) << 6) | (static_cast<unsigned char>(s[i + 1]) & 63)));
        i += 2;
      } else {
        push(v, 0);
        i = n;
      }
    } else if ((b1 & 0xF0) == 0xE0) {
      if (i + 2 < n) {
        push(v, static_cast<uint16_t>(((b1 & 15) << 12) | ((static_cast<unsigned char>(s[i + 1]) & 63) << 6) |
                                      (static_cast<unsigned char>(s[i + 2]) & 63)));
        i += 3;
      } else {
        push(v, 0);
        i = n;
      }
    } else {
      push(v, 0);  // beyond the first plane, or 0xFF
      i = std::min(n, i + static_cast<size_t>(skiplength(b1)));
    }
  }
  return v;
}

std::string utf16toutf8(const utf16& v) {
  std::string out;
  out.reserve(v.lo.size());
  const int64_t n = length(v);
  for (int64_t i = 1; i <= n; ++i) {
    const uint16_t c = charat(v, i);
    if (c == 0) continue;
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 63)));
    } else {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 63)));
      out.push_back(static_cast<char>(0x80 | (c & 63)));
    }
  }
  return out;
}

uint16_t charfromutf8(std::string_view s) { return charat(utf16fromutf8(s), 1); }

utf16 utf16char(uint16_t c) {
  utf16 v;
  push(v, c);
  return v;
}

utf16 celfromutf16(const utf16& v) { return length(v) <= cellmax ? v : copy(v, 1, cellmax); }

void assigncel(utf16& to, const utf16& v) {
  if (length(v) > cellmax) {
    to = copy(v, 1, cellmax);
    return;
  }
  to.lo = v.lo;
  to.hi = v.hi;
}

bool equal(const utf16& a, const utf16& b) { return a.lo == b.lo && a.hi == b.hi; }

bool equalutf8(const utf16& a, std::string_view s) {
  // No character takes less than one byte, so a longer text never equals; the statement
  // loop's many keyword tests mostly end here.
  if (a.lo.size() > s.size()) return false;
  // Fast path for the ASCII keywords the statement loop compares with.
  if (std::all_of(s.begin(), s.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    return a.lo == s && a.hi.find_first_not_of('\0') == std::string::npos && a.hi.size() == a.lo.size();
  }
  return equal(a, utf16fromutf8(s));
}

namespace {
// -1, 0, 1 by characters over the common length
int compareprefix(const utf16& a, const utf16& b) {
  const int64_t n = std::min(length(a), length(b));
  const auto common = static_cast<size_t>(n);
  if (a.hi.size() >= common && b.hi.size() >= common && std::memcmp(a.hi.data(), b.hi.data(), common) == 0) {
    // Equal high planes, as in all names of plain ASCII: the low bytes decide, in order.
    const int bybytes = std::memcmp(a.lo.data(), b.lo.data(), common);
    return bybytes == 0 ? 0 : (bybytes < 0 ? -1 : 1);
  }
  for (int64_t i = 1; i <= n; ++i) {
    const uint16_t ca = charat(a, i), cb = charat(b, i);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  return 0;
}
}  // namespace

bool less(const utf16& a, const utf16& b) {
  if (stringcomparealigned) return compareprefix(a, b) < 0;
  if (length(a) != length(b)) return length(a) < length(b);
  return compareprefix(a, b) < 0;
}

bool lessequal(const utf16& a, const utf16& b) {
  if (stringcomparealigned) return compareprefix(a, b) <= 0;
  if (length(a) != length(b)) return length(a) < length(b);
  return compareprefix(a, b) <= 0;
}

uint16_t charat(const utf16& v, int64_t i) {
  if (i < 1) return 0;
  const auto k = static_cast<size_t>(i - 1);
  const uint16_t l = k < v.lo.size() ? static_cast<unsigned char>(v.lo[k]) : 0;
  const uint16_t h = k < v.hi.size() ? static_cast<unsigned char>(v.hi[k]) : 0;
  return static_cast<uint16_t>(h * 256 + l);
}

utf16 copy(const utf16& v, int64_t start, int64_t count) {
  utf16 out;
  const int64_t n = length(v);
  if (start < 1) {
    count += start - 1;
    start = 1;
  }
  if (count <= 0 || start > n) return out;
  count = std::min(count, n - start + 1);
  out.lo = v.lo.substr(static_cast<size_t>(start - 1), static_cast<size_t>(count));
  out.hi = v.hi.size() >= static_cast<size_t>(start - 1) ? v.hi.substr(static_cast<size_t>(start - 1), static_cast<size_t>(count)) : std::string();
  out.hi.resize(out.lo.size(), '\0');
  return out;
}

utf16 copyrange(const utf16& v, int64_t from, int64_t to) { return copy(v, from, to - from + 1); }

void deletechars(utf16& v, int64_t start, int64_t count) {
  const int64_t n = length(v);
  if (start < 1 || start > n || count <= 0) return;
  count = std::min(count, n - start + 1);
  v.lo.erase(static_cast<size_t>(start - 1), static_cast<size_t>(count));
  if (v.hi.size() >= static_cast<size_t>(start - 1)) v.hi.erase(static_cast<size_t>(start - 1), static_cast<size_t>(count));
}

utf16 concat(const utf16& a, const utf16& b) {
  utf16 out = a;
  append(out, b);
  return out;
}

void append(utf16& v, const utf16& tail) {
  v.hi.resize(v.lo.size(), '\0');
  v.lo += tail.lo;
  v.hi += tail.hi;
  v.hi.resize(v.lo.size(), '\0');
}

void appendchar(utf16& v, uint16_t c) {
  v.hi.resize(v.lo.size(), '\0');
  push(v, c);
}

int64_t pos(const utf16& needle, const utf16& hay) {
  if (empty(needle) || length(needle) > length(hay)) return 0;
  for (size_t at = hay.lo.find(needle.lo); at != std::string::npos; at = hay.lo.find(needle.lo, at + 1)) {
    if (matchesat(needle, hay, at)) return static_cast<int64_t>(at) + 1;
  }
  return 0;
}

int64_t lastpos(const utf16& needle, const utf16& hay) {
  if (empty(needle) || length(needle) > length(hay)) return 0;
  for (size_t at = hay.lo.rfind(needle.lo); at != std::string::npos; at = at == 0 ? std::string::npos : hay.lo.rfind(needle.lo, at - 1)) {
    if (matchesat(needle, hay, at)) return static_cast<int64_t>(at) + 1;
  }
  return 0;
}

int64_t poschar(uint16_t c, const utf16& hay) {
  // The low plane is searched first; a hit counts where the high byte agrees.
  const char low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8);
  for (size_t at = hay.lo.find(low); at != std::string::npos; at = hay.lo.find(low, at + 1)) {
    const char h = at < hay.hi.size() ? hay.hi[at] : '\0';
    if (h == high) return static_cast<int64_t>(at) + 1;
  }
  return 0;
}

namespace {
utf16 changecase(const utf16& v, char from, char to, int shift) {
  utf16 out = v;
  for (char& c : out.lo)
    if (c >= from && c <= to) c = static_cast<char>(c + shift);
  return out;
}
}  // namespace

utf16 lower(const utf16& v) { return changecase(v, 'A', 'Z', 'a' - 'A'); }
utf16 upper(const utf16& v) { return changecase(v, 'a', 'z', 'A' - 'a'); }

utf16 replacechar(const utf16& v, uint16_t a, uint16_t b) {
  utf16 out = v;
  for (size_t i = 0; i < out.lo.size(); ++i) {
    if (static_cast<uint8_t>(out.lo[i]) == (a & 0xFF) && static_cast<uint8_t>(out.hi[i]) == (a >> 8)) {
      out.lo[i] = static_cast<char>(b & 0xFF);
      out.hi[i] = static_cast<char>(b >> 8);
    }
  }
  return out;
}

utf16 replace(const utf16& v, const utf16& pattern, const utf16& by) {
  if (empty(pattern) || empty(v)) return v;
  utf16 out, rest = v;
  for (int64_t at = pos(pattern, rest); at > 0; at = pos(pattern, rest)) {
    append(out, copy(rest, 1, at - 1));
    append(out, by);
    rest = copy(rest, at + length(pattern), length(rest));
  }
  append(out, rest);
  return out;
}

utf16 trimleft2(const utf16& v, uint16_t a, uint16_t b) {
  int64_t i = 1;
  const int64_t n = length(v);
  while (i <= n && (charat(v, i) == a || charat(v, i) == b)) ++i;
  return copy(v, i, n);
}

utf16 trimright2(const utf16& v, uint16_t a, uint16_t b) {
  int64_t n = length(v);
  while (n > 0 && (charat(v, n) == a || charat(v, n) == b)) --n;
  return copy(v, 1, n);
}

utf16 trimleft(const utf16& v, uint16_t c) { return trimleft2(v, c, c); }
utf16 trimright(const utf16& v, uint16_t c) { return trimright2(v, c, c); }
utf16 trimblanks(const utf16& v) { return trimright2(trimleft2(v, ' ', '\t'), ' ', '\t'); }

namespace {

utf16 cutat(utf16& v, int64_t at, int64_t seplength) {
  if (at <= 0) {
    utf16 all = v;
    v = utf16();
    return all;
  }
  utf16 head = copy(v, 1, at - 1);
  v = copy(v, at + seplength, length(v));
  return head;
}

// First position of sep outside quotes and outside any bracket pair.
int64_t findoutside(const utf16& v, const utf16& sep, bool anglebrackets) {
  if (empty(sep)) return 0;
  int round = 0, square = 0, curly = 0, angle = 0;
  uint16_t quote = 0;
  const int64_t n = length(v), m = length(sep);
  for (int64_t i = 1; i <= n; ++i) {
    if (quote == 0 && round == 0 && square == 0 && curly == 0 && angle == 0 && i + m - 1 <= n &&
        matchesat(sep, v, static_cast<size_t>(i - 1)))
      return i;
    const uint16_t c = charat(v, i);
    if (c > 255) continue;
    if (quote != 0) {
      if (c == quote) quote = 0;
      continue;
    }
    switch (c) {
      case '"': case '\'': quote = c; break;
      case '(': ++round; break;
      case ')': --round; break;
      case '[': ++square; break;
      case ']': --square; break;
      case '{': ++curly; break;
      case '}': --curly; break;
      case '<': if (anglebrackets) ++angle; break;
      case '>': if (anglebrackets) --angle; break;
      default: break;
    }
  }
  return 0;
}

}  // namespace

utf16 cutword(utf16& v, const utf16& sep) { return cutat(v, pos(sep, v), length(sep)); }
utf16 cutparam(utf16& v, const utf16& sep) { return cutat(v, findoutside(v, sep, true), length(sep)); }
utf16 cutrawparam(utf16& v, const utf16& sep) { return cutat(v, findoutside(v, sep, false), length(sep)); }

utf16 untilfirst(const utf16& v, const utf16& sep) {
  const int64_t at = pos(sep, v);
  return at > 0 ? copy(v, 1, at - 1) : v;
}

void utf16field::set(const utf16& v) {
  if (length(v) <= cellmax + 1) {
    assigncel(first, v);
    second.lo.clear();
    second.hi.clear();
  } else {
    first = celfromutf16(copy(v, 1, 255));
    second = celfromutf16(copy(v, 256, 255));
  }
}
