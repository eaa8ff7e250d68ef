// Text comes in, a piece of a segment goes out. Everything here reads in the p-field's input mode
// and across line ends, and steps over one separator at a time.
#include "ddf/arguments.h"

#include <utility>

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/numbers.h"
#include "ddf/generation.h"
#include "ddf/input_modes.h"
#include "ddf/ranges.h"
#include "global/curve.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

// "T": the whole block, or with "*f" the fraction f of it, in beats or as a number of events, as
// the block is measured.
ErrorCode readWholeSpan(Generation &making, SourceReader &source, float &span) {
  float fraction = 1.0F;
  ++source.position;
  if (current(source) == '*') {
    ++source.position;
    bool begins = isDigit(current(source)) || current(source) == '.';
    if (!begins || !read_float(fraction, source.line, source.position)) {
      return kBadTimePercentage;
    }
  }
  float length = making.block.header.length;
  span = length < 0.0F ? -roundHalfUp(fraction * static_cast<float>(making.block.target))
                       : fraction * length;
  if (!making.messages->silent) {
    say(*making.messages, "\n\tLine %d: T evaluated at = %f", {source.lineCounter, span});
  }
  return kOk;
}

}  // namespace

ErrorCode readSpan(Generation &making, SourceReader &source, float &span) {
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) != '(') {
    return kBadCallStart;
  }
  ++source.position;
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) == 'T') {
    RETURN_IF_ERROR(readWholeSpan(making, source, span));
  } else if (!read_float(span, source.line, source.position)) {
    return kBadSpan;
  }
  return skip_separator(source);
}

ErrorCode readArgument(Generation &making, SourceReader &source, ErrorCode missing, float &value) {
  return readValue(making, source.line, source.position, value) ? kOk : missing;
}

ErrorCode readRange(Generation &making, SourceReader &source, Range &range) {
  range.distribution = 0;
  if (current(source) != '[') {
    RETURN_IF_ERROR(readArgument(making, source, kValueMissing, range.low));
    range.high = range.low;
    return kOk;
  }
  ++source.position;
  RETURN_IF_ERROR(skip_separator(source));
  range.distribution = takeDistribution(source.line, source.position);
  RETURN_IF_ERROR(skip_separator(source));
  int count = 0;
  RETURN_IF_ERROR(readToBracket(source, [&] {
    float value = 0.0F;
    RETURN_IF_ERROR(readArgument(making, source, kBadListValue, value));
    if (count == 2) {
      return kTooManyRangeValues;
    }
    range.low = count == 0 ? value : range.low;
    range.high = value;
    ++count;
    return kOk;
  }));
  if (range.low > range.high) {
    std::swap(range.low, range.high);
  }
  return kOk;
}

bool touchesZeroInterval(const Generation &making, const Range &range) {
  return making.pfield.number == 2 && making.segments.span > 0.0F &&
         (range.low == 0.0F || range.high == 0.0F);
}

ErrorCode readList(Generation &making, SourceReader &source, ListSlice &list) {
  Pool<float> &pool = making.segments.values;
  list.first = pool.count;
  list.count = 0;
  return readOneOrMore(source, [&](ErrorCode missing) {
    float value = 0.0F;
    RETURN_IF_ERROR(readArgument(making, source, missing, value));
    if (list.count == kMaxListValues) {
      return kBadListValue;
    }
    ++list.count;
    return addValue(pool, value) ? kOk : kOutOfMemory;
  });
}

ErrorCode readCurveSpec(Generation &making, SourceReader &source, CurveSpec &curve) {
  CurveType type = kLine;
  if (!readCurveLetter(source.line, source.position, type, curve.exponent)) {
    return kBadCurve;
  }
  curve.type = static_cast<float>(type);
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) == '*') {
    if (!(making.segments.span > 0.0F)) {
      return kBeatMoveNotAllowed;
    }
    ++source.position;
    curve.type += kBeatMove;
  }
  return kOk;
}

ErrorCode readSelectionMode(SourceReader &source, SelectionMode &mode) {
  mode = current(source) == '*' ? kExhaustive : current(source) == 'x' ? kNoRepeat : kFree;
  if (mode == kFree) {
    return kOk;
  }
  ++source.position;
  return skip_separator(source);
}

}  // namespace korvo
