// The plain field operations of the tensor family: tests, exact copies and blocks.
#include "commands/reshape_handlers.h"
#include "commands/resample_handlers.h"
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
    {"copy.method", procedure, copymethodcmd<W>, nullptr,
     "copy.method 1 // per component, binning: 0 sum, 1 mean, 2 sd, 3 min, 4 Q.25, 5 median, 6 Q.75, 7 max; upscaling: 0 block, 1 trilinear, 2 Lanczos"},
    eitherway("copy", copycmd<W>, "new := copy 0.5 // or <fx, fy, fz>: copy and scale each component to new; no factor: exact copy"),
    eitherway("copyscale", copycmd<W>, "new := copyscale 0.5 // same as copy"),
    eitherway("resize", resizecmd<W>, "new := resize <100, 100, 100> // copy and scale to this size"),
    eitherway("substack", substackcmd<W>, "new := substack <10, 10, 10> <50%, 50%, 50%> // copy the block between two corners"),
    {"move", procedure, moveblockcmd<W>, nullptr, "move <10, 10, 10> <20, 20, 20> <0, 50, 50> // move the block between two corners by a step"},
};

}  // namespace

std::span<const tcommand> tensorplainrows() { return rows; }
