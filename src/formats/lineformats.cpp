#include "formats/lineformats.h"

#include "base/filebuffer.h"
#include "script/values.h"
#include "shell/console.h"
#include "shell/files.h"

std::span<const tlineformat> lineformats() {
  static const tlineformat rows[] = {
      {"trk", tfieldkind::line, nullptr, trkbytes, nullptr, nullptr, "TrackVis TRK"},
      {"vtp vtk", tfieldkind::line, nullptr, vtpbytes, nullptr, nullptr, "VTP"},
      {"obj", tfieldkind::line, nullptr, objbytes, nullptr, nullptr, "OBJ"},
      {"dxf", tfieldkind::line, nullptr, dxfbytes, nullptr, nullptr, "DXF"},
      {"swc", tfieldkind::line, nullptr, swcbytes, nullptr, nullptr, "SWC"},
      {"mv3d", tfieldkind::line, nullptr, mv3dbytes, nullptr, nullptr, "MV3D"},
      {"mel", tfieldkind::line, nullptr, melbytes, nullptr, nullptr, "MEL"},
      {"", tfieldkind::line, nativeread, nativebytes, nullptr, "skein2 text", "skein2 text"},
  };
  return rows;
}

std::string lineinputnote() { return formatnotes(lineformats(), false); }
std::string lineoutputnote() { return formatnotes(lineformats(), true); }

std::string numbertext(double x) { return plainrealtext(x); }

namespace {

const char* progressof(tlinewriter w) {
  if (w == trkbytes) return "  Write Track-file";
  if (w == vtpbytes) return "  Write VTK(mesh)-file";
  if (w == swcbytes) return "  Write SWC-file";
  if (w == mv3dbytes) return "  Write MicroVisu3D-file";
  if (w == melbytes) return "  Write MEL-file";
  return nullptr;
}

}  // namespace

bool linesavewith(const tcloud& c, const utf16& name, tlinewriter write) {
  if (empty(name) || c.points.length < 1) return false;
  if (const char* label = progressof(write)) {
    progress(label, 1.0);
    progressend();
  }
  const std::string bytes = write(c, name);
  const utf16 part = name + ".part";
  if (!bufferwrite(part, bytes, false)) {
    if (fileexists(part)) deletefile(part);  // a short write must not stay behind
    return false;
  }
  if (write == nativebytes && fileexists(name)) renamefile(name, name + ".bak");
  return renamefile(part, name);
}

bool linesave(const tcloud& c, const utf16& name) {
  const tlineformat* row = formatrow(lineformats(), lower(fileextension(name)), true);
  return row && linesavewith(c, name, row->write);
}

bool lineload(tcloud& c, const utf16& name, double dropshare) { return nativeread(c, name, dropshare); }
