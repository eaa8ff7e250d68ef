// The program is one call, so that tests and fuzzers can make it too.
#include "program/run.h"

int main(int argc, char **argv) { return runProgram(argc, argv); }
