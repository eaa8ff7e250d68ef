// RW: RW(8 1 [low high] window start). The walk goes on in steps of at most half the window (a
// fraction of the range) to either side; near the ends the window lies against them. Every call
// begins at its start.
#include <utility>

#include "ddf/arguments.h"
#include "ddf/draw.h"
#include "ddf/generator.h"
#include "driver/run_state.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

constexpr double kNarrowestWindow = 0.00001;  // a narrower one leaves the walk where it is

// Reads a bound and the separator behind it.
ErrorCode readBound(RunState &run, SourceReader &source, float &bound) {
  ErrorCode error = readArgument(run, source, kBadWalkRange, bound);
  return error > 0 ? error : skip_separator(run, source);
}

// Steps over `bracket` and the separator behind it, if it stands there.
ErrorCode skipBracket(RunState &run, SourceReader &source, char bracket) {
  if (current(source) != bracket) {
    return kOk;
  }
  ++source.position;
  return skip_separator(run, source);
}

ErrorCode readBounds(RunState &run, SourceReader &source, Range &range) {
  ErrorCode error = skipBracket(run, source, '[');
  if (error <= 0) {
    error = readBound(run, source, range.low);
  }
  if (error <= 0) {
    error = readBound(run, source, range.high);
  }
  if (error <= 0) {
    error = skipBracket(run, source, ']');
  }
  if (range.low > range.high) {
    std::swap(range.low, range.high);
  }
  return error;
}

float stepWithin(float position, float window) {
  float low = position - window / 2.0F;
  float high = position + window / 2.0F;
  if (low < 0.0F) {
    low = 0.0F;
    high = window;
  } else if (high > 1.0F) {
    low = 1.0F - window;
    high = 1.0F;
  }
  float u = 0.0F;
  do {
    u = drawUnit();
  } while (u < low || u > high);
  return u;
}

}  // namespace

ErrorCode readWalkSegment(RunState &run, SourceReader &source, Segment &segment) {
  Range &range = segment.first;
  ErrorCode error = readBounds(run, source, range);
  if (error > 0) {
    return error;
  }
  bool readable = read_float(segment.window, source.line, source.position);
  if (!readable || segment.window < 0.0F || segment.window > 1.0F) {
    return kBadWindow;
  }
  error = skip_separator(run, source);
  if (error > 0) {
    return error;
  }
  float start = 0.0F;
  error = readArgument(run, source, kBadWalkStart, start);
  if (error > 0) {
    return error;
  }
  if (start < range.low || start > range.high) {
    return kBadWalkStart;
  }
  segment.walkPosition =
      range.low == range.high ? 0.0F : (start - range.low) / (range.high - range.low);
  return kOk;
}

ErrorCode walkValue(RunState & /*run*/, Segment &segment, const Moment & /*moment*/, float &value) {
  const Range &range = segment.first;
  value = range.low + (range.high - range.low) * segment.walkPosition;
  if (static_cast<double>(segment.window) < kNarrowestWindow) {
    drawUnit();
  } else {
    segment.walkPosition = stepWithin(segment.walkPosition, segment.window);
  }
  return kOk;
}
