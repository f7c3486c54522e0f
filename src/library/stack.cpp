#include "library/stack.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "field/owned.h"

namespace {

tquadlist stack{};

// The components that a value shows in its shortest form: up to the last one that isn't
// 0, at least the first. Functions act on these only, so that the cosine of a number
// stays a number and doesn't fill its empty components with ones.
size_t width(const thyper& h) {
  size_t w = 4;
  while (w > 1 && h[w - 1] == 0) --w;
  return w;
}

// Division and its kin by 0 give 0, as everywhere in the language.
double quotient(double a, double b) { return b == 0 ? 0 : a / b; }
double modulo(double a, double b) { return b == 0 ? 0 : std::fmod(a, b); }
double wholequotient(double a, double b) { return b == 0 ? 0 : std::trunc(a / b); }


double plus(double a, double b) { return a + b; }
double minus(double a, double b) { return a - b; }
double times(double a, double b) { return a * b; }
double power(double a, double b) { return std::pow(a, b); }
double square(double x) { return std::pow(x, 2.0); }
double cube(double x) { return std::pow(x, 3.0); }
double percent(double x) { return x * 0.01; }
double degrees(double x) { return x * degreeunit; }
double negative(double x) { return -x; }
double reciprocal(double x) { return quotient(1, x); }
double logarithm(double x) { return x > 0 ? std::log(x) : 0; }
double sine(double x) { return std::sin(anglein(x)); }
double cosine(double x) { return std::cos(anglein(x)); }
double tangent(double x) { return std::tan(anglein(x)); }
double arcsine(double x) { return angleout(std::asin(std::clamp(x, -1.0, 1.0))); }
double arccosine(double x) { return angleout(std::acos(std::clamp(x, -1.0, 1.0))); }
double arctangent(double x) { return angleout(std::atan(x)); }

// Component by component on the shown components of the top.
template <double (*f)(double)>
void unary() {
  thyper a = stackpop();
  for (size_t i = 0; i < width(a); ++i) a[i] = f(a[i]);
  stackpush(a);
}

// Component by component on two values, the top the right operand.
template <double (*f)(double, double)>
void binary() {
  const thyper b = stackpop();
  thyper a = stackpop();
  for (size_t i = 0; i < 4; ++i) a[i] = f(a[i], b[i]);
  stackpush(a);
}

// The top as one number (its first component) acting on each shown component below it.
template <double (*f)(double, double)>
void bynumber() {
  const double b = stackpop()[0];
  thyper a = stackpop();
  for (size_t i = 0; i < width(a); ++i) a[i] = f(a[i], b);
  stackpush(a);
}

double dot(const thyper& a, const thyper& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]; }

double det3(const thyper& a, const thyper& b, const thyper& c, size_t i, size_t j, size_t k) {
  return a[i] * (b[j] * c[k] - b[k] * c[j]) - a[j] * (b[i] * c[k] - b[k] * c[i]) + a[k] * (b[i] * c[j] - b[j] * c[i]);
}

// The vector orthogonal to three four-component values: the cofactors of a determinant
// whose last row are the unit vectors, so that e1, e2, e3 give e4.
thyper cross4(const thyper& a, const thyper& b, const thyper& c) {
  return {-det3(a, b, c, 1, 2, 3), det3(a, b, c, 0, 2, 3), -det3(a, b, c, 0, 1, 3), det3(a, b, c, 0, 1, 2)};
}

void duplicate() { stackpush(stackpeek()); }

// Joins the first component of the lower value with the top in front of it, so that
// "1 2 3 § §" builds <1, 2, 3>, as a vector written in the stack arrives member by member.
void join() {
  const thyper b = stackpop();
  const thyper a = stackpop();
  stackpush({a[0], b[0], b[1], b[2]});
}

void magnitude() {
  const thyper a = stackpop();
  stackpush({std::sqrt(dot(a, a)), 0, 0, 0});
}

void dotproduct() {
  const thyper b = stackpop();
  stackpush({dot(stackpop(), b), 0, 0, 0});
}

void crossproduct() {
  const thyper c = stackpop(), b = stackpop(), a = stackpop();
  stackpush(cross4(a, b, c));
}

void determinant() {
  const thyper d = stackpop(), c = stackpop(), b = stackpop(), a = stackpop();
  stackpush({dot(cross4(a, b, c), d), 0, 0, 0});
}

void remainderquotient() {
  const double b = stackpop()[0];
  const thyper a = stackpop();
  thyper r{}, q{};
  for (size_t i = 0; i < width(a); ++i) {
    r[i] = modulo(a[i], b);
    q[i] = wholequotient(a[i], b);
  }
  stackpush(r);
  stackpush(q);
}

double sdof(const treallist& r) { return r.sd(); }
double varof(const treallist& r) { return r.sd() * r.sd(); }
double meanof(const treallist& r) { return r.mean(); }
double sumof(const treallist& r) { return r.sum(); }
double minof(const treallist& r) { return r.min(); }
double maxof(const treallist& r) { return r.max(); }

// A statistic of the whole stack, component by component; its value replaces the stack.
// An empty stack has none and stays empty.
template <double (*f)(const treallist&)>
void whole() {
  tquadlist& st = operandstack();
  if (st.length < 1) return;
  thyper result{};
  tlocalarray<treallist> samples;
  treallist& component = *samples;
  component.create(st.length);
  for (size_t c = 0; c < 4; ++c) {
    for (int64_t i = 1; i <= component.length; ++i) component.put(i, st.get(i)[c]);
    result[c] = f(component);
  }
  st.resize(0);
  stackpush(result);
}

void rotate() {
  const thyper c = stackpop(), b = stackpop(), a = stackpop();
  stackpush(b);
  stackpush(c);
  stackpush(a);
}

void swaptop() {
  const thyper b = stackpop(), a = stackpop();
  stackpush(b);
  stackpush(a);
}

void over() {
  const thyper b = stackpop(), a = stackpop();
  stackpush(a);
  stackpush(b);
  stackpush(a);
}

void drop() { stackpop(); }

struct toperator {
  const char* word;
  void (*apply)();
};

constexpr toperator operators[] = {
    {":", duplicate},
    {"§", join},
    {"+", binary<plus>},
    {"-", binary<minus>},
    {"*", binary<times>},
    {"/", binary<quotient>},
    {"²", unary<square>},
    {"³", unary<cube>},
    {"^", bynumber<power>},
    {"|", magnitude},
    {"%", unary<percent>},
    {"°", unary<degrees>},
    {"o", dotproduct},
    {"x", crossproduct},
    {"d", determinant},
    {"sd", whole<sdof>},
    {"var", whole<varof>},
    {"mean", whole<meanof>},
    {"sum", whole<sumof>},
    {"min", whole<minof>},
    {"max", whole<maxof>},
    {"neg", unary<negative>},
    {"inv", unary<reciprocal>},
    {"log", unary<logarithm>},
    {"sin", unary<sine>},
    {"cos", unary<cosine>},
    {"tan", unary<tangent>},
    {"arcsin", unary<arcsine>},
    {"arccos", unary<arccosine>},
    {"arctan", unary<arctangent>},
    {"mod", bynumber<modulo>},
    {"/mod", remainderquotient},
    {"dup", duplicate},
    {"rot", rotate},
    {"swap", swaptop},
    {"over", over},
    {"drop", drop},
};

}  // namespace

tquadlist& operandstack() {
  if (stack.unallocated()) stack.createdynamic();
  return stack;
}

int64_t stackdepth() { return operandstack().length; }

void stackpush(const thyper& h) { operandstack().add(h); }

thyper stackpop() {
  tquadlist& st = operandstack();
  if (st.length < 1) return {};
  const thyper h = st.get(st.length);
  st.resize(st.length - 1);
  return h;
}

thyper stackpeek() {
  const tquadlist& st = operandstack();
  return st.length < 1 ? thyper{} : st.get(st.length);
}

void stackclear() { operandstack().resize(0); }

void stackflip() { operandstack().reverse(); }

bool stackoperator(const utf16& word) {
  static const std::vector<utf16> words = [] {
    std::vector<utf16> w;
    for (const toperator& o : operators) w.emplace_back(o.word);
    return w;
  }();
  const utf16 key = lower(word);
  for (size_t i = 0; i < words.size(); ++i) {
    if (equal(words[i], key)) {
      operators[i].apply();
      return true;
    }
  }
  return false;
}

void stackword(const utf16& raw, const utf16& value) {
  if (!stackoperator(raw)) stackpush(texthyper(value));
}
