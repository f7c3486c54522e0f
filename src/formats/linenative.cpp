// The native line text: "object:" and "material:" rows, points as tab-separated x y z t,
// an empty row between lines.
#include <charconv>
#include <string_view>

#include "base/filebuffer.h"
#include "formats/lineformats.h"
#include "library/random.h"
#include "script/values.h"

std::string nativebytes(const tcloud& c, const utf16& name) {
  std::string o;
  for (int64_t ob = 1; ob <= c.objectstarts.length; ++ob) {
    const utf16 label = c.objectnames.getchecked(ob);
    o += "object:\t" + (empty(label) ? "child-" + utf16toutf8(filestem(name)) : utf16toutf8(label)) + "\n";
    o += "material:\t" + std::to_string(ob) + "\n";
    const tlinerange lines = objectlines(c, ob);
    for (int64_t l = lines.first; l <= lines.last; ++l) {
      const tlinerange r = linerange(c, l);
      for (int64_t i = r.first; i <= r.last; ++i) {
        const tcloudpoint p = pointof(c, i);
        o += numbertext(p[0]) + "\t" + numbertext(p[1]) + "\t" + numbertext(p[2]) + "\t" + numbertext(p[3]) + "\n";
      }
      o += "\n";
    }
  }
  return o;
}

namespace {

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

// The numbers of a row, as many as parse.
std::vector<double> numbersof(std::string_view row) {
  std::vector<double> out;
  const char* p = row.data();
  const char* end = p + row.size();
  while (p < end) {
    while (p < end && (*p == ' ' || *p == '\t' || *p == '\r')) ++p;
    if (p < end && *p == '+') ++p;
    double v = 0;
    const auto r = std::from_chars(p, end, v);
    if (r.ec != std::errc()) break;
    out.push_back(v);
    p = r.ptr;
  }
  return out;
}

}  // namespace

bool nativeread(tcloud& c, const utf16& name, double dropshare) {
  tfilebuffer b;
  if (!bufferread(b, name)) return false;
  std::string_view text = bufferview(b);
  const double drop = std::clamp(dropshare, 0.0, 100.0) * 0.01;
  double r = randomreal();
  bool haveobject = false;
  utf16 objectname;
  auto endline = [&] {
    if (c.lineopen) r = randomreal();
    closeline(c, 0);
  };
  while (!text.empty()) {
    const size_t cut = text.find('\n');
    const std::string_view row = text.substr(0, cut);
    text = cut == std::string_view::npos ? std::string_view() : text.substr(cut + 1);
    const std::string_view t = trimmed(row);
    if (const size_t at = row.find("object:"); at != std::string_view::npos) {
      endline();
      if (haveobject) closeobject(c, objectname);
      std::string label(trimmed(row.substr(at + 7)));
      for (char& ch : label) ch = ch == '\t' ? ' ' : ch;
      objectname = label.empty() ? "child-" + filestem(name) : utf16fromutf8(label);
      haveobject = true;
    } else if (!t.empty() && (std::isdigit(static_cast<unsigned char>(t[0])) || t[0] == '-' || t[0] == '+' || t[0] == '.') &&
               row.find("material:") == std::string_view::npos) {
      const std::vector<double> v = numbersof(t);
      if (drop > r) continue;
      for (size_t i = 0; i + 3 <= v.size(); i += 4)
        addpoint(c, {v[i], v[i + 1], v[i + 2], i + 3 < v.size() ? v[i + 3] : 0});
    } else {
      endline();
    }
  }
  endline();
  closeobject(c, haveobject ? objectname : "child-" + filestem(name));
  bufferrelease(b);
  return true;
}
