#include "shell/console.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>

bool consoleon = true;
bool logon = false;
bool interactive = true;

namespace {

FILE* logfile = nullptr;
std::chrono::steady_clock::time_point logstart;

// The progress line that stands on the console, waiting to be overwritten.
struct tprogressstate {
  bool active = false;
  size_t lastlength = 0;
  double fraction = 0;
  std::chrono::steady_clock::time_point start;
  std::chrono::steady_clock::time_point lasttick;
  utf16 activetext;
  int spinner = 0;
} state;

constexpr auto tickinterval = std::chrono::milliseconds(250);

void toconsole(std::string_view s) {
  if (consoleon) std::fwrite(s.data(), 1, s.size(), stdout);
}

void tolog(std::string_view s) {
  if (logon && logfile) std::fwrite(s.data(), 1, s.size(), logfile);
}

// Blank out a waiting progress line, so that ordinary text starts on a clean line.
void clearprogress() {
  if (!state.active) return;
  if (consoleon) {
    std::string blank(state.lastlength, ' ');
    blank.push_back('\r');
    toconsole(blank);
  }
  state.lastlength = 0;
  state.active = false;
}

void write(std::string_view s) {
  clearprogress();
  toconsole(s);
  tolog(s);
}

// Rewrite the progress line: padded to the former length, 80 characters at most.
void showprogress(std::string line) {
  if (line.size() > 80) line.resize(80);
  const size_t shown = line.size();
  if (line.size() < state.lastlength) line.append(state.lastlength - line.size(), ' ');
  line.push_back('\r');
  toconsole(line);
  if (consoleon) std::fflush(stdout);
  state.lastlength = shown;
  state.active = true;
}

double elapsedseconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - state.start).count();
}

bool tickdue() {
  const auto now = std::chrono::steady_clock::now();
  if (now - state.lasttick < tickinterval) return false;
  state.lasttick = now;
  return true;
}

}  // namespace

void print(std::string_view utf8) { write(utf8); }
void print(const utf16& text) { write(utf16toutf8(text)); }

void println(std::string_view utf8) {
  std::string s(utf8);
  s.push_back('\n');
  write(s);
}

void println(const utf16& text) { println(utf16toutf8(text)); }
void printlnempty() { write("\n"); }

void flushconsole() {
  std::fflush(stdout);
  if (logfile) std::fflush(logfile);
}

bool readconsoleline(utf16& out) {
  out = utf16();
  if (!interactive) return false;
  flushconsole();
  std::string line;
  if (!std::getline(std::cin, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  if (logon) tolog(line + "\n");
  out = utf16fromutf8(line);
  return true;
}

utf16 readline() {
  utf16 line;
  readconsoleline(line);
  return line;
}

std::string colorbegin(tcolor c) {
  if (!interactive) return {};
  switch (c) {
    case tcolor::red: return "\x1b[91m";
    case tcolor::green: return "\x1b[32m";
    case tcolor::blue: return "\x1b[34m";
    case tcolor::yellow: return "\x1b[33m";
    case tcolor::cyan: return "\x1b[36m";
    case tcolor::purple: return "\x1b[35m";
  }
  return {};
}

std::string colorend() { return interactive ? "\x1b[0m" : std::string(); }

bool logopen(const std::string& path) {
  logfile = std::fopen(path.c_str(), "ab");
  logon = logfile != nullptr;
  logstart = std::chrono::steady_clock::now();
  return logon;
}

void logclose() {
  if (!logfile) return;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - logstart).count();
  tolog("Done (" + timetext(seconds) + ").\n");
  std::fclose(logfile);
  logfile = nullptr;
  logon = false;
}

std::string timetext(double seconds) {
  const auto hundredths = static_cast<int64_t>(std::llround(std::max(0.0, seconds) * 100));
  if (hundredths == 0) return "0 sec";
  const int64_t parts[5] = {hundredths / 8640000, hundredths / 360000 % 24, hundredths / 6000 % 60,
                            hundredths / 100 % 60, hundredths % 100};
  const char* units[5] = {" day", " h", " min", " sec", " 100sec"};
  int first = 0;
  while (parts[first] == 0) ++first;
  std::string out = std::to_string(parts[first]) + units[first];
  if (first < 4 && parts[first + 1] != 0) {
    out += ' ';
    out += std::to_string(parts[first + 1]);
    out += units[first + 1];
  }
  return out;
}

void waitbegin(const utf16& text) {
  state.start = state.lasttick = std::chrono::steady_clock::now();
  state.activetext = text;
  state.spinner = 0;
  showprogress("Please wait. " + utf16toutf8(text) + " (" + timetext(0) + "). -");
}

void waittick(const utf16& text, int64_t i, int64_t n) {
  if (!tickdue() && state.active) return;
  static const char signs[4] = {'-', '\\', '|', '/'};
  state.spinner = (state.spinner + 1) % 4;
  showprogress("Please wait. " + utf16toutf8(text) + " (" + std::to_string(i) + " of " + std::to_string(n) + "). " +
               signs[state.spinner]);
}

void waitready(const utf16& text, int64_t i, int64_t n) {
  println("Please wait ready. " + utf16toutf8(text) + " (" + std::to_string(i) + " of " + std::to_string(n) + ").");
}

void progress(const utf16& text, double fraction) {
  fraction = std::clamp(std::isnan(fraction) ? 0.0 : fraction, 0.0, 1.0);
  if (!state.active || !equal(text, state.activetext)) {
    state.activetext = text;
    state.start = state.lasttick = std::chrono::steady_clock::now();
    state.fraction = 0;
    showprogress(utf16toutf8(text) + ". 0 % ready (" + timetext(0) + " of " + timetext(0) + ").");
    return;
  }
  state.fraction = fraction;
  if (!tickdue()) return;
  const double elapsed = elapsedseconds();
  const double estimate = fraction > 0 ? elapsed / fraction : elapsed;
  char percent[32];
  std::snprintf(percent, sizeof percent, "%.2f", fraction * 100);
  showprogress(utf16toutf8(text) + ". " + percent + " % ready (" + timetext(elapsed) + " of " + timetext(estimate) + ").");
}

void progressend() {
  if (!state.active) return;
  const std::string elapsed = timetext(elapsedseconds());
  // Rewritten one last time on the console only, then ended with a line end there.
  showprogress(utf16toutf8(state.activetext) + ". 100 % ready (" + elapsed + " of " + elapsed + ").");
  toconsole("\n");
  state.active = false;
  state.lastlength = 0;
}
