#include "global/const_statement.h"

#include <gtest/gtest.h>

#include <string>

#include "preproc/constants.h"
#include "support/piece.h"

namespace korvo {

namespace {

// What a statement comes to: its error, or the value of the constant "a".
struct StatementRow {
  const char *text;
  ErrorCode result;
  double value;
  const char *rest;
};

TEST(ConstStatement, Statements) {
  const StatementRow kRows[] = {
      {"#const a 1", kOk, 1, ""},
      {"#const a 1.5 rest", kOk, 1.5, " rest"},
      {"#const a -.25", kOk, -0.25, ""},
      {"#const a +3;x", kOk, 3, ";x"},
      {"#const \t  a \t 2", kOk, 2, ""},
      {"#const a.5", kOk, 0.5, ""},
      {"#const\n\n a\n 2\n", kOk, 2, " "},  // blanks cross lines
      {"#const a\n2", kOk, 2, ""},
      {"#const /* c */ a 2", kOk, 2, ""},
      {"#const ; c\n a 2", kOk, 2, ""},
      {"#cabcd a 2", kOk, 2, ""},  // of the keyword only the "c" is looked at
      {"#conzt a 2", kOk, 2, ""},
      {"#const a 0.1", kOk, 0.1, ""},
      {"#const a 2.5.5", kOk, 2.5, ".5"},
      {"#c", kBadDefinition, 0, nullptr},
      {"#cons", kBadDefinition, 0, nullptr},
      {"#consta 1", kBadDefinition, 0, "a 1"},
      {"#constant a 1", kBadDefinition, 0, "ant a 1"},
      {"#con a 1", kConstantNeedsLetter, 0, "1"},  // five characters are skipped, whatever they are
      {"#const 1a 2", kConstantNeedsLetter, 0, "1a 2"},
      {"#const _a 2", kConstantNeedsLetter, 0, "_a 2"},
      {"#const ~a 2", kContextOnly, 0, nullptr},
      {"#const \n", kConstantNeedsLetter, 0, ""},
      {"#const /* c */ /* d */ a 2", kConstantNeedsLetter, 0, "/* d */ a 2"},
      {"#const a $m", kMacroInConstant, 0, "$m"},
      {"#const a", kBadFloat, 0, ""},
      {"#const a x", kBadFloat, 0, "x"},
      {"#const a = 2", kBadFloat, 0, "= 2"},
      {"#const a1", kBadFloat, 0, ""},
      {"#const a /* c */ 2", kBadFloat, 0, "/* c */ 2"},
      {"#const a - 2", kBadFloat, 0, " 2"},
  };
  for (const StatementRow &row : kRows) {
    SCOPED_TRACE(row.text);
    Piece piece(row.text);
    ErrorCode result = piece.define();
    EXPECT_EQ(result, row.result);
    if (row.rest != nullptr) {
      EXPECT_EQ(piece.rest(), row.rest);
    }
    const auto *constant = static_cast<const Constant *>(findName(piece.source.constants, "a"));
    EXPECT_EQ(constant != nullptr, row.result == kOk);
    if (constant != nullptr && row.result == kOk) {
      EXPECT_EQ(constant->value, row.value);
    }
  }
}

TEST(ConstStatement, OnlyASmallLetterBeginsAStatement) {
  Piece piece("#Const a 1\n");
  piece.read();
  piece.source.position = 1;
  EXPECT_EQ(ConstStatement(piece.source), kOk);
  EXPECT_EQ(piece.source.position, 1);
  EXPECT_EQ(piece.source.constants.count, 0U);
}

TEST(ConstStatement, ANameIsDefinedOnce) {
  Piece piece("#const a 1\n#const A 2\n#const ab 3\n#const a 4\n");
  EXPECT_EQ(piece.define(3), kOk);
  EXPECT_EQ(piece.define(), kConstantExists);
  const auto *constant = static_cast<const Constant *>(findName(piece.source.constants, "a"));
  ASSERT_NE(constant, nullptr);
  EXPECT_EQ(constant->value, 1);
  EXPECT_EQ(piece.source.constants.count, 3U);
}

TEST(ConstStatement, ConstantsAreDefinedFromEarlierOnes) {
  Piece piece("#const x 1.5\n#const y ~x\n#const z ~[x * 2]\n~x ~y ~z\n");
  EXPECT_EQ(piece.define(3), kOk);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "1.500 1.500 3.000 ");
}

}  // namespace

}  // namespace korvo
