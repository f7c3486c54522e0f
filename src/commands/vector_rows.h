// The rows of the vector family that live in files of their own: the operations on the
// vectors (vector_op_commands.cpp) and the fields made from them or combined
// (vector_field_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> vectoroprows();
std::span<const tcommand> vectorderiverows();
std::span<const tcommand> vectorfieldrows();
