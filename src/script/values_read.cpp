// Reading numbers from text, and the language's one expression evaluator.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

#include "script/values.h"

namespace {

// Characters above 255 never begin, continue or end a number in a special way;
// one byte that is not part of any number stands for all of them.
constexpr char foreign = '\xff';

// The text as the number scanner sees it, with for each of its characters the count of
// original characters up to and including the one it came from. This way the rest handed
// back to the caller is the caller's own text, not the lower-cased and expanded copy.
struct tscantext {
  std::string chars;
  std::vector<int64_t> consumed;
};

std::string unitconstant(std::string_view constant) {
  std::string s(constant);
  if (!numbersettings.decimal)
    for (char& c : s)
      if (c == '.') c = ',';
  return s;
}

// Lower case, and with units the degree, percent and pi signs spelled out as numbers.
tscantext scantext(const utf16& text, bool units) {
  static constexpr uint16_t degree = 0x00B0, pi = 0x03C0;
  tscantext t;
  const int64_t n = length(text);
  t.chars.reserve(static_cast<size_t>(n));
  t.consumed.reserve(static_cast<size_t>(n));
  auto add = [&t](std::string_view piece, int64_t i) {
    t.chars += piece;
    t.consumed.insert(t.consumed.end(), piece.size(), i);
  };
  for (int64_t i = 1; i <= n; ++i) {
    const uint16_t c = charat(text, i);
    if (units && c == degree) {
      add(unitconstant("*0.01745329251994329509"), i);
    } else if (units && c == '%') {
      add(unitconstant("*0.01"), i);
    } else if (units && c == pi) {
      add(unitconstant("3.141592653589793116"), i);
    } else {
      t.chars.push_back(c > 255 ? foreign : static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c));
      t.consumed.push_back(i);
    }
  }
  return t;
}

bool isdecimal(char c) { return c >= '0' && c <= '9'; }
char pointchar() { return numbersettings.decimal ? '.' : ','; }
bool maybeginnumber(char c) { return c == '-' || c == pointchar() || isdecimal(c); }
bool startsnumber(char c) { return c == '-' || isdecimal(c); }

bool inrun(char c) {
  if (c == pointchar()) return true;
  if (c == '.' || c == ',') return false;
  return isdecimal(c) || std::string_view("&*+-/<=>e|").find(c) != std::string_view::npos;
}

// Cuts the number run off the front of the text; leading words and brackets go with it.
std::string cutrun(utf16& text, bool units) {
  if (empty(text)) return std::string();
  const tscantext t = scantext(text, units);
  const std::string& s = t.chars;
  size_t from = 0;
  while (from < s.size() && !maybeginnumber(s[from])) ++from;
  while (from < s.size() && !startsnumber(s[from])) ++from;
  if (from == s.size()) {
    text = utf16();
    return std::string();
  }
  size_t to = from;
  while (to < s.size() && inrun(s[to])) ++to;
  text = copy(text, t.consumed[to - 1] + 1, length(text));
  std::string run = s.substr(from, to - from);
  if (!numbersettings.decimal)
    for (char& c : run)
      if (c == ',') c = '.';
  return run;
}

// The whole text as one number, or false. Out of range is infinity or zero, as a scientist
// expects of 1e400 and 1e-400; from_chars gives no value then, strtod tells the direction.
bool convert(std::string_view s, double& value) {
  if (s.empty()) return false;
  const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
  if (end != s.data() + s.size()) return false;
  if (error == std::errc::result_out_of_range) {
    const double nearest = std::strtod(std::string(s).c_str(), nullptr);
    value = std::copysign(std::fabs(nearest) >= 1 ? HUGE_VAL : 0.0, nearest);
    return true;
  }
  return error == std::errc();
}

void replaceall(std::string& s, std::string_view pattern, std::string_view by) {
  std::string out;
  for (size_t i = 0; i < s.size();) {
    if (s.compare(i, pattern.size(), pattern) == 0) {
      out += by;
      i += pattern.size();
    } else {
      out += s[i++];
    }
  }
  s = std::move(out);
}

// A minus becomes a plus of a negative number, and an exponent keeps its sign as 'e' or 'i'.
// The exponent's minus is taken first: once every '-' is "+-", no "e-" would be left to find.
std::string rewrite(std::string run) {
  replaceall(run, "e-", "i");
  replaceall(run, "-", "++");
  replaceall(run, "++", "+-");
  replaceall(run, "e+", "e");
  return run;
}

bool isterm(char c) { return isdecimal(c) || c == '.' || c == 'e' || c == 'i'; }

// An optional '-', then digits, point, 'e' and 'i' (a negative exponent); 0 if that is no number.
double cutterm(std::string_view& s) {
  size_t n = s.empty() || s.front() != '-' ? 0 : 1;
  while (n < s.size() && isterm(s[n])) ++n;
  std::string term(s.substr(0, n));
  s.remove_prefix(n);
  replaceall(term, "i", "e-");
  double value = 0;
  return convert(term, value) ? value : 0;
}

double bitwise(double left, char op, double right) {
  const int64_t a = truncnat(left), b = truncnat(right);
  return static_cast<double>(op == '&' ? (a & b) : (a | b));
}

// '<', '=' or '>' has been taken off s. A two-character comparison with nothing behind is 0.
double comparison(double left, char op, std::string_view& s) {
  char second = 0;
  if ((op == '<' && !s.empty() && (s[0] == '=' || s[0] == '>')) || (op == '>' && !s.empty() && s[0] == '=')) {
    second = s[0];
    s.remove_prefix(1);
    if (s.empty()) return 0;
  }
  const double right = cutterm(s);
  if (op == '=') return right == left;
  if (op == '<') {
    if (second == '=') return right >= left;
    if (second == '>') return right != left;
    return right > left;
  }
  return second == '=' ? right <= left : right < left;
}

double runvalue(const std::string& run) {
  double value = 0;
  if (run.empty()) return 0;  // a missing component
  if (convert(run, value)) return value;
  return expression(rewrite(run));
}

}  // namespace

// Every step either empties the text or hands what is left to a fresh evaluation, so the
// operators behind the first one are never looked at here: '*', '/', '&', '|' and the
// comparisons bind to the left, '+' and '-' take all that follows as their right side.
double expression(const std::string& run) {
  std::string_view s(run);
  double left = cutterm(s);
  if (s.size() < 2) return left;
  const char op = s.front();
  s.remove_prefix(1);
  switch (op) {
    case '+':
    case '-': {
      std::string_view behind = s;
      const double term = cutterm(behind);
      const double right = behind.empty() ? term : expression(std::string(s));
      return op == '+' ? left + right : left - right;
    }
    case '*':
      left *= cutterm(s);
      break;
    case '/': {
      const double term = cutterm(s);
      left = term == 0 ? 0 : left / term;
      break;
    }
    case '&':
    case '|':
      left = bitwise(left, op, cutterm(s));
      break;
    case '<':
    case '=':
    case '>':
      left = comparison(left, op, s);
      break;
    default:
      return left;
  }
  if (s.empty()) return left;
  return expression(plainrealtext(left) + std::string(s));
}

double cutreal(utf16& text) { return runvalue(cutrun(text, true)); }

// The percent, degree and pi signs are for reals only. Lower case is still made, so that
// an integer printed in the E form ("12E3") reads back as the same integer.
int64_t cutnat(utf16& text) {
  const std::string run = cutrun(text, false);
  int64_t n = 0;
  const auto [end, error] = std::from_chars(run.data(), run.data() + run.size(), n);
  if (end == run.data() + run.size() && !run.empty()) {
    // A plain integer is taken exactly, beyond the 53 bits that a double holds.
    if (error == std::errc()) return n;
    if (error == std::errc::result_out_of_range)
      return run.front() == '-' ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
  }
  return roundnat(runvalue(run));
}

namespace {

template <class T, size_t N, class Reader>
std::array<T, N> readeach(utf16 text, Reader read) {
  std::array<T, N> values{};
  for (T& v : values) v = read(text);
  return values;
}

}  // namespace

namespace {

// A plain integer, the most common value of all, read without the scanner; the same
// conversion as the scanner's for the same run.
bool plaininteger(const utf16& text, double& value) {
  const std::string& s = text.lo;
  const size_t digits = !s.empty() && s[0] == '-' ? 1 : 0;
  if (digits == s.size() || s.size() > 30) return false;
  if (!std::all_of(s.begin() + static_cast<long>(digits), s.end(), isdecimal)) return false;
  if (text.hi.find_first_not_of('\0') != std::string::npos) return false;
  // Up to 15 digits the number is exact in a double, as the scanner would read it ("-0" too).
  if (int64_t n = 0; shortinteger(text, n)) {
    value = digits ? -static_cast<double>(-n) : static_cast<double>(n);
    return true;
  }
  return convert(s, value);
}

}  // namespace

bool shortinteger(const utf16& text, int64_t& value) {
  const std::string& s = text.lo;
  const size_t sign = !s.empty() && s[0] == '-' ? 1 : 0;
  if (sign == s.size() || s.size() - sign > 15) return false;
  int64_t n = 0;
  for (size_t i = sign; i < s.size(); ++i) {
    if (!isdecimal(s[i]) || text.hi[i] != 0) return false;
    n = n * 10 + (s[i] - '0');
  }
  if (sign && text.hi[0] != 0) return false;
  value = sign ? -n : n;
  return true;
}

double textreal(const utf16& text) {
  double value = 0;
  if (plaininteger(text, value)) return value;
  utf16 t = text;
  return cutreal(t);
}

int64_t textnat(const utf16& text) {
  utf16 t = text;
  return cutnat(t);
}

tvector textvector(const utf16& text) {
  double value = 0;
  if (plaininteger(text, value)) return {value, 0, 0};
  return readeach<double, 3>(text, cutreal);
}
thyper texthyper(const utf16& text) {
  double value = 0;
  if (plaininteger(text, value)) return {value, 0, 0, 0};
  return readeach<double, 4>(text, cutreal);
}
tcomplex textcomplex(const utf16& text) { return readeach<double, 2>(text, cutreal); }
tnatvector textnatvector(const utf16& text) { return readeach<int64_t, 3>(text, cutnat); }
tnathyper textnathyper(const utf16& text) { return readeach<int64_t, 4>(text, cutnat); }
