// AutoCAD DXF meshes: one 3DFACE entity a face.
#pragma once
#include "formats/meshfile.h"

bool dxfread(tmesh& m, const utf16& name);
