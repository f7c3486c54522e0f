// The plain field operations of the tensor family: tests, exact copies and blocks.
#include "commands/reshape_handlers.h"
#include "commands/tensor_rows.h"
#include "field/workspaces.h"
#include "orientation/tensoredit.h"

namespace {

constexpr auto& W = tensorworkspace;

// False is the empty text.
void iftensor(tscript& s) { setresult(s, fieldempty(currentfield(W)) ? "" : "1"); }
void ifplain(tscript& s) { setresult(s, plaintensors(currentfield(W)) ? "1" : ""); }

using enum tcommandkind;
const tcommand rows[] = {
    {"iftensor", variablefunction, iftensor, nullptr, "iftensor // true, if the field has a size bigger than 0x0x0"},
    {"ifplain", variablefunction, ifplain, nullptr, "ifplain // true, if all tensors are the same"},
    eitherway("copy", exactcopycmd<W>, "new := copy // an exact copy of the current field"),
    eitherway("copyscale", exactcopycmd<W>, "new := copyscale // same as copy"),
    eitherway("substack", substackcmd<W>, "new := substack <10, 10, 10> <50%, 50%, 50%> // copy the block between two corners"),
    {"move", procedure, moveblockcmd<W>, nullptr, "move <10, 10, 10> <20, 20, 20> <0, 50, 50> // move the block between two corners by a step"},
};

}  // namespace

std::span<const tcommand> tensorplainrows() { return rows; }
