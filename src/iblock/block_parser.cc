// A header, statements, p-fields, a brace. The parser keeps the order of the p-fields and leaves
// what stands in them to their own room.
#include "iblock/block_parser.h"

#include "base/characters.h"
#include "base/numbers.h"
#include "ddf/generation.h"
#include "ddf/loops.h"
#include "global/settings.h"
#include "iblock/header.h"
#include "iblock/pfield.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"
#include "reader/names.h"

namespace korvo {

namespace {

// P2 comes first, the others in any order, each once. Whoever begins with p0 or p1 is told that P2
// comes first, too.
ErrorCode checkPfieldNumber(const BlockState &block, int number) {
  if (number > block.header.pfieldCount) {
    return kPfieldOutOfBounds;
  }
  if (number != 2 && !block.pfields[2].given) {
    return kP2MustBeFirst;
  }
  if (number < 2) {
    return kBadPfieldNumber;
  }
  return block.pfields[number].given ? kDuplicatePfield : kOk;
}

ErrorCode parseNumberedPfield(Generation &making, SourceReader &source) {
  if (making.pfield.looping) {
    warn(source, kLoopTerminated);
  }
  ++source.position;
  int number = 0;
  if (!read_short(number, source.line, source.position)) {
    return kBadPfieldNumber;
  }
  RETURN_IF_ERROR(checkPfieldNumber(making.block, number));
  beginPfield(making, number);
  RETURN_IF_ERROR(parsePfield(making, source));
  making.block.pfields[number].given = true;
  if (number == 2) {
    making.block.target = making.pfield.filled;
  }
  return kOk;
}

ErrorCode closeBlock(const Generation &making, SourceReader &source) {
  for (int number = 2; number <= making.block.header.pfieldCount; ++number) {
    if (!making.block.pfields[number].given) {
      return kPfieldsSkipped;
    }
  }
  ++source.position;
  return kOk;
}

ErrorCode runBlockStatement(Generation &making, SourceReader &source) {
  if (!isBlockName(source.line, source.position)) {
    return kInvalidBlockCommand;
  }
  if (!lookupDdfName(source.line, source.position, making.global.name)) {
    return kInvalidCommand;
  }
  switch (making.global.name.code) {
    case kRD:
      return readRD(source, making.global.settings);
    case kRS:
      return readRS(source, making.global.random);
    default:
      return kBadValue;
  }
}

// The statements and comments before a p-field, up to that p-field or the end of the line.
ErrorCode runBlockStatements(Generation &making, SourceReader &source) {
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    if (current(source) == '\0' || atPfield(source.line + source.position)) {
      return kOk;
    }
    CommentKind kind;
    RETURN_IF_ERROR(is_comment_start(source, kind) ? skipClosedComment(source, kind)
                                                   : runBlockStatement(making, source));
  }
}

}  // namespace

ErrorCode parseBlock(Generation &making, SourceReader &source) {
  for (;;) {
    if (current(source) == '\0') {
      ErrorCode error = read_line(source);
      if (error != kOk) {
        return error;
      }
    }
    skipBlanksInLine(source.line, source.position);
    char c = current(source);
    if (c == 'i') {
      ErrorCode error = parseHeader(making, source);
      if (error == kEndOfInput) {
        warn(source, kBlockSkipped);
      }
      if (error != kOk) {
        return error;
      }
    } else if (atPfield(source.line + source.position)) {
      RETURN_IF_ERROR(parseNumberedPfield(making, source));
    } else if (c == '}') {
      return closeBlock(making, source);
    } else {
      RETURN_IF_ERROR(runBlockStatements(making, source));
    }
  }
}

}  // namespace korvo
