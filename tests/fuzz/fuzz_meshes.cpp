// Arbitrary bytes as mesh files under every reader's extension, plain and gzip-compressed:
// header counts against the file's size, face counts, indices and numbers; what was read
// then goes through the writers that check every index.
#include <cstdint>
#include <string>

#include "base/gzip.h"
#include "formats/meshfile.h"
#include "fuzzfiles.h"


extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzzquiet(int64_t{256} << 20);
  const std::string base = fuzzbase("fuzz_meshes");
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::string packed;
  gzipcompress(bytes, packed, 1);
  for (const char* ext : {"obj", "ply", "stl", "dxf", "wrl", "iv", "pov", "anysurf", "asc", "csv"}) {
    const std::string name = base + "." + ext;
    for (const std::string* content : {&bytes, static_cast<const std::string*>(&packed)}) {
      put(name, *content);
      tmesh m{};
      fieldcreate(m);
      if (meshload(m, utf16(name))) {
        meshsave(m, utf16(base + "_out.ply"));
        meshsave(m, utf16(base + "_out.obj"));
      }
      fieldrelease(m);
    }
    unlink(name.c_str());
  }
  unlink((base + "_out.ply").c_str());
  unlink((base + "_out.obj").c_str());
  return 0;
}
