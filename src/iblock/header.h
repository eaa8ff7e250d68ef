// The header of an i-block: `i1 = 6 0 -12 {`, the instrument, the number of p-fields, the start in
// seconds and the length in beats or, behind "-", as a number of events.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct Generation;
struct SourceReader;

// Reads a header, the position on its "i", up to and with its "{", and makes the block ready for
// its p-fields. kEndOfInput for a negative instrument number: everything up to the next "}" has
// then been skipped. Errors: 11 to 14, 25, 30, 34, 35, 120, 121, 1000, and those of `read_line`.
// May warn (19, 20, 21).
ErrorCode parseHeader(Generation &making, SourceReader &source);

}  // namespace korvo
