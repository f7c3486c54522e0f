#include "formats/imagelibs.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "formats/imagecodec.h"
#include "formats/runtimelib.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

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

}  // namespace

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

namespace {

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

void closemagick() {
  if (imagemagick.available) im.MagickWandTerminus();
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
