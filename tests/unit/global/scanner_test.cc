#include "global/scanner.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

struct Row {
  const char *text;
  ErrorCode result;
  const char *rest;
  std::int64_t line;
};

template <std::size_t kCount>
void check(const Row (&rows)[kCount]) {
  for (const Row &row : rows) {
    SCOPED_TRACE("\"" + std::string(row.text) + "\"");
    Piece piece(row.text);
    EXPECT_EQ(scan_to_next_iblock(piece.source, piece.global), row.result);
    if (row.rest != nullptr) {
      EXPECT_EQ(piece.rest(), row.rest);
    }
    EXPECT_EQ(piece.source.lineCounter, row.line);
  }
}

TEST(Scanner, StopsOnTheLetterOfABlock) {
  const Row kRows[] = {
      {"i1 = 4", kOk, "i1 = 4", 1},
      {" \t i", kOk, "i", 1},
      {"\n\n  i x\n", kOk, "i x ", 3},
      {"ix", kOk, "ix", 1},
      {"in", kOk, "in", 1},
      {"/* i */ i2", kOk, "i2", 1},
      {"; i\n i2", kOk, "i2", 2},
      {"/* i\n i */ /* i */i2", kOk, "i2", 2},
      {"te(60) i", kOk, "i", 1},
      {"te(60)i", kOk, "i", 1},
      {"te(60) ; x\ni", kOk, "i", 2},
      {"te(60) /* x */ i", kOk, "i", 1},
      {"te(60) te(90)rd(0.5) rs(7) sr(48000) i", kOk, "i", 1},
      {"Te(60) tE(60) TE(60) RD(0) rS(1) Sr(1) i", kOk, "i", 1},
      {"te\n(60\n)\ni", kOk, "i", 4},
      {"#const a 1 i", kOk, "i", 1},
      {"#define a #i# i", kOk, "i", 1},
      {"#define a #\ni\n# i", kOk, "i", 3},
      {"> i\ni", kOk, "i", 2},
      {"te(60) #endif i", kOk, "i", 1},
      {"te(60) #if(1) i", kOk, "i", 1},
  };
  check(kRows);
}

TEST(Scanner, TheEndOfTheInputIsNoError) {
  const Row kRows[] = {
      {"", kEndOfInput, nullptr, 0},          {"\n\n", kEndOfInput, nullptr, 2},
      {"te(60)\n", kEndOfInput, nullptr, 1},  {"; only a comment", kEndOfInput, nullptr, 1},
      {"/* a */\n", kEndOfInput, nullptr, 1}, {"> f1 0 4096 10 1", kEndOfInput, nullptr, 1},
  };
  check(kRows);
}

TEST(Scanner, RefusesEverythingElse) {
  const Row kRows[] = {
      {"I1", kInvalidGlobalCommand, "I1", 1},
      {"{", kInvalidGlobalCommand, "{", 1},
      {"  } i", kInvalidGlobalCommand, "} i", 1},
      {"x", kInvalidGlobalCommand, "x", 1},
      {"5", kInvalidGlobalCommand, "5", 1},
      {"/ i", kInvalidGlobalCommand, "/ i", 1},
      {"*/", kInvalidGlobalCommand, "*/", 1},
      {", i", kInvalidGlobalCommand, ", i", 1},
      {"t", kInvalidGlobalCommand, "t", 1},
      {"t e(60)", kInvalidGlobalCommand, "t e(60)", 1},
      {"ra(1)", kInvalidGlobalCommand, "ra(1)", 1},
      {"dv(0.5)", kInvalidGlobalCommand, "dv(0.5)", 1},
      {"te(60)x", kInvalidGlobalCommand, "x", 1},
      {"te(60)\nte(60) y\n", kInvalidGlobalCommand, "y ", 2},
      {"#Const x = 1", kInvalidGlobalCommand, "Const x = 1", 1},
      {"#else", kInvalidGlobalCommand, "else", 1},
      {"pf(0.5)", kInvalidGlobalData, "(0.5)", 1},
      {"PF", kInvalidGlobalData, "", 1},
  };
  check(kRows);
}

TEST(Scanner, StatementsStandAtTheStartOrBehindStatementsOnly) {
  const Row kRows[] = {
      {"/* a */ te(60)", kInvalidGlobalCommand, "te(60)", 1},
      {"te(60) /* a */ te(60)", kInvalidGlobalCommand, "te(60)", 1},
      {"/* a */ > f1", kInvalidGlobalCommand, "> f1", 1},
      {"/* a */ #const b 1", kInvalidGlobalCommand, "#const b 1", 1},
      {"/* a\n*/ te(60)", kInvalidGlobalCommand, "te(60)", 2},
      {"/* a */\nte(60)\ni", kOk, "i", 3},
  };
  check(kRows);
}

TEST(Scanner, ACommentLeftOpenIsMismatched) {
  const Row kRows[] = {
      {"/* open", kCommentsMismatched, nullptr, 1},
      {"te(60)\n/* open\n i\n", kCommentsMismatched, nullptr, 3},
      {"/* /* */ i", kCommentsMismatched, nullptr, 1},
      {"/*\n#endif\n*/ i", kCommentsMismatched, nullptr, 2},  // whatever goes wrong inside it
  };
  check(kRows);
}

TEST(Scanner, ErrorsOfLinesAndStatementsComeThrough) {
  const Row kRows[] = {
      {"\n#endif\n", kStrayEndif, nullptr, 2},    {"$nobody", kContextOnly, nullptr, 1},
      {"te 60", kIllegalStatementStart, "60", 1}, {"te(60", kBadTempoTerm2, "", 1},
      {"rs(70000)", kBadSeed, "70000)", 1},       {"rd(0.5", kMissingParenthesis, "", 1},
      {"#undef x", kNoMacros, nullptr, 1},
  };
  check(kRows);
}

TEST(Scanner, NeverLooksAtTheRestOfTheLastLine) {
  Piece piece("first } i5\n i6\n");
  piece.read();
  piece.source.position = 7;
  EXPECT_EQ(scan_to_next_iblock(piece.source, piece.global), kOk);
  EXPECT_EQ(piece.rest(), "i6 ");
  EXPECT_EQ(piece.source.lineCounter, 2);
}

TEST(Scanner, ListsTheTemposBeforeEveryBlockWhenAsked) {
  Piece piece("te(120)\n i\n");
  piece.source.messages->tempoVerbose = true;
  EXPECT_EQ(scan_to_next_iblock(piece.source, piece.global), kOk);
  EXPECT_EQ(piece.messages(),
            "\n  Stored Tempos (There are 1 defs):"
            "\n\t1: Stime    0.00, Etime 1000.00, Stempo  120.00, Etempo  120.00, Type F\n");
}

TEST(Scanner, ListsNothingWithoutABlock) {
  Piece piece("te(120)\n");
  piece.source.messages->tempoVerbose = true;
  EXPECT_EQ(scan_to_next_iblock(piece.source, piece.global), kEndOfInput);
  EXPECT_EQ(piece.messages(), "");
}

}  // namespace

}  // namespace korvo
