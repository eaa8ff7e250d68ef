// One run of the program.
#pragma once

// Takes the arguments of `main` and returns the exit status: 0 after a complete run, 1 after any
// error.
int runProgram(int argc, const char *const *argv);
