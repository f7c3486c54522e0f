// Arbitrary bytes as the device and foreign volume files: MIF, MIFX, PCR with their data
// files, XML clips, Amira (also as a packed block behind a valid head), VTK, VGL, ARF and
// raw, each read into every storage kind.
#include <cstdint>
#include <string>

#include "formats/volumeformats.h"
#include "fuzzfiles.h"


extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzzquiet(int64_t{32} << 20);
  const std::string base = fuzzbase("fuzz_volumes");
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  // Text headers and their data files share the input: the first half heads, the rest is data.
  const std::string head = bytes.substr(0, size / 2), tail = bytes.substr(size / 2);
  for (const char* ext : {".mif", ".mifx", ".pcr"}) put(base + ext, head);
  for (const char* ext : {".mdf", ".raw", ".vol"}) put(base + ext, tail);
  for (const char* ext : {".xml", ".am", ".vtk", ".arf", ".vgl", ".bin"}) put(base + ext, bytes);
  // The packed Amira blocks behind a head of small sizes taken from the input.
  const auto side = [&](size_t i) { return std::to_string(size > i ? data[i] % 17 : 1); };
  const std::string lattice = "# AmiraMesh BINARY-LITTLE-ENDIAN 2.1\ndefine Lattice " + side(0) + " " + side(1) + " " + side(2);
  put(base + "_r.am", lattice + "\nLattice { byte Data } @1(HxByteRLE,1)\n@1\n" + bytes);
  put(base + "_z.am", lattice + "\nLattice { ushort Data } @1(HxZip,1)\n@1\n" + bytes);
  using treader = bool (*)(tscalarfield&, uint8_t, const utf16&);
  const std::pair<treader, const char*> readers[] = {
      {mifload, ".mif"},    {mifload, ".mifx"},    {pcrload, ".pcr"},   {xmlclipload, ".xml"}, {amiraload, ".am"},
      {amiraload, "_r.am"}, {amiraload, "_z.am"},  {vtkload, ".vtk"},   {vglload, ".vgl"},     {arfload, ".arf"}};
  const char* types[] = {"byte", "signword", "single", "extended", "rgb", "wordrgba", "nibble"};
  for (uint8_t kind : {uint8_t{149}, uint8_t{150}, uint8_t{151}}) {
    for (const auto& [read, ext] : readers) {
      tscalarfield f{};
      if (size > 3) f.filteradd = data[3] % 3;
      read(f, kind, utf16(base + ext));
      fieldrelease(f);
    }
    tscalarfield f{};
    const int64_t side0 = size > 4 ? data[4] % 9 : 1, header = size > 5 ? data[5] : 0;
    rawload(f, kind, utf16(base + ".bin"), header, utf16(types[size > 6 ? data[6] % 7 : 0]), {side0, 3, 2});
    fieldrelease(f);
  }
  return 0;
}
