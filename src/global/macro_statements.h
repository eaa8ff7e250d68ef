// The statements that define and forget macros.
//
//   #define name(first, second) #the body, with $first and $second#
//   #undef name
#pragma once

#include "base/error_code.h"

namespace korvo {

struct SourceReader;

// Runs the statement behind a "#" (the position is on the character after it): #define, #undef, or
// an #if(...) or #endif that does not open its line, which are read and have no effect. Errors: 8,
// 32, 80, 81, 84, 88, 91, 114 to 116, 1000, and those of `read_line`.
ErrorCode MacroStatement(SourceReader &source);

}  // namespace korvo
