// SE: SE(8 0.5 [1 2 3] 0.5 * [10 20 30]).
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "ddf/selection.h"
#include "preproc/source_reader.h"

namespace korvo {

ErrorCode readSelectSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.select = {};
  SelectArguments &select = segment.arguments.select;
  RETURN_IF_ERROR(readSelectionMode(source, select.selection.mode));
  RETURN_IF_ERROR(readList(making, source, select.items));
  return beginSelection(making.segments, select.selection, select.items.count);
}

ErrorCode selectValue(Generation &making, Segment &segment, const Moment & /*moment*/,
                      float &value) {
  SelectArguments &select = segment.arguments.select;
  std::uint32_t index =
      selectIndex(making.segments, making.global.random, select.selection, select.items.count);
  value = making.segments.values.items[select.items.first + index];
  return kOk;
}

}  // namespace korvo
