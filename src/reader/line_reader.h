// The line reader: the next physical line of the input, cleaned, with its macro calls and constant
// references expanded.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct SourceReader;

// Reads and prepares the next line; the position is then 0, or behind the directive on a line that
// opened or closed a conditional section. kEndOfInput (line and position untouched) when there is
// none; 9 when the text cannot be read; 32 when the run has said or expanded too much; otherwise
// kOk or an error of the preprocessor: 8, 32, 82, 84 to 86, 105 to 108, 117, 118, 500, 1000.
ErrorCode read_line(SourceReader &source);

}  // namespace korvo
