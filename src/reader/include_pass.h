// The include pass: the whole input copied into one file, with every included file spliced in. It
// runs before anything is parsed, so line numbers in messages count the lines of the whole text.
#pragma once

#include <cstdio>

#include "driver/error_code.h"

struct RunState;

// Copies `input` into `copy`. `counter` is the number of files begun so far, the main input
// included; the pass never copies more than twelve, and none that the run writes. Prints its own
// messages; a positive result (1, or 999) means that it has failed.
ErrorCode include_pass(RunState &run, std::FILE *input, std::FILE *copy, int &counter);
