// The rows of the vector family that live in files of their own: the operations on the
// vectors (vector_op_commands.cpp) and the fields made from them or combined
// (vector_field_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> vectoroprows();
std::span<const tcommand> vectorderiverows();
std::span<const tcommand> vectorfieldrows();
std::span<const tcommand> vectorplainrows();      // vector_plain_commands.cpp
std::span<const tcommand> vectorhistogramrows();  // the same file
