// Everything here moves the position forward and nothing else.
#include "reader/lexical.h"

#include <cstdio>

#include "reader/characters.h"
#include "reader/line_reader.h"
#include "reader/source_reader.h"

namespace {

void skipSeparatorCharacter(SourceReader &source) {
  if (source.line[source.position] == '/' || source.line[source.position] == ',') {
    ++source.position;
  }
}

ErrorCode endIsFine(ErrorCode code) { return code == kEndOfInput ? kOk : code; }

}  // namespace

char next_char(SourceReader &source) {
  char c = source.line[source.position];
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
    if (source.line[source.position] != '\0') {
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
    while (source.line[source.position] != '\0') {
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
  ErrorCode error = skip_blanks(run, source);
  if (error != kOk) {
    return endIsFine(error);
  }
  CommentKind kind;
  if (is_comment_start(source, kind)) {
    error = skip_comment(run, source, kind);
    if (error != kOk) {
      return endIsFine(error);
    }
  }
  return endIsFine(skip_blanks(run, source));
}

ErrorCode skip_separator(RunState &run, SourceReader &source) {
  ErrorCode error = skip_blanks(run, source);
  if (error != kOk) {
    return endIsFine(error);
  }
  CommentKind kind;
  if (is_comment_start(source, kind)) {
    error = skip_comment(run, source, kind);
    if (error != kOk) {
      return endIsFine(error);
    }
  }
  skipSeparatorCharacter(source);
  return endIsFine(skip_blanks(run, source));
}
