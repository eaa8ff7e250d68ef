#include "reader/lexical.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

TEST(Lexical, NextCharStepsOverWhatItGives) {
  Piece piece("ab\n");
  piece.read();
  EXPECT_EQ(next_char(piece.source), 'a');
  EXPECT_EQ(next_char(piece.source), 'b');
  EXPECT_EQ(next_char(piece.source), ' ');
  EXPECT_EQ(piece.source.position, 3);
}

// What a skipping step comes to when the first line of `text` has been read.
struct Skipped {
  ErrorCode result;
  std::string rest;
  std::int64_t line;
};
using Step = ErrorCode (*)(SourceReader &);

Skipped skip(Step step, const char *text, std::int32_t position = 0) {
  Piece piece(text);
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = position;
  ErrorCode result = step(piece.source);
  return {result, piece.rest(), piece.source.lineCounter};
}

struct SkipRow {
  const char *text;
  ErrorCode result;
  const char *rest;
  std::int64_t line;
};

template <std::size_t kCount>
void check(Step step, const SkipRow (&rows)[kCount]) {
  for (const SkipRow &row : rows) {
    SCOPED_TRACE("\"" + std::string(row.text) + "\"");
    Skipped skipped = skip(step, row.text);
    EXPECT_EQ(skipped.result, row.result);
    EXPECT_EQ(skipped.rest, row.rest);
    EXPECT_EQ(skipped.line, row.line);
  }
}

TEST(Lexical, SkipBlanks) {
  const SkipRow kRows[] = {
      {"x", kOk, "x", 1},           {"  x y", kOk, "x y", 1},
      {" \t\v\f\r x", kOk, "x", 1}, {"\n\n  \n x\n", kOk, "x ", 4},
      {"  ; x", kOk, "; x", 1},     {"  , x", kOk, ", x", 1},
      {" ", kEndOfInput, "", 1},    {"  \n\n \n", kEndOfInput, "", 3},
  };
  check(skip_blanks, kRows);
}

TEST(Lexical, SkipBlanksReturnsTheErrorOfALine) {
  Skipped skipped = skip(skip_blanks, " \n x $nobody\n");
  EXPECT_EQ(skipped.result, kContextOnly);
  EXPECT_EQ(skipped.line, 2);
  EXPECT_EQ(skip(skip_blanks, " \n#endif\n").result, kStrayEndif);
}

TEST(Lexical, SkipBlanksAtTheEndOfTheInputComesBack) {
  Piece piece("x");
  piece.read();
  piece.source.position = 1;
  EXPECT_EQ(skip_blanks(piece.source), kEndOfInput);
  EXPECT_EQ(piece.rest(), "");
  EXPECT_EQ(skip_blanks(piece.source), kEndOfInput);
}

TEST(Lexical, WhereACommentBegins) {
  struct {
    const char *text;
    bool comment;
    CommentKind kind;
  } rows[] = {
      {"; x", true, kSemicolonComment}, {";", true, kSemicolonComment},
      {"/* x", true, kNestingComment},  {"/*", true, kNestingComment},
      {"/", false, kNestingComment},    {"/ *", false, kNestingComment},
      {"//", false, kNestingComment},   {"*/", false, kNestingComment},
      {" ;", false, kNestingComment},   {"x", false, kNestingComment},
  };
  for (const auto &row : rows) {
    Piece piece(row.text);
    piece.read();
    CommentKind kind;
    EXPECT_EQ(is_comment_start(piece.source, kind), row.comment) << row.text;
    if (row.comment) {
      EXPECT_EQ(kind, row.kind) << row.text;
    }
  }
}

ErrorCode skipLineComment(SourceReader &source) { return skip_comment(source, kSemicolonComment); }
ErrorCode skipNesting(SourceReader &source) { return skip_comment(source, kNestingComment); }
ErrorCode skipClosed(SourceReader &source) { return skipClosedComment(source, kNestingComment); }

TEST(Lexical, ASemicolonCommentEndsWithTheLine) {
  const SkipRow kRows[] = {
      {"; x */ /* y\nnext\n", kOk, "", 1},
      {";", kOk, "", 1},
  };
  check(skipLineComment, kRows);
}

TEST(Lexical, BlockCommentsNest) {
  const SkipRow kRows[] = {
      {"/**/7", kOk, "7", 1},
      {"/* a */ 7", kOk, " 7", 1},
      {"/* a /* b */ c */7", kOk, "7", 1},
      {"/* a /* b /* c */ d */ e */7", kOk, "7", 1},
      {"/* a\n /* b */\n\n c\n*/7 8\n", kOk, "7 8 ", 5},
      {"/*/ a */7", kOk, "7", 1},  // "/*/" does not close itself
      {"/***/7", kOk, "7", 1},
      {"/* /*/ */ */7", kOk, "7", 1},
      {"/* ; */7", kOk, "7", 1},
      {"/* a *//7", kOk, "/7", 1},
      {"/* a */*/7", kOk, "*/7", 1},
      {"/* a", kEndOfInput, "", 1},
      {"/*", kEndOfInput, "", 1},
      {"/* a /* b */", kEndOfInput, "", 1},
      {"/* a\n\n", kEndOfInput, "", 2},
  };
  check(skipNesting, kRows);
}

TEST(Lexical, CommentsGiveTheErrorsOfTheLinesInThem) {
  EXPECT_EQ(skip(skipNesting, "/* a\n#endif\n*/\n").result, kStrayEndif);
  EXPECT_EQ(skip(skipClosed, "/* a\n#endif\n*/\n").result, kStrayEndif);
}

TEST(Lexical, AnOpenCommentIsAnErrorWhereItMustClose) {
  EXPECT_EQ(skip(skipClosed, "/* a\n").result, kMissingCommentEnd);
  EXPECT_EQ(skip(skipClosed, "/* a */x").result, kOk);
}

TEST(Lexical, SkipBlanksAndComments) {
  const SkipRow kRows[] = {
      {"x", kOk, "x", 1},
      {"  x", kOk, "x", 1},
      {" /* a */ x", kOk, "x", 1},
      {" ; a\n x", kOk, "x", 2},
      {"\n\n/* a\n */\n\n x", kOk, "x", 6},
      {"/* a */ /* b */ x", kOk, "/* b */ x", 1},  // one comment only
      {"; a\n; b\nx\n", kOk, "; b ", 2},
      {"/* a */ ; b", kOk, "; b", 1},
      {" , x", kOk, ", x", 1},
      {"/* a */ / x", kOk, "/ x", 1},
      {"/ x", kOk, "/ x", 1},
      {" ", kOk, "", 1},  // the end of the input is no failure
      {"; a", kOk, "", 1},
      {"; a\n\n", kOk, "", 2},
      {"/* a", kOk, "", 1},
      {"/* a */  \n", kOk, "", 1},
  };
  check(skip_blanks_and_comments, kRows);
  EXPECT_EQ(skip(skip_blanks_and_comments, " \n#endif\n").result, kStrayEndif);
  EXPECT_EQ(skip(skip_blanks_and_comments, "/*\n#endif\n").result, kStrayEndif);
  EXPECT_EQ(skip(skip_blanks_and_comments, "/**/\n#endif\n").result, kStrayEndif);
}

TEST(Lexical, SkipSeparator) {
  const SkipRow kRows[] = {
      {"x", kOk, "x", 1},
      {" x", kOk, "x", 1},
      {",x", kOk, "x", 1},
      {" , x", kOk, "x", 1},
      {"/x", kOk, "x", 1},
      {" / x", kOk, "x", 1},
      {",,x", kOk, ",x", 1},  // one only
      {", , x", kOk, ", x", 1},
      {"//x", kOk, "/x", 1},
      {",/x", kOk, "/x", 1},
      {"; c , x\n y", kOk, "y", 2},
      {"; c\n, x", kOk, ", x", 2},
      {"/* c */x", kOk, "x", 1},
      {"/* c */, x", kOk, "x", 1},
      {"/* c *// x", kOk, "x", 1},
      {"/* c */,, x", kOk, ", x", 1},
      {"/* c */ , x", kOk, ", x", 1},  // only directly behind the comment
      {"/* c *//* d */ x", kOk, "* d */ x", 1},
      {"/* c */ /* d */ x", kOk, "/* d */ x", 1},
      {", /* c */ x", kOk, "/* c */ x", 1},
      {"\n\n ,\n\n x", kOk, "x", 5},
      {"/*\n*/,\nx", kOk, "x", 3},
      {":x", kOk, ":x", 1},
      {"'x", kOk, "'x", 1},
      {"]", kOk, "]", 1},
      {" ", kOk, "", 1},
      {",", kOk, "", 1},
      {"; c", kOk, "", 1},
      {"/* c", kOk, "", 1},
      {"/* c\n", kOk, "", 1},
  };
  check(skip_separator, kRows);
  EXPECT_EQ(skip(skip_separator, ",\n#endif\n").result, kStrayEndif);
  EXPECT_EQ(skip(skip_separator, " \n#endif\n").result, kStrayEndif);
  EXPECT_EQ(skip(skip_separator, "/*\n#endif\n").result, kStrayEndif);
}

}  // namespace

}  // namespace korvo
