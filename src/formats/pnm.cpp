#include "formats/pnm.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "formats/imagecodec.h"
#include "shell/console.h"

namespace {

// Header tokens: runs of characters above 32, "#" to the line's end is a comment, and a
// token never crosses a line end.
struct tpnmtokens {
  tbytereader r;

  bool next(std::string& token) {
    token.clear();
    while (r.at < r.size) {
      const uint8_t c = r.data[r.at];
      if (c == '#') {
        while (r.at < r.size && r.data[r.at] != '\n' && r.data[r.at] != '\r') ++r.at;
      } else if (c <= 32) {
        ++r.at;
      } else {
        break;
      }
    }
    while (r.at < r.size && r.data[r.at] > 32) token.push_back(static_cast<char>(r.data[r.at++]));
    return !token.empty();
  }
  // A number token; its digits count, anything else in it is passed over.
  bool number(int64_t& v) {
    std::string token;
    if (!next(token)) return false;
    v = 0;
    bool any = false;
    for (const char c : token) {
      if (c < '0' || c > '9') continue;
      any = true;
      v = v > 100000000000000LL ? v : v * 10 + (c - '0');
    }
    if (!any) return false;
    if (token[0] == '-') v = -v;
    return true;
  }
  // The one blank between the header and binary data.
  void endheader() {
    if (r.at < r.size) ++r.at;
  }
};

struct tpnmheader {
  int64_t magic = 0;  // the digits of the first token
  std::string magictext;
  int64_t w = 0, h = 0, maxval = 255, depth = 0;
};

// P7: WIDTH, HEIGHT, DEPTH, MAXVAL up to ENDHDR; the data begin behind its line end.
bool pamheader(tpnmtokens& t, tpnmheader& head) {
  std::string key;
  while (t.next(key)) {
    int64_t v = 0;
    if (key == "ENDHDR") {
      while (t.r.at < t.r.size && t.r.data[t.r.at] != '\n') ++t.r.at;
      t.endheader();
      return true;
    }
    if (key == "TUPLTYPE") {
      while (t.r.at < t.r.size && t.r.data[t.r.at] != '\n' && t.r.data[t.r.at] != '\r') ++t.r.at;
      continue;
    }
    if (!t.number(v)) return false;
    if (key == "WIDTH") head.w = v;
    if (key == "HEIGHT") head.h = v;
    if (key == "DEPTH") head.depth = v;
    if (key == "MAXVAL") head.maxval = v;
  }
  return false;
}

void readmagic(tpnmtokens& t, tpnmheader& head) {
  t.next(head.magictext);
  for (const char c : head.magictext)
    if (c >= '0' && c <= '9') head.magic = std::min<int64_t>(head.magic * 10 + (c - '0'), 1000);
}

// A magic the kind's reader knows: the numbers of gray, the texts of colour.
bool knownmagic(const timagefield& f, const tpnmheader& head) {
  if (colourkind(f.kind)) {
    for (const char* m : {"P2", "P3", "P5", "P6", "P7"})
      if (head.magictext == m) return true;
    return false;
  }
  return head.magic == 1 || head.magic == 2 || head.magic == 3 || head.magic == 5 || head.magic == 6;
}

bool readheader(tpnmtokens& t, tpnmheader& head) {
  if (head.magic == 7) return pamheader(t, head);
  if (!t.number(head.w) || !t.number(head.h)) return false;
  if (head.magic != 1 && head.magic != 4 && !t.number(head.maxval)) return false;
  if (head.magic == 1 || head.magic == 4) head.maxval = 1;
  t.endheader();
  return true;
}

// Samples of the data part, text or binary, 8 or 16 bit (big-endian as netpbm has them).
struct tsamples {
  tpnmtokens& t;
  bool text;
  bool wide;
  bool bits;  // P1: one digit a sample, blanks optional

  bool get(int64_t& v) {
    if (bits) {
      while (t.r.at < t.r.size) {
        const uint8_t c = t.r.data[t.r.at++];
        if (c == '#') {
          while (t.r.at < t.r.size && t.r.data[t.r.at] != '\n' && t.r.data[t.r.at] != '\r') ++t.r.at;
        } else if (c == '0' || c == '1') {
          v = c - '0';
          return true;
        }
      }
      return false;
    }
    if (text) return t.number(v);
    uint32_t u;
    if (!wide) {
      if (!t.r.u8(u)) return false;
      v = u;
      return true;
    }
    uint32_t hi, lo;
    if (!t.r.u8(hi) || !t.r.u8(lo)) return false;
    v = hi << 8 | lo;
    return true;
  }
};

// The least bytes the data of so many samples take: the guard against headers that
// claim more than the file holds.
int64_t leastbytes(int64_t samples, bool text, bool wide) {
  if (text) return samples;
  return wide ? samples * 2 : samples;
}

bool enough(const tpnmtokens& t, int64_t w, int64_t h, int64_t channels, bool text, bool wide) {
  const int64_t samples = fieldcount(w, h, channels);
  return samples <= t.r.left() && leastbytes(samples, text, wide) <= t.r.left();
}

// Into gray or fullgray: the rule of each magic number, with maxval > 255 adding 10.
bool readscalar(timagefield& f, tpnmtokens& t, tpnmheader& head, int64_t size) {
  const bool full = f.kind == imagefullgray;
  const int64_t top = full ? 65535 : 255;
  int64_t n = head.magic;
  if (head.maxval > 255) n += 10;
  // A maxval of 0 holds no value at all.
  if (head.maxval < 1) return readfailed(f, "  Bad value Depth (" + nattext(head.maxval) + ") max = " + (full ? "65535." : "255."));
  if (full && head.maxval > 65535) {
    return readfailed(f, "  Bad value Depth (" + nattext(head.maxval) + ") max = 65535.");
  }
  const char* label = nullptr;
  int channels = 1;
  switch (n) {
    case 1: label = full ? "  Fullgrey (Mono) with (" : "  Grey (Mono) with ("; break;
    case 2: case 5: label = full ? "  Fullgrey (Grey) with (" : "  Grey with ("; break;
    case 3: case 6: label = full ? "  Fullgrey (RGB) with (" : "  Grey (RGB) with ("; channels = 3; break;
    case 12: case 15: label = full ? "  Fullgrey with (" : "  Grey (Fullgrey) with ("; break;
    case 13: case 16: label = full ? "  Fullgrey (RGB) with (" : "  Grey (Fullrgb) with ("; channels = 3; break;
    default: return readfailed(f, "  Bad Magic Identifier (" + nattext(n) + ")!");
  }
  const bool text = n == 1 || n == 2 || n == 3 || n == 12 || n == 13;
  const bool wide = n >= 15;
  if (!enough(t, head.w, head.h, channels, text, wide)) return truncated(f, size);
  if (!readsize(f, head.w, head.h)) return false;
  timageprogress p = progressbegin(label, head.w, head.h);
  const int64_t w = head.w;
  bool ok;
  if (n == 5 && !full) {
    // The whole block at once, as it lies.
    const uint8_t* block;
    ok = t.r.take(w * head.h, block);
    if (ok) std::memcpy(f.channels[0].data, block, static_cast<size_t>(w * head.h));
  } else if (n == 15 && full) {
    // Two bytes a pixel taken as they lie: low byte first.
    const uint8_t* block;
    ok = t.r.take(w * head.h * 2, block);
    if (ok)
      for (int64_t i = 0; i < w * head.h; ++i) f.words.items()[i] = static_cast<uint16_t>(block[2 * i] | block[2 * i + 1] << 8);
  } else {
    std::vector<int64_t> row(static_cast<size_t>(w));
    tsamples s{t, text, wide, n == 1};
    const int64_t rowbytes = w * channels * (wide ? 2 : 1), start = t.r.at;
    ok = imagefillrows(f, 1, row.data(), [&](int64_t y, int64_t* out) {
      progressrow(p, y);
      const uint8_t* src = t.r.data + start + (y - 1) * rowbytes;  // binary data: checked whole above
      int64_t c[3];
      for (int64_t x = 0; x < w; ++x) {
        if (text) {
          for (int i = 0; i < channels; ++i)
            if (!s.get(c[i])) return false;
        } else {
          for (int i = 0; i < channels; ++i, src += wide ? 2 : 1) c[i] = wide ? src[0] << 8 | src[1] : src[0];
        }
        int64_t v = c[0];
        switch (n) {
          case 1: v = 1 - c[0]; break;
          case 3: v = (c[0] + c[1] + c[2]) / 3; break;
          // Clamped first, then averaged: bright colours end at a third of the range.
          case 6: v = clampto(c[0] + c[1] + c[2], top) / 3; break;
          case 16:
            v = full ? clampto(c[0] + c[1] + c[2], top) / 3 : clampto((c[0] >> 8) + (c[1] >> 8) + (c[2] >> 8), 255) / 3;
            break;
          case 12: v = full ? c[0] : c[0] / 256; break;
          case 13: v = full ? (c[0] + c[1] + c[2]) / 3 : (c[0] + c[1] + c[2]) / 3 / 256; break;
          case 15: v = c[0] >> 8; break;
        }
        out[x] = clampto(v, top);
      }
      return true;
    });
  }
  progressdone(p);
  if (!ok) return truncated(f, size);
  return true;
}

// Into rgb, rgba and zrgb: the magic compared as text; P7 brings its own depth.
bool readcolour(timagefield& f, tpnmtokens& t, tpnmheader& head, int64_t size) {
  const std::string& m = head.magictext;
  const bool pam = m == "P7";
  if (m != "P2" && m != "P3" && m != "P5" && m != "P6" && !pam)
    return readfailed(f, "  Bad Magic Identifier (" + utf16fromutf8(m) + ")!");
  if (head.maxval > 255 || head.maxval < 1)
    return readfailed(f, "  Bad value Depth (" + nattext(head.maxval) + ") max = 255.");
  const bool text = m == "P2" || m == "P3";
  int64_t depth = m == "P2" || m == "P5" ? 1 : 3;
  if (pam) depth = head.depth;
  if (depth < 1 || depth > 4) return readfailed(f, "  Bad Magic Identifier (" + utf16fromutf8(m) + ")!");
  if (!enough(t, head.w, head.h, depth, text, false)) return truncated(f, size);
  if (!readsize(f, head.w, head.h)) return false;
  const char* label = depth < 3 ? (text ? " RGB (Grey) with (" : "  RGB (Grey) with (")
                                : (depth == 4 ? "  RGBA with (" : "  RGB with (");
  timageprogress p = progressbegin(label, head.w, head.h);
  // Gray and gray with alpha widen to colour; the file's own samples go through as they are.
  const int channels = depth == 2 ? 4 : static_cast<int>(depth == 1 ? 1 : depth);
  const int64_t start = t.r.at;
  if (!text && depth != 2) {
    // Binary rows are the planes' samples as they are.
    std::vector<uint8_t> bytes(static_cast<size_t>(head.w * depth));
    imagefillrows(f, channels, bytes.data(), [&](int64_t y, uint8_t* out) {
      progressrow(p, y);
      std::memcpy(out, t.r.data + start + (y - 1) * head.w * depth, bytes.size());
      return true;
    });
    progressdone(p);
    return true;
  }
  std::vector<int64_t> row(static_cast<size_t>(head.w * channels));
  tsamples s{t, text, false, false};
  const bool ok = imagefillrows(f, channels, row.data(), [&](int64_t y, int64_t* out) {
    progressrow(p, y);
    const uint8_t* src = t.r.data + start + (y - 1) * head.w * depth;  // binary data: checked whole above
    for (int64_t x = 0; x < head.w; ++x) {
      int64_t c[4] = {0, 0, 0, 255};
      for (int i = 0; i < depth; ++i)
        if (!text) c[i] = *src++;
        else if (!s.get(c[i])) return false;
      if (depth == 2) c[3] = c[1], c[1] = c[2] = c[0];
      for (int i = 0; i < channels; ++i) out[x * channels + i] = c[i];
    }
    return true;
  });
  progressdone(p);
  if (!ok) return truncated(f, size);
  return true;
}

// Binary 8-bit gray (P5) into gray and colour (P6) into the colour kinds go from the file
// straight into the planes, with no whole-file buffer between. false: the file is not of this
// kind (or its header reaches beyond the first block), and the general path reads it.
bool directbinary(timagefield& f, const utf16& name, bool& ok) {
  const bool gray = f.kind == imagegray;
  if (!(gray || f.kind == imagergb || f.kind == imagergba || f.kind == imagezrgb) || gzipextension(name) || !fileexists(name))
    return false;
  tfile file;
  if (!readfile(file, name, true)) return false;
  uint8_t first[4096];
  size_t got = 0;
  readblock(file, first, sizeof first, &got);
  tpnmtokens t{{first, static_cast<int64_t>(got), 0}};
  tpnmheader head;
  readmagic(t, head);
  if (head.magictext != (gray ? "P5" : "P6") || !readheader(t, head) || t.r.at >= static_cast<int64_t>(got) ||
      head.maxval < 1 || head.maxval > 255 || head.w < 1 || head.h < 1) {
    closefile(file);
    return false;
  }
  const int depth = gray ? 1 : 3;
  const int64_t size = filesize(name);
  if (fieldcount(head.w, head.h, depth) > size - t.r.at || !readsize(f, head.w, head.h)) {
    closefile(file);
    ok = fieldcount(head.w, head.h, depth) > size - t.r.at ? truncated(f, size) : false;
    return true;
  }
  timageprogress p = progressbegin(gray ? "  Grey with (" : "  RGB with (", head.w, head.h);
  // The rest of the first block, then the file; single reads stay below the 32-bit limit
  // of the file layer.
  int64_t held = static_cast<int64_t>(got) - t.r.at;
  auto take = [&](uint8_t* to, int64_t n) {
    const int64_t early = std::min(n, held);
    std::memcpy(to, first + t.r.at, static_cast<size_t>(early));
    t.r.at += early, held -= early;
    for (int64_t done = early; done < n;) {
      size_t r = 0;
      readblock(file, to + done, static_cast<size_t>(std::min<int64_t>(8388608, n - done)), &r);
      if (r == 0) return false;
      done += static_cast<int64_t>(r);
    }
    return true;
  };
  std::vector<uint8_t> row(static_cast<size_t>(gray ? 0 : head.w * depth));
  const bool whole = gray ? take(f.channels[0].data, head.w * head.h)
                          : imagefillrows(f, depth, row.data(), [&](int64_t, uint8_t* out) { return take(out, head.w * depth); });
  closefile(file);
  progressdone(p);
  ok = whole ? readdone(f, name) : truncated(f, size);
  return true;
}

}  // namespace

bool pnmread(timagefield& f, const utf16& name) {
  if (bool ok; directbinary(f, name, ok)) return ok;
  tfilebuffer b;
  if (!imagefileread(name, b)) {
    bufferrelease(b);
    return readfailed(f, utf16());
  }
  tpnmtokens t{bytereader(b)};
  tpnmheader head;
  readmagic(t, head);
  bool ok;
  if (!knownmagic(f, head)) {
    ok = readfailed(f, "  Bad Magic Identifier (" +
                           (colourkind(f.kind) ? utf16fromutf8(head.magictext) : nattext(head.magic)) + ")!");
  } else if (!readheader(t, head)) {
    ok = truncated(f, b.size);
  } else if (head.w < 1 || head.h < 1) {
    ok = readfailed(f, utf16());
  } else {
    ok = colourkind(f.kind) ? readcolour(f, t, head, b.size) : readscalar(f, t, head, b.size);
  }
  bufferrelease(b);
  return ok && readdone(f, name);
}

namespace {

utf16 formextension(tpnmform form, bool packed) {
  const char* ext[] = {".pgm", ".ppm", ".pbm", ".pam"};
  return utf16(ext[static_cast<int>(form)]) + (packed ? ".gz" : "");
}

// PBM: a bit set where the gray is below 128, rows padded to whole bytes. The length
// written is the program's own formula, which cuts or extends the packed rows' tail.
std::string pbmdata(const timagefield& f, int64_t w, int64_t h) {
  const int64_t rowbytes = (w + 7) / 8;
  const int64_t written = (w - 1) % 8 == 0 ? (w * h) / 8 : ((w + 1) * h) / 8;
  std::string bits(static_cast<size_t>(std::max(rowbytes * h, written)), '\0');
  std::vector<uint8_t> row(static_cast<size_t>(w));
  imageemitrows(f, 1, row.data(), [&](int64_t y, const uint8_t* g) {
    char* out = bits.data() + (y - 1) * rowbytes;
    for (int64_t x = 0; x < w; ++x)
      if (g[x] < 128) out[x >> 3] = static_cast<char>(out[x >> 3] | (0x80 >> (x & 7)));
    return true;
  });
  bits.resize(static_cast<size_t>(written));
  return bits;
}

}  // namespace

bool pnmwrite(timagefield& f, const utf16& given, tpnmform form) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  const utf16 name = writername(given, formextension(form, gzipextension(given)));
  const bool full = f.kind == imagefullgray && form == tpnmform::pgm;
  const bool alpha = f.kind == imagergba && form == tpnmform::pam;
  std::string head;
  const char* label = "  RGB with (";
  switch (form) {
    case tpnmform::pgm: head = "P5\n"; label = full ? " Fullgray with (" : "  Grey with ("; break;
    case tpnmform::ppm: head = "P6\n"; break;
    case tpnmform::pbm: head = "P4\n"; label = "  Monochrome with ("; break;
    case tpnmform::pam: head = "P7\n"; break;
  }
  head += "#" + utf16toutf8(name) + "\n";
  if (form == tpnmform::pam) {
    head += "WIDTH " + std::to_string(w) + "\nHEIGHT " + std::to_string(h) + "\nDEPTH " + (alpha ? "4" : "3") +
            "\nMAXVAL 255 \nTUPLTYPE " + (alpha ? "RGB_ALPHA  " : "RGB  ") + "\nENDHDR\n";
  } else {
    head += std::to_string(w) + " " + std::to_string(h) + "\n";
    if (form != tpnmform::pbm) head += full ? "65535\n" : "255\n";
  }
  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  timageprogress p = progressbegin(label, w, h);
  sinkwrite(sink, head);
  if (form == tpnmform::pbm) {
    sinkwrite(sink, pbmdata(f, w, h));
  } else if (full) {
    // Words as they lie in memory: low byte first.
    std::vector<uint16_t> row(static_cast<size_t>(w));
    std::string bytes;
    imageemitrows(f, 1, row.data(), [&](int64_t y, const uint16_t* v) {
      progressrow(p, y);
      bytes.clear();
      for (int64_t x = 0; x < w; ++x) putle16(bytes, v[x]);
      return sinkwrite(sink, bytes);
    });
  } else {
    const int channels = form == tpnmform::pgm ? 1 : alpha ? 4 : 3;
    std::vector<uint8_t> row(static_cast<size_t>(w * channels));
    imageemitrows(f, channels, row.data(), [&](int64_t y, const uint8_t* data) {
      progressrow(p, y);
      return sinkwrite(sink, data, static_cast<size_t>(w * channels));
    });
  }
  progressdone(p);
  return sinkclose(sink);
}
