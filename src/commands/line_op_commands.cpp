// The operations on the line cloud.
#include "commands/line_rows.h"

namespace {
using enum tcommandkind;
const tcommand rows[] = {
    {"objects.placeholder", procedure, nullptr, nullptr, ""},
};
}  // namespace

std::span<const tcommand> lineoperationrows() { return {rows, 0}; }
