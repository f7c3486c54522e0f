// The program from start to end: options, script variables, registration, macro, run.
#pragma once

// Returns the exit code of a normal end; halt and help leave the process by themselves.
int runprogram(int argc, char** argv);
