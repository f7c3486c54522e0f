#include "field/imagefield.h"

const char* kindword(const timagefield& f) {
  switch (f.kind) {
    case imagegray: return "gray";
    case imagefullgray: return "fullgray";
    case imagergb: return "rgb";
    case imagergba: return "rgba";
  }
  return nullptr;
}

void fieldrelease(timagefield& f) {
  for (tbyteplane& p : f.channels) p.release();
  f.words.release();
}
