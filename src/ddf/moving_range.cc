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
  segment.arguments.move = {};
  MoveArguments &move = segment.arguments.move;
  RETURN_IF_ERROR(readCurveSpec(making, source, move.curve));
  RETURN_IF_ERROR(skip_separator(source));
  RETURN_IF_ERROR(readRange(making, source, move.from));
  RETURN_IF_ERROR(skip_separator(source));
  return readRange(making, source, move.to);
}

ErrorCode checkMoveSegment(const Generation &making, const Segment &segment) {
  const MoveArguments &move = segment.arguments.move;
  bool touchesZero = touchesZeroInterval(making, move.from) || touchesZeroInterval(making, move.to);
  return touchesZero ? kZeroStartRange : kOk;
}

ErrorCode moveValue(Generation &making, Segment &segment, const Moment &moment, float &value) {
  const MoveArguments &move = segment.arguments.move;
  announceBeatMove(making, move.curve, moment);
  float from = drawFromRange(making.global.random, move.from);
  float to = drawFromRange(making.global.random, move.to);
  value = followCurve(move.curve, moment, from, to);
  return kOk;
}

}  // namespace korvo
