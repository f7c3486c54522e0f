// PLY meshes: ascii and binary of either byte order in, binary little endian and ascii out.
#pragma once
#include "formats/meshfile.h"

bool plyread(tmesh& m, const utf16& name);
bool plywrite(const tmesh& m, const utf16& name, const tmeshsave& options);
bool plywriteascii(const tmesh& m, const utf16& name, const tmeshsave& options);
