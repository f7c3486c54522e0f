// Rows of the field families. The same rows serve several families, so their
// documentation lines are written without the family prefix; prefixed() joins a
// family's parts and puts its prefix in front of each line.
#pragma once
#include <initializer_list>
#include <span>
#include <vector>

#include "commands/commandtable.h"
#include "commands/spatial_handlers.h"
#include "commands/workspace_handlers.h"

// The image family's files, pixels and tests (image_file_commands.cpp).
std::span<const tcommand> imagefilerows();
// Its smoothing and free kernel (image_filter_commands.cpp).
std::span<const tcommand> imagefilterrows();
// Its own arithmetic of several images (image_combine_commands.cpp).
std::span<const tcommand> imagecombinerows();
// Its compositing, stacking and work by colour (image_colour_commands.cpp).
std::span<const tcommand> imagecolourrows();

std::vector<tcommand> prefixed(const char* prefix, std::initializer_list<std::span<const tcommand>> parts);

// use, swap, name, dump, clear and clean: what every workspace has.
template <auto& W>
std::span<const tcommand> workspacerows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"use", procedure, usecmd<W>, nullptr, "use name // select the field of this name, or create it empty"},
      {"swap", procedure, swapcmd<W>, nullptr, "swap name1 name2 // exchange two names, the fields stay"},
      {"name", procedure, namecmd<W>, nullptr, "name newname // rename the current field"},
      {"dump", procedure, dumpcmd<W>, nullptr, "dump // list all fields of this workspace"},
      {"clear", procedure, clearcmd<W>, nullptr, "clear // empty the current field; a field keeps its bit level"},
      {"clean", procedure, clearcmd<W>, nullptr, "clean // same as clear"},
  };
  return rows;
}

// Size and place in global space of the grid fields.
template <auto& W>
std::span<const tcommand> spatialrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"size", variablefunction, sizefunc<W>, nullptr, "size // number of pixels or voxels along each axis"},
      {"center", procedureandfunction, centerproc<W>, centerfunc<W>,
       "center // move the offset to the center rule; as a function: half the size"},
      {"origin.center", procedureandfunction, centerproc<W>, centerfunc<W>, "origin.center // same as center"},
      {"offset.center", procedureandfunction, centerproc<W>, centerfunc<W>, "offset.center // same as center"},
      {"origin", procedureandfunction, offsetproc<W>, offsetfunc<W>,
       "origin <x, y, z> // global position of the first voxel, empty for <0, 0, 0>; as a function: get it"},
      {"offset", procedureandfunction, offsetproc<W>, offsetfunc<W>, "offset <x, y, z> // same as origin"},
      {"scale", procedureandfunction, scaleproc<W>, scalefunc<W>, "scale <x, y, z> // fill matrix with positive scaling"},
      {"matrix", procedureandfunction, matrixproc<W>, matrixfunc<W>,
       "matrix <v1> <v2> <v3> // global step of one voxel along x, y and z; as a function: (v1;v2;v3)"},
      {"matrix.v1", variablefunction, matrixrowfunc<W, 1>, nullptr, "matrix.v1 // first row of the matrix"},
      {"matrix.v2", variablefunction, matrixrowfunc<W, 2>, nullptr, "matrix.v2 // second row of the matrix"},
      {"matrix.v3", variablefunction, matrixrowfunc<W, 3>, nullptr, "matrix.v3 // third row of the matrix"},
      {"unflip", procedure, unflipcmd<W>, nullptr, "unflip // set matrix to positive values"},
      {"unrotate", procedure, unrotatecmd<W>, nullptr, "unrotate // set matrix to diagonal matrix"},
      {"l2g", function, l2gfunc<W>, nullptr, "l2g <x, y, z> // local (1..size) to global position"},
      {"g2l", function, g2lfunc<W>, nullptr, "g2l <x, y, z> // global to local position, rounded to the voxel"},
  };
  return rows;
}
