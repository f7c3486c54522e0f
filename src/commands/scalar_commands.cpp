// The scalar family: workspace, place in space and the bit level of new volumes.
#include "commands/combine_handlers.h"
#include "commands/connection_rows.h"
#include "commands/diffusion_rows.h"
#include "commands/line_rows.h"
#include "commands/families.h"
#include "commands/fieldrows.h"
#include "commands/group_handlers.h"
#include "commands/histogram_handlers.h"
#include "commands/level_handlers.h"
#include "commands/measure_handlers.h"
#include "commands/levelrule_handlers.h"
#include "commands/morphology_handlers.h"
#include "commands/resample_handlers.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"

namespace {

template <uint8_t kind>
constexpr thandler bitlevel = defaultkindcmd<scalarworkspace, kind>;

using enum tcommandkind;
const tcommand scalarrows[] = {
    {"new", procedure, newcmd<scalarworkspace>, nullptr, "new x y z // or <x, y, z> or empty - new field (1..x 1..y 1..z)"},
    {"1bit", procedure, bitlevel<scalarmono>, nullptr, "1bit // voxels of one bit: 0 and 1"},
    {"bool", procedure, bitlevel<scalarmono>, nullptr, "bool // same as 1bit"},
    {"8bit", procedure, bitlevel<scalargray>, nullptr,
     "8bit // The bit level is relevant, if a new scalar is created (i.e. scalar.new, scalar.load or first time "
     "scalar.use)!"},
    {"byte", procedure, bitlevel<scalargray>, nullptr, "byte // same as 8bit: values 0..255"},
    {"16bit", procedure, bitlevel<scalarfullgray>, nullptr, "16bit // values 0..65535 (default)"},
    {"word", procedure, bitlevel<scalarfullgray>, nullptr, "word // same as 16bit"},
    {"nat", procedure, bitlevel<scalarfullgray>, nullptr, "nat // same as 16bit"},
    // Only volumes move and rescale their offset.
    {"offset.add", procedure, offsetaddcmd<scalarworkspace>, nullptr, "offset.add <x, y, z> // move the offset"},
    {"scale.mul", procedure, scalemulcmd<scalarworkspace>, nullptr,
     "scale.mul <x, y, z> // positive scaling, and the offset multiplied: the field stays in place"},
};

}  // namespace

tcommandfamily scalarcommands() {
  static const std::vector<tcommand> rows =
      prefixed("scalar.", {workspacerows<scalarworkspace>(), scalarrows, spatialrows<scalarworkspace>(),
                           scalarfieldrows(), scalarfilerows(), scalarfilterrows(), sharedcombinerows<scalarworkspace>(), scalarcombinerows(), levelrows<scalarworkspace>(), levelrulerows<scalarworkspace>(), morphologyrows<scalarworkspace>(), scalarmorphologyrows(), resamplerows<scalarworkspace>(), scalarreshaperows(), grouprows<scalarworkspace>(), histogramrows<scalarworkspace>(), histogramfastrows<scalarworkspace>(), measurerows<scalarworkspace>(), scalarmeasurerows(), scalardiffusionrows(), scalarconnectionrows(), scalarsurfacerows(), scalarsamplerows()});
  return {"scalar.", rows};
}
