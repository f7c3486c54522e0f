#include "formats/imagelibchild.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "field/memory.h"
#include "formats/imagecodec.h"
#include "formats/imagelibs.h"
#include "formats/sniff.h"
#include "shell/console.h"
#include "shell/files.h"

double librarybaseseconds = 20;

namespace {

// The head of the shared memory: the image's shape, then the notes as text.
struct theader {
  int64_t width, height;
  int32_t channels, samplebytes;
  int32_t notelength;
};
constexpr int64_t headbytes = 4096;
constexpr int64_t notecapacity = headbytes - static_cast<int64_t>(sizeof(theader));

// A small file needs little; beyond that the room follows the pixels the header claims (the
// library's bitmap, its converted copy and the rows back) or, for a format the sniffer does
// not know, the file's size; never more than most of the memory.
tchildlimits limitsfor(int64_t filebytes, int64_t pixels) {
  const int64_t claimed = pixels > 0 ? 24 * pixels : 64 * filebytes;
  const int64_t memory = std::min(physicalmemory() / 4 * 3, (int64_t{512} << 20) + 4 * filebytes + claimed);
  const double seconds = librarybaseseconds + static_cast<double>(filebytes) / 1e6 + static_cast<double>(pixels) / 1e7;
  return {memory, seconds};
}

void printnotes(const tchildanswer& answer) {
  if (answer.size < headbytes) return;
  theader h;
  std::memcpy(&h, answer.data, sizeof h);
  if (h.notelength > 0 && h.notelength <= notecapacity) {
    std::string_view text(reinterpret_cast<const char*>(answer.data + sizeof h), static_cast<size_t>(h.notelength));
    while (!text.empty()) {
      const size_t end = text.find('\n');
      println(text.substr(0, end));
      text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
  }
}

// The rows the child handed back, checked against the memory that holds them.
bool answerrows(const tchildanswer& answer, theader& h, const uint8_t*& rows) {
  if (answer.size < headbytes) return false;
  std::memcpy(&h, answer.data, sizeof h);
  if (h.width < 1 || h.height < 1 || (h.channels != 1 && h.channels != 3 && h.channels != 4) ||
      (h.samplebytes != 1 && h.samplebytes != 2))
    return false;
  int64_t bytes;
  if (__builtin_mul_overflow(h.width, h.height, &bytes) || __builtin_mul_overflow(bytes, h.channels * h.samplebytes, &bytes) ||
      bytes != answer.size - headbytes)
    return false;
  rows = answer.data + headbytes;
  return true;
}

template <class T>
bool fillfrom(timagefield& f, const theader& h, const uint8_t* rows, const char* label) {
  timageprogress p = progressbegin(label, h.width, h.height);
  const size_t rowbytes = static_cast<size_t>(h.width * h.channels) * sizeof(T);
  std::vector<T> row(static_cast<size_t>(h.width * h.channels));
  const bool ok = imagefillrows(f, h.channels, row.data(), [&](int64_t y, T* out) {
    progressrow(p, y);
    std::memcpy(out, rows + static_cast<size_t>(y - 1) * rowbytes, rowbytes);
    return true;
  });
  progressdone(p);
  return ok;
}

std::string temporaryname(const std::string& path) {
  const size_t slash = path.rfind('/');
  const size_t at = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(0, at) + ".voxmill-" + std::to_string(getpid()) + "-" + path.substr(at);
}

}  // namespace

void timagechild::note(std::string_view line) {
  if (!out.data && !childreserve(out, headbytes)) return;
  theader h;
  std::memcpy(&h, out.data, sizeof h);
  const int64_t room = notecapacity - h.notelength;
  const int64_t n = std::min<int64_t>(room, static_cast<int64_t>(line.size()) + 1);
  if (n <= 0) return;
  std::memcpy(out.data + sizeof h + h.notelength, line.data(), static_cast<size_t>(n - 1));
  out.data[sizeof h + h.notelength + n - 1] = '\n';
  h.notelength += static_cast<int32_t>(n);
  std::memcpy(out.data, &h, sizeof h);
}

uint8_t* timagechild::rows(int64_t w, int64_t h, int channels, int samplebytes) {
  int64_t bytes;
  if (w < 1 || h < 1 || __builtin_mul_overflow(w, h, &bytes) || __builtin_mul_overflow(bytes, channels * samplebytes, &bytes) ||
      __builtin_add_overflow(bytes, headbytes, &bytes))
    return nullptr;
  if (!out.data && !childreserve(out, headbytes)) return nullptr;
  theader head;
  std::memcpy(&head, out.data, sizeof head);
  if (!childreserve(out, bytes)) return nullptr;
  head.width = w, head.height = h, head.channels = channels, head.samplebytes = samplebytes;
  std::memcpy(out.data, &head, sizeof head);
  return out.data + headbytes;
}

bool librariesasked(uint8_t kind, const utf16& name) {
  if ((!freeimage.enabled && !imagemagick.enabled) || !fileexists(name)) return false;
  const int fd = open(systempath(name).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return true;
  uint8_t head[256];
  const ssize_t got = pread(fd, head, sizeof head, 0);
  close(fd);
  return got <= 0 || !plainpnm(head, got, kind);
}

bool isolatedload(timagefield& f, const utf16& name, const char* label,
                  const std::function<bool(timagechild&)>& decode) {
  const std::string path = systempath(name);
  const int64_t size = filesize(name);
  if (size <= 0) return false;
  tsniff sniff;
  {
    // Libraries see the file by its name; the program only looks at its header here.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    void* map = mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_PRIVATE, fd, 0);
    close(fd);
    if (map == MAP_FAILED) return false;
    sniff = sniffimage(static_cast<const uint8_t*>(map), size, utf16toutf8(lower(fileextension(name))));
    munmap(map, static_cast<size_t>(size));
  }
  if (!sniff.plausible) return false;
  tchildanswer answer;
  const tchildend end = childrun(limitsfor(size, sniff.pixels), [&](tchildoutput& out) {
    timagechild child{out};
    return decode(child);
  }, answer);
  printnotes(answer);
  theader h;
  const uint8_t* rows;
  if (end != tchildend::done || !answerrows(answer, h, rows) || !readsize(f, h.width, h.height)) return false;
  const bool ok = h.samplebytes == 1 ? fillfrom<uint8_t>(f, h, rows, label) : fillfrom<uint16_t>(f, h, rows, label);
  return ok && readdone(f, name);
}

bool isolatedsave(timagefield& f, const utf16& name, const char* label, int channels, int samplebytes,
                  const std::function<bool(timagechild&, const tencoderows&, const std::string& path)>& encode) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  const size_t rowbytes = static_cast<size_t>(w * channels * samplebytes);
  std::unique_ptr<uint8_t[]> data(new (std::nothrow) uint8_t[rowbytes * static_cast<size_t>(h)]);
  if (!data) return false;
  timageprogress p = progressbegin(label, w, h);
  auto copyrows = [&]<class T>(T*) {
    std::vector<T> row(static_cast<size_t>(w * channels));
    imageemitrows(f, channels, row.data(), [&](int64_t y, const T* v) {
      progressrow(p, y);
      std::memcpy(data.get() + static_cast<size_t>(y - 1) * rowbytes, v, rowbytes);
      return true;
    });
  };
  if (samplebytes == 2)
    copyrows(static_cast<uint16_t*>(nullptr));
  else
    copyrows(static_cast<uint8_t*>(nullptr));
  progressdone(p);
  const std::string path = systempath(name), part = temporaryname(path);
  const tencoderows in{data.get(), w, h, channels, samplebytes};
  tchildanswer answer;
  const int64_t bytes = static_cast<int64_t>(rowbytes) * h;
  const tchildend end = childrun(limitsfor(bytes, w * h), [&](tchildoutput& out) {
    timagechild child{out};
    return encode(child, in, part);
  }, answer);
  printnotes(answer);
  if (end == tchildend::done && std::rename(part.c_str(), path.c_str()) == 0) return true;
  std::remove(part.c_str());
  return false;
}
