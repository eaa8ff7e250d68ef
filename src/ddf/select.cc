// SE: SE(8 0.5 [1 2 3] 0.5 * [10 20 30]).
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "ddf/selection.h"
#include "driver/run_state.h"

ErrorCode readSelectSegment(RunState &run, SourceReader &source, Segment &segment) {
  ErrorCode error = readSelectionMode(run, source, segment.selection.mode);
  if (error <= 0) {
    error = readList(run, source, segment.list);
  }
  return error > 0 ? error : beginSelection(run.segments, segment.selection, segment.list.count);
}

ErrorCode selectValue(RunState &run, Segment &segment, const Moment & /*moment*/, float &value) {
  std::uint32_t index = selectIndex(run.segments, segment.selection, segment.list.count);
  value = run.segments.values.items[segment.list.first + index];
  return kOk;
}
