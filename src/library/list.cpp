#include "library/list.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include "base/linefile.h"
#include "field/owned.h"
#include "script/values.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

constexpr tworkspacewords listwords{"list", "list", "  List (", "  Listlist empty!", "list"};
constexpr const char* kindnames[] = {"nat", "real", "complex", "vector", "hyper", "chars"};


// What a list needs of its element type: reading it from text, printing it, and its
// four-component form, in which the stack holds values and the statistics see them.
template <class T>
struct telement;

template <>
struct telement<int64_t> {
  static int64_t read(const utf16& t) { return textnat(t); }
  static utf16 text(int64_t v) { return nattext(v); }
  static thyper hyper(int64_t v) { return {static_cast<double>(v), 0, 0, 0}; }
  static int64_t fromhyper(const thyper& h) { return roundnat(h[0]); }
};

template <>
struct telement<double> {
  static double read(const utf16& t) { return textreal(t); }
  static utf16 text(double v) { return realtext(v); }
  static thyper hyper(double v) { return {v, 0, 0, 0}; }
  static double fromhyper(const thyper& h) { return h[0]; }
};

template <size_t N>
struct telement<std::array<double, N>> {
  using T = std::array<double, N>;
  static T fromhyper(const thyper& h) {
    T v{};
    std::copy_n(h.begin(), N, v.begin());
    return v;
  }
  static T read(const utf16& t) { return fromhyper(texthyper(t)); }
  static utf16 text(const T& v) { return reallisttext(v, false); }
  static thyper hyper(const T& v) {
    thyper h{};
    std::copy_n(v.begin(), N, h.begin());
    return h;
  }
};

template <>
struct telement<tchars7> {
  static tchars7 read(const utf16& t) {
    tchars7 c{};
    c.length = static_cast<uint8_t>(std::min<int64_t>(length(t), 7));
    for (int i = 0; i < c.length; ++i) c.chars[i] = charat(t, i + 1);
    return c;
  }
  static utf16 text(const tchars7& c) {
    utf16 t;
    for (int i = 0; i < c.length; ++i) appendchar(t, c.chars[i]);
    return t;
  }
  static thyper hyper(const tchars7& c) { return texthyper(text(c)); }
  static tchars7 fromhyper(const thyper& h) { return read(hypertext(h)); }
};

template <class A>
using elementof = telement<typename std::decay_t<A>::elementtype>;

// Numbers have the arrays' statistics; vectors go through one real list per component.
template <class A>
concept tnumberarray = requires(A a) { a.smooth121(); };
template <class A>
constexpr bool ischars = std::is_same_v<std::decay_t<A>, tcharslist>;
template <class A>
constexpr size_t componentsof = std::tuple_size_v<typename std::decay_t<A>::elementtype>;

// Component c (0..3) of every element in its four-component form; the caller releases it.
template <class A>
treallist componentlist(const A& a, size_t c) {
  treallist r{};
  r.create(a.length);
  for (int64_t i = 1; i <= r.length; ++i) r.put(i, elementof<A>::hyper(a.get(i))[c]);
  return r;
}

template <class A>
void putcomponent(A& a, size_t c, const treallist& r) {
  for (int64_t i = 1; i <= a.length && i <= r.length; ++i) {
    auto v = a.get(i);
    v[c] = r.get(i);
    a.put(i, v);
  }
}

template <size_t I = 0>
void emplacekind(tlist& l, size_t index) {
  if constexpr (I < std::variant_size_v<decltype(tlist::items)>) {
    if (index == I)
      l.items.emplace<I>();
    else
      emplacekind<I + 1>(l, index);
  }
}

// The file texts of numbers: "." and no E form or digit groups, whatever the display says.
struct tfilenumbers {
  tnumberformat saved = savenumberformat();
  tfilenumbers() {
    numbersettings.scientific = false;
    numbersettings.decimal = true;
    numbersettings.digit = false;
  }
  ~tfilenumbers() { restorenumberformat(saved); }
  tfilenumbers(const tfilenumbers&) = delete;
  tfilenumbers& operator=(const tfilenumbers&) = delete;
};

// Every element's text, and the background's, for the table writer.
std::vector<std::string> columntexts(const tlist& l, std::string& background) {
  return std::visit(
      [&](const auto& a) {
        using E = elementof<decltype(a)>;
        background = utf16toutf8(E::text(a.defaultvalue));
        std::vector<std::string> texts;
        texts.reserve(static_cast<size_t>(a.length));
        for (int64_t i = 1; i <= a.length; ++i) texts.push_back(utf16toutf8(E::text(a.get(i))));
        return texts;
      },
      l.items);
}

bool writewhole(const utf16& name, const std::string& text, bool silent) {
  tfile f;
  if (!writefile(f, name, silent)) return false;
  const bool written = writetext(f, text);
  return closefile(f) && written;
}

template <bool largest>
utf16 extreme(const tlist& l) {
  return std::visit(
      [](const auto& a) -> utf16 {
        using A = std::decay_t<decltype(a)>;
        using E = elementof<A>;
        if constexpr (tnumberarray<A>) {
          return E::text(largest ? a.max() : a.min());
        } else if constexpr (ischars<A>) {
          if (a.length < 1) return utf16();
          utf16 best = E::text(a.get(1));
          for (int64_t i = 2; i <= a.length; ++i) {
            const utf16 t = E::text(a.get(i));
            if (largest ? less(best, t) : less(t, best)) best = t;
          }
          return best;
        } else {
          typename A::elementtype v{};
          for (size_t c = 0; c < componentsof<A>; ++c) {
            tlocalarray<treallist> r;
            *r = componentlist(a, c);
            v[c] = largest ? r->max() : r->min();
          }
          return E::text(v);
        }
      },
      l.items);
}

}  // namespace

tworkspacelist<tlist> listworkspace(&listwords, list_real);
double outlierfactor = 1.5;

void fieldcreate(tlist& l, uint8_t kind) {
  fieldrelease(l);
  if (kind < list_nat || kind > list_chars) kind = list_real;
  emplacekind(l, kind - 1u);
  std::visit(
      [&](auto& a) {
        a.createdynamic();
        a.defaultvalue = elementof<decltype(a)>::read(l.background);
      },
      l.items);
  l.cursor = 1;
}

void fieldrelease(tlist& l) {
  std::visit([](auto& a) { a.release(); }, l.items);
}

utf16 fielddescription(const tlist& l) {
  return utf16(kindnames[l.items.index()]) + "(" + nattext(listlength(l)) + ")";
}

tlist& currentlist() { return currentfield(listworkspace); }

uint8_t listkind(const tlist& l) { return static_cast<uint8_t>(l.items.index() + 1); }

int64_t listlength(const tlist& l) {
  return std::visit([](const auto& a) { return a.length; }, l.items);
}

utf16 listget(const tlist& l, int64_t i) {
  return std::visit([&](const auto& a) { return elementof<decltype(a)>::text(a.getchecked(i)); }, l.items);
}

void listadd(tlist& l, std::span<const utf16> texts) {
  std::visit(
      [&](auto& a) {
        for (const utf16& t : texts) a.add(elementof<decltype(a)>::read(t));
      },
      l.items);
}

bool listpop(tlist& l, utf16& out) {
  return std::visit(
      [&](auto& a) {
        if (a.length < 1) return false;
        out = elementof<decltype(a)>::text(a.get(a.length));
        a.resize(a.length - 1);
        return true;
      },
      l.items);
}

void listsetbackground(tlist& l, const utf16& text) {
  l.background = text;
  std::visit([&](auto& a) { a.defaultvalue = elementof<decltype(a)>::read(text); }, l.items);
}

void listnew(tlist& l, uint8_t kind, int64_t n) {
  fieldcreate(l, kind);
  std::visit(
      [&](auto& a) {
        a.resize(std::max<int64_t>(n, 0));
        a.fill(elementof<decltype(a)>::read(l.value));
      },
      l.items);
}

void listflip(tlist& l) {
  std::visit(
      [](auto& a) {
        a.reverse();
        a.sorted = false;
      },
      l.items);
}

void listmovecursor(tlist& l, int64_t to) { l.cursor = std::clamp<int64_t>(to, 0, listlength(l) + 1); }

void listcopy(const tlist& from, tlist& to) {
  if (&from == &to) return;
  to.value = from.value;
  to.background = from.background;
  fieldcreate(to, listkind(from));
  std::visit(
      [&](const auto& a) {
        auto& b = std::get<std::decay_t<decltype(a)>>(to.items);
        b.copyfrom(a);
        b.defaultvalue = a.defaultvalue;
      },
      from.items);
}

std::vector<thyper> listhypers(const tlist& l) {
  return std::visit(
      [](const auto& a) {
        std::vector<thyper> values;
        values.reserve(static_cast<size_t>(a.length));
        for (int64_t i = 1; i <= a.length; ++i) values.push_back(elementof<decltype(a)>::hyper(a.get(i)));
        return values;
      },
      l.items);
}

void listaddhypers(tlist& l, std::span<const thyper> values) {
  std::visit(
      [&](auto& a) {
        for (const thyper& h : values) a.add(elementof<decltype(a)>::fromhyper(h));
      },
      l.items);
}

bool listload(tlist& l, const utf16& name) {
  fieldcreate(l, listkind(l));
  tlinefile f{};
  const bool read = linefileread(f, name);
  if (read) {
    const tfilenumbers plain;
    std::visit(
        [&](auto& a) {
          for (int64_t i = 1; i <= linefilecount(f); ++i) a.add(elementof<decltype(a)>::read(linefiletext(f, i)));
        },
        l.items);
  }
  linefilerelease(f);
  return read;
}

bool listsave(const tlist& l, const utf16& name) {
  std::string out;
  {
    const tfilenumbers plain;
    std::string background;
    for (const std::string& t : columntexts(l, background)) out += t + "\n";
  }
  return writewhole(name, out, false);
}

bool listsavetable(std::span<const tlist* const> lists, const utf16& name) {
  std::vector<std::vector<std::string>> columns;
  std::vector<std::string> backgrounds(lists.size());
  size_t rows = 0;
  {
    const tfilenumbers plain;
    for (size_t k = 0; k < lists.size(); ++k) {
      columns.push_back(columntexts(*lists[k], backgrounds[k]));
      rows = std::max(rows, columns.back().size());
    }
  }
  std::string out;
  for (size_t r = 0; r < rows; ++r) {
    for (size_t k = 0; k < columns.size(); ++k) {
      if (k > 0) out += '\t';
      out += r < columns[k].size() ? columns[k][r] : backgrounds[k];
    }
    out += '\n';
  }
  println("Write lists to file (" + shortname(name) + ").");
  return writewhole(name, out, true);
}

utf16 listmin(const tlist& l) { return extreme<false>(l); }
utf16 listmax(const tlist& l) { return extreme<true>(l); }

void listsmooth(tlist& l, int64_t passes) {
  std::visit(
      [&](auto& a) {
        using A = std::decay_t<decltype(a)>;
        if constexpr (tnumberarray<A>) {
          for (int64_t p = 0; p < passes; ++p) a.smooth121();
        } else if constexpr (!ischars<A>) {
          for (size_t c = 0; c < componentsof<A>; ++c) {
            tlocalarray<treallist> r;
            *r = componentlist(a, c);
            for (int64_t p = 0; p < passes; ++p) r->smooth121();
            putcomponent(a, c, *r);
          }
        }
      },
      l.items);
}

void listoutliers(const tlist& l, const tlist& baseline, tlist& flags) {
  thyper low{}, high{};
  std::visit(
      [&](const auto& a) {
        for (size_t c = 0; c < 4; ++c) {
          tlocalarray<treallist> r;
          *r = componentlist(a, c);
          const tvector q = r->quartiles();
          const double band = outlierfactor * std::fabs(q[2] - q[0]);
          low[c] = q[1] - band;
          high[c] = q[1] + band;
        }
      },
      baseline.items);
  tlocalarray<tintlist> marked;
  tintlist& marks = *marked;
  marks.create(listlength(l));
  std::visit(
      [&](const auto& a) {
        for (int64_t i = 1; i <= marks.length; ++i) {
          const thyper h = elementof<decltype(a)>::hyper(a.get(i));
          bool outside = false;
          for (size_t c = 0; c < 4; ++c) outside = outside || h[c] < low[c] || h[c] > high[c];
          marks.put(i, outside ? 1 : 0);
        }
      },
      l.items);
  fieldcreate(flags, list_nat);
  std::get<tintlist>(flags.items).copyfrom(marks);
}
