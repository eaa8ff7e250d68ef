// S2: S2(8 1 * [1:4:7 5 2:6]). Like SE, but an item is a group of values that start together: the
// first goes to the next event, each further one to a copy of that event, so the block grows.
#include "ddf/arguments.h"
#include "ddf/call.h"
#include "ddf/loops.h"
#include "ddf/selection.h"
#include "ddf/value_steps.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "reader/lexical.h"

namespace {

ErrorCode beginS2(RunState &run, SourceReader & /*source*/) {
  return run.pfield.number < 4 ? kS2NeedsP4 : kOk;
}

// One group: a value, and those that ":" or "'" joins to it directly. `left` is what the segment
// has room for.
ErrorCode readGroup(RunState &run, SourceReader &source, ErrorCode missing, std::uint32_t &left,
                    Group &group) {
  SegmentTable &table = run.segments;
  group.values.first = table.values.count;
  do {
    source.position += group.values.count > 0 ? 1 : 0;
    float value = 0.0F;
    ErrorCode error = readArgument(run, source, missing, value);
    if (error > 0) {
      return error;
    }
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
ErrorCode readGroups(RunState &run, SourceReader &source, ListSlice &groups) {
  groups.first = run.segments.groups.count;
  bool bracketed = current(source) == '[';
  ErrorCode error = kOk;
  if (bracketed) {
    ++source.position;
    error = skip_separator(run, source);
    if (error <= 0 && current(source) == ']') {
      return kNothingEntered;
    }
  }
  std::uint32_t left = kMaxListValues;
  while (error <= 0 && (groups.count == 0 || (bracketed && current(source) != ']'))) {
    Group group;
    error = readGroup(run, source, bracketed ? kBadListValue : kValueMissing, left, group);
    if (error > 0) {
      return error;
    }
    if (!addGroup(run.segments.groups, group)) {
      return kOutOfMemory;
    }
    ++groups.count;
    error = bracketed ? skip_separator(run, source) : kOk;
  }
  if (error > 0) {
    return error;
  }
  source.position += bracketed ? 1 : 0;
  return kOk;
}

ErrorCode readS2Segment(RunState &run, SourceReader &source, Segment &segment) {
  ErrorCode error = readSelectionMode(run, source, segment.selection.mode);
  if (error <= 0) {
    error = readGroups(run, source, segment.list);
  }
  return error > 0 ? error : beginSelection(run.segments, segment.selection, segment.list.count);
}

constexpr Generator kS2Arguments = {kS2,    kPercentageExpected, beginS2, readS2Segment, nullptr,
                                    nullptr};

// Gives the values of a group to the next event and to copies of it.
ErrorCode fillGroup(RunState &run, const Group &group) {
  float value = 0.0F;
  for (std::uint32_t i = 0; i < group.values.count; ++i) {
    bool inserts = i > 0;
    run.pfield.insertRequest = inserts;
    run.block.target += inserts ? 1 : 0;
    EventRecord *event = nullptr;
    ErrorCode error = nextEvent(run, event);
    if (error > 0) {
      return error;
    }
    value = run.segments.values.items[group.values.first + i];
    float stored = parameterStep(run, *event, value);
    if (!recordValue(run.pfield, stored)) {
      return kOutOfMemory;
    }
  }
  run.pfield.lastValue = run.pfield.inputMode == kIN ? roundHalfUp(value) : value;
  return kOk;
}

}  // namespace

ErrorCode runS2(RunState &run, SourceReader &source) {
  ErrorCode error = readCall(run, source, kS2Arguments);
  if (error > 0) {
    return error;
  }
  error = insertPending(run);
  if (error > 0) {
    return error;
  }
  Extent extent = measureExtent(run, source);
  for (std::int64_t i = 0; i < extent.count; ++i) {
    if (blockIsFull(run)) {
      truncateData(run, source);
      return kOk;
    }
    Segment &segment = chooseSegment(run.segments);
    std::uint32_t index = selectIndex(run.segments, segment.selection, segment.list.count);
    error = fillGroup(run, run.segments.groups.items[segment.list.first + index]);
    if (error > 0) {
      return error;
    }
  }
  return kOk;
}
