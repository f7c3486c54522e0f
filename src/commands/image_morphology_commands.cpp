// The image family's own filling of zero pixels.
#include "commands/morphology_handlers.h"
#include "field/workspaces.h"

namespace {

void fillzerocmd(tscript& s) {
  if (checkparams(s, 0)) fillzero(currentfield(imageworkspace));
}

// None, or the corners of the box to work in.
void fillgapcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n == 1 || n > 2) return reportcount(s, 2);
  std::optional<std::array<int64_t, 4>> box;
  if (n == 2) {
    const tnatvector a = textnatvector(param(s, 1)), b = textnatvector(param(s, 2));
    box = std::array<int64_t, 4>{a[0], a[1], b[0], b[1]};
  }
  fillgap(currentfield(imageworkspace), box);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"fill.zero", procedure, fillzerocmd, nullptr, "fill.zero // replace zero pixels by the inverse-distance mean along 8 directions"},
    {"fill.gap", procedure, fillgapcmd, nullptr,
     "fill.gap <1, 1> <100, 100> // as fill.zero, for enclosed zero pixels only (in the box)"},
};

}  // namespace

std::span<const tcommand> imagemorphologyrows() { return rows; }
