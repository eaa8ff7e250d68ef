// The line reader hands over every line that begins with `#if(` or `#endif`. The lines of a dropped
// section pass through here unexpanded; only comments and further `#if(` and `#endif` in them are
// looked at, wherever they stand in a line.
#include "preproc/conditional.h"

#include <cstring>

#include "base/characters.h"
#include "base/numbers.h"
#include "preproc/constants.h"
#include "preproc/macro_call.h"
#include "preproc/source_reader.h"

namespace korvo {

namespace {

// Steps over `word` if it stands at the position.
bool takeWord(SourceReader &source, const char *word) {
  std::size_t length = std::strlen(word);
  if (std::strncmp(source.line + source.position, word, length) != 0) {
    return false;
  }
  source.position += static_cast<std::int32_t>(length);
  return true;
}

// What is known of comments in a dropped section: the two kinds independently of each other.
struct DroppedComments {
  bool line = false;
  bool block = false;
};

// The character behind a "#" or behind one of the two words is always stepped over, so the second
// of two words that touch is not seen.
//
// Whether the #endif of the section stands between here and the end of the line; the position is
// then behind it.
bool closesInLine(SourceReader &source, DroppedComments &comments, int outerDepth) {
  while (current(source) != '\0') {
    if (!comments.line && !comments.block && takeWord(source, "#")) {
      if (takeWord(source, "endif")) {
        if (--source.conditional.depth == outerDepth) {
          return true;
        }
      } else if (takeWord(source, "if(")) {
        ++source.conditional.depth;
      }
    }
    const char *text = source.line + source.position;
    if (text[0] == '*' && text[1] == '/') {
      comments.block = false;
    } else if (text[0] == ';') {
      comments.line = true;
    } else if (text[0] == '/' && text[1] == '*') {
      comments.block = true;
    }
    if (*text != '\0') {
      ++source.position;
    }
  }
  return false;
}

// The lines of a dropped section. What an include brings stands between lines of the text that asks
// for it, so those of one text make one stretch. Line 0: the section has none of that text.
struct DroppedLines {
  std::int64_t first[kMaxFiles] = {};
  std::int64_t last[kMaxFiles] = {};
};

void addLine(DroppedLines &lines, const Spot &spot) {
  if (lines.first[spot.file] == 0) {
    lines.first[spot.file] = spot.line;
  }
  lines.last[spot.file] = spot.line;
}

void tellDropped(const SourceReader &source, const DroppedLines &lines) {
  const Listener &listener = source.messages->listener;
  for (int file = 0; listener.dropped != nullptr && file < source.map.fileCount; ++file) {
    if (lines.first[file] > 0) {
      listener.dropped(listener.context, fileName(source.map, file), lines.first[file],
                       lines.last[file]);
    }
  }
}

ErrorCode dropSection(SourceReader &source, int outerDepth, DroppedLines &lines) {
  DroppedComments comments;
  for (bool opensHere = true; !closesInLine(source, comments, outerDepth); opensHere = false) {
    if (!opensHere) {
      addLine(lines, source.origin.spot);
    }
    ErrorCode error = inputEnded(source) ? kEndOfInput : fetchLine(source);
    if (error != kOk) {
      return error == kEndOfInput ? kEndifMissingAtEnd : error;
    }
    comments.line = false;
  }
  return kOk;
}

}  // namespace

ErrorCode ReadIfValue(SourceReader &source, float &value) {
  if (!takeWord(source, "if(")) {
    return kBadIf;
  }
  skipBlanksInLine(source.line, source.position);
  if (current(source) == '$') {
    ++source.position;
    RETURN_IF_ERROR(ExpandMacroCall(source, nullptr, source.line, source.position, 1));
  }
  if (current(source) == '~') {
    ++source.position;
    RETURN_IF_ERROR(ExpandConstRef(source));
  }
  if (!isDigit(current(source)) || !read_float(value, source.line, source.position)) {
    return kIfNeedsValue;
  }
  skipBlanksInLine(source.line, source.position);
  if (current(source) != ')') {
    return kIfNotClosed;
  }
  ++source.position;
  return kOk;
}

ErrorCode OpenConditional(SourceReader &source) {
  ReadIfValue(source, source.conditional.condition);
  int outerDepth = source.conditional.depth++;
  if (source.conditional.condition != 0.0F) {
    return kOk;
  }
  DroppedLines lines;
  ErrorCode error = dropSection(source, outerDepth, lines);
  tellDropped(source, lines);
  return error;
}

ErrorCode CloseConditional(SourceReader &source) {
  if (!takeWord(source, "endif")) {
    return kBadEndif;
  }
  if (source.conditional.depth < 1) {
    return kStrayEndif;
  }
  --source.conditional.depth;
  return kOk;
}

bool NoConditionalOpen(const ConditionalState &state) { return state.depth == 0; }

}  // namespace korvo
