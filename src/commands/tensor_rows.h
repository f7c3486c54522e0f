// The measure and edit rows of the tensor family (tensor_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> tensormeasurerows();
