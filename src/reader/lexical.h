// The small steps that all parsers share: over blanks, comments and separators, across line ends
// where that is allowed. Besides what is said below, each returns the errors of `read_line` when it
// needs a further line.
#pragma once

#include <cstdint>

#include "base/characters.h"
#include "base/error_code.h"
#include "preproc/source_reader.h"

namespace korvo {

enum CommentKind { kSemicolonComment, kNestingComment };

// The character at the position; steps over it. The NUL at the end of the line is never stepped
// over.
char next_char(SourceReader &source);

// Reads on from the end of a line to the next character that is no white space. kEndOfInput when the
// input ends first, with the position on the NUL.
ErrorCode skipToNextText(SourceReader &source);

// White space, further lines included; stops on the first other character. kEndOfInput as above.
inline ErrorCode skip_blanks(SourceReader &source) {
  skipBlanksInLine(source.line, source.position);
  return current(source) != '\0' ? kOk : skipToNextText(source);
}

// Whether a comment begins at the position, and which kind.
bool is_comment_start(const SourceReader &source, CommentKind &kind);

// One comment that begins at the position. ";" lasts to the end of the line; "/*" nests and may
// last over many lines. kEndOfInput when the input ends inside it.
ErrorCode skip_comment(SourceReader &source, CommentKind kind);

// As skip_comment, where the end of the input inside the comment is error 25.
ErrorCode skipClosedComment(SourceReader &source, CommentKind kind);

// Blanks, at most one comment, blanks. The end of the input counts as success.
ErrorCode skip_blanks_and_comments(SourceReader &source);

// Blanks, at most one comment, one "," or one "/" (a comment may be followed by one of these),
// blanks. The end of the input counts as success.
ErrorCode skip_separator(SourceReader &source);

// The "(" behind the name of a statement, blanks before it. Error 96 when something else stands
// there.
ErrorCode openStatement(SourceReader &source);

// Skips text and comments up to a place where `stops` says so, reading further lines. kEndOfInput
// when the input ends first. Error 25 for a comment left open, and those of `read_line`.
ErrorCode skipTo(SourceReader &source, bool (*stops)(const char *text));

}  // namespace korvo
