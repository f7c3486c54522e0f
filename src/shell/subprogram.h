// Running other programs: the PATH search and a start that waits for the child.
#pragma once
#include <string>
#include <vector>

#include "script/utf16.h"

// The path to run for a name; the name itself (with a message) when nothing is found.
utf16 findprogram(const utf16& name);
// Starts the program with the arguments and waits; the exit code, or -1 when it can't start.
int runprogram(const utf16& path, const std::vector<std::string>& arguments);
