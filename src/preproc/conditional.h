// Conditional sections: `#if(value)` ... `#endif`, each on a line of its own. A section whose value
// is 0 is dropped before any parser sees it. They nest.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct ConditionalState;
struct SourceReader;

// Opens a section, the position on the "i" of "if(", and, when its value is 0, drops the lines up
// to its #endif and tells the listener which these were. A value that cannot be read is no error:
// the value of the #if before it counts again (0 at the start), though an unknown name in it prints
// its message. Error 117: the input ends in a dropped section.
ErrorCode OpenConditional(SourceReader &source);

// Closes a section, the position on the "e" of "endif". Error 118 when none is open, 113 when it is
// not an "endif".
ErrorCode CloseConditional(SourceReader &source);

// Reads `if(value)`; a macro call or a constant may stand for the value. `value` is set as soon as
// the number has been read, whether or not a ")" follows (116). Errors: 114, 115, 116, and those of
// the expansions.
ErrorCode ReadIfValue(SourceReader &source, float &value);

// Whether every section has been closed.
bool NoConditionalOpen(const ConditionalState &state);

}  // namespace korvo
