// Everything here moves the position forward and nothing else.
#include "reader/lexical.h"

#include <cstdio>

#include "reader/characters.h"
#include "reader/line_reader.h"
#include "reader/source_reader.h"

namespace {

void skipSeparatorCharacter(SourceReader &source) {
  if (current(source) == '/' || current(source) == ',') {
    ++source.position;
  }
}

// Blanks, one comment if there is one, what `skipMore` skips, blanks.
ErrorCode skipBetween(RunState &run, SourceReader &source, void (*skipMore)(SourceReader &)) {
  ErrorCode error = skip_blanks(run, source);
  CommentKind kind;
  if (error == kOk && is_comment_start(source, kind)) {
    error = skip_comment(run, source, kind);
  }
  if (error == kOk) {
    skipMore(source);
    error = skip_blanks(run, source);
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

void skipBlanksInLine(const char *text, std::int32_t &position) {
  while (isSpace(text[position])) {
    ++position;
  }
}

ErrorCode skip_blanks(RunState &run, SourceReader &source) {
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    if (current(source) != '\0') {
      return kOk;
    }
    if (std::feof(source.input) != 0) {
      return kEndOfInput;
    }
    ErrorCode error = read_line(run, source);
    if (error != kOk) {
      return error;
    }
  }
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

ErrorCode skip_comment(RunState &run, SourceReader &source, CommentKind kind) {
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
      ErrorCode error = read_line(run, source);
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

ErrorCode skipClosedComment(RunState &run, SourceReader &source, CommentKind kind) {
  ErrorCode error = skip_comment(run, source, kind);
  return error == kEndOfInput ? kMissingCommentEnd : error;
}

ErrorCode skip_blanks_and_comments(RunState &run, SourceReader &source) {
  return skipBetween(run, source, [](SourceReader &) {});
}

ErrorCode skip_separator(RunState &run, SourceReader &source) {
  return skipBetween(run, source, skipSeparatorCharacter);
}

ErrorCode openStatement(RunState &run, SourceReader &source) {
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) != '(') {
    return kIllegalStatementStart;
  }
  ++source.position;
  return kOk;
}

ErrorCode skipTo(RunState &run, SourceReader &source, bool (*stops)(const char *text)) {
  while (!stops(source.line + source.position)) {
    CommentKind kind;
    ErrorCode error = kOk;
    if (current(source) == '\0') {
      error = read_line(run, source);
    } else if (is_comment_start(source, kind)) {
      error = skipClosedComment(run, source, kind);
    } else {
      ++source.position;
    }
    if (error != kOk) {
      return error;
    }
  }
  return kOk;
}
