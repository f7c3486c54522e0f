// The measure and edit rows of the tensor family (tensor_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> tensormeasurerows();
std::span<const tcommand> tensorplainrows();  // tensor_plain_commands.cpp
