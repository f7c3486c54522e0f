#include "script/echo.h"

#include "shell/console.h"

namespace {

std::string kindcolor(uint8_t kind) {
  switch (kind) {
    case param_literal: case param_bracketed: return colorbegin(tcolor::blue);
    case param_quoted: return colorbegin(tcolor::red);
    case param_function: case param_varfunction: return colorbegin(tcolor::green);
    default: return {};
  }
}

std::string paramlist(const tscript& s) {
  std::string out = "|";
  for (size_t i = 0; i < s.params.size(); ++i) {
    const std::string color = i < s.paramkinds.size() ? kindcolor(s.paramkinds[i]) : std::string();
    out += color + utf16toutf8(s.params[i]) + (color.empty() ? "" : colorend()) + "|";
  }
  return out;
}

std::string word(const utf16& w) { return colorbegin(tcolor::green) + utf16toutf8(w) + colorend(); }

}  // namespace

void echoline(tscript& s, const utf16& w) {
  if (s.debug) println("  " + word(w) + paramlist(s));
}

void echotext(tscript& s, const utf16& w, const utf16& text) {
  if (s.debug) println("  " + word(w) + "|" + utf16toutf8(text) + "|");
}

void echofunction(tscript& s, const utf16& name) {
  if (!s.debug) return;
  println(colorbegin(tcolor::yellow) + utf16toutf8(s.target.get()) + colorend() + " := [" + utf16toutf8(name) + "]" + paramlist(s));
}

void echoassign(tscript& s, const utf16& target, const utf16& op, const utf16& value) {
  if (!s.debug) return;
  println(colorbegin(tcolor::yellow) + utf16toutf8(target) + colorend() + " " + utf16toutf8(op) + " " + utf16toutf8(value));
}
