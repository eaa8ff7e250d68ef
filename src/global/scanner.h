// The top-level scanner: the global area between i-blocks.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct GlobalState;
struct SourceReader;

// Reads on from the next line, whatever is left of the present one, executes every global statement
// and stops with the position on the "i" that opens an i-block. kEndOfInput when the input ends
// first. Errors: 3 for a comment left open, 22 for anything that is neither statement, comment nor
// blank, and those of the statements and of `read_line`.
ErrorCode scan_to_next_iblock(SourceReader &source, GlobalState &global);

}  // namespace korvo
