// HO: HO(8 5), one value for the whole span and no percentage.
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "preproc/source_reader.h"

namespace korvo {

// The error is that of the walk's range: the message has always been shared.
ErrorCode readHoldSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.hold = {};
  return readArgument(making, source, kBadWalkRange, segment.arguments.hold.value);
}

ErrorCode holdValue(Generation & /*making*/, Segment &segment, const Moment & /*moment*/,
                    float &value) {
  value = segment.arguments.hold.value;
  return kOk;
}

}  // namespace korvo
