// The statement that defines a constant: `#const tempo 96`.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct SourceReader;

// Runs the statement behind a "#" (the position is on the character after it). With anything but a
// lower-case "c" there nothing is consumed. Errors: 80, 100, 102, 103, 109, 500, 1000, and those of
// `read_line`.
ErrorCode ConstStatement(SourceReader &source);

}  // namespace korvo
