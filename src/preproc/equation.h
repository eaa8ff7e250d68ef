// Equations in brackets: `[ 2 * rows + @1 ]`, worked out strictly from left to right.
#pragma once

#include <cstdint>

#include "base/error_code.h"

namespace korvo {

struct SourceReader;

// Evaluates the equation whose "[" stands at the position; the position is left on its "]". Each
// "?" takes one draw. Errors: 105 (not closed on this line), 106, 107, 108 (terms and operations do
// not match, or more than 30 of either), 500, 1000.
ErrorCode EvaluateEquation(SourceReader &source, double &result);

}  // namespace korvo
