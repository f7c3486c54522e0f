#include "formats/imagelibs.h"

#include "shell/console.h"

timagelibrary freeimage;
timagelibrary imagemagick;

void imagelibrariesopen() {
  static bool opened = false;
  if (opened) return;
  opened = true;
  openfreeimage();
  openmagick();
}

void imagelibrariesclose() {
  closefreeimage();
  closemagick();
  freeimage.available = freeimage.enabled = false;
  imagemagick.available = imagemagick.enabled = false;
}

std::string imagelibrarystatus(const timagelibrary& l) {
  if (!l.available) return std::string();
  return std::string(&l == &freeimage ? "FreeImage (" : "Imagemagick® (") + l.version + ") ready!";
}

void imagelibraryenable(timagelibrary& l, bool on) { l.enabled = on && l.available; }
