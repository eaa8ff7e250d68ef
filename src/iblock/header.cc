// Items are read one after another by a function each; the first that is missing gives its own
// error.
#include "iblock/header.h"

#include <cstdint>
#include <limits>

#include "base/characters.h"
#include "base/numbers.h"
#include "ddf/generation.h"
#include "ddf/value_steps.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr int kManyPfieldsFrom = 51;
constexpr float kLateStartTime = 240.0F;    // seconds
constexpr float kLongLength = 600.0F;       // beats
constexpr float kLongestLength = 10000.0F;  // beats
constexpr int kSeparatorsBetweenItems = 4;

bool isBlockEnd(const char *text) { return *text == '}'; }

// Up to four separators may stand between two items of a header.
ErrorCode skipSeparators(SourceReader &source) {
  for (int i = 0; i < kSeparatorsBetweenItems; ++i) {
    RETURN_IF_ERROR(skip_separator(source));
  }
  return kOk;
}

ErrorCode readInstrument(SourceReader &source, std::int32_t &instrument) {
  ++source.position;
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  bool begins = current(source) == '-' || isDigit(current(source));
  std::int64_t number = 0;
  if (!begins || !read_long(number, source.line, source.position) ||
      number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::int32_t>::max()) {
    return kBadINumber;
  }
  instrument = static_cast<std::int32_t>(number);
  return kOk;
}

// A block with a negative instrument number is passed over as a whole.
ErrorCode skipBlock(SourceReader &source) {
  RETURN_IF_ERROR(skipTo(source, isBlockEnd));
  next_char(source);
  return kEndOfInput;
}

ErrorCode readPfieldCount(SourceReader &source, BlockState &block) {
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  if (current(source) != '=') {
    return kMissingEquals;
  }
  ++source.position;
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  std::int64_t count = 0;
  if (!read_long(count, source.line, source.position)) {
    return kBadPfieldCount;
  }
  if (count < kMinPfields || count > kMaxPfields) {
    sayError(source, "\n\nERROR: Bad number of p-fields (3 - %d)\n", {kMaxPfields});
    return kContextOnly;
  }
  if (count >= kManyPfieldsFrom) {
    warn(source, kManyPfields);
  }
  block.header.pfieldCount = static_cast<std::int32_t>(count);
  return kOk;
}

ErrorCode readStart(SourceReader &source, BlockState &block) {
  RETURN_IF_ERROR(skipSeparators(source));
  float start = 0.0F;
  if (!read_float(start, source.line, source.position) || start < 0.0F) {
    return kBadStartTime;
  }
  if (start > kLateStartTime) {
    warn(source, kLateStart);
  }
  block.header.start = start;
  return kOk;
}

ErrorCode readEventCount(SourceReader &source, BlockState &block) {
  ++source.position;
  std::uint64_t count = 0;
  if (!read_ulong(count, source.line, source.position)) {
    return kBadEvents;
  }
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  block.target = static_cast<std::int64_t>(count < kMost ? count : kMost);
  block.header.length = -static_cast<float>(block.target);
  return kOk;
}

ErrorCode readBeats(SourceReader &source, BlockState &block) {
  float beats = 0.0F;
  if (!read_float(beats, source.line, source.position) || beats < 0.0F) {
    return kBadBeats;
  }
  block.target = 0;
  block.header.length = beats;
  if (beats > kLongestLength) {
    sayError(source, "\n\nERROR: Line %d: Maximum number of beats = %s\n",
             {source.lineCounter, "10000.000000"});
    return kContextOnly;
  }
  if (beats > kLongLength) {
    warn(source, kLongDuration);
  }
  return kOk;
}

ErrorCode readLength(SourceReader &source, BlockState &block) {
  RETURN_IF_ERROR(skipSeparators(source));
  char c = current(source);
  if (c == '-') {
    return readEventCount(source, block);
  }
  if (isDigit(c) || c == '.' || c == '+') {
    return readBeats(source, block);
  }
  return c == '{' ? kLengthMissing : kBadLength;
}

void beginBlock(Generation &making) {
  for (PfieldFormat &format : making.block.pfields) {
    format = PfieldFormat{};
  }
  releaseEvents(making.events);
  beginEvents(making.events, making.block.header.pfieldCount - kMinPfields);
  startClock(making);
  making.steps = 0;
  tellProgress(making, "", 0);
}

}  // namespace

ErrorCode parseHeader(Generation &making, SourceReader &source) {
  BlockState &block = making.block;
  RETURN_IF_ERROR(readInstrument(source, block.header.instrument));
  if (block.header.instrument < 0) {
    return skipBlock(source);
  }
  RETURN_IF_ERROR(readPfieldCount(source, block));
  RETURN_IF_ERROR(readStart(source, block));
  RETURN_IF_ERROR(readLength(source, block));
  RETURN_IF_ERROR(skipSeparators(source));
  if (current(source) != '{') {
    return kMissingBlockStart;
  }
  ++source.position;
  beginBlock(making);
  return kOk;
}

}  // namespace korvo
