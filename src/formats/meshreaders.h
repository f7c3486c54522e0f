// The small text mesh readers: STL ascii, VRML and Inventor, POV mesh2 and ANYSURF.
#pragma once
#include "formats/meshfile.h"

bool stlread(tmesh& m, const utf16& name);
bool vrmlread(tmesh& m, const utf16& name);
bool wrlread(tmesh& m, const utf16& name);
bool povread(tmesh& m, const utf16& name);
bool anysurfread(tmesh& m, const utf16& name);
