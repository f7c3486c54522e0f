// The vector and tensor families' files (vector_file_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> vectorfilerows();
std::span<const tcommand> tensorfilerows();
