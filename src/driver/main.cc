#include "driver/run.h"

int main(int argc, char **argv) { return runKorvo(argc, argv); }
