#include "field/scalarfield.h"

const char* kindword(const tscalarfield& f) {
  switch (f.kind) {
    case scalarmono: return "mono";
    case scalargray: return "gray";
    case scalarfullgray: return "fullgray";
  }
  return nullptr;
}

void fieldrelease(tscalarfield& f) {
  f.mono.release();
  f.gray.release();
  f.full.release();
}
