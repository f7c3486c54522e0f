// PNM: the netpbm family P1 to P7, read into every kind and written as PGM, PPM, PBM, PAM.
// The gray reader keeps the program's long-standing rules where they differ from netpbm
// (a P1 set bit reads 0, the clear bit 1; colour is clamped before it is averaged), and
// 16-bit samples of fullgray lie in the file low byte first, both ways.
#pragma once
#include "field/imagefield.h"

enum class tpnmform { pgm, ppm, pbm, pam };

bool pnmread(timagefield& f, const utf16& name);
// A name of another extension gets the form's one behind it ("pnm" stays as it is).
bool pnmwrite(timagefield& f, const utf16& name, tpnmform form);
