// The line family's files, counts and operations (line_commands.cpp, line_op_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> linefilerows();
std::span<const tcommand> lineoperationrows();
