// The image family's level adjustment; tables are made and applied in ops/leveladjust.
#include "commands/fieldrows.h"
#include "commands/level_handlers.h"
#include "field/workspaces.h"

namespace {

using enum tcommandkind;
const tcommand rows[] = {
    {"setadjust", k1, setadjustcmd<imageworkspace>, nullptr,
     "setadjust // or setadjust <a, b> or setadjust <a, b> <c, d>: stretch the used levels (or a..b) to 0..max "
     "(or c..d), one table for red, green and blue"},
    {"cleanup", k1, cleanupcmd<imageworkspace>, nullptr,
     "cleanup // setadjust, smooth, unsharpmasking and unsharpmasking again"},
};

}  // namespace

std::span<const tcommand> imagelevelrows() { return rows; }
