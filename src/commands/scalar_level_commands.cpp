// The scalar family's level adjustment; tables are made and applied in ops/leveladjust.
#include "commands/level_handlers.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"

namespace {

using enum tcommandkind;
const tcommand rows[] = {
    {"setadjust", k1, setadjustcmd<scalarworkspace>, nullptr,
     "setadjust // or setadjust <a, b> or setadjust <a, b> <c, d>: stretch the used values (or a..b) to 0..max "
     "(or c..d)"},
    {"cleanup", k1, cleanupcmd<scalarworkspace>, nullptr,
     "cleanup // setadjust, smooth, unsharpmasking and unsharpmasking again"},
};

}  // namespace

std::span<const tcommand> scalarlevelrows() { return rows; }
