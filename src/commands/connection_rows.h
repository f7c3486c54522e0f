// The connection rows of the scalar family (connection_commands.cpp).
#pragma once
#include <span>

#include "commands/commandtable.h"

std::span<const tcommand> scalarconnectionrows();
