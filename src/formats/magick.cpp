#include "formats/imagelibs.h"

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

// The wand's last error as one line for the parent to print; false for the caller to pass on.
bool magickerror(timagechild& child, MagickWand* wand) {
  int severity = 0;
  char* text = im.MagickGetException(wand, &severity);
  child.note("Imagemagick error (" + std::to_string(severity) + "): " + (text ? text : ""));
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
  const uint8_t kind = f.kind;
  static const char* const labels[] = {"  Grey (IM) with (", "  Fullgrey (IM) with (", "  RGB (IM) with (",
                                       "  RGBA (IM) with (", "  ZRGB (IM) with ("};
  const int which = kind == imagegray ? 0 : kind == imagefullgray ? 1 : kind == imagergb ? 2 : kind == imagergba ? 3 : 4;
  return isolatedload(f, name, labels[which], [&](timagechild& child) {
    // The wand is not destroyed: the child's end gives all back at once.
    MagickWand* wand = im.NewMagickWand();
    if (!wand) return false;
    if (im.MagickReadImage(wand, path.c_str()) == 0) return magickerror(child, wand);
    const int64_t w = static_cast<int64_t>(im.MagickGetImageWidth(wand)), h = static_cast<int64_t>(im.MagickGetImageHeight(wand));
    const bool full = kind == imagefullgray;
    const int channels = colourkind(kind) ? (kind == imagergba ? 4 : 3) : 1;
    uint8_t* rows = child.rows(w, h, channels, full ? 2 : 1);
    if (!rows) return false;
    // Quantum-free 16-bit samples; fullgray keeps them, the byte kinds their high byte.
    std::vector<uint16_t> samples(static_cast<size_t>(w * channels));
    for (int64_t y = 0; y < h; ++y) {
      if (!im.MagickExportImagePixels(wand, 0, y, static_cast<size_t>(w), 1, immap(kind), shortpixel, samples.data()))
        return magickerror(child, wand);
      if (full)
        std::memcpy(rows + y * w * 2, samples.data(), samples.size() * 2);
      else
        for (size_t i = 0; i < samples.size(); ++i) rows[static_cast<size_t>(y * w * channels) + i] = static_cast<uint8_t>(samples[i] >> 8);
    }
    return true;
  });
}

bool magicksave(timagefield& f, const utf16& name) {
  if (!imagemagick.enabled) return false;
  const bool colour = colourkind(f.kind), full = f.kind == imagefullgray, alpha = f.kind == imagergba;
  const int q = quantumdepth <= 8 ? 0 : quantumdepth <= 16 ? 1 : quantumdepth <= 32 ? 2 : 3;
  static const char* const graylabels[] = {"  Grey (IM:RGB) with (", "  Grey (IM:Fullrgb) with (",
                                           "  Grey (IM:Floatrgb) with (", "  Grey (IM:Doublergb) with ("};
  static const char* const rgblabels[] = {"  RGB (IM)with (", "  RGB (IM:Fullrgba) with (",
                                          "  RGB (IM:Floatrgba) with (", "  RGB (IM:Doublergba) with ("};
  const int channels = colour ? (alpha ? 4 : 3) : 1;
  const uint8_t kind = f.kind;
  return isolatedsave(f, name, colour ? rgblabels[q] : graylabels[q], channels, full ? 2 : 1,
                      [&](timagechild& child, const tencoderows& in, const std::string& part) {
    MagickWand* wand = im.NewMagickWand();
    if (!wand) return false;
    PixelWand* background = im.NewPixelWand();
    im.PixelSetBlack(background, 0);
    im.PixelSetAlpha(background, 1);
    if (im.MagickNewImage(wand, static_cast<size_t>(in.w), static_cast<size_t>(in.h), background) == 0)
      return magickerror(child, wand);
    if (alpha) im.SetImageAlphaChannel(im.GetImageFromMagickWand(wand), activatealpha);
    im.MagickSetImageColorspace(wand, colour ? srgbcolorspace : graycolorspace);
    if (im.MagickImportImagePixels(wand, 0, 0, static_cast<size_t>(in.w), static_cast<size_t>(in.h),
                                   full ? "I" : immap(kind), full ? shortpixel : charpixel, in.data) == 0)
      return magickerror(child, wand);
    im.MagickSetImageType(wand, colour ? (alpha ? truecolormattetype : truecolortype) : grayscaletype);
    im.MagickSetImageDepth(wand, full ? 16 : 8);
    return im.MagickWriteImage(wand, part.c_str()) != 0 || magickerror(child, wand);
  });
}
