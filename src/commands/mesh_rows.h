// Rows of the mesh family that live in files of their own.
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> meshbuildrows();      // mesh_commands.cpp
std::span<const tcommand> meshfilerows();       // mesh_file_commands.cpp
std::span<const tcommand> meshtransformrows();  // mesh_transform_commands.cpp
std::span<const tcommand> meshsmoothrows();     // mesh_smooth_commands.cpp
std::span<const tcommand> meshrenderrows();     // mesh_render_commands.cpp
std::span<const tcommand> meshsamplerows();     // mesh_sample_commands.cpp
