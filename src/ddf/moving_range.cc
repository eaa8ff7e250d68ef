// MO: MO(T 1 l [0 1] [10 20]).
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "ddf/moment.h"
#include "ddf/ranges.h"
#include "driver/run_state.h"
#include "reader/lexical.h"

ErrorCode readMoveSegment(RunState &run, SourceReader &source, Segment &segment) {
  ErrorCode error = readCurveSpec(run, source, segment.curve);
  if (error <= 0) {
    error = skip_separator(run, source);
  }
  if (error <= 0) {
    error = readRange(run, source, segment.first);
  }
  if (error <= 0) {
    error = skip_separator(run, source);
  }
  if (error <= 0) {
    error = readRange(run, source, segment.second);
  }
  return error;
}

ErrorCode checkMoveSegment(const RunState &run, const Segment &segment) {
  bool touchesZero =
      touchesZeroInterval(run, segment.first) || touchesZeroInterval(run, segment.second);
  return touchesZero ? kZeroStartRange : kOk;
}

ErrorCode moveValue(RunState &run, Segment &segment, const Moment &moment, float &value) {
  announceBeatMove(run, segment.curve, moment);
  float from = drawFromRange(segment.first);
  float to = drawFromRange(segment.second);
  value = followCurve(segment.curve, moment, from, to);
  return kOk;
}
