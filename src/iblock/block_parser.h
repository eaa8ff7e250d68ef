// The parser of an i-block, from its "i" to its "}".
#pragma once

#include "base/error_code.h"

namespace korvo {

struct Generation;
struct SourceReader;

// Reads a block and generates its events. kEndOfInput when the block is skipped: its instrument
// number is negative, or the input ends before its first p-field. Errors: 15, 16, 20, 23, 25, 44,
// 70, 71, 73, and those of the header, of the p-fields and of `read_line`. May warn (2, 15).
ErrorCode parseBlock(Generation &making, SourceReader &source);

}  // namespace korvo
