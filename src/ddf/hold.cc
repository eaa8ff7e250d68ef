// HO: HO(8 5), one value for the whole span and no percentage.
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "preproc/source_reader.h"

namespace korvo {

// The error is that of the walk's range: the message has always been shared.
ErrorCode readHoldSegment(Generation &making, SourceReader &source, Segment &segment) {
  return readArgument(making, source, kBadWalkRange, segment.held);
}

ErrorCode holdValue(Generation & /*making*/, Segment &segment, const Moment & /*moment*/,
                    float &value) {
  value = segment.held;
  return kOk;
}

}  // namespace korvo
