// The text of a p-field is a run of items: mode names, data functions, comments, loop marks,
// separators, repeats, values.
#include "iblock/pfield.h"

#include <cstdint>

#include "base/characters.h"
#include "base/numbers.h"
#include "ddf/call.h"
#include "ddf/generation.h"
#include "ddf/input_modes.h"
#include "ddf/loops.h"
#include "ddf/value_steps.h"
#include "output/output_kinds.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"
#include "reader/names.h"

namespace korvo {

namespace {

bool endsPfield(const char *text) { return *text == '}' || atPfield(text); }

// The output kind in the parentheses, the position behind the "(".
ErrorCode readOutputKind(Generation &making, SourceReader &source) {
  RETURN_IF_ERROR(skip_blanks(source));
  if (!isOutputKindName(source.line + source.position) ||
      !lookupDdfName(source.line, source.position, making.global.name)) {
    return kBadOutputSpecifier;
  }
  if (making.pfield.number <= 3 && making.global.name.code != kRE) {
    return kMustOutputFloats;
  }
  PfieldFormat &format = making.block.pfields[making.pfield.number];
  format.kind = making.global.name.code;
  if (making.global.name.code == kRE) {
    format.precision = making.global.name.precision;
  } else if (making.global.name.code == kBN) {
    format.fftIndex = making.global.name.fftIndex;
  }
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

ErrorCode readOutputSpecifier(Generation &making, SourceReader &source) {
  making.block.pfields[making.pfield.number] = PfieldFormat{};
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) != '(') {
    return kOk;
  }
  ++source.position;
  return readOutputKind(making, source);
}

// A mode name. "re" also sets the precision of the output, back to 3 without digits, whatever stood
// in parentheses.
ErrorCode changeMode(Generation &making, const InputMode &mode) {
  if (making.pfield.number == 3 && !mode.forDurations) {
    return kBadP3Input;
  }
  if (making.pfield.number == 2 && !mode.forStarts) {
    return kBadP2Input;
  }
  making.pfield.inputMode = mode.code;
  if (mode.code == kRE) {
    making.block.pfields[making.pfield.number].precision = making.global.name.precision;
  }
  return kOk;
}

ErrorCode readName(Generation &making, SourceReader &source) {
  if (!lookupDdfName(source.line, source.position, making.global.name)) {
    return kInvalidCommand;
  }
  const InputMode *mode = findInputMode(making.global.name.code);
  return mode != nullptr ? changeMode(making, *mode)
                         : dispatchDdf(making, source, making.global.name.code);
}

// The last value again, `times` times.
ErrorCode repeatValue(Generation &making, SourceReader &source, std::uint64_t times) {
  for (; times > 0; --times) {
    if (blockIsFull(making)) {
      warn(source, kRepeatTruncated);
      making.pfield.blockEnd = true;
      return kOk;
    }
    float value = making.pfield.lastValue;
    RETURN_IF_ERROR(applyValue(making, source, value));
    if (!recordValue(making.pfield, value)) {
      return kLoopNotRecorded;
    }
  }
  return kOk;
}

// "x" and a number: so many values in all, one of which is there already.
ErrorCode readRepeatCount(Generation &making, SourceReader &source) {
  ++source.position;
  std::uint64_t count = 0;
  if (!isDigit(current(source)) || !read_ulong(count, source.line, source.position)) {
    return kRepeatNeedsDigit;
  }
  return repeatValue(making, source, count > 0 ? count - 1 : 0);
}

// ":" or "'": the next value starts together with the one before it, in an event that is inserted
// for it. It may stand once in a p-field; before the first value it has nothing to start together
// with, and is dropped.
ErrorCode readMark(Generation &making, SourceReader &source) {
  ++source.position;
  if (making.pfield.marked) {
    return kMultipleMarks;
  }
  making.pfield.marked = true;
  if (making.pfield.filled > 0) {
    making.pfield.insertRequest = true;
    making.block.target += making.pfield.number > 2 ? 1 : 0;
  }
  return kOk;
}

ErrorCode readDataValue(Generation &making, SourceReader &source) {
  if (!findInputMode(making.pfield.inputMode)->mayBegin(current(source))) {
    return kDataOutOfBounds;
  }
  if (blockIsFull(making)) {
    warn(source, kEventsNotAdded);
    making.pfield.blockEnd = true;
    return kOk;
  }
  float value = 0.0F;
  if (!readValue(making, source.line, source.position, value)) {
    return kBadValue;
  }
  making.pfield.lastValue = value;
  return repeatValue(making, source, 1);
}

ErrorCode readData(Generation &making, SourceReader &source) {
  switch (current(source)) {
    case ',':
      ++source.position;
      return kOk;
    case '\'':
    case ':':
      return readMark(making, source);
    case '/':
      ++source.position;
      return repeatValue(making, source, 1);
    case 'x':
      return readRepeatCount(making, source);
    default:
      return readDataValue(making, source);
  }
}

ErrorCode readItem(Generation &making, SourceReader &source) {
  CommentKind kind;
  if (mayBeginName(current(source)) && isPfieldName(source.line, source.position)) {
    return readName(making, source);
  }
  if (is_comment_start(source, kind)) {
    return skipClosedComment(source, kind);
  }
  if (current(source) == '<' || current(source) == '>') {
    if (!loopMarker(making.pfield, current(source))) {
      return kBadLoop;
    }
    ++source.position;
    return kOk;
  }
  return readData(making, source);
}

// Moves on to the next item, or to the end of the p-field when the block is full. Error 5 when the
// input ends.
ErrorCode skipToItem(Generation &making, SourceReader &source) {
  ErrorCode error = making.pfield.blockEnd ? skipTo(source, endsPfield) : skip_blanks(source);
  return error == kEndOfInput ? kInputEndsInBlock : error;
}

ErrorCode readItems(Generation &making, SourceReader &source) {
  for (;;) {
    RETURN_IF_ERROR(skipToItem(making, source));
    if (endsPfield(source.line + source.position)) {
      return kOk;
    }
    RETURN_IF_ERROR(readItem(making, source));
  }
}

// Fills what is left, and tells when the values have made the block longer than its header says.
ErrorCode finishPfield(Generation &making, SourceReader &source, std::int64_t targetBefore) {
  int number = making.pfield.number;
  if (!making.pfield.dataSeen) {
    sayError(source, "\nERROR: P%d is blank ... OY!\n\n", {number});
    return kAlreadyReported;
  }
  RETURN_IF_ERROR(completePfield(making, source));
  if (number >= 3 && making.block.header.length < 0.0F && making.block.target != targetBefore) {
    say(*making.messages, "\n\tP%d: Fused data changed \"events\" from %d to %d",
        {number, targetBefore, making.block.target});
  }
  return kOk;
}

}  // namespace

bool atPfield(const char *text) { return text[0] == 'p' && isDigit(text[1]); }

ErrorCode parsePfield(Generation &making, SourceReader &source) {
  std::int64_t targetBefore = making.block.target;
  RETURN_IF_ERROR(readOutputSpecifier(making, source));
  RETURN_IF_ERROR(readItems(making, source));
  return finishPfield(making, source, targetBefore);
}

}  // namespace korvo
