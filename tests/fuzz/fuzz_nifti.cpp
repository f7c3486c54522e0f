// Arbitrary bytes as NIfTI volumes: the header checks, the size checks and the voxel
// conversion into each kind, as a single file, gzip-compressed and as a .hdr/.img pair.
#include <cstdint>
#include <string>

#include "base/gzip.h"
#include "formats/nifti.h"
#include "formats/niftiheader.h"
#include "fuzzfiles.h"


extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzzquiet(int64_t{256} << 20);
  const std::string base = fuzzbase("fuzz_nifti");
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::string packed;
  gzipcompress(bytes, packed, 1);
  put(base + ".nii", bytes);
  put(base + "_z.nii.gz", packed);
  put(base + "_p.hdr", bytes.substr(0, 348));
  put(base + "_p.img", size > 348 ? bytes.substr(348) : std::string());
  const int64_t stack = size > 0 ? static_cast<int8_t>(data[size - 1]) : 1;
  for (const char* name : {".nii", "_z.nii.gz", "_p.img"}) {
    for (uint8_t kind : {uint8_t{149}, uint8_t{150}, uint8_t{151}}) {
      tscalarfield f{};
      niftiload(f, kind, utf16(base + name), stack, size > 1 ? data[0] % 3 : 0, size > 1 ? int8_t(data[1]) % 4 : 1);
      fieldrelease(f);
    }
  }
  if (size >= 348) {
    tniftiheader h;
    takeheader(h, bytes.data());
    headertext(h);
  }
  return 0;
}
