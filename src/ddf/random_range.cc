// RA: RA(8 0.5 [1 5] 0.5 [l 10 20]).
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/ranges.h"
#include "preproc/source_reader.h"

namespace korvo {

ErrorCode readRandomSegment(Generation &making, SourceReader &source, Segment &segment) {
  RETURN_IF_ERROR(readRange(making, source, segment.first));
  return touchesZeroInterval(making, segment.first) ? kZeroStartRange : kOk;
}

ErrorCode randomValue(Generation &making, Segment &segment, const Moment & /*moment*/,
                      float &value) {
  value = drawFromRange(making.global.random, segment.first);
  return kOk;
}

}  // namespace korvo
