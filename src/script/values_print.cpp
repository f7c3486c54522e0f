// Printing numbers, lists of numbers and byte sizes as text.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "script/values.h"

namespace {

constexpr std::string_view digits09 = "0123456789";

// The text of printf's "%.*f", without its cost: to_chars promises the same digits.
std::string fixeddecimals(double x, int decimals) {
  char buffer[512];
  const auto [end, failed] = std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::fixed, decimals);
  if (failed == std::errc()) return std::string(buffer, end);
  const int n = std::snprintf(nullptr, 0, "%.*f", decimals, x);
  std::string s(static_cast<size_t>(n), '\0');
  std::snprintf(s.data(), s.size() + 1, "%.*f", decimals, x);
  return s;
}

// The last one or two of 16 decimals are the binary form's noise when zeros stand before
// them: 1.1000000000000001 and 1.1000000000000012 are both 1.1. Large numbers, whose point
// stands in the second half of the text, keep all their decimals.
std::string removenoise(std::string s) {
  const size_t point = s.find('.');
  if (point == std::string::npos || 2 * (point + 1) > s.size()) return s;
  const size_t n = s.size();
  if (s[n - 1] != '0') {
    if (n - 2 > point && s[n - 2] == '0') s.resize(n - 1);
    else if (n - 3 > point && s[n - 3] == '0') s.resize(n - 2);
    else return s;
  }
  while (s.back() == '0') s.pop_back();
  return s;
}

// Without blanks and a trailing point, and with no minus before a zero. A zero with
// decimals ("-0.00" from a rounded print) counts as zero too: a sign on nothing misleads.
std::string tidy(std::string s) {
  std::erase(s, ' ');
  if (!s.empty() && s.back() == '.') s.pop_back();
  if (s.size() > 1 && s.front() == '-' && s.find_first_not_of("0.", 1) == std::string::npos) s.erase(0, 1);
  return s;
}

// "0.00123" becomes "123E-5" and "12000" becomes "12E3"; all other texts stay. At least two
// zeros must follow the point, so 0.5 and 0.05 keep their plain and shorter form.
std::string scientificform(const std::string& s) {
  const size_t sign = !s.empty() && s.front() == '-' ? 1 : 0;
  const std::string head = s.substr(0, sign);
  const std::string body = s.substr(sign);
  if (body.starts_with("0.00")) {
    const size_t first = body.find_first_not_of('0', 2);
    if (first == std::string::npos || body.find_first_not_of(digits09, 2) != std::string::npos) return s;
    const std::string mantissa = body.substr(first);
    return head + mantissa + "E-" + std::to_string(first - 2 + mantissa.size());
  }
  if (body.empty() || body.find_first_not_of(digits09) != std::string::npos) return s;
  const size_t last = body.find_last_not_of('0');
  if (last == std::string::npos || last + 1 == body.size()) return s;
  return head + body.substr(0, last + 1) + "E" + std::to_string(body.size() - 1 - last);
}

// The user's display settings on a real printed with '.'.
std::string displayed(std::string s) {
  if (numbersettings.scientific) s = scientificform(s);
  if (!numbersettings.decimal) std::replace(s.begin(), s.end(), '.', ',');
  return s;
}

// Whole groups of three digits from the right, for four digits or more.
std::string grouped(const std::string& s, char separator) {
  const size_t sign = !s.empty() && s.front() == '-' ? 1 : 0;
  const size_t count = s.size() - sign;
  if (count < 4) return s;
  std::string out = s.substr(0, sign);
  for (size_t i = 0; i < count; ++i) {
    if (i > 0 && (count - i) % 3 == 0) out += separator;
    out += s[sign + i];
  }
  return out;
}

// Decimals are clamped so that a wild count from a script cannot ask for a huge text.
std::string realstring(double x, int decimals) {
  if (decimals < 0) return displayed(plainrealtext(x));
  return displayed(tidy(fixeddecimals(x, std::min(decimals, 100))));
}

std::string natstring(int64_t n) {
  const std::string plain = std::to_string(n);
  if (numbersettings.scientific) {
    // The E form is already short; digit groups are for the plain form.
    const std::string e = scientificform(plain);
    if (e != plain) return e;
  }
  return numbersettings.digit ? grouped(plain, numbersettings.decimal ? ',' : '.') : plain;
}

// How many components a list prints: all in the full form, else up to the last that is
// not 0, and at least one.
template <class T>
size_t showncount(std::span<const T> values, bool full) {
  if (full) return values.size();
  size_t n = std::min<size_t>(1, values.size());
  for (size_t i = 1; i < values.size(); ++i)
    if (values[i] != 0) n = i + 1;
  return n;
}

std::string joined(const std::vector<std::string>& items, bool brackets) {
  std::string out;
  for (const std::string& item : items) {
    if (!out.empty()) out += numbersettings.decimal ? ", " : "; ";
    out += item;
  }
  return brackets ? "<" + out + ">" : out;
}

template <class T, class Printer>
std::string liststring(std::span<const T> values, bool full, Printer print) {
  std::vector<std::string> items;
  const size_t n = showncount(values, full);
  for (size_t i = 0; i < n; ++i) items.push_back(print(values[i]));
  return joined(items, full || n > 1);
}

std::string reallist(std::span<const double> values, bool full, int decimals) {
  return liststring(values, full, [decimals](double x) { return realstring(x, decimals); });
}

}  // namespace

std::string plainrealtext(double x) {
  // Whole numbers of up to 14 digits come out of the long form as their digits alone.
  if (x == std::trunc(x) && std::fabs(x) < 1e14) return x == 0 ? std::string("0") : std::to_string(static_cast<int64_t>(x));
  return tidy(removenoise(fixeddecimals(x, 16)));
}

namespace {
// The digits of a whole number as text, without a detour through UTF-8.
utf16 integertext(int64_t n) {
  char buffer[24];
  const auto [end, failed] = std::to_chars(buffer, buffer + sizeof buffer, n);
  utf16 out;
  out.lo.assign(buffer, end);
  out.hi.assign(out.lo.size(), '\0');
  return out;
}
}  // namespace

utf16 realtext(double x) {
  // Whole numbers print as their digits unless the scientific form may shorten them.
  if (!numbersettings.scientific && x == std::trunc(x) && std::fabs(x) < 1e14) return integertext(static_cast<int64_t>(x));
  return utf16(realstring(x, -1));
}
utf16 roundedrealtext(double x, int digits) { return utf16(realstring(x, std::max(digits, 0))); }
utf16 nattext(int64_t n) {
  if (!numbersettings.scientific && !numbersettings.digit) return integertext(n);
  return utf16(natstring(n));
}

utf16 reallisttext(std::span<const double> values, bool full, int digits) {
  return utf16(reallist(values, full, digits));
}

utf16 natlisttext(std::span<const int64_t> values, bool full) {
  return utf16(liststring(values, full, natstring));
}

utf16 vectortext(const tvector& v) { return reallisttext(v, false); }
utf16 hypertext(const thyper& h) {
  // One component prints as the plain number, without the list's machinery.
  if (h[1] == 0 && h[2] == 0 && h[3] == 0) return realtext(h[0]);
  return reallisttext(h, false);
}
utf16 fullvectortext(const tvector& v) { return reallisttext(v, true); }
utf16 fullhypertext(const thyper& h) { return reallisttext(h, true); }

utf16 matrixtext(const std::array<thyper, 4>& rows) {
  std::vector<std::string> items;
  for (const thyper& row : rows) items.push_back(reallist(row, true, -1));
  return utf16(joined(items, true));
}

// The largest unit that the count reaches, with one decimal: "1.5 M", "2 G".
utf16 sizetext(int64_t bytes) {
  static constexpr std::pair<double, const char*> units[] = {
      {1e15, " P"}, {1e12, " T"}, {1e9, " G"}, {1e6, " M"}, {1e3, " k"}};
  const double b = static_cast<double>(bytes);
  for (const auto& [unit, suffix] : units)
    if (std::fabs(b) >= unit) return utf16(realstring(std::round(b / unit * 10) / 10, -1) + suffix);
  return nattext(bytes);
}
