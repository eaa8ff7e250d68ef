// One p-field: `p5(re4) no c4 e4 RA(T 1 [c4 c5])`, its number, how it is written, and what fills
// it.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct Generation;
struct SourceReader;

// Whether a p-field begins here: "p" and a digit.
bool atPfield(const char *text);

// Reads the p-field that has been begun, the position behind its number, up to the next p-field or
// the "}". Its values reach the events in the order in which they stand; the events left over are
// completed at the end. Errors: 5, 17 to 21, 23 to 27, 32, 43, 45, 49, 54, 999, and those of the
// data functions and of `read_line`. May warn (10, 12).
ErrorCode parsePfield(Generation &making, SourceReader &source);

}  // namespace korvo
