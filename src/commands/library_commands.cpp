// Waiting, stopping, progress, minimum and maximum, random numbers, timer, clock and date.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <limits>
#include <thread>

#include "commands/families.h"
#include "library/random.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

void waitcmd(tscript& s) {
  if (paramcount(s) == 0) return;
  const int64_t ms = roundnat(textreal(param(s, 1)) * 1000);
  flushconsole();
  if (ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

void nop(tscript& s) { checkparams(s, 0); }

void stop(tscript& s) {
  println("In line " + std::to_string(sourceline(s.store, s.line)) + " (" + utf16toutf8(sourcefile(s.store, s.line)) + ").");
  println("Script stop.");
  s.halted = true;
}

void progresscmd(tscript& s) {
  if (paramcount(s) == 0) {
    progressend();
  } else if (paramcount(s) == 2) {
    progress(param(s, 2), textreal(param(s, 1)));
  } else {
    reportcount(s, 2);
  }
}

// The smallest or largest of the parameters read as reals.
template <bool largest>
void extreme(tscript& s) {
  if (paramcount(s) < 1) {
    reportmin(s, 1);
    return;
  }
  double best = largest ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  for (int64_t i = 1; i <= paramcount(s); ++i) {
    const double v = textreal(param(s, i));
    best = largest ? std::max(best, v) : std::min(best, v);
  }
  setresult(s, realtext(best));
}

void minmax(tscript& s) {
  if (!checkparams(s, 2)) return;
  const double a = textreal(param(s, 1)), b = textreal(param(s, 2));
  setresult(s, vectortext({std::min(a, b), std::max(a, b), 0}));
}

double rangedrandom(tscript& s) {
  int64_t a = textnat(param(s, 1)), b = textnat(param(s, 2));
  if (b < a) std::swap(a, b);
  return static_cast<double>(a) + static_cast<double>(b - a) * randomreal();
}

void randomrange(tscript& s) {
  if (checkparams(s, 2)) setresult(s, realtext(rangedrandom(s)));
}

void randomrangenat(tscript& s) {
  if (checkparams(s, 2)) setresult(s, nattext(roundnat(rangedrandom(s))));
}

// Holds the multiplier as a constant of the widest float, so 2*r-1 spans -1..1 exactly.
constexpr long double fullmultiplier = 2.0L;

template <int count, bool full>
void randoms(tscript& s) {
  thyper h{0, 0, 0, 0};
  for (int i = 0; i < count; ++i) {
    const double r = randomreal();
    h[static_cast<size_t>(i)] = full ? static_cast<double>(fullmultiplier * r - 1) : r;
  }
  setresult(s, count == 1 ? realtext(h[0]) : fullhypertext(h));
}

template <int64_t modulus>
void randominteger(tscript& s) {
  setresult(s, nattext(randombelow(modulus)));
}

template <int count>
void randombytes(tscript& s) {
  thyper h{0, 0, 0, 0};
  for (int i = 0; i < count; ++i) h[static_cast<size_t>(i)] = static_cast<double>(randombelow(256));
  setresult(s, count == 3 ? fullvectortext({h[0], h[1], h[2]}) : fullhypertext(h));
}

std::chrono::system_clock::time_point timerstart = std::chrono::system_clock::now();

void timerstartcmd(tscript& s) { timerstart = std::chrono::system_clock::now(); }

void timerget(tscript& s) {
  setresult(s, timetext(std::chrono::duration<double>(std::chrono::system_clock::now() - timerstart).count()));
}

struct tclock {
  std::tm date;
  int64_t milliseconds;
};

tclock now() {
  const auto point = std::chrono::system_clock::now();
  const std::time_t t = std::chrono::system_clock::to_time_t(point);
  tclock c{};
  localtime_r(&t, &c.date);
  c.milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(point.time_since_epoch()).count() % 1000;
  return c;
}

void hour(tscript& s) { setresult(s, nattext(now().date.tm_hour)); }
void minute(tscript& s) { setresult(s, nattext(now().date.tm_min)); }
void second(tscript& s) { setresult(s, nattext(now().date.tm_sec)); }
void millisecond(tscript& s) { setresult(s, nattext(now().milliseconds)); }
void year(tscript& s) { setresult(s, nattext(now().date.tm_year + 1900)); }
void month(tscript& s) { setresult(s, nattext(now().date.tm_mon + 1)); }
void day(tscript& s) { setresult(s, nattext(now().date.tm_mday)); }

void timestamp(tscript& s) {
  const tclock c = now();
  setresult(s, utf16(std::to_string(c.date.tm_hour) + ":" + std::to_string(c.date.tm_min) + ":" + std::to_string(c.date.tm_sec) +
                     ":" + std::to_string(c.milliseconds)));
}

void datestamp(tscript& s) {
  const tclock c = now();
  setresult(s, utf16(std::to_string(c.date.tm_year + 1900) + "_" + std::to_string(c.date.tm_mon + 1) + "_" +
                     std::to_string(c.date.tm_mday)));
}

void weekday(tscript& s) {
  static const char* const names[] = {"Sunday", "Monday", "Tuesday", "Wensday", "Thursday", "Friday", "Saturday"};
  setresult(s, names[now().date.tm_wday]);
}

void leapyear(tscript& s) {
  if (!checkparams(s, 1)) return;
  const int64_t y = textnat(param(s, 1));
  setresult(s, (y % 4 == 0 && y % 100 != 0) || y % 400 == 0 ? "1" : "0");
}

using enum tcommandkind;

constexpr tcommand rows[] = {
    {"wait", procedure, waitcmd, nullptr, "wait 0.5 // wait the given seconds"},
    {"sleep", procedure, waitcmd, nullptr, "sleep 1 // same as wait"},
    {"delay", procedure, waitcmd, nullptr, "delay 1 // same as wait"},
    {"nop", procedure, nop, nullptr, "nop // no operation"},
    {"stop", procedure, stop, nullptr, "stop // stop the script here"},
    {"progress", procedure, progresscmd, nullptr, "progress 0.5 \"Working\" // show a progress line; without parameters end it"},
    {"min", function, extreme<false>, nullptr, "a := min 3 1 2 // smallest of the numbers"},
    {"max", function, extreme<true>, nullptr, "a := max 3 1 2 // largest of the numbers"},
    {"minmax", function, minmax, nullptr, "a := minmax 3 1 // vector of minimum and maximum"},
    {"random.range", function, randomrange, nullptr, "a := random.range 1 6 // random real between the two integers"},
    {"random.range.nat", function, randomrangenat, nullptr, "a := random.range.nat 1 6 // random integer between the two"},
    {"random", variablefunction, randoms<1, false>, nullptr, "a := random // random number 0..1"},
    {"random2", variablefunction, randoms<2, false>, nullptr, "a := random2 // two random numbers 0..1"},
    {"random3", variablefunction, randoms<3, false>, nullptr, "a := random3 // three random numbers 0..1"},
    {"random4", variablefunction, randoms<4, false>, nullptr, "a := random4 // four random numbers 0..1"},
    {"random.full", variablefunction, randoms<1, true>, nullptr, "a := random.full // random number -1..1"},
    {"random2.full", variablefunction, randoms<2, true>, nullptr, "a := random2.full // two random numbers -1..1"},
    {"random3.full", variablefunction, randoms<3, true>, nullptr, "a := random3.full // three random numbers -1..1"},
    {"random4.full", variablefunction, randoms<4, true>, nullptr, "a := random4.full // four random numbers -1..1"},
    {"random.byte", variablefunction, randominteger<256>, nullptr, "a := random.byte // random integer 0..255"},
    {"random.gray", variablefunction, randominteger<256>, nullptr, "a := random.gray // random integer 0..255"},
    {"random.word", variablefunction, randominteger<65536>, nullptr, "a := random.word // random integer 0..65535"},
    {"random.fullgray", variablefunction, randominteger<65536>, nullptr, "a := random.fullgray // random integer 0..65535"},
    {"random.rgb", variablefunction, randombytes<3>, nullptr, "a := random.rgb // random colour <r, g, b>"},
    {"random.rgba", variablefunction, randombytes<4>, nullptr, "a := random.rgba // random colour <r, g, b, a>"},
    {"timer.start", procedure, timerstartcmd, nullptr, "timer.start // start the timer"},
    {"timer.get", function, timerget, nullptr, "a := timer.get // time since timer.start"},
    {"hour", variablefunction, hour, nullptr, "a := hour // hour of the clock"},
    {"minute", variablefunction, minute, nullptr, "a := minute // minute of the clock"},
    {"second", variablefunction, second, nullptr, "a := second // second of the clock"},
    {"milliscond", variablefunction, millisecond, nullptr, "a := milliscond // millisecond of the clock"},
    {"timestamp", variablefunction, timestamp, nullptr, "a := timestamp // hh:mm:ss:ms of now"},
    {"year", variablefunction, year, nullptr, "a := year // year of today"},
    {"month", variablefunction, month, nullptr, "a := month // month of today"},
    {"day", variablefunction, day, nullptr, "a := day // day of today"},
    {"weekday", variablefunction, weekday, nullptr, "a := weekday // name of the day of the week"},
    {"leapyear", function, leapyear, nullptr, "a := leapyear 2024 // 1 for a leap year, else 0"},
    {"datestamp", variablefunction, datestamp, nullptr, "a := datestamp // year_month_day of today"},
};

}  // namespace

tcommandfamily librarycommands() { return {"", rows}; }
