#include "formats/tga.h"

#include <vector>

#include "formats/imagecodec.h"

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
  const std::string data = bottomupbgr(f, 3 * w);
  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, head);
  sinkwrite(sink, data);
  return sinkclose(sink);
}
