// The streamline rows of the vector family (stream_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> streamrows();
