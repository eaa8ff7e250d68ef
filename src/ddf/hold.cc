// HO: HO(8 5), one value for the whole span and no percentage.
#include "ddf/arguments.h"
#include "ddf/generator.h"

// The error is that of the walk's range: the message has always been shared.
ErrorCode readHoldSegment(RunState &run, SourceReader &source, Segment &segment) {
  return readArgument(run, source, kBadWalkRange, segment.held);
}

ErrorCode holdValue(RunState & /*run*/, Segment &segment, const Moment & /*moment*/, float &value) {
  value = segment.held;
  return kOk;
}
