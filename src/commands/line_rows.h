// The line family's files, counts and operations (line_commands.cpp, line_op_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> linefilerows();
std::span<const tcommand> lineoperationrows();
std::span<const tcommand> scalarsamplerows();  // line_sample_commands.cpp, in the scalar family
