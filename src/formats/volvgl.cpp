// VGL project files of a CT software: XML whose element path names the grid of the data
// file. A small tag scanner builds the path: a property adds its name, an object its
// class, any other element its own word.
#include <string>

#include "base/filebuffer.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/files.h"

namespace {

constexpr std::string_view prefix =
    "/Project/vgl/object/SampleGrid/objectlink/object/ImportSettings/objectlink/object/FileIOList/objectlink/object/";
constexpr std::string_view hint = "FileGridHint/objectlink/object/";

struct tvglgrid {
  tnatvector size{0, 0, 0};
  tvector origin{0, 0, 0}, scale{1, 1, 1};
  std::string type, file;
};

std::string_view attribute(std::string_view tag, std::string_view key) {
  std::string opening(" ");
  opening.append(key).append("=\"");
  const size_t at = tag.find(opening);
  if (at == std::string_view::npos) return {};
  const std::string_view rest = tag.substr(at + opening.size());
  return rest.substr(0, rest.find('"'));
}

tvector vectorof(std::string_view text) {
  const std::vector<double> v = textnumbers(text);
  return {v.size() > 0 ? v[0] : 0, v.size() > 1 ? v[1] : 0, v.size() > 2 ? v[2] : 0};
}

void takevalue(tvglgrid& g, std::string_view path, std::string_view value) {
  if (!path.starts_with(prefix)) return;
  path.remove_prefix(prefix.size());
  if (path == "FileName/string") return void(g.file = std::string(value));
  if (!path.starts_with(hint)) return;
  path.remove_prefix(hint.size());
  if (path == "GridSize/vector4") {
    const tvector v = vectorof(value);
    g.size = {headersize(v[0]), headersize(v[1]), headersize(v[2])};
  } else if (path == "Origin/vector3") g.origin = vectorof(value);
  else if (path == "SampleDataType/typeinfo") g.type = std::string(value);
  else if (path == "SamplingDistance/vector3") g.scale = vectorof(value);
}

// One pass over the tags; the text behind an opening tag is the value of its path, as is a
// value="..." of an element that closes itself.
tvglgrid scan(std::string_view t) {
  tvglgrid g;
  std::string path;
  std::vector<size_t> marks;
  for (size_t at = t.find('<'); at != std::string_view::npos; at = t.find('<', at)) {
    const size_t end = t.find('>', at);
    if (end == std::string_view::npos) break;
    const std::string_view tag = t.substr(at + 1, end - at - 1);
    at = end + 1;
    if (tag.starts_with('?') || tag.starts_with('!')) continue;
    if (tag.starts_with('/')) {
      if (!marks.empty()) path.resize(marks.back()), marks.pop_back();
      continue;
    }
    const std::string_view word = tag.substr(0, tag.find_first_of(" \t\r\n/"));
    std::string_view element = word;
    if (word == "property") element = attribute(tag, "name");
    if (word == "object" && !attribute(tag, "class").empty()) element = attribute(tag, "class");
    marks.push_back(path.size());
    path.append("/").append(element);
    if (tag.ends_with('/')) {
      takevalue(g, path, attribute(tag, "value"));
      path.resize(marks.back());
      marks.pop_back();
    } else {
      takevalue(g, path, t.substr(at, t.find('<', at) - at));
    }
  }
  return g;
}

int vgltype(const std::string& word) {
  constexpr std::pair<const char*, int> types[] = {{"uint8", 8},   {"uint16", 16}, {"uint32", 32}, {"uint64", 64},
                                                   {"int8", -8},   {"int16", -16}, {"int32", -32}, {"int64", -64},
                                                   {"float", 1032}, {"double", 1064}};
  for (const auto& [w, code] : types)
    if (word == w) return code;
  return 0;
}

std::string trimmed(std::string s) {
  const size_t from = s.find_first_not_of(" \t\r\n"), to = s.find_last_not_of(" \t\r\n");
  return from == std::string::npos ? std::string() : s.substr(from, to - from + 1);
}

}  // namespace

bool vglload(tscalarfield& f, uint8_t kind, const utf16& name) {
  const utf16 missing = "  Couldn't read File (" + filestem(name) + ".vgl)! Create empty field.";
  tfilebuffer b{};
  if (!fileexists(name) || !bufferread(b, name)) return volumefail(f, kind, missing);
  tvglgrid g = scan(bufferview(b));
  bufferrelease(b);
  // The data file as named, else beside the project file.
  utf16 data = utf16fromutf8(trimmed(g.file));
  const utf16 dir = copy(name, 1, std::max(lastpos("/", name), lastpos("\\", name)));
  if (!fileexists(data) && !empty(data)) data = dir + data;
  if (empty(data) || !fileexists(data)) return volumefail(f, kind, missing);
  const int code = vgltype(trimmed(g.type));
  if (code == 0) return volumefail(f, kind, "  Wrong bit depth (0)! Create empty field.");
  if (!volumeblock(f, kind, data, 0, volumerequest(f, code, g.size), voxelbytes(code))) return false;
  volumeplace(f, g.origin, diagonalrows(g.scale), data);
  return true;
}
