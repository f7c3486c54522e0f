// What every combining command does before its pixel loop: check the operand count,
// resolve the target (the name left of ":=") and the operands by name, and size an empty
// target. Written once for the image and the scalar family.
#pragma once
#include <algorithm>
#include <array>
#include <concepts>
#include <span>
#include <type_traits>
#include <vector>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "field/workspaces.h"
#include "ops/arithmetic.h"
#include "ops/combine.h"
#include "ops/combinewords.h"

// How many parameters a command takes. A fixed count and a form of two or three report
// "Please use " with the least count, a list of up to 99 operands "Please use min. ".
struct tcount {
  int64_t least, most;
};
constexpr tcount exactly(int64_t n) { return {n, n}; }
constexpr tcount operandlist{2, maxoperands};

inline bool checkcount(tscript& s, tcount count) {
  const int64_t n = paramcount(s);
  if (n >= count.least && n <= count.most) return true;
  if (count.most == maxoperands)
    reportmin(s, count.least);
  else
    reportcount(s, count.least);
  return false;
}

// A number, or a pair <lo, hi> (which arrives as "lo,hi"); a single number gives lo = hi.
inline void cutrange(const utf16& text, int64_t& lo, int64_t& hi) {
  utf16 rest = text;
  lo = cutnat(rest);
  bool pair = false;
  for (int64_t i = 1; i <= length(rest) && !pair; ++i) pair = charat(rest, i) >= '0' && charat(rest, i) <= '9';
  hi = pair ? cutnat(rest) : lo;
}

// How an empty target is sized: the largest operand in each axis, or the first operand.
enum class tsizing { largest, first };

template <auto& W>
struct tcombination {
  using F = workspacefieldof<W>;
  F* target = nullptr;
  std::vector<const F*> operands;
  explicit operator bool() const { return target != nullptr; }
};

// Parameters first..last name the operands. An empty target takes `kind` when it is not
// 0, else keeps its own, and the place in space (and a volume's labels) of the first
// operand. False, with the error reported, when a name was not found.
template <auto& W>
tcombination<W> combination(tscript& s, int64_t first, int64_t last, tsizing sizing = tsizing::largest,
                            uint8_t kind = 0) {
  using F = workspacefieldof<W>;
  tcombination<W> c;
  F* target = resulttarget<W>(s, false);
  if (!target) return c;
  for (int64_t i = first; i <= last; ++i) {
    const F* operand = workspaceoperand(s, W, param(s, i));
    if (!operand) return c;
    c.operands.push_back(operand);
  }
  if (c.operands.empty()) return c;
  tnatvector size = fieldsize(*c.operands[0]);
  if (sizing == tsizing::largest)
    for (const F* f : c.operands) {
      const tnatvector other = fieldsize(*f);
      for (int a = 0; a < 3; ++a) size[a] = std::max(size[a], other[a]);
    }
  if (fieldempty(*target) && kind != 0) target->kind = kind;
  if (prepareresult(W, *target, *c.operands[0], size)) {
    if constexpr (std::same_as<F, tscalarfield>)
      if (target != c.operands[0]) copylabels(*target, *c.operands[0]);
  }
  c.target = target;
  return c;
}

// The pixel loop of a resolved combination: op(pixel, out) writes the target's samples.
// Image operands are read in the target's channel mode unless `channels` says otherwise;
// a volume has one channel.
// The target is read and written in `mode`, 0 for its own.
inline void runcombination(tcombination<imageworkspace>& c, const char* word, auto op, std::vector<int> channels = {},
                           int mode = 0) {
  if (mode == 0) mode = channelmode(*c.target);
  if (channels.empty()) channels.assign(c.operands.size(), mode);
  combineimages(*c.target, mode, c.operands, channels, word, op);
}
inline void runcombination(tcombination<scalarworkspace>& c, const char* word, auto op, std::vector<int> = {}, int = 0) {
  combinefields(*c.target, c.operands, word, op);
}

template <auto& W>
int targetchannels(const tcombination<W>& c) {
  if constexpr (std::same_as<workspacefieldof<W>, timagefield>)
    return channelmode(*c.target);
  else
    return 1;
}

// A command whose pixel is one expression of all operands, per channel. The expression is
// either f(values, n) or a maker of one from the target kind's top sample.
template <auto& W, tcount count, const char* word, auto expression>
void expressioncmd(tscript& s) {
  if (!checkcount(s, count)) return;
  auto c = combination<W>(s, 1, paramcount(s));
  if (!c) return;
  const int channels = targetchannels(c);
  if constexpr (std::is_invocable_v<decltype(expression), int64_t>) {
    // The kind's top as a constant: divisions by it become multiplications.
    auto run = [&](auto top) { runcombination(c, word, perchannel(channels, expression(top))); };
    const int64_t top = sampletop(*c.target);
    if (top == 1)
      run(std::integral_constant<int64_t, 1>{});
    else if (top == 255)
      run(std::integral_constant<int64_t, 255>{});
    else
      run(std::integral_constant<int64_t, 65535>{});
  } else {
    // A lambda, so that the expression is inlined and not called through a pointer.
    runcombination(c, word, perchannel(channels, [](const int64_t* v, int64_t n) { return expression(v, n); }));
  }
}

// old1 and a value or <lo, hi>, and optionally the value that a selected pixel gets.
// Colour pixels are selected when red, green and blue lie in the range; a pixel not
// selected stays as it is in the target.
template <auto& W>
void selectcmd(tscript& s) {
  if (!checkcount(s, {2, 3})) return;
  int64_t lo = 0, hi = 0;
  cutrange(param(s, 2), lo, hi);
  hi = std::max(hi, lo);
  const bool replace = paramcount(s) == 3;
  const int64_t value = replace ? textnat(param(s, 3)) : 0;
  auto c = combination<W>(s, 1, 1, tsizing::first);
  if (!c) return;
  const int channels = targetchannels(c);
  runcombination(c, combinewords::selection, [=](const tpixel& p, int64_t* out) {
    for (int k = 0; k < std::min(channels, 3); ++k)
      if (p.get(0, k) < lo || p.get(0, k) > hi) return;
    for (int k = 0; k < channels; ++k) out[k] = replace && k < 3 ? value : p.get(0, k);
  });
}

// The mask values from parameter `first` on: numbers and <lo, hi> ranges, each put in order.
inline std::vector<std::pair<int64_t, int64_t>> maskranges(tscript& s, int64_t first) {
  std::vector<std::pair<int64_t, int64_t>> ranges;
  for (int64_t i = first; i <= paramcount(s); ++i) {
    int64_t lo = 0, hi = 0;
    cutrange(param(s, i), lo, hi);
    ranges.emplace_back(std::min(lo, hi), std::max(lo, hi));
  }
  return ranges;
}

// old1, mask and the mask values that let old1 through: numbers and <lo, hi> ranges. The
// mask is read as values (a colour as its sum); elsewhere the target stays.
template <auto& W>
void maskcmd(tscript& s) {
  if (!checkcount(s, {3, maxoperands})) return;
  const std::vector<std::pair<int64_t, int64_t>> ranges = maskranges(s, 3);
  auto c = combination<W>(s, 1, 2);
  if (!c) return;
  const int channels = targetchannels(c);
  runcombination(
      c, combinewords::masking,
      [&](const tpixel& p, int64_t* out) {
        const int64_t m = p.value(1);
        if (std::none_of(ranges.begin(), ranges.end(), [m](auto r) { return r.first <= m && m <= r.second; })) return;
        for (int k = 0; k < channels; ++k) out[k] = p.get(0, k);
      },
      {channels, 1});
}

// Operands and as many exposures: old1 old2 e1 e2, or (scalars) old1 old2 old3 e1 e2 e3.
template <auto& W>
void intensitycmd(tscript& s) {
  const int64_t n = paramcount(s);
  constexpr bool three = std::same_as<workspacefieldof<W>, tscalarfield>;
  if (n != 4 && !(three && n == 6)) return reportcount(s, 4);
  const int64_t operands = n / 2;
  std::array<double, 3> e{1, 1, 1};
  for (int64_t i = 0; i < operands; ++i) e[i] = textreal(param(s, operands + i + 1));
  auto c = combination<W>(s, 1, operands);
  if (!c) return;
  if constexpr (three)
    runcombination(c, combinewords::intensity, perchannel(1, pixelmath::exposures(e)));
  else
    runcombination(c, combinewords::intensity, perchannel(targetchannels(c), pixelmath::exposurepair(e[0], e[1])));
}

// The operators that images and volumes share, with one handler each for both families.
template <auto& W>
std::span<const tcommand> sharedcombinerows() {
  using namespace combinewords;
  namespace pm = pixelmath;
  static const tcommand rows[] = {
      eitherway("select", selectcmd<W>,
                "new := select old <10, 20> 255 // or old 10 [value]: copy (or set to value) the points in the range"),
      eitherway("sub", expressioncmd<W, exactly(2), subtraction, pm::sub>, "new := sub old1 old2 // old1 - old2"),
      eitherway("sub.abs", expressioncmd<W, exactly(2), absolutesubtraction, pm::subabs>,
                "new := sub.abs old1 old2 // abs(old1 - old2)"),
      eitherway("sub.range", expressioncmd<W, exactly(2), rangesubtraction, pm::subrange>,
                "new := sub.range old1 old2 // old1 - old2 + 128 (or 32768 for 16 bit)"),
      eitherway("between", expressioncmd<W, exactly(3), neighborsubtraction, pm::between>,
                "new := between old1 old2 old3 // (old2 - old1) + (old2 - old3): old2 between its neighbours"),
      eitherway("add", expressioncmd<W, operandlist, addition, pm::add>, "new := add old1 old2 ... // the sum of 2 to 99 fields"),
      eitherway("add.min", expressioncmd<W, operandlist, minimal, pm::addmin>,
                "new := add.min old1 old2 ... // the smallest value of 2 to 99 fields"),
      eitherway("add.max", expressioncmd<W, operandlist, maximal, pm::addmax>,
                "new := add.max old1 old2 ... // the largest value of 2 to 99 fields"),
      eitherway("mask", maskcmd<W>, "new := mask old mask 1 <5, 9> // old where the mask's value is one of the values or ranges"),
  };
  return rows;
}
