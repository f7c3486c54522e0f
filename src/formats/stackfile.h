// Volumes as stacks of 2-D images: one image a z-slice, through the image readers and
// writers.
#pragma once
#include "field/scalarfield.h"
#include "library/filelist.h"

// The files of the pattern in list order become slices 1..n of a volume made anew in
// kind; the first image decides x and y. A positive scale goes into the matrix diagonal,
// otherwise the first image's place in space is taken. Images of another pixel size are
// resampled to the stack's; smaller ones lie centred. False for an empty list.
bool stackload(tscalarfield& f, uint8_t kind, const utf16& pattern, const tvector& scale);

// The files of a stack pattern and their count; an empty list is told in one line.
int64_t stackfiles(const utf16& pattern, tfilelist& files);

// One image a slice: directory + stem + "_" + number (padded with "0" to the width of the
// slice count) + "." + extension. Mono slices leave as gray images of 0 and 1.
bool stacksave(const tscalarfield& f, const utf16& name);
