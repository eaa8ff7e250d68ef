// RW: RW(8 1 [low high] window start). The walk goes on in steps of at most half the window (a
// fraction of the range) to either side; near the ends the window lies against them. Every call
// begins at its start.
#include <utility>

#include "base/numbers.h"
#include "base/random.h"
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr double kNarrowestWindow = 0.00001;  // a narrower one leaves the walk where it is

// Reads a bound and the separator behind it.
ErrorCode readBound(Generation &making, SourceReader &source, float &bound) {
  RETURN_IF_ERROR(readArgument(making, source, kBadWalkRange, bound));
  return skip_separator(source);
}

// Steps over `bracket` and the separator behind it, if it stands there.
ErrorCode skipBracket(SourceReader &source, char bracket) {
  if (current(source) != bracket) {
    return kOk;
  }
  ++source.position;
  return skip_separator(source);
}

ErrorCode readBounds(Generation &making, SourceReader &source, Range &range) {
  RETURN_IF_ERROR(skipBracket(source, '['));
  RETURN_IF_ERROR(readBound(making, source, range.low));
  RETURN_IF_ERROR(readBound(making, source, range.high));
  RETURN_IF_ERROR(skipBracket(source, ']'));
  if (range.low > range.high) {
    std::swap(range.low, range.high);
  }
  return kOk;
}

float stepWithin(Random &random, float position, float window) {
  float low = position - window / 2.0F;
  float high = position + window / 2.0F;
  if (low < 0.0F) {
    low = 0.0F;
    high = window;
  } else if (high > 1.0F) {
    low = 1.0F - window;
    high = 1.0F;
  }
  return drawUnitWithin(random, low, high);
}

}  // namespace

ErrorCode readWalkSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.walk = {};
  WalkArguments &walk = segment.arguments.walk;
  Range &range = walk.range;
  RETURN_IF_ERROR(readBounds(making, source, range));
  bool readable = read_float(walk.window, source.line, source.position);
  if (!readable || walk.window < 0.0F || walk.window > 1.0F) {
    return kBadWindow;
  }
  RETURN_IF_ERROR(skip_separator(source));
  float start = 0.0F;
  RETURN_IF_ERROR(readArgument(making, source, kBadWalkStart, start));
  if (start < range.low || start > range.high) {
    return kBadWalkStart;
  }
  walk.position = range.low == range.high ? 0.0F : (start - range.low) / (range.high - range.low);
  return kOk;
}

ErrorCode walkValue(Generation &making, Segment &segment, const Moment & /*moment*/, float &value) {
  WalkArguments &walk = segment.arguments.walk;
  const Range &range = walk.range;
  value = range.low + (range.high - range.low) * walk.position;
  if (static_cast<double>(walk.window) < kNarrowestWindow) {
    drawUnit(making.global.random);
  } else {
    walk.position = stepWithin(making.global.random, walk.position, walk.window);
  }
  return kOk;
}

}  // namespace korvo
