// Reading the arguments of data functions: the span, and the pieces that several kinds share.
// Besides the errors named, each returns those of `read_line`.
#pragma once

#include <cstdint>

#include "ddf/segment_table.h"
#include "driver/error_code.h"

struct RunState;
struct SourceReader;

// From behind the name of a data function to behind the separator after its span. The span is a
// number of beats, minus a number of events, or "T" (the whole block) with an optional factor "*f".
// Errors 36, 40, 53.
ErrorCode readSpan(RunState &run, SourceReader &source, float &span);

// A value in the p-field's input mode; `missing` when there is none.
ErrorCode readArgument(RunState &run, SourceReader &source, ErrorCode missing, float &value);

// A range: a value, or in brackets an optional distribution letter and one or two values in any
// order. Errors 37, 39, 41.
ErrorCode readRange(RunState &run, SourceReader &source, Range &range);

// Whether a range would give P2 start intervals of 0 in a call whose span is in beats, where none
// are allowed.
bool touchesZeroInterval(const RunState &run, const Range &range);

// A list: a value, or any number of values (at least one) in brackets. Errors 32, 39 (also beyond
// kMaxListValues), 41.
ErrorCode readList(RunState &run, SourceReader &source, ListSlice &list);

// The optional curve of MO and MS: a letter, "v" with its exponent, then "*" for a move measured in
// beats. Errors 63, 64.
ErrorCode readCurveSpec(RunState &run, SourceReader &source, CurveSpec &curve);

// The optional mark of SE and S2: "*" or "x", with the separator behind it.
ErrorCode readSelectionMode(RunState &run, SourceReader &source, SelectionMode &mode);
