// Meshes and their files: the reader and writer of each format, one row a format, and
// the help's notes made from them.
#pragma once
#include <span>
#include <string>

#include "field/mesh.h"
#include "formats/formattable.h"

// What the special writers take beside the name: the material library and material of
// OBJ, the colour and line radius of POV and INC.
struct tmeshsave {
  utf16 library;
  utf16 material;
  tvector color{1, 1, 1};
  double radius = 1.0;
};

using tmeshformat = tformatrow<bool (*)(tmesh&, const utf16&), bool (*)(const tmesh&, const utf16&, const tmeshsave&)>;

std::span<const tmeshformat> meshformats();
std::string meshinputnote();
std::string meshoutputnote();

// Clears the mesh and reads the file by its lower-cased extension; an unknown one logs
// "Unkown fileextension (<ext>)!".
bool meshload(tmesh& m, const utf16& name);
// Writes by the lower-cased extension ("ply.ascii", "spov" and the like count as such).
bool meshsave(const tmesh& m, const utf16& name, const tmeshsave& options = {});
// The writer of the row whose extensions hold `ext`, whatever the name says; a name with
// another extension gets `suffix` appended.
bool meshsaveas(const tmesh& m, const utf16& name, const char* ext, const char* suffix, const tmeshsave& options = {});
// The material file of OBJ: type 1 Neon .. 6 Glas.
bool meshsavematerial(const utf16& name, const utf16& material, int64_t type, const tvector& color);
