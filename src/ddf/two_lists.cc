// MS: MS(T 1 e [1 2 3] [10 20]).
#include "base/random.h"
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/moment.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

ErrorCode readTwoListSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.twoLists = {};
  TwoListArguments &lists = segment.arguments.twoLists;
  RETURN_IF_ERROR(readCurveSpec(making, source, lists.curve));
  RETURN_IF_ERROR(skip_separator(source));
  RETURN_IF_ERROR(readList(making, source, lists.first));
  RETURN_IF_ERROR(skip_separator(source));
  return readList(making, source, lists.second);
}

// The chance of the first list goes from 1 to 0 along the curve. In P2 a curve of the user's own is
// a straight line.
ErrorCode twoListValue(Generation &making, Segment &segment, const Moment &moment, float &value) {
  const TwoListArguments &lists = segment.arguments.twoLists;
  CurveSpec curve = lists.curve;
  if (moment.event == nullptr) {
    curve.exponent = 1.0F;
  }
  announceBeatMove(making, curve, moment);
  float chance = followCurve(curve, moment, 1.0F, 0.0F);
  const ListSlice &list = chance < drawUnit(making.global.random) ? lists.second : lists.first;
  value = making.segments.values.items[list.first + drawIndex(making.global.random, list.count)];
  return kOk;
}

}  // namespace korvo
