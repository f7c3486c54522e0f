#include "formats/tensorfile.h"

#include "base/filebuffer.h"
#include "field/owned.h"
#include "formats/tensornrrd.h"
#include "formats/vectorfile.h"
#include "formats/vectornifti.h"
#include "orientation/tensorvoxel.h"
#include "shell/console.h"

namespace {

constexpr tfieldkind tensor = tfieldkind::tensor;

constexpr ttensorformat formats[] = {
    {"nii hdr img nii.gz hdr.gz img.gz", tensor, tensorniftiload, nullptr, nullptr, "HDR, NII, gz NII", nullptr},
    {"hdr nii nii.gz", tensor, nullptr, tensorniftisave, nullptr, nullptr, "HDR, NII, gz NII"},
    {"nhdr", tensor, nullptr, tensornrrdsave, nullptr, nullptr, "NHDR"},
    {"", tensor, nullptr, tensornrrdsave, nullptr, nullptr, "NRRD"},
};

}  // namespace

std::span<const ttensorformat> tensorformats() { return formats; }
std::string tensorinputnote() { return formatnotes(tensorformats(), false); }
std::string tensoroutputnote() { return formatnotes(tensorformats(), true); }

bool tensorload(ttensorfield& f, uint8_t kind, const utf16& name) {
  if (empty(name)) return false;
  if (const ttensorformat* r = formatrow(tensorformats(), lower(fileextension(name)), false)) return r->read(f, kind, name);
  fieldcreate(f, kind);  // no reader: silently empty
  return false;
}

bool tensorsave(const ttensorfield& f, const utf16& name) {
  if (empty(name)) return false;
  const ttensorformat* r = formatrow(tensorformats(), lower(fileextension(name)), true, f.kind);
  return r && r->write(f, name);
}

bool tensorloadproperties(ttensorfield& f, const utf16& name) { return loadspaceproperties(f.space, name); }

void tensorappend(ttensorfield& f, const utf16& name) {
  if (empty(name)) return;
  tlocalfield<ttensorfield> local;
  ttensorfield& source = *local;
  tensorload(source, f.kind ? f.kind : uint8_t{vectorfloat}, name);
  const tnatvector s = fieldsize(source), n = fieldsize(f);
  withtensorvolumes(f, [&](auto& todiagonal, auto& tooffdiagonal) {
    withtensorvolumes(source, [&](const auto& diagonal, const auto& offdiagonal) {
      for (int64_t z = 1; z <= s[2]; ++z) {
        for (int64_t y = 1; y <= s[1]; ++y)
          for (int64_t x = 1; x <= s[0]; ++x) {
            const tvector g = localtoglobal(source.space, {double(x), double(y), double(z)});
            const tnatvector q = globaltolocal(f.space, g);
            if (q[0] < 1 || q[1] < 1 || q[2] < 1 || q[0] > n[0] || q[1] > n[1] || q[2] > n[2]) continue;
            const int64_t to = (q[0] - 1) + (q[1] - 1) * n[0] + (q[2] - 1) * n[0] * n[1];
            const tsymmetric fresh = tensorat(diagonal, offdiagonal, (x - 1) + (y - 1) * s[0] + (z - 1) * s[0] * s[1]);
            tsymmetric old = tensorat(todiagonal, tooffdiagonal, to);
            if (zerotensor(old)) {
              old = fresh;
            } else {
              old.xx = (old.xx + fresh.xx) / 2, old.yy = (old.yy + fresh.yy) / 2, old.zz = (old.zz + fresh.zz) / 2;
              old.xy = (old.xy + fresh.xy) / 2, old.xz = (old.xz + fresh.xz) / 2, old.yz = (old.yz + fresh.yz) / 2;
            }
            puttensor(todiagonal, tooffdiagonal, to, old);
          }
        progress("  Merging", static_cast<double>(z) / static_cast<double>(s[2]));
      }
      progressend();
    });
  });
}
