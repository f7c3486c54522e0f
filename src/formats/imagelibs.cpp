#include "formats/imagelibs.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <vector>

#include "formats/imagecodec.h"
#include "shell/console.h"
#include "shell/files.h"

timagelibrary freeimage;
timagelibrary imagemagick;

namespace {

// The search: each directory (the bare name last, for the loader's own path), each
// version suffix, each ending; the first library that opens ends it.
void* searchlibrary(const char* base, std::initializer_list<const char*> suffixes, const std::vector<std::string>& endings) {
  for (const char* dir : {"/lib/", "/usr/local/lib/", ""}) {
    for (const char* suffix : suffixes) {
      for (const std::string& ending : endings) {
        const std::string path = std::string(dir) + base + suffix + ending;
        if (void* h = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return h;
      }
    }
  }
  return nullptr;
}

// A routine by its decorated name, else by the plain one between "_" and "@".
template <class P>
bool routine(void* handle, P& out, const char* name) {
  void* p = dlsym(handle, name);
  if (!p && name[0] == '_') {
    std::string plain(name + 1);
    plain = plain.substr(0, plain.find('@'));
    p = dlsym(handle, plain.c_str());
  }
  if (!p) println(std::string("Wrong ProcName: ") + name);
  out = reinterpret_cast<P>(p);
  return p != nullptr;
}

// The libraries' own codecs write warnings to the standard error stream; the program
// reports in its own words, so their chatter is muted for the length of a call.
struct tquiet {
  int saved = -1;
  tquiet() {
    std::fflush(stderr);
    saved = dup(2);
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
      dup2(null, 2);
      close(null);
    }
  }
  ~tquiet() {
    std::fflush(stderr);
    if (saved >= 0) {
      dup2(saved, 2);
      close(saved);
    }
  }
};

// ---- FreeImage ----

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

// ---- ImageMagick ----

struct MagickWand;
struct PixelWand;
struct Image;
enum : int { charpixel = 1, shortpixel = 7, graycolorspace = 2, srgbcolorspace = 13, grayscaletype = 2,
             truecolortype = 6, truecolormattetype = 7, activatealpha = 1 };
struct tmagickapi {
  const char* (*GetMagickVersion)(size_t*) = nullptr;
  char* (*MagickGetException)(const MagickWand*, int*) = nullptr;
  void (*MagickWandGenesis)() = nullptr;
  void (*MagickWandTerminus)() = nullptr;
  const char* (*GetMagickQuantumDepth)(size_t*) = nullptr;
  MagickWand* (*NewMagickWand)() = nullptr;
  MagickWand* (*DestroyMagickWand)(MagickWand*) = nullptr;
  void* (*MagickRelinquishMemory)(void*) = nullptr;
  void (*MagickResetIterator)(MagickWand*) = nullptr;
  int (*MagickReadImage)(MagickWand*, const char*) = nullptr;
  int (*MagickNewImage)(MagickWand*, size_t, size_t, const PixelWand*) = nullptr;
  Image* (*GetImageFromMagickWand)(const MagickWand*) = nullptr;
  int (*MagickWriteImage)(MagickWand*, const char*) = nullptr;
  void* MagickWriteImageBlob = nullptr;
  unsigned char* (*MagickGetImageBlob)(MagickWand*, size_t*) = nullptr;
  size_t (*MagickGetImageHeight)(MagickWand*) = nullptr;
  size_t (*MagickGetImageWidth)(MagickWand*) = nullptr;
  int (*MagickSetImageFormat)(MagickWand*, const char*) = nullptr;
  int (*MagickSetImageColorspace)(MagickWand*, int) = nullptr;
  int (*MagickSetImageType)(MagickWand*, int) = nullptr;
  int (*MagickSetImageDepth)(MagickWand*, size_t) = nullptr;
  int (*MagickSetImageCompressionQuality)(MagickWand*, size_t) = nullptr;
  PixelWand* (*NewPixelWand)() = nullptr;
  void (*PixelSetBlack)(PixelWand*, double) = nullptr;
  void (*PixelSetAlpha)(PixelWand*, double) = nullptr;
  PixelWand* (*DestroyPixelWand)(PixelWand*) = nullptr;
  void* GetAuthenticPixels = nullptr;
  void* SyncAuthenticPixels = nullptr;
  int (*SetImageAlphaChannel)(Image*, int) = nullptr;
  // The pixel transfer of the wand interface, by map and storage type.
  int (*MagickExportImagePixels)(MagickWand*, ptrdiff_t, ptrdiff_t, size_t, size_t, const char*, int, void*) = nullptr;
  int (*MagickImportImagePixels)(MagickWand*, ptrdiff_t, ptrdiff_t, size_t, size_t, const char*, int, const void*) = nullptr;
} im;
size_t quantumdepth = 16;

void openmagick() {
  std::vector<std::string> endings;
  for (int v = 14; v >= 1; --v)
    for (const char* form : {".0.0", ".0", ""}) endings.push_back("so." + std::to_string(v) + form);
  endings.push_back("so.0");
  void* h = searchlibrary("libMagickWand",
                          {"-6.Q16HDRI.", "-6.Q16.", "-6.Q8HDRI.", "-6.Q8.", "-5.Q16HDRI.", "-5.Q16.", "-5.Q8HDRI.",
                           "-5.Q8.", "-4.Q16HDRI.", "-4.Q16.", "-4.Q8HDRI.", "-4.Q8.", "."},
                          endings);
  if (!h) return;
  bool ok = routine(h, im.GetMagickVersion, "GetMagickVersion");
  ok &= routine(h, im.MagickGetException, "MagickGetException");
  ok &= routine(h, im.MagickWandGenesis, "MagickWandGenesis");
  ok &= routine(h, im.MagickWandTerminus, "MagickWandTerminus");
  routine(h, im.GetMagickQuantumDepth, "GetMagickQuantumDepth");
  ok &= routine(h, im.NewMagickWand, "NewMagickWand");
  ok &= routine(h, im.DestroyMagickWand, "DestroyMagickWand");
  ok &= routine(h, im.MagickRelinquishMemory, "MagickRelinquishMemory");
  routine(h, im.MagickResetIterator, "MagickResetIterator");
  ok &= routine(h, im.MagickReadImage, "MagickReadImage");
  ok &= routine(h, im.MagickNewImage, "MagickNewImage");
  ok &= routine(h, im.GetImageFromMagickWand, "GetImageFromMagickWand");
  ok &= routine(h, im.MagickWriteImage, "MagickWriteImage");
  routine(h, im.MagickWriteImageBlob, "MagickWriteImageBlob");
  routine(h, im.MagickGetImageBlob, "MagickGetImageBlob");
  ok &= routine(h, im.MagickGetImageHeight, "MagickGetImageHeight");
  ok &= routine(h, im.MagickGetImageWidth, "MagickGetImageWidth");
  routine(h, im.MagickSetImageFormat, "MagickSetImageFormat");
  ok &= routine(h, im.MagickSetImageColorspace, "MagickSetImageColorspace");
  ok &= routine(h, im.MagickSetImageType, "MagickSetImageType");
  ok &= routine(h, im.MagickSetImageDepth, "MagickSetImageDepth");
  routine(h, im.MagickSetImageCompressionQuality, "MagickSetImageCompressionQuality");
  ok &= routine(h, im.NewPixelWand, "NewPixelWand");
  ok &= routine(h, im.PixelSetBlack, "PixelSetBlack");
  ok &= routine(h, im.PixelSetAlpha, "PixelSetAlpha");
  ok &= routine(h, im.DestroyPixelWand, "DestroyPixelWand");
  routine(h, im.GetAuthenticPixels, "GetAuthenticPixels");
  routine(h, im.SyncAuthenticPixels, "SyncAuthenticPixels");
  ok &= routine(h, im.SetImageAlphaChannel, "SetImageAlphaChannel");
  ok &= routine(h, im.MagickExportImagePixels, "MagickExportImagePixels");
  ok &= routine(h, im.MagickImportImagePixels, "MagickImportImagePixels");
  imagemagick.handle = h;
  if (!ok) return;
  im.MagickWandGenesis();
  size_t number = 0;
  imagemagick.version = im.GetMagickVersion(&number);
  if (im.GetMagickQuantumDepth) im.GetMagickQuantumDepth(&quantumdepth);
  imagemagick.available = imagemagick.enabled = true;
}

// The wand's last error as one line; false for the caller to pass on.
bool magickerror(MagickWand* wand) {
  int severity = 0;
  char* text = im.MagickGetException(wand, &severity);
  println("Imagemagick error (" + std::to_string(severity) + "): " + (text ? text : ""));
  if (text) im.MagickRelinquishMemory(text);
  return false;
}

const char* immap(uint8_t kind) {
  return kind == imagegray || kind == imagefullgray ? "I" : kind == imagergba ? "RGBA" : "RGB";
}

}  // namespace

void imagelibrariesopen() {
  static bool opened = false;
  if (opened) return;
  opened = true;
  openfreeimage();
  openmagick();
}

void imagelibrariesclose() {
  if (freeimage.available) {
    if (fi.DeInitialise)
      fi.DeInitialise();
    else
      println("Freeimage could not be deinitialised!");
  }
  if (imagemagick.available) im.MagickWandTerminus();
  freeimage.available = freeimage.enabled = false;
  imagemagick.available = imagemagick.enabled = false;
}

std::string imagelibrarystatus(const timagelibrary& l) {
  if (!l.available) return std::string();
  return std::string(&l == &freeimage ? "FreeImage (" : "Imagemagick® (") + l.version + ") ready!";
}

void imagelibraryenable(timagelibrary& l, bool on) { l.enabled = on && l.available; }

bool freeimageload(timagefield& f, const utf16& name) {
  if (!freeimage.enabled || !fileexists(name)) return false;
  const std::string path = systempath(name);
  tquiet quiet;
  int fif = fi.GetFileType(path.c_str(), 0);
  if (fif == fifunknown) fif = fi.GetFIFFromFilename(path.c_str());
  if (fif == fifunknown) fif = fiformatbyextension(path);
  if (fif == fifunknown) return false;
  FIBITMAP* dib = fi.Load(fif, path.c_str(), 0);
  if (!dib) return false;
  FIBITMAP* (*convert)(FIBITMAP*) = f.kind == imagegray       ? fi.ConvertToGreyscale
                                    : f.kind == imagefullgray ? fi.ConvertToUINT16
                                    : f.kind == imagergba     ? fi.ConvertTo32Bits
                                                              : fi.ConvertTo24Bits;
  FIBITMAP* image = convert(dib);
  fi.Unload(dib);
  if (!image) return false;
  const int64_t w = fi.GetWidth(image), h = fi.GetHeight(image);
  const uint8_t* bits = fi.GetBits(image);
  bool ok = bits && readsize(f, w, h);
  if (ok) {
    const int64_t bpp = kindbpp(f.kind), pitch = fipitch(w, bpp);
    const int channels = colourkind(f.kind) ? (f.kind == imagergba ? 4 : 3) : 1;
    timageprogress p = progressbegin(filabel(f.kind), w, h);
    std::vector<int64_t> row(static_cast<size_t>(w * channels));
    imagefillrows(f, channels, row.data(), [&](int64_t y, int64_t* out) {
      progressrow(p, y);
      const uint8_t* src = bits + (h - y) * pitch;
      for (int64_t x = 0; x < w; ++x) {
        if (bpp == 8) {
          out[x] = src[x];
        } else if (bpp == 16) {
          uint16_t v;
          std::memcpy(&v, src + 2 * x, 2);
          out[x] = v;
        } else {
          // Blue, green, red (and alpha) on a little-endian machine.
          const uint8_t* px = src + x * (bpp / 8);
          out[x * channels] = px[2], out[x * channels + 1] = px[1], out[x * channels + 2] = px[0];
          if (channels == 4) out[x * 4 + 3] = px[3];
        }
      }
      return true;
    });
    progressdone(p);
    readdone(f, name);
  }
  fi.Unload(image);
  return ok;
}

bool freeimagesave(timagefield& f, const utf16& name) {
  if (!freeimage.enabled) return false;
  const std::string path = systempath(name);
  int fif = fi.GetFIFFromFilename(path.c_str());
  if (fif == fifunknown) fif = fiformatbyextension(path);
  if (fif == fifunknown) return false;
  const int64_t w = imagesizex(f), h = imagesizey(f), bpp = kindbpp(f.kind);
  const bool full = f.kind == imagefullgray;
  const unsigned red = bpp >= 24 ? 0x00FF0000u : 0, green = bpp >= 24 ? 0x0000FF00u : 0, blue = bpp >= 24 ? 0x000000FFu : 0;
  FIBITMAP* image = fi.AllocateT(full ? fituint16 : fitbitmap, static_cast<int>(w), static_cast<int>(h),
                                 static_cast<int>(bpp), red, green, blue);
  if (!image) return false;
  uint8_t* bits = fi.GetBits(image);
  const int64_t pitch = fipitch(w, bpp);
  timageprogress p = progressbegin(filabel(f.kind), w, h);
  if (full) {
    std::vector<uint16_t> row(static_cast<size_t>(w));
    imageemitrows(f, 1, row.data(), [&](int64_t y, const uint16_t* v) {
      std::memcpy(bits + (h - y) * pitch, v, static_cast<size_t>(2 * w));
      return true;
    });
  } else {
    const int channels = static_cast<int>(bpp / 8);
    std::vector<uint8_t> row(static_cast<size_t>(w * channels));
    imageemitrows(f, channels, row.data(), [&](int64_t y, const uint8_t* v) {
      progressrow(p, y);
      uint8_t* out = bits + (h - y) * pitch;
      for (int64_t x = 0; x < w; ++x) {
        const uint8_t* c = v + x * channels;
        uint8_t* px = out + x * channels;
        if (channels == 1) {
          px[0] = c[0];
        } else {
          px[0] = c[2], px[1] = c[1], px[2] = c[0];
          if (channels == 4) px[3] = c[3];
        }
      }
      return true;
    });
  }
  progressdone(p);
  tquiet quiet;
  bool ok = fi.Save(fif, image, path.c_str(), 0) != 0;
  if (!ok && fif == fifgif && bpp == 24 && fi.ColorQuantize) {
    if (FIBITMAP* palette = fi.ColorQuantize(image, 0)) {
      ok = fi.Save(fif, palette, path.c_str(), 0) != 0;
      fi.Unload(palette);
    }
  }
  fi.Unload(image);
  return ok;
}

bool magickload(timagefield& f, const utf16& name) {
  if (!imagemagick.enabled || !fileexists(name)) return false;
  const std::string path = systempath(name);
  tquiet quiet;
  MagickWand* wand = im.NewMagickWand();
  if (!wand) return false;
  bool ok = im.MagickReadImage(wand, path.c_str()) != 0 || magickerror(wand);
  const int64_t w = ok ? static_cast<int64_t>(im.MagickGetImageWidth(wand)) : 0;
  const int64_t h = ok ? static_cast<int64_t>(im.MagickGetImageHeight(wand)) : 0;
  ok = ok && readsize(f, w, h);
  if (ok) {
    const bool full = f.kind == imagefullgray;
    const int channels = colourkind(f.kind) ? (f.kind == imagergba ? 4 : 3) : 1;
    static const char* const labels[] = {"  Grey (IM) with (", "  Fullgrey (IM) with (", "  RGB (IM) with (",
                                         "  RGBA (IM) with (", "  ZRGB (IM) with ("};
    const int which = f.kind == imagegray ? 0 : full ? 1 : f.kind == imagergb ? 2 : f.kind == imagergba ? 3 : 4;
    timageprogress p = progressbegin(labels[which], w, h);
    std::vector<uint16_t> samples(static_cast<size_t>(w * channels));
    std::vector<int64_t> row(samples.size());
    ok = imagefillrows(f, channels, row.data(), [&](int64_t y, int64_t* out) {
      progressrow(p, y);
      if (!im.MagickExportImagePixels(wand, 0, y - 1, static_cast<size_t>(w), 1, immap(f.kind), shortpixel,
                                      samples.data()))
        return magickerror(wand);
      // Quantum-free 16-bit samples; fullgray keeps them, the byte kinds their high byte.
      for (size_t i = 0; i < samples.size(); ++i) out[i] = full ? samples[i] : samples[i] >> 8;
      return true;
    });
    progressdone(p);
    if (ok) readdone(f, name);
  }
  im.DestroyMagickWand(wand);
  return ok;
}

bool magicksave(timagefield& f, const utf16& name) {
  if (!imagemagick.enabled) return false;
  const std::string path = systempath(name);
  const int64_t w = imagesizex(f), h = imagesizey(f);
  const bool colour = colourkind(f.kind), full = f.kind == imagefullgray, alpha = f.kind == imagergba;
  tquiet quiet;
  MagickWand* wand = im.NewMagickWand();
  if (!wand) return false;
  PixelWand* background = im.NewPixelWand();
  im.PixelSetBlack(background, 0);
  im.PixelSetAlpha(background, 1);
  bool ok = im.MagickNewImage(wand, static_cast<size_t>(w), static_cast<size_t>(h), background) != 0 || magickerror(wand);
  im.DestroyPixelWand(background);
  if (ok) {
    const int q = quantumdepth <= 8 ? 0 : quantumdepth <= 16 ? 1 : quantumdepth <= 32 ? 2 : 3;
    static const char* const graylabels[] = {"  Grey (IM:RGB) with (", "  Grey (IM:Fullrgb) with (",
                                             "  Grey (IM:Floatrgb) with (", "  Grey (IM:Doublergb) with ("};
    static const char* const rgblabels[] = {"  RGB (IM)with (", "  RGB (IM:Fullrgba) with (",
                                            "  RGB (IM:Floatrgba) with (", "  RGB (IM:Doublergba) with ("};
    timageprogress p = progressbegin(colour ? rgblabels[q] : graylabels[q], w, h);
    if (alpha) im.SetImageAlphaChannel(im.GetImageFromMagickWand(wand), activatealpha);
    im.MagickSetImageColorspace(wand, colour ? srgbcolorspace : graycolorspace);
    const int channels = colour ? (alpha ? 4 : 3) : 1;
    if (full) {
      std::vector<uint16_t> row(static_cast<size_t>(w));
      ok = imageemitrows(f, 1, row.data(), [&](int64_t y, const uint16_t* v) {
        progressrow(p, y);
        return im.MagickImportImagePixels(wand, 0, y - 1, static_cast<size_t>(w), 1, "I", shortpixel, v) != 0 ||
               magickerror(wand);
      });
    } else {
      std::vector<uint8_t> row(static_cast<size_t>(w * channels));
      ok = imageemitrows(f, channels, row.data(), [&](int64_t y, const uint8_t* v) {
        progressrow(p, y);
        return im.MagickImportImagePixels(wand, 0, y - 1, static_cast<size_t>(w), 1, immap(f.kind), charpixel, v) != 0 ||
               magickerror(wand);
      });
    }
    progressdone(p);
    if (ok) {
      im.MagickSetImageType(wand, colour ? (alpha ? truecolormattetype : truecolortype) : grayscaletype);
      im.MagickSetImageDepth(wand, full ? 16 : 8);
      ok = im.MagickWriteImage(wand, path.c_str()) != 0 || magickerror(wand);
    }
  }
  im.DestroyMagickWand(wand);
  return ok;
}
