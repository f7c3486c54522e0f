// The rows of the scalar family that live in files of their own: the field's values and
// labels, its files, its smoothing and filters, and its own arithmetic.
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> scalarfieldrows();
std::span<const tcommand> scalarfilerows();
std::span<const tcommand> scalarfilterrows();
std::span<const tcommand> scalarcombinerows();
std::span<const tcommand> scalarmeasurerows();
// Surfaces into the current mesh (mesh_surface_commands.cpp).
std::span<const tcommand> scalarsurfacerows();
