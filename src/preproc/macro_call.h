// Macro calls: `$name` and `$name(first'second)` become the macro's body. The line reader calls
// this for every call in a line, and the value of an `#if` may be one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "driver/error_code.h"

struct RunState;
struct Screen;
struct SourceReader;
struct ArgumentList;

inline constexpr int kMaxExpansionsInLine = 4096;
inline constexpr int kMaxCallDepth = 64;

// Of a run: macro calls and constant references, the characters that they insert, and the bytes of
// messages behind which nothing is expanded any more.
inline constexpr std::int64_t kMaxExpansionsInRun = 16777216;
inline constexpr std::int64_t kMaxInsertedInRun = 67108864;
inline constexpr std::int64_t kMaxMessagesInRun = 1073741824;

// Counts one expansion that inserts so many characters. False when the run has had too much: a
// short text could otherwise grow into an endless one, and each of its statements may warn with a
// line of 4,000 characters. A text without expansions may say as much as it likes.
bool countExpansion(const Screen &screen, SourceReader &source, std::size_t inserted);

// Replaces the call in `text` (a line buffer) whose "$" stands before the cursor by its expansion,
// and leaves the cursor on the first inserted character. `scope` holds the arguments of the
// enclosing call, which hide macros of the same name; it is null for a call in the line itself.
// `depth` is 1 there and grows with every call inside a call. Errors: 32 (too long, too many, too
// deep), 82, 84, 85, 86, 1000.
ErrorCode ExpandMacroCall(RunState &run, SourceReader &source, const ArgumentList *scope,
                          char *text, std::int32_t &cursor, int depth);
