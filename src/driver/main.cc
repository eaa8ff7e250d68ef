// The program is one call, so that tests and fuzzers can make it too.
#include "driver/run.h"

int main(int argc, char **argv) { return runKorvo(argc, argv); }
