// Arbitrary bytes as vector and tensor files: the NIfTI reader of both (single, gzip and
// .hdr/.img pair) into each storage kind, the pair text reader, and the writers on whatever
// small field came out. The first byte picks the kind; the rest is the file.
#include <cstdint>
#include <string>

#include "base/gzip.h"
#include "formats/tensorfile.h"
#include "formats/vectorfile.h"
#include "formats/vectornifti.h"
#include "fuzzfiles.h"

namespace {

// Every array of the kind has the field's size, or the field is empty.
template <class F>
void checkwhole(const F& f) {
  const tnatvector s = fieldsize(f);
  eachstorage(f, [&](const auto& a) {
    if (fieldcount(s[0], s[1], s[2]) > 0 && a.length != fieldcount(s[0], s[1], s[2])) __builtin_trap();
  });
}

template <class F, class Save>
void saveall(const F& f, const std::string& base, Save save) {
  const tnatvector s = fieldsize(f);
  if (fieldcount(s[0], s[1], s[2]) > 4096) return;
  for (const char* ending : {".fld", ".am", ".tessler", ".txt", ".nhdr", ".nrrd"}) save(f, utf16(base + "_out" + ending));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  fuzzquiet(int64_t{256} << 20);
  static const uint8_t kinds[] = {vectorfloat, vectorinteger, vectorrgb, 7};
  const uint8_t kind = kinds[data[0] % 4];
  const std::string base = fuzzbase("fuzz_vectorfiles");
  const std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  std::string packed;
  gzipcompress(bytes, packed, 1);
  put(base + ".nii", bytes);
  put(base + "_z.nii.gz", packed);
  put(base + "_p.hdr", bytes.substr(0, 348));
  put(base + "_p.img", bytes.size() > 348 ? bytes.substr(348) : std::string());
  put(base + ".txt", bytes);
  for (const char* name : {".nii", "_z.nii.gz", "_p.img", ".txt"}) {
    tvectorfield v{};
    vectorload(v, kind, utf16(base + name));
    checkwhole(v);
    saveall(v, base, [](const tvectorfield& f, const utf16& n) { vectorsave(f, n, {1, -2, 0.5}); });
    fieldrelease(v);
    ttensorfield t{};
    tensorload(t, kind, utf16(base + name));
    checkwhole(t);
    saveall(t, base, [](const ttensorfield& f, const utf16& n) { tensorsave(f, n); });
    fieldrelease(t);
  }
  return 0;
}
