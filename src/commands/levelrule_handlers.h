// The level commands whose table comes from the histogram or from a value range, written
// once for images (each colour on its own) and volumes; the tables live in ops/levelrules.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/levelrules.h"
#include "script/registry.h"
#include "script/values.h"

template <auto& W, tlevelrule rule>
void levelrulecmd(tscript& s) {
  if (checkparams(s, 0)) adjustlevels(currentfield(W), rule);
}

template <auto& W>
void adjustonecmd(tscript& s) {
  if (checkparams(s, 0)) adjustlevels(currentfield(W), tlevelrule::percentage, {0.01, 0.01});
}

// p, or p and q.
template <auto& W>
void percentagecmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1 || n > 2) return reportmax(s, 2);
  const double p = textreal(param(s, 1));
  adjustlevels(currentfield(W), tlevelrule::percentage, {p, n == 2 ? textreal(param(s, 2)) : p});
}

// p q, or p q c d: the levels left onto c..d.
template <auto& W>
void weakcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n != 2 && n != 4) return reportcount(s, 2);
  tlevelshares shares{textreal(param(s, 1)), textreal(param(s, 2))};
  if (n == 4) shares.c = textnat(param(s, 3)), shares.d = textnat(param(s, 4));
  adjustlevels(currentfield(W), tlevelrule::weak, shares);
}

// The levels of a range become n: up to v (lower), <a, b> (value; b below a counts as a),
// from v on (higher).
template <auto& W, int side>
void setlevelcmd(tscript& s) {
  if (!checkparams(s, 2)) return;
  const tnatvector r = textnatvector(param(s, 1));
  const int64_t n = textnat(param(s, 2));
  const int64_t lo = side < 0 ? INT64_MIN : r[0];
  const int64_t hi = side < 0 ? r[0] : side > 0 ? INT64_MAX : std::max(r[0], r[1]);
  setlevels(currentfield(W), lo, hi, n);
}

template <auto& W>
std::span<const tcommand> levelrulerows() {
  using enum tcommandkind;
  using enum tlevelrule;
  static const tcommand rows[] = {
      {"setadjust.one", procedure, adjustonecmd<W>, nullptr, "setadjust.one // cut 1 % at both ends of the histogram and stretch"},
      {"setadjust.percentage", procedure, percentagecmd<W>, nullptr,
       "setadjust.percentage 0.006 0.006 // cut these shares at the low and high end and stretch"},
      {"setadjust.percentage.weak", procedure, weakcmd<W>, nullptr,
       "setadjust.percentage.weak 0.006 0.006 // as setadjust.percentage, half way; or p q c d: onto c..d"},
      {"setadjust.outliers", procedure, levelrulecmd<W, outliers>, nullptr,
       "setadjust.outliers // adjust the gray level - eg. (1/4(q2-q1))"},
      {"setequal", procedure, levelrulecmd<W, equal>, nullptr, "setequal // histogram equalisation"},
      {"setpeaklower", procedure, levelrulecmd<W, peaklower>, nullptr, "setpeaklower // 100..peak..200 -> -50..0..50"},
      {"setpeakmiddle", procedure, levelrulecmd<W, peakmiddle>, nullptr,
       "setpeakmiddle // 100..peak..200 -> 78..128..178 or 32718..32768..32818"},
      {"setpeakhigher", procedure, levelrulecmd<W, peakhigher>, nullptr,
       "setpeakhigher // 100..peak..200 -> 205..255..305 or 65485..65535..65585"},
      {"setlower", procedure, setlevelcmd<W, -1>, nullptr, "setlower 10 0 // set ...v to n"},
      {"setvalue", procedure, setlevelcmd<W, 0>, nullptr, "setvalue <10, 20> 0 // set a..b to n"},
      {"sethigher", procedure, setlevelcmd<W, 1>, nullptr, "sethigher 200 255 // set v... to n"},
      {"setsign", procedure, levelrulecmd<W, sign>, nullptr,
       "setsign // for wrapped values 32768..65535..0..32767 (signed values) -> 0..65535"},
      {"setrange", procedure, levelrulecmd<W, range>, nullptr, "setrange // shift the first value to zero"},
      {"setcrop", procedure, levelrulecmd<W, crop>, nullptr,
       "setcrop // for single spots at the beginning and end of the histogram"},
      {"invert", procedure, levelrulecmd<W, invert>, nullptr, "invert // invert the field"},
  };
  return rows;
}
