// Constants: numbers with a name (`#const tempo 96`), and the references that become numbers in the
// text: `~tempo`, the run's own values `~@1` to `~@4`, and equations `~[ tempo / 2 ]`.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "preproc/name_table.h"
#include "preproc/origins.h"

namespace korvo {

struct SourceReader;

struct Constant : NamedRecord {
  double value = 0.0;
  Spot spot;  // of its name in its definition
};

// Replaces the reference whose "~" stands before the position by its value, and leaves the position
// on the first inserted character. Errors: 32 (the line would grow too long), 106, 108 (the value
// is not finite), 1000, and those of equations.
ErrorCode ExpandConstRef(SourceReader &source);

// The constant whose name stands at the position, which moves behind it. Error 1000 when there is
// none.
ErrorCode LookupConst(SourceReader &source, const Constant *&constant);

// Room for the text of any constant.
inline constexpr int kConstTextBytes = 328;

// The value as it is written into the line: at least three decimals. A fraction that rounds up to a
// whole is written as "1000", so 2.9996 gives "2.1000"; pieces have been tuned to it, and it is
// kept. Returns the end of the text.
char *FormatConstValue(char *out, double value);

void freeConstants(NameTable &table);

}  // namespace korvo
