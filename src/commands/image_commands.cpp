// The image family: workspace, place in space and the bit level of new images.
#include "commands/combine_handlers.h"
#include "commands/diffusion_rows.h"
#include "commands/families.h"
#include "commands/fieldrows.h"
#include "commands/group_handlers.h"
#include "commands/histogram_handlers.h"
#include "commands/level_handlers.h"
#include "commands/measure_handlers.h"
#include "commands/levelrule_handlers.h"
#include "commands/morphology_handlers.h"
#include "commands/resample_handlers.h"
#include "field/workspaces.h"

namespace {

template <uint8_t kind>
constexpr thandler bitlevel = defaultkindcmd<imageworkspace, kind>;

using enum tcommandkind;
const tcommand imagerows[] = {
    {"new", procedure, newcmd<imageworkspace>, nullptr, "new x y // or <x, y> or empty - clear field (1..x 1..y)"},
    {"8bit", procedure, bitlevel<imagegray>, nullptr,
     "8bit // The bit level is relevant, if a new image is created (i.e. image.load or first time image.use)!"},
    {"byte", procedure, bitlevel<imagegray>, nullptr, "byte // same as 8bit: gray values 0..255"},
    {"gray", procedure, bitlevel<imagegray>, nullptr, "gray // same as 8bit"},
    {"16bit", procedure, bitlevel<imagefullgray>, nullptr, "16bit // gray values 0..65535 (default)"},
    {"word", procedure, bitlevel<imagefullgray>, nullptr, "word // same as 16bit"},
    {"nat", procedure, bitlevel<imagefullgray>, nullptr, "nat // same as 16bit"},
    {"fullgray", procedure, bitlevel<imagefullgray>, nullptr, "fullgray // same as 16bit"},
    {"hdrgray", procedure, bitlevel<imagefullgray>, nullptr, "hdrgray // same as 16bit"},
    {"24bit", procedure, bitlevel<imagergb>, nullptr, "24bit // red, green and blue 0..255"},
    {"rgb", procedure, bitlevel<imagergb>, nullptr, "rgb // same as 24bit"},
    {"32bit", procedure, bitlevel<imagergba>, nullptr, "32bit // red, green, blue and alpha 0..255"},
    {"rgba", procedure, bitlevel<imagergba>, nullptr, "rgba // same as 32bit"},
    {"40bit", procedure, bitlevel<imagezrgb>, nullptr, "40bit // depth and rgb at twice the size: the target of projections"},
};

}  // namespace

tcommandfamily imagecommands() {
  static const std::vector<tcommand> rows =
      prefixed("image.", {workspacerows<imageworkspace>(), imagerows, imagefilerows(), imagefilterrows(), sharedcombinerows<imageworkspace>(), imagecombinerows(), levelrows<imageworkspace>(), levelrulerows<imageworkspace>(), morphologyrows<imageworkspace>(), imagemorphologyrows(), resamplerows<imageworkspace>(), imagereshaperows(), imagecolourrows(),
                          spatialrows<imageworkspace>(), grouprows<imageworkspace>(), histogramrows<imageworkspace>(), measurerows<imageworkspace>(), imagediffusionrows()});
  return {"image.", rows};
}
