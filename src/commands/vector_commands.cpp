// The vector and tensor families: workspace, place in space and the storage of new fields.
#include "commands/families.h"
#include "commands/tensor_rows.h"
#include "commands/fieldrows.h"
#include "commands/stream_rows.h"
#include "commands/vector_rows.h"
#include "commands/vectorfile_rows.h"
#include "field/workspaces.h"

namespace {

template <uint8_t kind>
constexpr thandler vectorkind = defaultkindcmd<vectorworkspace, kind>;
template <uint8_t kind>
constexpr thandler tensorkind = defaultkindcmd<tensorworkspace, kind>;

using enum tcommandkind;
const tcommand vectorrows[] = {
    {"new", procedure, newcmd<vectorworkspace>, nullptr, "new x y z // or <x, y, z> or empty - new field (1..x 1..y 1..z)"},
    {"float", procedure, vectorkind<vectorfloat>, nullptr, "float // vectors of 64-bit reals for new fields (default)"},
    {"real", procedure, vectorkind<vectorfloat>, nullptr, "real // same as float"},
    {"integer", procedure, vectorkind<vectorinteger>, nullptr, "integer // vectors of 64-bit integers for new fields"},
    {"int32", procedure, vectorkind<vectorinteger>, nullptr, "int32 // same as integer"},
    {"int64", procedure, vectorkind<vectorinteger>, nullptr, "int64 // same as integer"},
    {"nat", procedure, vectorkind<vectorinteger>, nullptr, "nat // same as integer"},
    {"rgb", procedure, vectorkind<vectorrgb>, nullptr, "rgb // vectors of three bytes 0..255 for new fields"},
    {"24bit", procedure, vectorkind<vectorrgb>, nullptr, "24bit // same as rgb"},
};

const tcommand tensorrows[] = {
    {"new", procedure, newcmd<tensorworkspace>, nullptr, "new x y z // or <x, y, z> or empty - new field (1..x 1..y 1..z)"},
    {"float", procedure, tensorkind<vectorfloat>, nullptr, "float // tensors of 64-bit reals for new fields (default)"},
    {"integer", procedure, tensorkind<vectorinteger>, nullptr, "integer // tensors of 64-bit integers for new fields"},
    {"int32", procedure, tensorkind<vectorinteger>, nullptr, "int32 // same as integer"},
    {"int64", procedure, tensorkind<vectorinteger>, nullptr, "int64 // same as integer"},
    {"nat", procedure, tensorkind<vectorinteger>, nullptr, "nat // same as integer"},
};

}  // namespace

tcommandfamily vectorcommands() {
  static const std::vector<tcommand> rows = prefixed("vector.", {
                                                                    workspacerows<vectorworkspace>(),
                                                                    vectorrows,
                                                                    spatialrows<vectorworkspace>(),
                                                                    vectorfilerows(),
                                                                    vectoroprows(),
                                                                    vectorderiverows(),
                                                                    vectorfieldrows(),
                                                                    vectorplainrows(),
                                                                    vectorhistogramrows(),
                                                                    streamrows(),
                                                                });
  return {"vector.", rows};
}

tcommandfamily tensorcommands() {
  static const std::vector<tcommand> rows =
      prefixed("tensor.", {workspacerows<tensorworkspace>(), tensorrows, spatialrows<tensorworkspace>(), tensorfilerows(), tensormeasurerows(),
                            tensorplainrows()});
  return {"tensor.", rows};
}
