#include "formats/tga.h"

#include <vector>

#include "formats/imagefile.h"

bool tgawrite(timagefield& f, const utf16& name) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  std::string head;
  head += '\0';  // no image id
  head += '\0';  // no colour map
  head += '\2';  // uncompressed true colour
  head.append(5, '\0');
  putle16(head, 0);
  putle16(head, 0);
  putle16(head, static_cast<uint32_t>(w));
  putle16(head, static_cast<uint32_t>(h));
  head += static_cast<char>(24);
  head += '\0';  // origin bottom-left
  std::string data(static_cast<size_t>(3 * w * h), '\0');
  std::vector<uint8_t> row(static_cast<size_t>(3 * w));
  timageprogress p = progressbegin("  RGB with (", w, h);
  imageemitrows(f, 3, row.data(), [&](int64_t y, const uint8_t* c) {
    progressrow(p, y);
    char* out = data.data() + (h - y) * 3 * w;
    for (int64_t x = 0; x < w; ++x)
      out[3 * x] = static_cast<char>(c[3 * x + 2]), out[3 * x + 1] = static_cast<char>(c[3 * x + 1]),
      out[3 * x + 2] = static_cast<char>(c[3 * x]);
    return true;
  });
  progressdone(p);
  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, head);
  sinkwrite(sink, data);
  return sinkclose(sink);
}
