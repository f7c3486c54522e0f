#include "formats/raw.h"

#include "formats/imagecodec.h"
#include "formats/rgb.h"

bool rawread(timagefield& f, const utf16& name, int64_t header, int64_t w, int64_t h) {
  tfilebuffer b;
  if (!imagefileread(name, b)) {
    bufferrelease(b);
    return readfailed(f, utf16());
  }
  const char* badsize = f.kind == imagergba ? "  Bad file size! Create empty field." : "  Bad file size. Empty image created!";
  const int64_t skip = header > 0 ? header : 0;
  const bool ok = skip <= b.size ? rgbpixels(f, b, skip, w, h, badsize) : readfailed(f, badsize);
  bufferrelease(b);
  return ok && readdone(f, name);
}
