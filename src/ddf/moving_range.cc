// MO: MO(T 1 l [0 1] [10 20]).
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/moment.h"
#include "ddf/ranges.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

ErrorCode readMoveSegment(Generation &making, SourceReader &source, Segment &segment) {
  RETURN_IF_ERROR(readCurveSpec(making, source, segment.curve));
  RETURN_IF_ERROR(skip_separator(source));
  RETURN_IF_ERROR(readRange(making, source, segment.first));
  RETURN_IF_ERROR(skip_separator(source));
  return readRange(making, source, segment.second);
}

ErrorCode checkMoveSegment(const Generation &making, const Segment &segment) {
  bool touchesZero =
      touchesZeroInterval(making, segment.first) || touchesZeroInterval(making, segment.second);
  return touchesZero ? kZeroStartRange : kOk;
}

ErrorCode moveValue(Generation &making, Segment &segment, const Moment &moment, float &value) {
  announceBeatMove(making, segment.curve, moment);
  float from = drawFromRange(making.global.random, segment.first);
  float to = drawFromRange(making.global.random, segment.second);
  value = followCurve(segment.curve, moment, from, to);
  return kOk;
}

}  // namespace korvo
