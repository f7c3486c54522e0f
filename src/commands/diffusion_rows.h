// The orientation analysis rows of the scalar and the image family (diffusion_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> scalardiffusionrows();
std::span<const tcommand> imagediffusionrows();
