// RA: RA(8 0.5 [1 5] 0.5 [l 10 20]).
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "ddf/ranges.h"
#include "driver/run_state.h"

ErrorCode readRandomSegment(RunState &run, SourceReader &source, Segment &segment) {
  ErrorCode error = readRange(run, source, segment.first);
  if (error > 0) {
    return error;
  }
  return touchesZeroInterval(run, segment.first) ? kZeroStartRange : kOk;
}

ErrorCode randomValue(RunState & /*run*/, Segment &segment, const Moment & /*moment*/,
                      float &value) {
  value = drawFromRange(segment.first);
  return kOk;
}
