#include "formats/nifti.h"

#include <zlib.h>
#ifdef VOXMILL_LIBDEFLATE
#include <libdeflate.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "base/filebuffer.h"
#include "field/owned.h"
#include "formats/niftiraw.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

// ---- names -----------------------------------------------------------------------------

struct tvolumenames {
  utf16 header, data;
  bool pair = false;
};

// A pair is named by either of its files, plain or compressed; anything else is one file.
tvolumenames volumenames(const utf16& name) {
  const utf16 ext = lower(fileextension(name));
  const utf16 base = copy(name, 1, length(name) - length(ext) - 1);
  for (const char* gz : {"", ".gz"})
    if (equal(ext, utf16("hdr") + gz) || equal(ext, utf16("img") + gz))
      return {base + ".hdr" + gz, base + ".img" + gz, true};
  return {name, name, false};
}

// ---- reading ---------------------------------------------------------------------------

bool failed(tscalarfield& f, uint8_t kind, const utf16& text) {
  println(text);
  fieldcreate(f, kind);
  return false;
}

// Sizes of a time series in which x, y or z is 1 move down one place.
void repairdims(int64_t (&d)[8]) {
  for (int axis = 1; axis <= 3; ++axis) {
    if (d[4] >= 2 && d[axis] == 1) {
      for (int k = axis; k < 4; ++k) d[k] = d[k + 1];
      d[4] = 1;
      break;
    }
  }
  if (d[4] < 1) d[4] = 1;
}

bool gooddims(const int64_t (&d)[8]) {
  if (d[0] < 3 || d[0] > 7) return false;
  for (int k = 1; k <= d[0]; ++k)
    if (d[k] < 1) return false;
  return true;
}

// The count of volumes that a stack index may choose from.
int64_t stackcount(const int64_t (&d)[8]) {
  int64_t n = d[4];
  for (int k = 5; k <= d[0]; ++k) n = fieldcount(n, d[k]);
  return n;
}

utf16 baddims(const int64_t (&d)[8]) {
  const tnatvector a{d[1], d[2], d[3]}, b{d[5], d[6], d[7]};
  return "  Bad dim size (" + nattext(d[0]) + " " + natlisttext(a, true) + " " + nattext(d[4]) + " " +
         natlisttext(b, true) + ")! Create empty field.";
}

// A field that could not be had keeps the defaults of an empty one.
void takespace(tscalarfield& f, const tniftiheader& h, const utf16& name) {
  if (fieldempty(f)) return;
  f.space = headerspace(h);
  for (const utf16& line : transformationlines(f.space, false)) println(line);
  f.title = name;
}

// The pair's header was read but its data file is missing: a zero field of the header's size.
bool withoutdata(tscalarfield& f, uint8_t kind, const tniftiheader& h, const utf16& data) {
  int64_t d[8];
  for (int k = 0; k < 8; ++k) d[k] = h.dim[k];
  if (d[0] < 3 || d[0] > 7 || d[1] < 1 || d[2] < 1 || d[3] < 1)
    return failed(f, kind, "  Couldn't read File (" + data + ") and bad dim size! Create empty field.");
  println("  Couldn't read File (" + data + ")! Create field without values.");
  fieldcreate(f, kind, {d[1], d[2], d[3]});
  takespace(f, h, data);
  return false;
}

// ---- writing ---------------------------------------------------------------------------

constexpr int64_t writestep = 16777215;  // one write call stays within 32-bit lengths

constexpr int packlevel = 6;  // gzip's own default

// Bytes to a file, deflated on the way for a packed one. With libdeflate a packed file is
// gathered whole and deflated in one call, several times faster than zlib's stream at the
// same level; zlib streams when the room for the whole can't be had.
struct tsink {
  tfile file{};
  bool packed = false;
  bool ok = true;
  z_stream z{};
  std::vector<uint8_t> out;
  tbytelist whole{};  // the gathered bytes of a packed file
  int64_t gathered = 0;
};

bool sinkopen(tsink& s, const utf16& name, bool packed, int64_t bytes) {
  s.packed = packed;
  s.ok = writefile(s.file, name);
#ifdef VOXMILL_LIBDEFLATE
  if (s.ok && packed) {
    s.whole.create(bytes);
    if (s.whole.length == bytes) return true;
    s.whole.release();
  }
#endif
  if (s.ok && packed) {
    s.out.resize(1 << 20);
    s.ok = deflateInit2(&s.z, packlevel, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY) == Z_OK;
  }
  return s.ok;
}

// The gathered bytes deflated whole; false when the room for the result couldn't be had.
bool sinkpackwhole(tsink& s) {
#ifdef VOXMILL_LIBDEFLATE
  libdeflate_compressor* c = libdeflate_alloc_compressor(packlevel);
  if (!c) return false;
  tlocalarray<tbytelist> result;
  tbytelist& packed = *result;
  const size_t bound = libdeflate_gzip_compress_bound(c, static_cast<size_t>(s.gathered));
  packed.create(static_cast<int64_t>(bound));
  size_t made = 0;
  if (packed.length == static_cast<int64_t>(bound))
    made = libdeflate_gzip_compress(c, s.whole.data, static_cast<size_t>(s.gathered), packed.data, bound);
  libdeflate_free_compressor(c);
  for (size_t done = 0; s.ok && done < made;) {
    const size_t step = std::min<size_t>(writestep, made - done);
    s.ok = writeblock(s.file, packed.data + done, step);
    done += step;
  }
  return made > 0;
#else
  return false;
#endif
}

void sinkdeflate(tsink& s, const uint8_t* p, size_t n, int flush) {
  s.z.next_in = const_cast<Bytef*>(p);
  s.z.avail_in = static_cast<uInt>(n);
  int status = Z_OK;
  do {
    s.z.next_out = s.out.data();
    s.z.avail_out = static_cast<uInt>(s.out.size());
    status = deflate(&s.z, flush);
    const size_t made = s.out.size() - s.z.avail_out;
    if (made > 0) s.ok = s.ok && writeblock(s.file, s.out.data(), made);
  } while (s.ok && (s.z.avail_out == 0 || (flush == Z_FINISH && status != Z_STREAM_END)) && status != Z_STREAM_ERROR);
}

void sinkwrite(tsink& s, const uint8_t* p, int64_t n) {
  if (s.whole.length > 0) {
    std::memcpy(s.whole.data + s.gathered, p, static_cast<size_t>(std::min(n, s.whole.length - s.gathered)));
    s.gathered = std::min(s.gathered + n, s.whole.length);
    return;
  }
  for (int64_t done = 0; s.ok && done < n;) {
    const int64_t step = std::min(writestep, n - done);
    if (s.packed)
      sinkdeflate(s, p + done, static_cast<size_t>(step), Z_NO_FLUSH);
    else
      s.ok = writeblock(s.file, p + done, static_cast<size_t>(step));
    done += step;
  }
}

bool sinkclose(tsink& s) {
  if (s.whole.length > 0) {
    if (s.ok && !sinkpackwhole(s)) s.ok = !checkio(s.file.name, io_writeerror);
    s.whole.release();
  } else if (s.packed) {
    if (s.ok) sinkdeflate(s, nullptr, 0, Z_FINISH);
    deflateEnd(&s.z);
  }
  return closefile(s.file) && s.ok;
}

tniftiheader fieldheader(const tscalarfield& f, bool single) {
  tniftiheader h{};
  h.sizeof_hdr = niftisize;
  h.regular = 'r';
  const tnatvector size = fieldsize(f);
  h.dim[0] = 3;
  for (int a = 0; a < 3; ++a) h.dim[a + 1] = static_cast<int16_t>(size[a]);  // cut to 16 bits
  const bool bits = f.kind == scalarmono && single;
  h.datatype = bits ? 1 : f.kind == scalarfullgray ? 512 : 2;
  h.bitpix = bits ? 1 : f.kind == scalarfullgray ? 16 : 8;
  h.pixdim[0] = 1;
  spaceheader(f.space, h);
  h.vox_offset = single ? static_cast<float>(niftidatastart) : 0;
  h.scl_slope = 1;
  h.slice_code = 1;
  h.xyzt_units = 10;  // millimetres and seconds
  h.qform_code = 1;
  h.sform_code = 1;
  std::memcpy(h.magic, single ? "n+1" : "ni1", 4);
  return h;
}

int64_t payloadbytes(const tscalarfield& f, bool single) {
  const tnatvector size = fieldsize(f);
  const int64_t count = fieldcount(size[0], size[1], size[2]);
  return f.kind == scalarfullgray ? count * 2 : f.kind == scalarmono && single ? count / 8 : count;
}

// The voxel bytes, x fastest: gray and fullgray (little-endian) as they lie in memory;
// mono in .nii as its packed store without a last partial byte, in .hdr as a byte per
// voxel's worth of length: the packed store followed by zeroes.
void writevoxels(tsink& s, const tscalarfield& f, bool single) {
  const tnatvector size = fieldsize(f);
  const int64_t count = fieldcount(size[0], size[1], size[2]);
  if (f.kind == scalargray) return sinkwrite(s, f.gray.data, count);
  if (f.kind == scalarfullgray) return sinkwrite(s, f.full.data, count * 2);
  if (single) return sinkwrite(s, f.mono.data, count / 8);
  const int64_t stored = std::min(count, f.mono.bytes());
  sinkwrite(s, f.mono.data, stored);
  const std::vector<uint8_t> zeroes(static_cast<size_t>(std::min(count - stored, writestep)), 0);
  for (int64_t done = stored; s.ok && done < count;) {
    const int64_t step = std::min<int64_t>(count - done, static_cast<int64_t>(zeroes.size()));
    sinkwrite(s, zeroes.data(), step);
    done += step;
  }
}

}  // namespace

utf16 niftiheadername(const utf16& name) { return volumenames(name).header; }
utf16 niftidataname(const utf16& name) { return volumenames(name).data; }

bool niftiload(tscalarfield& f, uint8_t kind, const utf16& name, int64_t stack, int64_t add, int64_t mul) {
  const tvolumenames names = volumenames(name);
  const utf16 unreadable = "  Couldn't read File (" + name + ")! Create empty field.";
  if (!fileexists(names.header)) return failed(f, kind, unreadable);
  tvoxelsource src{};
  tlocalarray<tbytelist> headerbuffer;
  tbytelist& buffer = *headerbuffer;
  const auto finish = [&](bool result) {
    sourceclose(src);
    return result;
  };
  if (!sourceopen(src, names.header)) return finish(failed(f, kind, unreadable));
  const uint8_t* bytes = sourcetake(src, niftisize, buffer);
  if (!bytes) return finish(failed(f, kind, "  Wrong header! Create empty field."));
  tniftiheader h;
  const bool swap = takeheader(h, bytes);
  if (h.sizeof_hdr == nifti2size && kind != scalarfullgray)
    return finish(failed(f, kind, "  Nifti-2 currently not supported! Create empty field."));
  if (h.sizeof_hdr != niftisize) return finish(failed(f, kind, "  Wrong header! Create empty field."));
  int64_t start = 0;
  if (names.pair) {
    sourceclose(src);
    if (!fileexists(names.data)) return finish(withoutdata(f, kind, h, names.data));
    if (!sourceopen(src, names.data))
      return finish(failed(f, kind, "  Couldn't read File (" + names.data + ")! Create empty field."));
  } else {
    start = h.vox_offset > niftidatastart ? roundnat(h.vox_offset) : niftidatastart;
  }

  int64_t d[8];
  for (int k = 0; k < 8; ++k) d[k] = h.dim[k];
  repairdims(d);
  if (stack < 0) stack = d[4] + stack + 1;
  stack = std::max<int64_t>(stack, 1);
  if (!gooddims(d)) return finish(failed(f, kind, baddims(d)));
  if (stack > stackcount(d))
    return finish(failed(f, kind, "  Wrong selected stack " + nattext(stack) + " from [1.." + nattext(d[4]) +
                                      "]! Create empty field."));
  trawvolume r{};
  r.code = niftitypecode(h.bitpix, h.datatype);
  if (r.code == 0)
    return finish(failed(f, kind, kind == scalarfullgray ? "  Bad datatype [" + nattext(h.bitpix) + "|" +
                                                               nattext(h.datatype) + "]! Create empty field."
                                                         : utf16("  Bad dim values! Create empty field.")));
  r.swap = swap;
  r.size = {d[1], d[2], d[3]};
  r.filteradd = add;
  r.filtermul = mul;
  if (r.code >= 1032 && r.code <= 1080) r.calmin = h.cal_min, r.calmax = h.cal_max;

  const int64_t bytesper = voxelbytes(r.code);
  const __int128 volume = static_cast<__int128>(d[1]) * d[2] * d[3];
  const __int128 first = start + static_cast<__int128>(stack - 1) * volume * bytesper;
  if (src.size < first + volume * bytesper) {
    println("  Wrong file size! Header: " + nattext(start) + " +Dim: " + nattext(static_cast<int64_t>(volume)) +
            " *Bytes: " + nattext(bytesper));
    println("  Calculated type (bytes):" +
            realtext(static_cast<double>(src.size - start) / static_cast<double>(volume)));
    fieldcreate(f, kind, r.size);
    takespace(f, h, name);
    return finish(false);
  }
  if (!sourceseek(src, static_cast<int64_t>(first))) return finish(failed(f, kind, unreadable));
  rawread(f, kind, src, r);
  takespace(f, h, name);
  return finish(!fieldempty(f));
}

bool niftisave(const tscalarfield& f, const utf16& name) {
  if (fieldempty(f)) return false;
  const utf16 ext = lower(fileextension(name));
  const bool packed = equalutf8(ext, "nii.gz");
  const bool pair = equalutf8(ext, "hdr");
  const utf16 file = packed || pair || equalutf8(ext, "nii") ? name : name + ".nii";
  const tniftiheader h = fieldheader(f, !pair);
  tsink s{};
  if (!sinkopen(s, file, packed, niftidatastart + payloadbytes(f, true))) return sinkclose(s);
  const uint8_t* header = reinterpret_cast<const uint8_t*>(&h);
  sinkwrite(s, header, niftisize);
  if (pair) {
    if (!sinkclose(s)) return false;
    s = tsink{};
    if (!sinkopen(s, filestem(file) + ".img", false, 0)) return sinkclose(s);
  } else {
    const uint8_t extension[4] = {0, 0, 0, 0};
    sinkwrite(s, extension, 4);
  }
  writevoxels(s, f, !pair);
  return sinkclose(s);
}

bool niftiheaderread(const utf16& name, tniftiheader& h) {
  h = tniftiheader{};
  uint8_t bytes[niftisize];
  if (sourcehead(niftiheadername(name), bytes, niftisize) != niftisize) return false;
  takeheader(h, bytes);
  if (h.sizeof_hdr == niftisize) return true;
  h = tniftiheader{};
  return false;
}
