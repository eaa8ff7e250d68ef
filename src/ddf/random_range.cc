// RA: RA(8 0.5 [1 5] 0.5 [l 10 20]).
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/ranges.h"
#include "preproc/source_reader.h"

namespace korvo {

ErrorCode readRandomSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.random = {};
  Range &range = segment.arguments.random.range;
  RETURN_IF_ERROR(readRange(making, source, range));
  return touchesZeroInterval(making, range) ? kZeroStartRange : kOk;
}

ErrorCode randomValue(Generation &making, Segment &segment, const Moment & /*moment*/,
                      float &value) {
  value = drawFromRange(making.global.random, segment.arguments.random.range);
  return kOk;
}

}  // namespace korvo
