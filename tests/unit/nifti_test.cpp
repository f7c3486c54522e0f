#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "field/memory.h"
#include "field/scalarfield.h"
#include "base/gzip.h"
#include "formats/nifti.h"
#include "formats/niftiheader.h"
#include "formats/niftiraw.h"
#include "shell/console.h"

namespace {

std::string text(const utf16& t) { return utf16toutf8(t); }

template <class Work>
std::vector<std::string> printed(Work work) {
  testing::internal::CaptureStdout();
  work();
  std::vector<std::string> lines;
  std::string all = testing::internal::GetCapturedStdout(), line;
  for (const char c : all) {
    if (c == '\n') {
      lines.push_back(line);
      line.clear();
    } else if (c == '\r') {
      line.clear();  // a progress line
    } else {
      line += c;
    }
  }
  return lines;
}

// Tests run side by side in processes of their own: each has its own files.
std::string path(const std::string& name) {
  return testing::TempDir() + "voxmill_nifti_" + testing::UnitTest::GetInstance()->current_test_info()->name() + "_" +
         name;
}

void writebytes(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readbytes(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

tniftiheader header(int datatype, int bitpix, int x, int y, int z) {
  tniftiheader h{};
  h.sizeof_hdr = 348;
  h.dim[0] = 3;
  h.dim[1] = static_cast<int16_t>(x), h.dim[2] = static_cast<int16_t>(y), h.dim[3] = static_cast<int16_t>(z);
  h.datatype = static_cast<int16_t>(datatype);
  h.bitpix = static_cast<int16_t>(bitpix);
  h.pixdim[0] = h.pixdim[1] = h.pixdim[2] = h.pixdim[3] = 1;
  h.vox_offset = 352;
  std::memcpy(h.magic, "n+1", 4);
  return h;
}

template <class T>
std::string payload(const std::vector<T>& values) {
  return std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
}

std::string single(const tniftiheader& h, const std::string& data) {
  return std::string(reinterpret_cast<const char*>(&h), 348) + std::string(4, '\0') + data;
}

// A field that releases itself.
struct tfield {
  tscalarfield f{};
  ~tfield() { fieldrelease(f); }
  std::vector<int64_t> values() const {
    std::vector<int64_t> v;
    const tnatvector s = fieldsize(f);
    for (int64_t z = 1; z <= s[2]; ++z)
      for (int64_t y = 1; y <= s[1]; ++y)
        for (int64_t x = 1; x <= s[0]; ++x) v.push_back(getvalue(f, x, y, z));
    return v;
  }
};

class Nifti : public testing::Test {
 protected:
  void SetUp() override { interactive = false; }
  void TearDown() override { setfieldmemorylimit(0); }

  // Writes a single file of n voxels in a row and loads it; the console lines are kept.
  template <class T>
  std::vector<int64_t> load(int datatype, int bitpix, const std::vector<T>& v, uint8_t kind, int64_t add = 0,
                            int64_t mul = 1, float calmin = 0, float calmax = 0) {
    tniftiheader h = header(datatype, bitpix, static_cast<int>(v.size() * sizeof(T) * 8 / bitpix), 1, 1);
    h.cal_min = calmin, h.cal_max = calmax;
    writebytes(path("t.nii"), single(h, payload(v)));
    lines = printed([&] { niftiload(field.f, kind, utf16(path("t.nii")), 1, add, mul); });
    return field.values();
  }
  std::vector<int64_t> loadfile(const std::string& name, uint8_t kind, int64_t stack = 1) {
    lines = printed([&] { niftiload(field.f, kind, utf16(name), stack, 0, 1); });
    return field.values();
  }
  bool said(const std::string& line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }

  tfield field;
  std::vector<std::string> lines;
};

using V = std::vector<int64_t>;

TEST_F(Nifti, WordColoursOfTheRawReaderAreMeaned) {
  const std::vector<uint16_t> rgb{1000, 2000, 3001, 60000, 60000, 60000};
  writebytes(path("rgb.raw"), payload(rgb));
  for (const auto& [kind, expected] : {std::pair{scalargray, V{255, 255}}, std::pair{scalarfullgray, V{2000, 60000}}}) {
    tvoxelsource src{};
    ASSERT_TRUE(sourceopen(src, utf16(path("rgb.raw")), true));
    trawvolume r{};
    r.code = 3024;
    r.size = {2, 1, 1};
    printed([&] { rawread(field.f, kind, src, r); });
    sourceclose(src);
    EXPECT_EQ(field.values(), expected);
  }
}

TEST_F(Nifti, ExtendedRealsOfTheRawReader) {
  // 1.5, -2 and 100.25 as 80-bit numbers: mantissa with its integer bit, exponent biased by 16383.
  const auto extended = [](double v) {
    int e = 0;
    const double m = std::frexp(std::fabs(v), &e);
    const auto mantissa = static_cast<uint64_t>(std::ldexp(m, 64));
    std::string b(10, '\0');
    std::memcpy(b.data(), &mantissa, 8);
    const int biased = e - 1 + 16383 + (v < 0 ? 0x8000 : 0);
    b[8] = static_cast<char>(biased & 0xFF), b[9] = static_cast<char>(biased >> 8);
    return b;
  };
  writebytes(path("ext.raw"), extended(1.5) + extended(-2) + extended(100.25));
  tvoxelsource src{};
  ASSERT_TRUE(sourceopen(src, utf16(path("ext.raw")), true));
  trawvolume r{};
  r.code = 1080;
  r.size = {3, 1, 1};
  r.filteradd = 1;
  printed([&] { rawread(field.f, scalargray, src, r); });
  sourceclose(src);
  EXPECT_EQ(field.values(), (V{2, 0, 101}));
}

TEST_F(Nifti, DataStartsAtByte352OrAtALargerVoxOffset) {
  tniftiheader h = header(2, 8, 2, 1, 1);
  h.vox_offset = 0;
  writebytes(path("v0.nii"), single(h, "\x05\x06"));
  EXPECT_EQ(loadfile(path("v0.nii"), scalargray), (V{5, 6}));
  h.vox_offset = 400.4F;
  writebytes(path("v400.nii"), single(h, std::string(48, '\x01') + "\x07\x08"));
  EXPECT_EQ(loadfile(path("v400.nii"), scalargray), (V{7, 8}));
}

TEST_F(Nifti, PackedVolumesOfAnyStackAndOffsetArriveWhole) {
  // The voxels of the field's own type are handed over from the inflated bytes, others converted.
  tniftiheader h = header(512, 16, 2, 2, 2);
  h.dim[0] = 4, h.dim[4] = 2;
  h.vox_offset = 400;
  const std::vector<uint16_t> first(8, 7), second{1, 2, 300, 65535, 256, 511, 0, 4};
  std::string packed;
  ASSERT_TRUE(gzipcompress(single(h, std::string(48, '\x01') + payload(first) + payload(second)), packed));
  writebytes(path("s.nii.gz"), packed);
  EXPECT_EQ(loadfile(path("s.nii.gz"), scalarfullgray, 2), (V{1, 2, 300, 65535, 256, 511, 0, 4}));
  EXPECT_EQ(loadfile(path("s.nii.gz"), scalargray, 2), (V{0, 0, 1, 255, 1, 1, 0, 0}));
  ASSERT_TRUE(gzipcompress(single(header(2, 8, 3, 1, 1), "\x05\x06\x07"), packed));
  writebytes(path("b.nii.gz"), packed);
  EXPECT_EQ(loadfile(path("b.nii.gz"), scalargray), (V{5, 6, 7}));
}

// Short, missing, corrupt and absurd files, bad dims and types: the scalars bad-input macro.
TEST_F(Nifti, BadHeadersGiveOneLineAndAnEmptyField) {
  const std::string data(64, '\x01');
  struct tcase {
    std::string name;
    std::string bytes;
    uint8_t kind;
    std::string line;
  };
  std::vector<tcase> cases;
  tniftiheader h = header(2, 8, 4, 4, 4);
  h.sizeof_hdr = 540;
  cases.push_back({"n2.nii", single(h, data), scalargray, "  Nifti-2 currently not supported! Create empty field."});
  cases.push_back({"n2f.nii", single(h, data), scalarfullgray, "  Wrong header! Create empty field."});
  h = header(2, 8, 4, 4, 4);
  h.dim[0] = 9;
  cases.push_back({"dim0.nii", single(h, data), scalargray, "  Bad dim size (9 <4, 4, 4> 1 <0, 0, 0>)! Create empty field."});
  h = header(1, 1, 4, 4, 4);
  cases.push_back({"bits.nii", single(h, data), scalarmono, "  Bad dim values! Create empty field."});
  for (const tcase& c : cases) {
    writebytes(path(c.name), c.bytes);
    setvalue(field.f, 1, 1, 1, 1);
    EXPECT_TRUE(loadfile(path(c.name), c.kind).empty()) << c.name;
    EXPECT_EQ(field.f.kind, c.kind) << c.name;
    ASSERT_FALSE(lines.empty()) << c.name;
    EXPECT_EQ(lines.back(), c.line) << c.name;
    EXPECT_EQ(lines.size(), 2u) << c.name << ": the read line and the message";
  }
}

TEST_F(Nifti, ShortDataGivesAZeroFieldOfTheClaimedSize) {
  tniftiheader h = header(512, 16, 4, 2, 1);
  h.vox_offset = 1e9F;
  writebytes(path("past.nii"), single(h, std::string(16, '\x01')));
  EXPECT_EQ(loadfile(path("past.nii"), scalarfullgray), V(8, 0));
  EXPECT_TRUE(said("  Wrong file size! Header: 1000000000 +Dim: 8 *Bytes: 2"));

  h = header(512, 16, 4, 2, 1);
  writebytes(path("short.nii"), single(h, std::string(10, '\x01')));
  EXPECT_EQ(loadfile(path("short.nii"), scalarfullgray), V(8, 0));
  EXPECT_TRUE(said("  Calculated type (bytes):1.25"));
}

// The third quaternion axis scaled by qform_code instead of qfac: nifti_clients.py.

// The quaternion written is taken from the product of the diagonal, not the trace, and
// without dividing the voxel size out: it matches the published formula only for unit
// voxels without rotation.
TEST_F(Nifti, DeviationWrittenQuaternionUsesTheDiagonalProduct) {
  EXPECT_EQ(headerquaternion(identityrows()), (tvector{0, 0, 0}));
  const tvector q = headerquaternion({tvector{0, 1, 0}, tvector{-1, 0, 0}, tvector{0, 0, 1}});
  EXPECT_EQ(q, (tvector{0, 0, 1})) << "the published value is d = sqrt(0.5)";
  EXPECT_EQ(headerquaternion({tvector{-1, 0, 0}, tvector{0, 1, 0}, tvector{0, 0, 1}}), (tvector{1, 0, 0}))
      << "h = 0";
  EXPECT_EQ(headerquaternion({tvector{2, 0, 0}, tvector{0, 2, 0}, tvector{0, 0, 2}}), (tvector{0, 0, 0}));
}

// The mono payload is the packed bit store: in ".nii" (datatype 1, bitpix 1) the whole
// bytes of it, which this program's own reader refuses; in ".hdr" a byte per voxel's
// length beginning with the store, the rest zero.
TEST_F(Nifti, DeviationMonoPayloadIsThePackedStore) {
  tfield mono;
  fieldcreate(mono.f, scalarmono, {5, 2, 2});  // 20 voxels: two whole bytes and four bits
  for (int64_t x = 1; x <= 5; ++x) setvalue(mono.f, x, 1, 1, x % 2);
  setvalue(mono.f, 5, 2, 2, 1);
  printed([&] {
    niftisave(mono.f, utf16(path("m.nii")));
    niftisave(mono.f, utf16(path("m.hdr")));
  });
  const std::string nii = readbytes(path("m.nii"));
  ASSERT_EQ(nii.size(), 352u + 2u);
  tniftiheader h;
  takeheader(h, nii.data());
  EXPECT_EQ(h.datatype, 1);
  EXPECT_EQ(h.bitpix, 1);
  EXPECT_EQ(static_cast<uint8_t>(nii[352]), 0x15) << "voxels 1, 3, 5 set, lowest bit first";
  EXPECT_TRUE(loadfile(path("m.nii"), scalarmono).empty());
  EXPECT_EQ(lines.back(), "  Bad dim values! Create empty field.");

  const std::string img = readbytes(path("m.img"));
  ASSERT_EQ(img.size(), 20u);
  EXPECT_EQ(img.substr(0, 3), std::string("\x15\x00\x08", 3)) << "voxel 20 is bit 3 of byte 3";
  EXPECT_EQ(img.substr(3), std::string(17, '\0'));
}

TEST_F(Nifti, TransformationLineSplitsBeyondSeventyCharacters) {
  tspatial s{};
  EXPECT_EQ(transformationlines(s, true).size(), 1u);
  setmatrix(s, {tvector{0.123456, 0, 0}, tvector{0, 0.5, 0.25}, tvector{0, -0.25, 0.5}});
  setoffset(s, {-100.5, 20, 3.75});
  const std::vector<utf16> lines = transformationlines(s, true);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(text(lines[0]), "  Transformation: <0.123456, 0, 0>");
  EXPECT_EQ(text(lines[1]), "                   <0, 0.5, 0.25>");
  EXPECT_EQ(text(lines[3]), "                + <-100.5, 20, 3.75>");
  EXPECT_EQ(transformationlines(s, false).size(), 1u);
}

TEST_F(Nifti, HeaderTextNamesTypesUnitsAndWrongSizes) {
  tniftiheader h = header(512, 16, 4, 5, 6);
  h.xyzt_units = 10;
  h.intent_code = 1002;
  const std::vector<utf16> t = headertext(h);
  const auto has = [&](const std::string& line) {
    return std::any_of(t.begin(), t.end(), [&](const utf16& l) { return text(l) == line; });
  };
  EXPECT_EQ(text(t[0]), "Nifti header of one file - NII Version 1");
  EXPECT_TRUE(has("Data array dimensions (16 bits & UINT16 (512) data type)."));
  EXPECT_TRUE(has("  Dim[3] = 6"));
  EXPECT_TRUE(has("  Pixdim[1] = 1 mm or sec"));
  EXPECT_TRUE(has("Data (UINT16 Meaning: LABEL - 0 0 0"));
  EXPECT_TRUE(has("  Data offset: 352"));
  EXPECT_STREQ(datatypename(2), "INT8");
  h.sizeof_hdr = 540;
  std::memset(h.magic, 0, 4);
  const std::vector<utf16> bad = headertext(h);
  EXPECT_EQ(text(bad[0]), "Nifti header - HDR");
  EXPECT_EQ(text(bad.back()), "Error (Header size = 540)! Not a nifti 1 file format!");
}

}  // namespace
