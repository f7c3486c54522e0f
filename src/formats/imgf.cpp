#include "formats/imgf.h"

#include <vector>

#include "formats/imagecodec.h"
#include "shell/console.h"

bool imgfread(timagefield& f, const utf16& name) {
  tscopedbuffer held;
  tfilebuffer& b = held.buffer;
  if (!imagefileread(name, b)) return readfailed(f, utf16());
  tbytereader r = bytereader(b);
  const uint8_t* magic;
  if (!r.take(4, magic) || std::string_view(reinterpret_cast<const char*>(magic), 4) != "IMGF")
    return readfailed(f, "  Bad Magic Identifier! Create empty field.");
  uint32_t record[6];
  for (uint32_t& v : record)
    if (!r.le32(v)) return truncated(f, b.size);
  const int64_t offset = record[0], w = static_cast<int32_t>(record[1]), h = static_cast<int32_t>(record[2]);
  const uint32_t depth = record[3], compression = record[4];
  const int64_t background = static_cast<int32_t>(record[5]);
  const int64_t bytes = depth == 16 ? 2 : 1;
  // The image takes its size and the background before the data are judged, so that a file
  // of unknown data still shows where it would lie. Only a size the file cannot hold is
  // refused before anything is allocated.
  const bool datafit = fieldcount(w, h, bytes) <= b.size - std::min<int64_t>(offset, b.size);
  if (w < 1 || h < 1 || ((compression == 1 && (depth == 8 || depth == 16)) && !datafit)) return truncated(f, b.size);
  if (fieldcount(w, h) > b.size * 2) return truncated(f, b.size);
  if (!readsize(f, w, h)) return false;
  withkind(f, [&](auto v) {
    for (int64_t y = 1; y <= h; ++y)
      for (int64_t x = 1; x <= w; ++x) v.setvalue(x, y, static_cast<double>(background));
  });
  if (compression != 1) {
    println("  Error - compressed file (" + nattext(compression) + ")!");
    return readdone(f, name);
  }
  if (depth != 8 && depth != 16) {
    println("  Error - wrong bit depth (" + nattext(depth) + ")!");
    return readdone(f, name);
  }
  const bool full = f.kind == imagefullgray;
  timageprogress p = progressbegin(full ? "  Fullgrey with (" : "  Grey with (", w, h);
  const uint8_t* data = b.bytes.data + offset;
  if (depth == 8 && f.kind == imagegray) {
    std::memcpy(f.channels[0].data, data, static_cast<size_t>(w * h));
  } else {
    std::vector<int64_t> row(static_cast<size_t>(w));
    imagefillrows(f, 1, row.data(), [&](int64_t y, int64_t* out) {
      progressrow(p, y);
      const uint8_t* src = data + (y - 1) * w * bytes;
      for (int64_t x = 0; x < w; ++x) {
        // 16-bit pairs are little-endian; gray keeps their low byte, fullgray the word.
        const int64_t word = bytes == 2 ? src[2 * x] | src[2 * x + 1] << 8 : src[x];
        out[x] = bytes == 2 && f.kind == imagegray ? word & 0xFF : word;
      }
      return true;
    });
  }
  progressdone(p);
  return readdone(f, name);
}
