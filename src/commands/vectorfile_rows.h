// The vector family's files (vector_file_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> vectorfilerows();
