// The vector and tensor fields' kind words and release.
#include "field/tensorfield.h"
#include "field/vectorfield.h"

const char* kindword(const tvectorfield& f) {
  switch (f.kind) {
    case vectorfloat: return "float";
    case vectorinteger: return "nat";
    case vectorrgb: return "rgb";
  }
  return nullptr;
}

void fieldrelease(tvectorfield& f) {
  f.real.release();
  f.integer.release();
  f.rgb.release();
}

const char* kindword(const ttensorfield& f) {
  switch (f.kind) {
    case vectorfloat: return "float";
    case vectorinteger: return "nat";
  }
  return nullptr;
}

void fieldrelease(ttensorfield& f) {
  f.diagonal.release();
  f.offdiagonal.release();
  f.intdiagonal.release();
  f.intoffdiagonal.release();
}
