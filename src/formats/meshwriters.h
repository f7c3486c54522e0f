// The text mesh writers beside OBJ and PLY: VTP, DXF, POV and INC, MEL, and the ASC forms.
#pragma once
#include "formats/meshfile.h"

bool vtpwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
bool dxfwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
// head: the ".pov" scene head; normals: 0 none, 1 the mesh's, 2 computed from the faces.
template <bool head, int normals>
bool povwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
template <bool smooth>
bool melwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
bool ascmeshwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
bool ascpointwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
