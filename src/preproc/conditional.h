// Conditional sections: `#if(value)` ... `#endif`, each on a line of its own. A section whose value
// is 0 is dropped before any parser sees it. They nest.
#pragma once

#include "driver/error_code.h"

struct RunState;
struct SourceReader;

struct ConditionalState {
  int depth = 0;           // open sections
  float condition = 0.0F;  // the last value that an #if has read
};

// Opens a section, the position on the "i" of "if(", and, when its value is 0, drops the lines up
// to its #endif. A value that cannot be read is no error: the value of the #if before it counts
// again (0 at the start), though an unknown name in it prints its message. Error 117: the input
// ends in a dropped section.
ErrorCode OpenConditional(RunState &run, SourceReader &source);

// Closes a section, the position on the "e" of "endif". Error 118 when none is open, 113 when it is
// not an "endif".
ErrorCode CloseConditional(RunState &run, SourceReader &source);

// Reads `if(value)`; a macro call or a constant may stand for the value. `value` is set as soon as
// the number has been read, whether or not a ")" follows (116). Errors: 114, 115, 116, and those of
// the expansions.
ErrorCode ReadIfValue(RunState &run, SourceReader &source, float &value);

// Whether every section has been closed.
bool NoConditionalOpen(const ConditionalState &state);
