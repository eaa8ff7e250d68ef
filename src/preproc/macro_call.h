// Macro calls: `$name` and `$name(first'second)` become the macro's body. The line reader calls
// this for every call in a line, and the value of an `#if` may be one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/error_code.h"

namespace korvo {

struct ExpansionCount;
struct SourceReader;
struct ArgumentList;

inline constexpr int kMaxExpansionsInLine = 4096;
inline constexpr int kMaxCallDepth = 64;

// Of a run: macro calls and constant references, and the characters of these and of what takes
// their place.
inline constexpr std::int64_t kMaxExpansionsInRun = 16777216;
inline constexpr std::int64_t kMaxExpandedInRun = 67108864;

// Whether the run has had no more expansions than it may: a short text could otherwise grow into an
// endless one.
bool mayExpand(const ExpansionCount &spent);

// Counts one expansion that goes through so many characters. False when the run has had too much.
bool countExpansion(ExpansionCount &spent, std::size_t characters);

// Replaces the call in `text` (a line buffer) whose "$" stands before the cursor by its expansion,
// and leaves the cursor on the first inserted character. `scope` holds the arguments of the
// enclosing call, which hide macros of the same name; it is null for a call in the line itself.
// `depth` is 1 there and grows with every call inside a call. Errors: 32 (too long, too many, too
// deep), 82, 84, 85, 86, 1000.
ErrorCode ExpandMacroCall(SourceReader &source, const ArgumentList *scope, char *text,
                          std::int32_t &cursor, int depth);

}  // namespace korvo
