// SE: SE(8 0.5 [1 2 3] 0.5 * [10 20 30]).
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/selection.h"
#include "preproc/source_reader.h"

namespace korvo {

ErrorCode readSelectSegment(Generation &making, SourceReader &source, Segment &segment) {
  RETURN_IF_ERROR(readSelectionMode(source, segment.selection.mode));
  RETURN_IF_ERROR(readList(making, source, segment.list));
  return beginSelection(making.segments, segment.selection, segment.list.count);
}

ErrorCode selectValue(Generation &making, Segment &segment, const Moment & /*moment*/,
                      float &value) {
  std::uint32_t index =
      selectIndex(making.segments, making.global.random, segment.selection, segment.list.count);
  value = making.segments.values.items[segment.list.first + index];
  return kOk;
}

}  // namespace korvo
