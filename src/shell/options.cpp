#include "shell/options.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>

#include "script/values.h"
#include "shell/console.h"
#include "shell/files.h"
#include "shell/platform.h"
#include "shell/update.h"

toptions options;
const char* const updatesite = "https://voxmill.org/download";

namespace {

std::string selfpath() {
  char buffer[4096];
  const ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string("voxmill");
}

std::string workingdirectory() {
  char buffer[4096];
  return getcwd(buffer, sizeof buffer) ? std::string(buffer) : std::string(".");
}

// One layer of quotes removed; a doubled quote inside stands for one.
utf16 unquoted(const utf16& v) {
  const uint16_t q = charat(v, 1);
  if ((q != '"' && q != '\'') || length(v) < 2 || charat(v, length(v)) != q) return v;
  const utf16 quote = utf16char(q);
  return replace(copy(v, 2, length(v) - 2), quote + quote, quote);
}

int64_t findoption(const toptions& o, const utf16& name) {
  const utf16 key = lower(name);
  for (size_t i = 0; i < o.optnames.size(); ++i)
    if (equal(lower(o.optnames[i]), key)) return static_cast<int64_t>(i);
  return -1;
}

// Takes a declared option's value out of the lists; false when it was not given.
bool takeoption(toptions& o, const utf16& name, utf16& value) {
  const int64_t at = findoption(o, name);
  if (at < 0) return false;
  value = o.optvalues[static_cast<size_t>(at)];
  o.optnames.erase(o.optnames.begin() + at);
  o.optvalues.erase(o.optvalues.begin() + at);
  return true;
}

void readinifile(toptions& o, const utf16& name) {
  if (!fileexists(name)) return;
  std::string bytes;
  if (!readwholefile(name, bytes, true)) return;
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    utf16 line = trimblanks(utf16fromutf8(std::string_view(bytes).substr(start, end - start)));
    start = end + 1;
    if (!empty(line) && charat(line, length(line)) == '\r') line = copy(line, 1, length(line) - 1);
    if (empty(line)) continue;
    const int64_t eq = poschar('=', line), blank = poschar(' ', line);
    const int64_t cut = eq > 0 ? eq : blank;
    utf16 optname = cut > 0 ? copy(line, 1, cut - 1) : line;
    const utf16 value = cut > 0 ? unquoted(trimblanks(copy(line, cut + 1, length(line)))) : utf16();
    o.optnames.push_back(trimleft(trimblanks(optname), '-'));
    o.optvalues.push_back(value);
  }
}

// " for <system> (<machine><suffix>": the platform part of the version line.
utf16 platformtext(const std::string& suffix) {
  std::string text = " for ";
  text += buildsystem;
  text += " (";
  text += buildmachine;
  text += suffix;
  return utf16(text);
}

std::string today(const char* format) {
  const std::time_t now = std::time(nullptr);
  char text[64];
  std::strftime(text, sizeof text, format, std::localtime(&now));
  return text;
}

}  // namespace

utf16 versionfromdate(const std::string& builddate, int64_t firstyear) {
  const int64_t y = std::atoll(builddate.substr(0, 4).c_str());
  const int64_t m = std::atoll(builddate.substr(5, 2).c_str());
  const int64_t d = std::atoll(builddate.substr(8, 2).c_str());
  return utf16(std::to_string(y - firstyear) + "." + std::to_string(m) + "." + std::to_string(d));
}

void init(toptions& o, int argc, char** argv, const utf16& productname, const utf16& site, const utf16& author,
          int64_t firstyear) {
  o.arguments.assign(argv + 1, argv + argc);
  o.productname = productname;
  const std::string builddate = VOXMILL_BUILD_DATE;
  o.year = std::atoll(builddate.substr(0, 4).c_str());
  o.month = std::atoll(builddate.substr(5, 2).c_str());
  o.day = std::atoll(builddate.substr(8, 2).c_str());
  o.versiontext = versionfromdate(builddate, firstyear);
#ifdef __AVX__
  const std::string suffix = "_AVX";
#else
  const std::string suffix = "_SSE";
#endif
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  const std::string order = " BE)";
#else
  const std::string order = " LE)";
#endif
#ifdef NDEBUG
  const std::string build = " - Version ";
#else
  const std::string build = " - Debug version ";
#endif
  o.versionline = productname + utf16(build) + o.versiontext + platformtext(suffix + order);
  o.yearsline = utf16(std::to_string(firstyear) + "-" + std::to_string(o.year) + " by ") + author;
  o.programpath = utf16(selfpath());
  o.currentdirectory = utf16(workingdirectory());
  printlnempty();
  println(o.versionline);
  println(o.yearsline);
  printlnempty();
  println(o.programpath);
  println(o.currentdirectory);
  printlnempty();
  const std::string first = o.arguments.empty() ? std::string() : o.arguments[0];
  if (first == "-strict") interactive = false;
  const utf16 address = updateaddress(site, o.programpath);
  println("  -update : Load a new version from " + utf16toutf8(address));
  if (first == "-update") {
    runupdate(address, o.programpath);
    flushconsole();
    std::exit(0);
  }
}

void parsearguments(toptions& o, const utf16& joined) {
  utf16 text = joined;
  bool waitingvalue = false;  // the last option took no value yet
  for (;;) {
    text = trimleft(text, ' ');
    if (empty(text)) break;
    const utf16 word = replacechar(cutparam(text, "\t"), '\t', ' ');
    if (empty(word)) continue;
    const uint16_t first = charat(word, 1);
    if (first == '-' || first == '+') {
      const utf16 body = copy(word, 2, length(word));
      const int64_t eq = poschar('=', body);
      o.optnames.push_back(eq > 0 ? copy(body, 1, eq - 1) : body);
      o.optvalues.push_back(eq > 0 ? unquoted(copy(body, eq + 1, length(body))) : utf16(first == '+' ? "on" : ""));
      waitingvalue = eq == 0 && first == '-';
    } else if (waitingvalue) {
      o.optvalues.back() = unquoted(word);
      waitingvalue = false;
    } else {
      o.optnames.push_back(utf16());
      o.optvalues.push_back(unquoted(word));
    }
  }
}

void setusage(toptions& o, const utf16& text) {
  o.usagetext = text;
  printlnempty();
  println(utf16("Usage: ") + text);
  printlnempty();
  std::string joined;
  for (size_t i = 0; i < o.arguments.size(); ++i) joined += (i ? "\t" : "") + o.arguments[i];
  parsearguments(o, utf16(joined));
  const utf16 inidefault = utf16(selfpath() + ".ini");
  utf16 ininame;
  if (!takeoption(o, "optionsfile", ininame) || empty(ininame)) ininame = inidefault;
  println("  -optionsfile : options file = #");
  readinifile(o, ininame);
  if (optbool(o, "logfile", false, "write a log file")) {
    if (logopen(selfpath() + ".log")) {
      // The banner of this run goes to the log as well.
      const bool console = consoleon;
      consoleon = false;
      println(o.versionline);
      println(o.yearsline);
      println(o.programpath);
      println(o.currentdirectory);
      consoleon = console;
    }
  }
  println("  : " + today("%Y/%m/%d"));
  println("  : " + today("%H:%M:%S"));
  consoleon = optbool(o, "verbose", true, "console output");
  for (const char* help : {"?"})
    if (findoption(o, help) >= 0) o.showhelp = o.waitforhelp = true;
  for (const char* help : {"h", "help", "hilfe"})
    if (findoption(o, help) >= 0) o.showhelp = true;
  for (const char* help : {"?", "h", "help", "hilfe"}) {
    utf16 word;
    if (takeoption(o, help, word) && !empty(word)) o.helpword = word;
  }
  utf16 unused;
  takeoption(o, "strict", unused);
  takeoption(o, "update", unused);
}

void section(const toptions& o, const utf16& title) {
  printlnempty();
  println(title);
}

void note(const toptions& o, const utf16& text) { println(utf16("      ") + text); }

bool optbool(toptions& o, const utf16& name, bool fallback, const utf16& description) {
  utf16 value;
  bool on = fallback;
  if (!o.quiet && takeoption(o, name, value)) on = empty(value) || textbool(value);
  println(utf16("  +/-") + name + " : " + description + (on ? " = on" : " = off"));
  return on;
}

utf16 opttext(toptions& o, const utf16& name, const utf16& fallback, const utf16& description) {
  utf16 value = fallback;
  if (!o.quiet) takeoption(o, name, value);
  println(utf16("  -") + name + " : " + description + " = " + value);
  return value;
}

void helpfooter(toptions& o, const utf16& example) {
  if (o.waitforhelp) {
    printlnempty();
    println("*** press enter ***");
    readline();
  }
  printlnempty();
  println("  -? : show this help");
  println("  -h : shows this help without waiting");
  if (o.showhelp) {
    printlnempty();
    println(utf16("Example: ") + example);
  }
}

int64_t unknowncount(const toptions& o) {
  int64_t n = 0;
  for (const utf16& name : o.optnames) n += empty(name) ? 0 : 1;
  return n;
}

bool unknownoption(const toptions& o, int64_t i, utf16& name, utf16& value) {
  int64_t seen = 0;
  for (size_t k = 0; k < o.optnames.size(); ++k) {
    if (empty(o.optnames[k])) continue;
    if (++seen == i) {
      name = o.optnames[k];
      value = o.optvalues[k];
      return true;
    }
  }
  return false;
}

utf16 lastword(const toptions& o) {
  for (size_t k = o.optnames.size(); k-- > 0;)
    if (empty(o.optnames[k])) return o.optvalues[k];
  return utf16();
}

void finish(toptions& o) {
  o.optnames.clear();
  o.optvalues.clear();
  if (o.showhelp) {
    flushconsole();
    std::exit(1);
  }
  printlnempty();
}
