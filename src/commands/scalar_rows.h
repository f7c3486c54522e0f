// The rows of the scalar family that live in files of their own: the field's values and
// labels, and its files.
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> scalarfieldrows();
std::span<const tcommand> scalarfilerows();
