// The image family: workspace, place in space and the bit level of new images.
#include "commands/combine_handlers.h"
#include "commands/diffusion_rows.h"
#include "commands/families.h"
#include "commands/fieldrows.h"
#include "commands/level_handlers.h"
#include "field/workspaces.h"

namespace {

template <uint8_t kind>
constexpr thandler bitlevel = defaultkindcmd<imageworkspace, kind>;

using enum tcommandkind;
const tcommand imagerows[] = {
    {"new", k1, newcmd<imageworkspace>, nullptr, "new x y // or <x, y> or empty - clear field (1..x 1..y)"},
    {"8bit", k1, bitlevel<imagegray>, nullptr,
     "8bit // The bit level is relevant, if a new image is created (i.e. image.load or first time image.use)!"},
    {"byte", k1, bitlevel<imagegray>, nullptr, "byte // same as 8bit: gray values 0..255"},
    {"gray", k1, bitlevel<imagegray>, nullptr, "gray // same as 8bit"},
    {"16bit", k1, bitlevel<imagefullgray>, nullptr, "16bit // gray values 0..65535 (default)"},
    {"word", k1, bitlevel<imagefullgray>, nullptr, "word // same as 16bit"},
    {"nat", k1, bitlevel<imagefullgray>, nullptr, "nat // same as 16bit"},
    {"fullgray", k1, bitlevel<imagefullgray>, nullptr, "fullgray // same as 16bit"},
    {"hdrgray", k1, bitlevel<imagefullgray>, nullptr, "hdrgray // same as 16bit"},
    {"24bit", k1, bitlevel<imagergb>, nullptr, "24bit // red, green and blue 0..255"},
    {"rgb", k1, bitlevel<imagergb>, nullptr, "rgb // same as 24bit"},
    {"32bit", k1, bitlevel<imagergba>, nullptr, "32bit // red, green, blue and alpha 0..255"},
    {"rgba", k1, bitlevel<imagergba>, nullptr, "rgba // same as 32bit"},
    {"40bit", k1, bitlevel<imagezrgb>, nullptr, "40bit // depth and rgb at twice the size: the target of projections"},
};

}  // namespace

tcommandfamily imagecommands() {
  static const std::vector<tcommand> rows =
      prefixed("image.", {workspacerows<imageworkspace>(), imagerows, imagefilerows(), imagefilterrows(), sharedcombinerows<imageworkspace>(), imagecombinerows(), levelrows<imageworkspace>(), imagecolourrows(),
                          spatialrows<imageworkspace>(), imagediffusionrows()});
  return {"image.", rows};
}
