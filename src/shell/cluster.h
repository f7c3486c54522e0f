// One macro run by many processes: which share of every parallel loop this process takes,
// from the command line or from a Slurm job array, and whether a failed script shows in
// the exit code.
#pragma once
#include <cstdint>

#include "shell/options.h"

struct tclustersetting {
  int64_t part = 0, total = 0;  // (0, 0): parallel loops run all their passes here
  bool exitcode = false;        // end with code 1 when the script stopped on an error
};

// Declares the cluster options (help lines of their own group) and reads them; when no part
// or total is given, a Slurm job array's environment gives them. A value that is no integer
// gives the pair (-1, -1), which every parallel loop refuses, so no pass runs twice.
tclustersetting declareclusteroptions(toptions& o);
