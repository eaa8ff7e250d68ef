// Everything here moves the position forward and nothing else.
#include "reader/lexical.h"

#include "base/characters.h"
#include "preproc/source_reader.h"
#include "reader/line_reader.h"

namespace korvo {

namespace {

void skipSeparatorCharacter(SourceReader &source) {
  if (current(source) == '/' || current(source) == ',') {
    ++source.position;
  }
}

// Blanks, one comment if there is one, what `skipMore` skips, blanks.
ErrorCode skipBetween(SourceReader &source, void (*skipMore)(SourceReader &)) {
  ErrorCode error = skip_blanks(source);
  CommentKind kind;
  if (error == kOk && is_comment_start(source, kind)) {
    error = skip_comment(source, kind);
  }
  if (error == kOk) {
    skipMore(source);
    error = skip_blanks(source);
  }
  return error == kEndOfInput ? kOk : error;
}

}  // namespace

char next_char(SourceReader &source) {
  char c = current(source);
  if (c != '\0') {
    ++source.position;
  }
  return c;
}

ErrorCode skipToNextText(SourceReader &source) {
  while (current(source) == '\0') {
    if (inputEnded(source)) {
      return kEndOfInput;
    }
    ErrorCode error = read_line(source);
    if (error != kOk) {
      return error;
    }
    skipBlanksInLine(source.line, source.position);
  }
  return kOk;
}

bool is_comment_start(const SourceReader &source, CommentKind &kind) {
  const char *text = source.line + source.position;
  if (text[0] == ';') {
    kind = kSemicolonComment;
    return true;
  }
  kind = kNestingComment;
  return text[0] == '/' && text[1] == '*';
}

ErrorCode skip_comment(SourceReader &source, CommentKind kind) {
  if (kind == kSemicolonComment) {
    while (current(source) != '\0') {
      ++source.position;
    }
    return kOk;
  }
  source.position += 2;
  for (int depth = 1; depth > 0;) {
    const char *text = source.line + source.position;
    if (text[0] == '\0') {
      ErrorCode error = read_line(source);
      if (error != kOk) {
        return error;
      }
    } else if (text[0] == '/' && text[1] == '*') {
      ++depth;
      source.position += 2;
    } else if (text[0] == '*' && text[1] == '/') {
      --depth;
      source.position += 2;
    } else {
      ++source.position;
    }
  }
  return kOk;
}

ErrorCode skipClosedComment(SourceReader &source, CommentKind kind) {
  ErrorCode error = skip_comment(source, kind);
  return error == kEndOfInput ? kMissingCommentEnd : error;
}

ErrorCode skip_blanks_and_comments(SourceReader &source) {
  return skipBetween(source, [](SourceReader &) {});
}

ErrorCode skip_separator(SourceReader &source) {
  return skipBetween(source, skipSeparatorCharacter);
}

ErrorCode openStatement(SourceReader &source) {
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) != '(') {
    return kIllegalStatementStart;
  }
  ++source.position;
  return kOk;
}

ErrorCode skipTo(SourceReader &source, bool (*stops)(const char *text)) {
  while (!stops(source.line + source.position)) {
    CommentKind kind;
    ErrorCode error = kOk;
    if (current(source) == '\0') {
      error = read_line(source);
    } else if (is_comment_start(source, kind)) {
      error = skipClosedComment(source, kind);
    } else {
      ++source.position;
    }
    if (error != kOk) {
      return error;
    }
  }
  return kOk;
}

}  // namespace korvo
