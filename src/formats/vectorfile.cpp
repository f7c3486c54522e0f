#include "formats/vectorfile.h"

#include <type_traits>

#include "base/filebuffer.h"
#include "field/owned.h"
#include "formats/nifti.h"
#include "formats/niftiheader.h"
#include "formats/vectorformats.h"
#include "formats/vectornifti.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

constexpr tfieldkind vector = tfieldkind::vector;

constexpr tvectorformat formats[] = {
    {"nii hdr img nii.gz hdr.gz img.gz", vector, vectorniftiload, nullptr, nullptr, "HDR, NII, gz NII", nullptr},
    {"hdr nii nii.gz", vector, nullptr, vectorniftisave, nullptr, nullptr, "HDR, NII, gz NII"},
    {"txt txt.gz vector", vector, pairtextload, nullptr, nullptr, "TXT", nullptr},
    {"fld", vector, nullptr, avssave, nullptr, nullptr, "FLD"},
    {"am", vector, nullptr, amirasave, nullptr, nullptr, "AM"},
    {"tessler", vector, nullptr, tesslersave, nullptr, nullptr, nullptr},
    {"", vector, rgbstackload, pairtextsave, nullptr, "image stacks with *", nullptr},
};

}  // namespace

std::span<const tvectorformat> vectorformats() { return formats; }
std::string vectorinputnote() { return formatnotes(vectorformats(), false); }
std::string vectoroutputnote() { return formatnotes(vectorformats(), true); }

bool vectorload(tvectorfield& f, uint8_t kind, const utf16& name) {
  if (empty(name)) return false;
  const tvectorformat* r = formatrow(vectorformats(), lower(fileextension(name)), false);
  return r && r->read(f, kind, name);
}

bool vectorsave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  if (empty(name)) return false;
  const tvectorformat* r = formatrow(vectorformats(), lower(fileextension(name)), true, f.kind);
  return r && r->write(f, name, scale);
}

bool vectorloadproperties(tvectorfield& f, const utf16& name) { return loadspaceproperties(f.space, name); }

bool loadspaceproperties(tspatial& space, const utf16& name) {
  tniftiheader h;
  if (empty(name) || !niftiheaderread(name, h)) return false;
  if (h.dim[1] + h.dim[2] + h.dim[3] + h.dim[4] <= 0) return false;
  const tspatial s = headerspace(h);
  setmatrix(space, s.matrix);
  setoffset(space, s.offset);
  for (const utf16& line : transformationlines(space, true)) println(line);
  return true;
}

void vectorappend(tvectorfield& f, const utf16& name) {
  if (empty(name)) return;
  tlocalfield<tvectorfield> local;
  tvectorfield& source = *local;
  vectorload(source, f.kind ? f.kind : uint8_t{vectorfloat}, name);
  const tnatvector s = fieldsize(source);
  eachstorage(f, [&](auto& to) {
    eachstorage(source, [&](const auto& from) {
      using C = typename std::remove_cvref_t<decltype(to)>::elementtype::value_type;
      for (int64_t z = 1; z <= s[2]; ++z) {
        for (int64_t y = 1; y <= s[1]; ++y)
          for (int64_t x = 1; x <= s[0]; ++x) {
            const tvector g = localtoglobal(source.space, {double(x), double(y), double(z)});
            const tnatvector q = globaltolocal(f.space, g);
            if (!to.inside(q[0], q[1], q[2])) continue;
            const auto fresh = from.get(x, y, z);
            auto old = to.get(q[0], q[1], q[2]);
            const bool none = old[0] == 0 && old[1] == 0 && old[2] == 0;
            for (int c = 0; c < 3; ++c)
              old[c] = toelement<C>(none ? static_cast<double>(fresh[c])
                                         : (static_cast<double>(old[c]) + static_cast<double>(fresh[c])) / 2);
            to.put(q[0], q[1], q[2], old);
          }
        progress("  Merging", static_cast<double>(z) / static_cast<double>(s[2]));
      }
      progressend();
    });
  });
}
