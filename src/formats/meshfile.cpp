#include "formats/meshfile.h"

#include "base/filebuffer.h"
#include "formats/meshasc.h"
#include "formats/meshdxf.h"
#include "formats/meshobj.h"
#include "formats/meshply.h"
#include "formats/meshreaders.h"
#include "formats/meshwriters.h"
#include "shell/console.h"

namespace {

constexpr tfieldkind mesh = tfieldkind::mesh;

constexpr tmeshformat formats[] = {
    {"obj", mesh, objread, objwrite, nullptr, "OBJ", "OBJ"},
    {"ply", mesh, plyread, plywrite, nullptr, "PLY", "PLY"},
    {"ply.ascii", mesh, nullptr, plywriteascii, nullptr, nullptr, nullptr},
    {"stl", mesh, stlread, nullptr, nullptr, "STL", nullptr},
    {"dxf", mesh, dxfread, dxfwrite, nullptr, "DXF", "DXF"},
    {"wrl", mesh, wrlread, nullptr, nullptr, "WRL", nullptr},
    {"vrml iv", mesh, vrmlread, nullptr, nullptr, "IV", nullptr},
    {"vtp vtk", mesh, nullptr, vtpwrite, nullptr, nullptr, "VTP, VTK"},
    {"anysurf", mesh, anysurfread, nullptr, nullptr, "ANYSURF", nullptr},
    {"asc vtx", mesh, ascread, ascpointwrite, nullptr, "ASC", "ASC"},
    {"csv", mesh, ascread, ascpointwrite, nullptr, "CSV", "CSV"},
    {"prn", mesh, ascread, ascpointwrite, nullptr, "PRN", "PRN"},
    {"open opensim", mesh, nullptr, ascmeshwrite, nullptr, nullptr, nullptr},
    {"pov", mesh, povread, povwrite<true, 0>, nullptr, "POV", "POV"},
    {"inc", mesh, povread, povwrite<false, 0>, nullptr, nullptr, "INC"},
    {"spov", mesh, nullptr, povwrite<true, 2>, nullptr, nullptr, "sPOV"},
    {"sinc", mesh, nullptr, povwrite<false, 2>, nullptr, nullptr, "sINC"},
    {"npov", mesh, nullptr, povwrite<true, 1>, nullptr, nullptr, "nPOV"},
    {"ninc", mesh, nullptr, povwrite<false, 1>, nullptr, nullptr, "nINC"},
    {"mel", mesh, nullptr, melwrite<false>, nullptr, nullptr, "MEL"},
    {"smel", mesh, nullptr, melwrite<true>, nullptr, nullptr, nullptr},
};

// "ply.ascii" counts as one extension; otherwise the usual one, lower-cased.
utf16 meshextension(const utf16& name) {
  const utf16 ext = lower(fileextension(name));
  if (equalutf8(ext, "ascii") && equalutf8(lower(fileextension(filestem(name))), "ply")) return "ply.ascii";
  return ext;
}

}  // namespace

std::span<const tmeshformat> meshformats() { return formats; }
std::string meshinputnote() { return formatnotes(meshformats(), false); }
std::string meshoutputnote() { return formatnotes(meshformats(), true); }

bool meshload(tmesh& m, const utf16& name) {
  fieldcreate(m);
  const utf16 ext = meshextension(name);
  const tmeshformat* r = formatrow(meshformats(), ext, false);
  if (!r || !*r->extensions) {
    println("Unkown fileextension (" + ext + ")!");
    return false;
  }
  m.trianglesonly = true;
  if (r->read(m, name)) return true;
  fieldcreate(m);
  return false;
}

bool meshsave(const tmesh& m, const utf16& name, const tmeshsave& options) {
  const utf16 ext = meshextension(name);
  const tmeshformat* r = formatrow(meshformats(), ext, true);
  if (!r || !*r->extensions) {
    println("Unkown fileextension (" + ext + ")!");
    return false;
  }
  return r->write(m, name, options);
}

bool meshsaveas(const tmesh& m, const utf16& name, const char* ext, const char* suffix, const tmeshsave& options) {
  const tmeshformat* r = formatrow(meshformats(), utf16(ext), true);
  if (!r) return false;
  const utf16 own = meshextension(name);
  utf16 target = name;
  if (equalutf8(own, "opensim"))
    target = filestem(name) + suffix;
  else if (oneof(own, {"asc", "csv", "prn"}) && oneof(utf16(ext), {"asc", "csv", "prn"}))
    target = name;
  else if (!formatextension(r->extensions, own) && !equalutf8(own, suffix + 1))
    target = name + suffix;
  return r->write(m, target, options);
}
