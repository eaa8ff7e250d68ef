// Reading the arguments of data functions: the span, and the pieces that several kinds share.
// Besides the errors named, each returns those of `read_line`.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "ddf/segment_table.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

struct Generation;

// From behind the name of a data function to behind the separator after its span. The span is a
// number of beats, minus a number of events, or "T" (the whole block) with an optional factor "*f".
// Errors 36, 40, 53.
ErrorCode readSpan(Generation &making, SourceReader &source, float &span);

// A value in the p-field's input mode; `missing` when there is none.
ErrorCode readArgument(Generation &making, SourceReader &source, ErrorCode missing, float &value);

// A range: a value, or in brackets an optional distribution letter and one or two values in any
// order. Errors 37, 39, 41.
ErrorCode readRange(Generation &making, SourceReader &source, Range &range);

// Whether a range would give P2 start intervals of 0 in a call whose span is in beats, where none
// are allowed.
bool touchesZeroInterval(const Generation &making, const Range &range);

// A list: a value, or any number of values (at least one) in brackets. Errors 32, 39 (also beyond
// kMaxListValues), 41.
ErrorCode readList(Generation &making, SourceReader &source, ListSlice &list);

// The optional curve of MO and MS: a letter, "v" with its exponent, then "*" for a move measured in
// beats. Errors 63, 64.
ErrorCode readCurveSpec(Generation &making, SourceReader &source, CurveSpec &curve);

// The optional mark of SE and S2: "*" or "x", with the separator behind it.
ErrorCode readSelectionMode(SourceReader &source, SelectionMode &mode);

// Items up to and with the "]", at least one; `readItem` reads one of them.
template <typename ReadItem>
ErrorCode readToBracket(SourceReader &source, ReadItem readItem) {
  do {
    RETURN_IF_ERROR(readItem());
    RETURN_IF_ERROR(skip_separator(source));
  } while (current(source) != ']');
  ++source.position;
  return kOk;
}

// One item, or any number of them (at least one) in brackets; `readItem` is handed the error for
// one that is missing: 41 or, in brackets, 39.
template <typename ReadItem>
ErrorCode readOneOrMore(SourceReader &source, ReadItem readItem) {
  if (current(source) != '[') {
    return readItem(kValueMissing);
  }
  ++source.position;
  RETURN_IF_ERROR(skip_separator(source));
  return readToBracket(source, [&] { return readItem(kBadListValue); });
}

}  // namespace korvo
