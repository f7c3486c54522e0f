#include "formats/imagelibs.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "formats/imagecodec.h"
#include "formats/imagelibchild.h"
#include "formats/runtimelib.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

struct FIBITMAP;
using tfimessage = void (*)(int, const char*);
struct tfreeimageapi {
  void (*Initialise)(int) = nullptr;
  void (*DeInitialise)() = nullptr;
  const char* (*GetVersion)() = nullptr;
  void (*SetOutputMessage)(tfimessage) = nullptr;
  FIBITMAP* (*AllocateT)(int, int, int, int, unsigned, unsigned, unsigned) = nullptr;
  FIBITMAP* (*Load)(int, const char*, int) = nullptr;
  int (*Save)(int, FIBITMAP*, const char*, int) = nullptr;
  int (*GetFileType)(const char*, int) = nullptr;
  int (*GetFIFFromFilename)(const char*) = nullptr;
  const char* (*GetFormatFromFIF)(int) = nullptr;
  FIBITMAP* (*LoadU)(int, const wchar_t*, int) = nullptr;
  int (*SaveU)(int, FIBITMAP*, const wchar_t*, int) = nullptr;
  int (*GetFileTypeU)(const wchar_t*, int) = nullptr;
  int (*GetFIFFromFilenameU)(const wchar_t*) = nullptr;
  unsigned (*GetWidth)(FIBITMAP*) = nullptr;
  unsigned (*GetHeight)(FIBITMAP*) = nullptr;
  FIBITMAP* (*ConvertToGreyscale)(FIBITMAP*) = nullptr;
  FIBITMAP* (*ConvertToUINT16)(FIBITMAP*) = nullptr;
  FIBITMAP* (*ConvertTo24Bits)(FIBITMAP*) = nullptr;
  FIBITMAP* (*ConvertTo32Bits)(FIBITMAP*) = nullptr;
  uint8_t* (*GetBits)(FIBITMAP*) = nullptr;
  void (*Unload)(FIBITMAP*) = nullptr;
  // Colour to a palette, for formats of at most 256 colours (GIF); optional.
  FIBITMAP* (*ColorQuantize)(FIBITMAP*, int) = nullptr;
} fi;

enum : int { fifunknown = -1, fifgif = 25, fitbitmap = 1, fituint16 = 2 };

void fisilent(int, const char*) {}

}  // namespace

void openfreeimage() {
  void* h = searchlibrary("libfreeimage",
                          {".", "-3.22.0.", "-3.20.0.", "-3.18.0.", "-3.16.0.", "-3.14.0.", "-3.12.0.", "-3.10.0.",
                           "-3.8.0.", "-3.6.0.", "-3.4.0.", "-3.2.0.", "-3.0.0."},
                          {"so.12", "so.11", "so.10", "so.9", "so.8", "so.7", "so.6", "so.5", "so.4", "so.3", "so.2",
                           "so.1", "so"});
  if (!h) return;
  bool ok = routine(h, fi.Initialise, "_FreeImage_Initialise@4");
  ok &= routine(h, fi.DeInitialise, "_FreeImage_DeInitialise@0");
  ok &= routine(h, fi.GetVersion, "_FreeImage_GetVersion@0");
  routine(h, fi.SetOutputMessage, "_FreeImage_SetOutputMessage@4");
  ok &= routine(h, fi.AllocateT, "_FreeImage_AllocateT@28");
  ok &= routine(h, fi.Load, "_FreeImage_Load@12");
  ok &= routine(h, fi.Save, "_FreeImage_Save@16");
  ok &= routine(h, fi.GetFileType, "_FreeImage_GetFileType@8");
  ok &= routine(h, fi.GetFIFFromFilename, "_FreeImage_GetFIFFromFilename@4");
  routine(h, fi.GetFormatFromFIF, "_FreeImage_GetFormatFromFIF@4");
  routine(h, fi.LoadU, "_FreeImage_LoadU@12");
  routine(h, fi.SaveU, "_FreeImage_SaveU@16");
  routine(h, fi.GetFileTypeU, "_FreeImage_GetFileTypeU@8");
  routine(h, fi.GetFIFFromFilenameU, "_FreeImage_GetFIFFromFilenameU@4");
  ok &= routine(h, fi.GetWidth, "_FreeImage_GetWidth@4");
  ok &= routine(h, fi.GetHeight, "_FreeImage_GetHeight@4");
  ok &= routine(h, fi.ConvertToGreyscale, "_FreeImage_ConvertToGreyscale@4");
  ok &= routine(h, fi.ConvertToUINT16, "_FreeImage_ConvertToUINT16@4");
  ok &= routine(h, fi.ConvertTo24Bits, "_FreeImage_ConvertTo24Bits@4");
  ok &= routine(h, fi.ConvertTo32Bits, "_FreeImage_ConvertTo32Bits@4");
  ok &= routine(h, fi.GetBits, "_FreeImage_GetBits@4");
  ok &= routine(h, fi.Unload, "_FreeImage_Unload@4");
  fi.ColorQuantize = reinterpret_cast<FIBITMAP* (*)(FIBITMAP*, int)>(dlsym(h, "FreeImage_ColorQuantize"));
  freeimage.handle = h;
  if (!ok || !fi.Initialise) {
    println("Freeimage could not be initialised!");
    return;
  }
  fi.Initialise(1);  // the plugins of this library only
  if (fi.SetOutputMessage) fi.SetOutputMessage(fisilent);
  freeimage.version = fi.GetVersion ? fi.GetVersion() : "";
  freeimage.available = freeimage.enabled = true;
}

namespace {

// Formats the library tells neither by content nor by name are taken from the extension.
int fiformatbyextension(const std::string& path) {
  struct tentry {
    const char* ext;
    int fif;
  };
  static const tentry table[] = {{".png", 13}, {".jpg", 2}, {".dib", 0}, {".tga", 17}, {".targa", 17},
                                 {".mng", 6},  {".pcd", 9}, {".wbmp", 19}, {".cut", 21}};
  std::string lowered = path;
  for (char& c : lowered) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  for (const tentry& e : table) {
    const size_t n = std::strlen(e.ext);
    if (lowered.size() >= n && lowered.compare(lowered.size() - n, n, e.ext) == 0) return e.fif;
  }
  return fifunknown;
}

// Rows of the library lie bottom-up, each padded to four bytes.
int64_t fipitch(int64_t w, int64_t bpp) { return (w * bpp + 31) / 32 * 4; }

const char* filabel(uint8_t kind) {
  switch (kind) {
    case imagegray: return "  Grey (FI) with (";
    case imagefullgray: return "  Fullgrey (FI) with (";
    case imagergba: return "  RGBA (FI) with (";
    case imagezrgb: return "  ZRGB (FI) with (";
  }
  return "  RGB (FI) with (";
}

int64_t kindbpp(uint8_t kind) {
  return kind == imagegray ? 8 : kind == imagefullgray ? 16 : kind == imagergba ? 32 : 24;
}

}  // namespace

void closefreeimage() {
  if (!freeimage.available) return;
  if (fi.DeInitialise)
    fi.DeInitialise();
  else
    println("Freeimage could not be deinitialised!");
}

bool freeimageload(timagefield& f, const utf16& name) {
  if (!freeimage.enabled || !fileexists(name)) return false;
  const std::string path = systempath(name);
  const uint8_t kind = f.kind;
  return isolatedload(f, name, filabel(kind), [&](timagechild& child) {
    int fif = fi.GetFileType(path.c_str(), 0);
    if (fif == fifunknown) fif = fi.GetFIFFromFilename(path.c_str());
    if (fif == fifunknown) fif = fiformatbyextension(path);
    if (fif == fifunknown) return false;
    FIBITMAP* dib = fi.Load(fif, path.c_str(), 0);
    if (!dib) return false;
    FIBITMAP* (*convert)(FIBITMAP*) = kind == imagegray       ? fi.ConvertToGreyscale
                                      : kind == imagefullgray ? fi.ConvertToUINT16
                                      : kind == imagergba     ? fi.ConvertTo32Bits
                                                              : fi.ConvertTo24Bits;
    // The bitmaps are not unloaded: the child's end gives all back at once.
    FIBITMAP* image = convert(dib);
    if (!image) return false;
    const int64_t w = fi.GetWidth(image), h = fi.GetHeight(image), bpp = kindbpp(kind), pitch = fipitch(w, bpp);
    const int channels = kind == imagergba ? 4 : bpp == 24 ? 3 : 1, samplebytes = bpp == 16 ? 2 : 1;
    const uint8_t* bits = fi.GetBits(image);
    uint8_t* rows = bits ? child.rows(w, h, channels, samplebytes) : nullptr;
    if (!rows) return false;
    const int64_t rowbytes = w * channels * samplebytes;
    for (int64_t y = 0; y < h; ++y) {
      const uint8_t* src = bits + (h - 1 - y) * pitch;
      uint8_t* out = rows + y * rowbytes;
      if (channels == 1) {
        std::memcpy(out, src, static_cast<size_t>(rowbytes));
      } else {
        // Blue, green, red (and alpha) on a little-endian machine.
        for (int64_t x = 0; x < w; ++x, src += channels, out += channels) {
          out[0] = src[2], out[1] = src[1], out[2] = src[0];
          if (channels == 4) out[3] = src[3];
        }
      }
    }
    return true;
  });
}

bool freeimagesave(timagefield& f, const utf16& name) {
  if (!freeimage.enabled) return false;
  const std::string path = systempath(name);
  int fif = fi.GetFIFFromFilename(path.c_str());
  if (fif == fifunknown) fif = fiformatbyextension(path);
  if (fif == fifunknown) return false;
  const int64_t bpp = kindbpp(f.kind);
  const int channels = f.kind == imagergba ? 4 : bpp == 24 ? 3 : 1, samplebytes = bpp == 16 ? 2 : 1;
  return isolatedsave(f, name, filabel(f.kind), channels, samplebytes,
                      [&](timagechild&, const tencoderows& in, const std::string& part) {
    const unsigned red = bpp >= 24 ? 0x00FF0000u : 0, green = bpp >= 24 ? 0x0000FF00u : 0, blue = bpp >= 24 ? 0x000000FFu : 0;
    FIBITMAP* image = fi.AllocateT(samplebytes == 2 ? fituint16 : fitbitmap, static_cast<int>(in.w), static_cast<int>(in.h),
                                   static_cast<int>(bpp), red, green, blue);
    if (!image) return false;
    uint8_t* bits = fi.GetBits(image);
    const int64_t pitch = fipitch(in.w, bpp), rowbytes = in.w * channels * samplebytes;
    for (int64_t y = 0; y < in.h; ++y) {
      const uint8_t* c = in.data + y * rowbytes;
      uint8_t* px = bits + (in.h - 1 - y) * pitch;
      if (channels == 1) {
        std::memcpy(px, c, static_cast<size_t>(rowbytes));
        continue;
      }
      for (int64_t x = 0; x < in.w; ++x, c += channels, px += channels) {
        px[0] = c[2], px[1] = c[1], px[2] = c[0];
        if (channels == 4) px[3] = c[3];
      }
    }
    bool ok = fi.Save(fif, image, part.c_str(), 0) != 0;
    if (!ok && fif == fifgif && bpp == 24 && fi.ColorQuantize) {
      if (FIBITMAP* palette = fi.ColorQuantize(image, 0)) ok = fi.Save(fif, palette, part.c_str(), 0) != 0;
    }
    return ok;
  });
}
