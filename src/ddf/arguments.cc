// Text comes in, a piece of a segment goes out. Everything here reads in the p-field's input mode
// and across line ends, and steps over one separator at a time.
#include "ddf/arguments.h"

#include <utility>

#include "ddf/input_modes.h"
#include "ddf/ranges.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "global/curve.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

// "T": the whole block, or with "*f" the fraction f of it, in beats or as a number of events, as
// the block is measured.
ErrorCode readWholeSpan(RunState &run, SourceReader &source, float &span) {
  float fraction = 1.0F;
  ++source.position;
  if (current(source) == '*') {
    ++source.position;
    bool begins = isDigit(current(source)) || current(source) == '.';
    if (!begins || !read_float(fraction, source.line, source.position)) {
      return kBadTimePercentage;
    }
  }
  float length = run.block.header.length;
  span = length < 0.0F ? -roundHalfUp(fraction * static_cast<float>(run.block.target))
                       : fraction * length;
  if (!run.options.silent) {
    say(run.screen, "\n\tLine %d: T evaluated at = %f", {source.lineCounter, span});
  }
  return kOk;
}

}  // namespace

ErrorCode readSpan(RunState &run, SourceReader &source, float &span) {
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) != '(') {
    return kBadCallStart;
  }
  ++source.position;
  error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) == 'T') {
    error = readWholeSpan(run, source, span);
    if (error > 0) {
      return error;
    }
  } else if (!read_float(span, source.line, source.position)) {
    return kBadSpan;
  }
  return skip_separator(run, source);
}

ErrorCode readArgument(RunState &run, SourceReader &source, ErrorCode missing, float &value) {
  return readValue(run, source.line, source.position, value) ? kOk : missing;
}

ErrorCode readRange(RunState &run, SourceReader &source, Range &range) {
  range.distribution = 0;
  if (current(source) != '[') {
    ErrorCode error = readArgument(run, source, kValueMissing, range.low);
    range.high = range.low;
    return error;
  }
  ++source.position;
  ErrorCode error = skip_separator(run, source);
  if (error > 0) {
    return error;
  }
  range.distribution = takeDistribution(source.line, source.position);
  error = skip_separator(run, source);
  int count = 0;
  while (error <= 0 && (count == 0 || current(source) != ']')) {
    float value = 0.0F;
    error = readArgument(run, source, kBadListValue, value);
    if (error > 0) {
      return error;
    }
    if (count == 2) {
      return kTooManyRangeValues;
    }
    range.low = count == 0 ? value : range.low;
    range.high = value;
    ++count;
    error = skip_separator(run, source);
  }
  if (error > 0) {
    return error;
  }
  ++source.position;
  if (range.low > range.high) {
    std::swap(range.low, range.high);
  }
  return kOk;
}

bool touchesZeroInterval(const RunState &run, const Range &range) {
  return run.pfield.number == 2 && run.segments.span > 0.0F &&
         (range.low == 0.0F || range.high == 0.0F);
}

ErrorCode readList(RunState &run, SourceReader &source, ListSlice &list) {
  Pool<float> &pool = run.segments.values;
  list.first = pool.count;
  list.count = 0;
  bool bracketed = current(source) == '[';
  ErrorCode error = kOk;
  if (bracketed) {
    ++source.position;
    error = skip_separator(run, source);
  }
  while (error <= 0 && (list.count == 0 || (bracketed && current(source) != ']'))) {
    float value = 0.0F;
    error = readArgument(run, source, bracketed ? kBadListValue : kValueMissing, value);
    if (error > 0) {
      return error;
    }
    if (list.count == kMaxListValues) {
      return kBadListValue;
    }
    if (!addValue(pool, value)) {
      return kOutOfMemory;
    }
    ++list.count;
    error = bracketed ? skip_separator(run, source) : kOk;
  }
  if (error > 0) {
    return error;
  }
  source.position += bracketed ? 1 : 0;
  return kOk;
}

ErrorCode readCurveSpec(RunState &run, SourceReader &source, CurveSpec &curve) {
  CurveType type = kLine;
  if (!readCurveLetter(source.line, source.position, type, curve.exponent)) {
    return kBadCurve;
  }
  curve.type = static_cast<float>(type);
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) == '*') {
    if (!(run.segments.span > 0.0F)) {
      return kBeatMoveNotAllowed;
    }
    ++source.position;
    curve.type += kBeatMove;
  }
  return kOk;
}

ErrorCode readSelectionMode(RunState &run, SourceReader &source, SelectionMode &mode) {
  mode = current(source) == '*' ? kExhaustive : current(source) == 'x' ? kNoRepeat : kFree;
  if (mode == kFree) {
    return kOk;
  }
  ++source.position;
  return skip_separator(run, source);
}
