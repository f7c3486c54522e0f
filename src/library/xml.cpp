#include "library/xml.h"

#include <string_view>

#include "base/filebuffer.h"
#include "base/linefile.h"
#include "shell/files.h"

namespace {

bool blank(std::string_view s) { return s.find_first_not_of(" \t") == std::string_view::npos; }

std::string trimmed(std::string_view s) {
  const size_t a = s.find_first_not_of(" \t");
  if (a == std::string_view::npos) return {};
  return std::string(s.substr(a, s.find_last_not_of(" \t") - a + 1));
}

// The end of a tag that starts at lt: its '>' outside quotes, npos when the line ends first.
size_t tagend(std::string_view line, size_t lt) {
  char quote = 0;
  for (size_t i = lt + 1; i < line.size(); ++i) {
    if (quote) {
      if (line[i] == quote) quote = 0;
    } else if (line[i] == '"' || line[i] == '\'') {
      quote = line[i];
    } else if (line[i] == '>') {
      return i;
    }
  }
  return std::string_view::npos;
}

// The text of attribute name="..." in a tag, with its offset in the tag; -1 without it.
int64_t attribute(std::string_view tag, std::string_view name, std::string& out) {
  const std::string key = std::string(name) + "=\"";
  for (size_t at = tag.find(key); at != std::string_view::npos; at = tag.find(key, at + 1)) {
    if (at > 0 && tag[at - 1] != ' ' && tag[at - 1] != '\t') continue;
    const size_t from = at + key.size(), to = tag.find('"', from);
    if (to == std::string_view::npos) return -1;
    out = std::string(tag.substr(from, to - from));
    return static_cast<int64_t>(from);
  }
  return -1;
}

void addcontent(txmlelement& e, std::string_view text) {
  const std::string t = trimmed(text);
  if (t.empty()) return;
  e.value += (e.value.empty() ? "" : " ") + t;
}

void scanline(txmldocument& d, std::vector<size_t>& stack, int64_t n) {
  const std::string& line = d.lines[static_cast<size_t>(n - 1)];
  const std::string head = trimmed(line);
  if (head.starts_with("<?") || head.starts_with("<!")) return;
  size_t from = 0;
  for (size_t lt = line.find('<'); lt != std::string::npos; lt = line.find('<', from)) {
    if (!stack.empty()) addcontent(d.elements[stack.back()], std::string_view(line).substr(from, lt - from));
    const size_t gt = tagend(line, lt);
    if (gt == std::string::npos) return;
    const std::string_view tag = std::string_view(line).substr(lt + 1, gt - lt - 1);
    from = gt + 1;
    if (tag.starts_with('/')) {
      if (stack.empty()) continue;
      txmlelement& e = d.elements[stack.back()];
      stack.pop_back();
      e.closeline = n;
      e.closecolumn = static_cast<int64_t>(lt);
      e.closeend = static_cast<int64_t>(from);
      continue;
    }
    if (tag.starts_with('?') || tag.starts_with('!')) continue;
    txmlelement e;
    const std::string_view name = tag.substr(0, tag.find_first_of(" \t/"));
    e.path = (stack.empty() ? "" : d.elements[stack.back()].path + "/") + std::string(name);
    e.openline = n;
    e.tagstart = static_cast<int64_t>(lt);
    e.opencolumn = static_cast<int64_t>(from);
    e.single = tag.ends_with('/');
    attribute(tag, "id", e.id);
    std::string value;
    const int64_t at = attribute(tag, "value", value);
    if (at >= 0) {
      e.valuestart = static_cast<int64_t>(lt) + 1 + at;
      e.valuelength = static_cast<int64_t>(value.size());
    }
    if (e.single) {
      e.closeline = n;
      e.closecolumn = e.closeend = e.opencolumn;
    }
    d.elements.push_back(e);
    if (!e.single) stack.push_back(d.elements.size() - 1);
  }
  if (!stack.empty()) addcontent(d.elements[stack.back()], std::string_view(line).substr(from));
}

// A value attribute counts when the element holds no text.
void attributevalues(txmldocument& d) {
  for (txmlelement& e : d.elements) {
    if (!e.value.empty() || e.valuestart < 0) continue;
    e.value = d.lines[static_cast<size_t>(e.openline - 1)].substr(static_cast<size_t>(e.valuestart),
                                                                  static_cast<size_t>(e.valuelength));
  }
}

std::vector<std::string> textlines(const utf16& text) {
  if (!fileexists(text)) return {utf16toutf8(text)};
  tlinefile f;
  std::vector<std::string> lines;
  if (linefileread(f, text))
    for (int64_t i = 1; i <= linefilecount(f); ++i) lines.emplace_back(linefileview(f, i));
  linefilerelease(f);
  return lines;
}

using tlines = std::vector<std::string>;

// Lines first..last (from 1) replaced by the given ones.
void splice(tlines& lines, int64_t first, int64_t last, const tlines& by) {
  const auto begin = lines.begin() + (first - 1);
  lines.erase(begin, lines.begin() + last);
  lines.insert(lines.begin() + (first - 1), by.begin(), by.end());
}

tlines joined(std::initializer_list<const tlines*> parts) {
  tlines out;
  for (const tlines* p : parts) out.insert(out.end(), p->begin(), p->end());
  return out;
}

// Edits one element; false when the edit has no meaning for it.
bool editelement(tlines& lines, const txmlelement& e, const tlines& text, txmledit edit) {
  const std::string& open = lines[static_cast<size_t>(e.openline - 1)];
  const std::string& close = lines[static_cast<size_t>(e.closeline - 1)];
  const std::string closehead = close.substr(0, static_cast<size_t>(e.closecolumn));
  const tlines head{open.substr(0, static_cast<size_t>(e.opencolumn))};
  const tlines tail{(blank(closehead) && e.closeline != e.openline ? closehead : "") + close.substr(static_cast<size_t>(e.closecolumn))};
  switch (edit) {
    case txmledit::insertbegin: {
      if (e.single) return false;
      const tlines rest{open.substr(static_cast<size_t>(e.opencolumn))};
      if (blank(rest[0]))
        splice(lines, e.openline + 1, e.openline, text);
      else
        splice(lines, e.openline, e.openline, joined({&head, &text, &rest}));
      return true;
    }
    case txmledit::insertend: {
      if (e.single) return false;
      const tlines before{closehead}, after{close.substr(static_cast<size_t>(e.closecolumn))};
      if (blank(closehead))
        splice(lines, e.closeline, e.closeline - 1, text);
      else
        splice(lines, e.closeline, e.closeline, joined({&before, &text, &after}));
      return true;
    }
    case txmledit::replace: {
      if (e.single) {
        std::string line = open;
        const std::string value = text.empty() ? "" : text[0];
        if (e.valuestart >= 0)
          line.replace(static_cast<size_t>(e.valuestart), static_cast<size_t>(e.valuelength), value);
        else
          line.insert(static_cast<size_t>(e.opencolumn - 2), " value=\"" + value + "\"");
        lines[static_cast<size_t>(e.openline - 1)] = line;
        return true;
      }
      if (e.openline == e.closeline && text.size() == 1)
        splice(lines, e.openline, e.openline, {head[0] + text[0] + close.substr(static_cast<size_t>(e.closecolumn))});
      else
        splice(lines, e.openline, e.closeline, joined({&head, &text, &tail}));
      return true;
    }
    case txmledit::remove: {
      const std::string rest = open.substr(0, static_cast<size_t>(e.tagstart)) + close.substr(static_cast<size_t>(e.closeend));
      splice(lines, e.openline, e.closeline, blank(rest) ? tlines{} : tlines{rest});
      return true;
    }
  }
  return false;
}

}  // namespace

std::string xmlpath(const utf16& path) {
  std::string p = utf16toutf8(replacechar(path, '\\', '/'));
  while (p.starts_with('/')) p.erase(0, 1);
  return p;
}

bool xmlread(txmldocument& d, const utf16& name) {
  d = txmldocument{};
  tlinefile f;
  if (!linefileread(f, name)) return false;
  d.packed = f.buffer.packed;
  for (int64_t i = 1; i <= linefilecount(f); ++i) d.lines.emplace_back(linefileview(f, i));
  linefilerelease(f);
  std::vector<size_t> stack;
  for (int64_t i = 1; i <= static_cast<int64_t>(d.lines.size()); ++i) scanline(d, stack, i);
  // Elements never closed end with the file.
  for (txmlelement& e : d.elements) {
    if (e.closeline > 0) continue;
    e.closeline = static_cast<int64_t>(d.lines.size());
    e.closecolumn = e.closeend = static_cast<int64_t>(d.lines.back().size());
  }
  attributevalues(d);
  return true;
}

std::vector<std::string> xmllisting(const txmldocument& d) {
  std::vector<std::string> out;
  for (const txmlelement& e : d.elements) out.push_back(e.value.empty() ? e.path : e.path + " = " + e.value);
  return out;
}

std::string xmlvalue(const txmldocument& d, const std::string& path, const std::string& id) {
  for (const txmlelement& e : d.elements)
    if (e.path == path && (id.empty() || e.id == id)) return e.value;
  return {};
}

int64_t xmledit(const utf16& file, const utf16& path, const utf16& text, txmledit edit) {
  txmldocument d;
  if (!xmlread(d, file)) return 0;
  const std::string wanted = xmlpath(path);
  const tlines inserted = edit == txmledit::remove ? tlines{} : textlines(text);
  int64_t edited = 0;
  // From the last to the first: an edit moves only the lines behind it.
  for (auto e = d.elements.rbegin(); e != d.elements.rend(); ++e)
    if (e->path == wanted && editelement(d.lines, *e, inserted, edit)) ++edited;
  if (edited == 0) return 0;
  std::string out;
  for (const std::string& line : d.lines) out += line + "\n";
  return bufferwrite(file, out, d.packed) ? edited : 0;
}
