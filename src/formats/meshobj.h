// Wavefront OBJ meshes and their MTL materials.
#pragma once
#include "formats/meshfile.h"

bool objread(tmesh& m, const utf16& name);
bool objwrite(const tmesh& m, const utf16& name, const tmeshsave& options);
