// The mesh and line families: their workspaces.
#include "commands/families.h"
#include "commands/fieldrows.h"
#include "commands/line_rows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"

namespace {

using enum tcommandkind;
const tcommand meshrows[] = {
    {"new", procedure, clearcmd<meshworkspace>, nullptr, "new // an empty mesh in place of the current one"},
};
const tcommand linerows[] = {
    {"new", procedure, clearcmd<lineworkspace>, nullptr, "new // no lines in place of the current ones"},
};

}  // namespace

tcommandfamily meshcommands() {
  static const std::vector<tcommand> rows =
      prefixed("mesh.", {workspacerows<meshworkspace>(), meshrows, meshbuildrows(), meshfilerows(), meshtransformrows(),
                         meshsmoothrows(), meshrenderrows(), meshsamplerows()});
  return {"mesh.", rows};
}

tcommandfamily linecommands() {
  static const std::vector<tcommand> rows = prefixed("line.", {workspacerows<lineworkspace>(), linerows, linefilerows(), lineoperationrows()});
  return {"line.", rows};
}
