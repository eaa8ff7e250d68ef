// MS: MS(T 1 e [1 2 3] [10 20]).
#include "ddf/arguments.h"
#include "ddf/draw.h"
#include "ddf/generator.h"
#include "ddf/moment.h"
#include "driver/run_state.h"
#include "reader/lexical.h"

ErrorCode readTwoListSegment(RunState &run, SourceReader &source, Segment &segment) {
  ErrorCode error = readCurveSpec(run, source, segment.curve);
  if (error <= 0) {
    error = skip_separator(run, source);
  }
  if (error <= 0) {
    error = readList(run, source, segment.list);
  }
  if (error <= 0) {
    error = skip_separator(run, source);
  }
  if (error <= 0) {
    error = readList(run, source, segment.secondList);
  }
  return error;
}

// The chance of the first list goes from 1 to 0 along the curve. In P2 a curve of the user's own is
// a straight line.
ErrorCode twoListValue(RunState &run, Segment &segment, const Moment &moment, float &value) {
  CurveSpec curve = segment.curve;
  if (moment.event == nullptr) {
    curve.exponent = 1.0F;
  }
  announceBeatMove(run, curve, moment);
  float chance = followCurve(curve, moment, 1.0F, 0.0F);
  const ListSlice &list = chance < drawUnit() ? segment.secondList : segment.list;
  value = run.segments.values.items[list.first + drawIndex(list.count)];
  return kOk;
}
