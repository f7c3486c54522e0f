// The value-range measures of images and volumes as functions, written once and
// instantiated per family; the walks live in ops/measure. Results are tab-separated so that
// a[1], a[2] take them apart.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/measure.h"
#include "script/registry.h"
#include "script/values.h"

// None: every voxel; two: lo hi; three (where a factor is taken): lo f hi.
struct tmeasurerequest {
  tvaluerange range;
  double factor = 1;
  bool ok = false;
};

inline tmeasurerequest measurerequest(tscript& s, bool factor) {
  const int64_t n = paramcount(s);
  const int64_t most = factor ? 3 : 2;
  tmeasurerequest q;
  if (n > most) reportmax(s, most);
  if (n == 1) reportmin(s, 2);
  if (n > most || n == 1) return q;
  q.ok = true;
  if (n >= 2) q.range = {textreal(param(s, 1)), textreal(param(s, n)), false};
  if (n == 3) q.factor = textreal(param(s, 2));
  return q;
}

inline utf16 tabbed(std::span<const double> values) {
  utf16 out;
  for (size_t i = 0; i < values.size(); ++i) out = (i ? out + "\t" : out) + realtext(values[i]);
  return out;
}

template <auto& W>
void statisticcmd(tscript& s) {
  const tmeasurerequest q = measurerequest(s, true);
  if (!q.ok) return;
  const tmeansd m = fieldstatistic(currentfield(W), q.range);
  const double values[] = {m.mean * q.factor, m.sd * q.factor};
  setresult(s, tabbed(values));
}

template <auto& W>
void quantilecmd(tscript& s) {
  const tmeasurerequest q = measurerequest(s, true);
  if (!q.ok) return;
  std::array<double, 5> values = fieldquantiles(currentfield(W), q.range);
  for (double& v : values) v *= q.factor;
  setresult(s, tabbed(values));
}

enum class tcountword { min, max, count, sum };
template <auto& W, tcountword word>
void countcmd(tscript& s) {
  const tmeasurerequest q = measurerequest(s, false);
  if (!q.ok) return;
  const tcountsum c = fieldcountsum(currentfield(W), q.range);
  const double pick[] = {c.min, c.max, static_cast<double>(c.count), c.sum};
  setresult(s, realtext(pick[static_cast<int>(word)]));
}

template <auto& W, tvector (*measure)(const workspacefieldof<W>&, const tvaluerange&)>
void positioncmd(tscript& s) {
  const tmeasurerequest q = measurerequest(s, false);
  if (q.ok) setresult(s, fullvectortext(measure(currentfield(W), q.range)));
}

template <class F, bool weighted>
tvector centroidof(const F& f, const tvaluerange& r) {
  return fieldcentroid(f, r, weighted);
}

// lo hi, or lo hi scale add.
template <auto& W>
void inertiacmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n != 2 && n != 4) return reportcount(s, n < 2 ? 2 : 4);
  const tvaluerange r{textreal(param(s, 1)), textreal(param(s, 2)), false};
  const double scale = n == 4 ? textreal(param(s, 3)) : 1, add = n == 4 ? textreal(param(s, 4)) : 0;
  setresult(s, tabbed(fieldinertia(currentfield(W), r, scale, add)));
}

template <auto& W>
void boxcountingcmd(tscript& s) {
  const tmeasurerequest q = measurerequest(s, false);
  if (q.ok) setresult(s, realtext(boxcounting(currentfield(W), q.range)));
}

template <auto& W>
std::span<const tcommand> measurerows() {
  using F = workspacefieldof<W>;
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"statistic", function, statisticcmd<W>, nullptr,
       "a := statistic 0 1 255 // mean and SD of values 0..255, times 1: mean a[1], sd a[2]"},
      {"quantile", function, quantilecmd<W>, nullptr,
       "a := quantile 0 1 255 // min a[1], q.25 a[2], median a[3], q.75 a[4], max a[5]"},
      {"min", function, countcmd<W, tcountword::min>, nullptr, "a := min 0 128 // smallest value within 0..128"},
      {"max", function, countcmd<W, tcountword::max>, nullptr, "a := max 0 128 // largest value within 0..128"},
      {"count", function, countcmd<W, tcountword::count>, nullptr, "a := count 0 128 // pixel count with values from 0..128"},
      {"sum", function, countcmd<W, tcountword::sum>, nullptr, "a := sum 0 128 // sum of the values from 0..128"},
      {"object.center", function, positioncmd<W, objectcenter<F>>, nullptr,
       "a := object.center 0 128 // center ((min+max)/2) from values 0..128"},
      {"object.size", function, positioncmd<W, objectsize<F>>, nullptr,
       "a := object.size 0 128 // size (max-min) from values 0..128"},
      {"centroid", function, positioncmd<W, centroidof<F, false>>, nullptr,
       "a := centroid 0 128 // mean position of the values 0..128"},
      {"cog", function, positioncmd<W, centroidof<F, true>>, nullptr,
       "a := cog 0 128 // centre of gravity: mean position weighted by value"},
      {"com", function, positioncmd<W, centroidof<F, true>>, nullptr, "a := com 0 128 // same as cog"},
      {"inertia", function, inertiacmd<W>, nullptr,
       "a := inertia 0 128 0.1 1 // inertia as tensor from values (0..128) *0.1 +1: xx yy zz xy xz yz"},
      {"boxcounting", function, boxcountingcmd<W>, nullptr,
       "a := boxcounting 1 255 // -log10(count) / log10(size) of the values 1..255"},
  };
  return rows;
}
