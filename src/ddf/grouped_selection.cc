// S2: S2(8 1 * [1:4:7 5 2:6]). Like SE, but an item is a group of values that start together: the
// first goes to the next event, each further one to a copy of that event, so the block grows.
#include "base/arithmetic.h"
#include "ddf/arguments.h"
#include "ddf/call.h"
#include "ddf/generation.h"
#include "ddf/loops.h"
#include "ddf/selection.h"
#include "ddf/value_steps.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

ErrorCode beginS2(Generation &making, SourceReader & /*source*/) {
  return making.pfield.number < 4 ? kS2NeedsP4 : kOk;
}

// One group: a value, and those that ":" or "'" joins to it directly. `left` is what the segment
// has room for.
ErrorCode readGroup(Generation &making, SourceReader &source, ErrorCode missing,
                    std::uint32_t &left, Group &group) {
  SegmentTable &table = making.segments;
  group.values.first = table.values.count;
  do {
    source.position += group.values.count > 0 ? 1 : 0;
    float value = 0.0F;
    RETURN_IF_ERROR(readArgument(making, source, missing, value));
    if (left == 0) {
      return kBadListValue;
    }
    --left;
    if (!addValue(table.values, value)) {
      return kOutOfMemory;
    }
    ++group.values.count;
  } while (current(source) == ':' || current(source) == '\'');
  return kOk;
}

// The groups of a segment: one, or any number in brackets.
ErrorCode readGroups(Generation &making, SourceReader &source, ListSlice &groups) {
  groups.first = making.segments.groups.count;
  std::uint32_t left = kMaxListValues;
  return readOneOrMore(source, [&](ErrorCode missing) {
    if (groups.count == 0 && missing == kBadListValue && current(source) == ']') {
      return kNothingEntered;
    }
    Group group;
    RETURN_IF_ERROR(readGroup(making, source, missing, left, group));
    ++groups.count;
    return addGroup(making.segments.groups, group) ? kOk : kOutOfMemory;
  });
}

ErrorCode readS2Segment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.select = {};
  SelectArguments &select = segment.arguments.select;
  RETURN_IF_ERROR(readSelectionMode(source, select.selection.mode));
  RETURN_IF_ERROR(readGroups(making, source, select.items));
  return beginSelection(making.segments, select.selection, select.items.count);
}

constexpr Generator kS2Arguments = {kS2,    kPercentageExpected, beginS2, readS2Segment, nullptr,
                                    nullptr};

// Gives the values of a group to the next event and to copies of it.
ErrorCode fillGroup(Generation &making, const Group &group) {
  float value = 0.0F;
  for (std::uint32_t i = 0; i < group.values.count; ++i) {
    bool inserts = i > 0;
    making.pfield.insertRequest = inserts;
    making.block.target += inserts ? 1 : 0;
    EventRecord *event = nullptr;
    RETURN_IF_ERROR(nextEvent(making, event));
    value = making.segments.values.items[group.values.first + i];
    float stored = parameterStep(making, *event, value);
    if (!recordValue(making.pfield, stored)) {
      return kOutOfMemory;
    }
  }
  making.pfield.lastValue = making.pfield.inputMode == kIN ? roundHalfUp(value) : value;
  return kOk;
}

}  // namespace

ErrorCode runS2(Generation &making, SourceReader &source) {
  RETURN_IF_ERROR(readCall(making, source, kS2Arguments));
  RETURN_IF_ERROR(insertPending(making));
  Extent extent = measureExtent(making, source);
  for (std::int64_t i = 0; i < extent.count; ++i) {
    if (blockIsFull(making)) {
      truncateData(making, source);
      return kOk;
    }
    SelectArguments &select = chooseSegment(making.segments, making.global.random).arguments.select;
    std::uint32_t index =
        selectIndex(making.segments, making.global.random, select.selection, select.items.count);
    RETURN_IF_ERROR(fillGroup(making, making.segments.groups.items[select.items.first + index]));
  }
  return kOk;
}

}  // namespace korvo
