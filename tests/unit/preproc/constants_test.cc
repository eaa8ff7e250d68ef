#include "preproc/constants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

std::string formatted(double value) {
  char text[kConstTextBytes];
  return {text, FormatConstValue(text, value)};
}

TEST(Constants, ValuesAsText) {
  struct {
    double value;
    const char *text;
  } rows[] = {
      {0.0, "0.000"},
      {1.5, "1.500"},
      {-0.25, "-0.250"},
      {5.0, "5.000"},
      {-7.0, "-7.000"},
      {12.25, "12.250"},
      {0.001, "0.001"},
      {0.01, "0.010"},
      {0.1, "0.100"},
      {0.125, "0.125"},
      {1234567.875, "1234567.875"},
      {0.0625, "0.063"},    // 62.5 thousandths: a tie goes up
      {-0.0625, "-0.063"},  // away from zero, as the sign is set aside first
      {0.1875, "0.188"},
      {0.3125, "0.313"},
      {0.0004, "0.000"},
      {0.00048828125, "0.000"},
      {0.0009765625, "0.001"},
      {-0.0004, "-0.000"},
      {-1e-300, "-0.000"},
      {2.9996, "2.1000"},  // a fraction that rounds to a whole is written in full
      {-2.9996, "-2.1000"},
      {0.99951171875, "0.1000"},
      {0.9990234375, "0.999"},
      {1000000000000000.5, "1000000000000000.500"},
      {9007199254740993.0, "9007199254740992.000"},
      {1e20, "100000000000000000000.000"},
      {4.9e-324, "0.000"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(formatted(row.value), row.text) << row.value;
  }
}

// Minus zero is not below zero, so it has no sign.
TEST(Constants, MinusZeroHasNoSign) { EXPECT_EQ(formatted(-0.0), "0.000"); }

TEST(Constants, TheLargestValuesHaveAllTheirDigits) {
  for (double value : {1e22, 1e100, 1.5e300, std::numeric_limits<double>::max()}) {
    char digits[400];
    std::snprintf(digits, sizeof digits, "%.0f.000", value);
    EXPECT_EQ(formatted(value), digits);
    EXPECT_EQ(formatted(-value), std::string("-") + digits);
  }
}

// The last of four lines behind x = 1.5 and x1 = -2, @1 = 2.5 s, @2 = 10 s, tempo 120.
struct Expanded {
  ErrorCode result;
  std::string line;
  std::string rest;
  std::string messages;
};

Expanded expand(const std::string &text, bool silent = false) {
  Piece piece("#const x 1.5\n#const x1 -2\n" + text);
  EXPECT_EQ(piece.define(2), kOk);
  piece.source.values.lastBlockSeconds = 2.5;
  piece.source.values.cumulativeSeconds = 10.0;
  piece.global.tempo.current = 120.0F;
  piece.source.messages->silent = silent;
  ErrorCode result = piece.read();
  return {result, piece.line(), piece.rest(), piece.messages()};
}

TEST(Constants, ReferencesBecomeNumbers) {
  struct {
    const char *text;
    const char *line;
    const char *told;
  } rows[] = {
      {"a ~x b", "a 1.500 b", "\n\tExpanding const \"x\" (   1.50) into line 3..."},
      {"~x1", "-2.000", "\n\tExpanding const \"x1\" (  -2.00) into line 3..."},
      {"~x.5", "1.500.5", "\n\tExpanding const \"x\" (   1.50) into line 3..."},
      {"-~x", "-1.500", "\n\tExpanding const \"x\" (   1.50) into line 3..."},
      {"~x)~x1]", "1.500)-2.000]",
       "\n\tExpanding const \"x\" (   1.50) into line 3..."
       "\n\tExpanding const \"x1\" (  -2.00) into line 3..."},
      {"~@1", "2.500", "\n\tExpanding const \"@1 (Last IB Time)\" (   2.50) into line 3..."},
      {"~@2", "10.000", "\n\tExpanding const \"@2 (Cumulative Time)\" (  10.00) into line 3..."},
      {"~@3", "5.000",
       "\n\tExpanding const \"@3 (Last IB Time [BEATS])\" (   5.00) into line 3..."},
      {"~@4", "20.000",
       "\n\tExpanding const \"@4 (Cumulative Time [BEATS])\" (  20.00) into line 3..."},
      {"~@15", "2.5005", "\n\tExpanding const \"@1 (Last IB Time)\" (   2.50) into line 3..."},
      {"~[1 + 2 * 3]", "9.000", "\n\tExpanding const \"equation\" (   9.00) into line 3..."},
      {"(~[x*2])", "(3.000)", "\n\tExpanding const \"equation\" (   3.00) into line 3..."},
      {"~[1]]", "1.000]", "\n\tExpanding const \"equation\" (   1.00) into line 3..."},
      {"~[1/3]", "0.333", "\n\tExpanding const \"equation\" (   0.33) into line 3..."},
  };
  for (const auto &row : rows) {
    Expanded expanded = expand(row.text);
    EXPECT_EQ(expanded.result, kOk) << row.text;
    EXPECT_EQ(expanded.line, row.line) << row.text;
    EXPECT_EQ(expanded.messages, row.told) << row.text;
    expanded = expand(row.text, true);
    EXPECT_EQ(expanded.line, row.line) << row.text;
    EXPECT_EQ(expanded.messages, "") << row.text;
  }
}

TEST(Constants, ReferencesThatFail) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
    const char *told;
  } rows[] = {
      {"a ~b c", kContextOnly, " c",
       "\n\nERROR: Line 3: There is no constant \"b\" in your input file!\n"},
      {"~X", kContextOnly, "",
       "\n\nERROR: Line 3: There is no constant \"X\" in your input file!\n"},
      {"~ x", kContextOnly, " x",
       "\n\nERROR: Line 3: There is no constant \"\" in your input file!\n"},
      {"~1", kContextOnly, "1",
       "\n\nERROR: Line 3: There is no constant \"\" in your input file!\n"},
      {"~~x", kContextOnly, "~x",
       "\n\nERROR: Line 3: There is no constant \"\" in your input file!\n"},
      {"~@5", kBadRunVariable, nullptr, ""},
      {"~@0", kBadRunVariable, nullptr, ""},
      {"~@", kBadRunVariable, nullptr, ""},
      {"~@x", kBadRunVariable, nullptr, ""},
      {"~[@3]", kBadRunVariable, "@3]", ""},
      {"~[1 +", kEquationNotClosed, "", ""},
      {"~[-1 + 2] x", kBadTermCount, "] x", ""},
      {"~[~x]", kIllegalInEquation, "~x]", ""},
  };
  for (const auto &row : rows) {
    Expanded expanded = expand(row.text);
    EXPECT_EQ(expanded.result, row.result) << row.text;
    EXPECT_EQ(expanded.line, row.text);
    EXPECT_EQ(expanded.messages, row.told) << row.text;
    if (row.rest != nullptr) {
      EXPECT_EQ(expanded.rest, row.rest) << row.text;
    }
  }
}

TEST(Constants, AValueThatIsNotFiniteCannotBeWritten) {
  EXPECT_EQ(expand("~[1 / 0]").result, kBadTermCount);
  EXPECT_EQ(expand("~[0 / 0]").result, kBadTermCount);
  EXPECT_EQ(expand("~[1 / 0 * 0]").result, kBadTermCount);
}

TEST(Constants, TheLineMayGrowToItsLimit) {
  std::string most(4095 - 5, 'a');  // "1.500" fits
  Expanded expanded = expand(most + "~x");
  EXPECT_EQ(expanded.result, kOk);
  EXPECT_EQ(expanded.line, most + "1.500");
  expanded = expand("a" + most + "~x");
  EXPECT_EQ(expanded.result, kOutOfMemory);
  EXPECT_EQ(expanded.line, "a" + most + "~x");
  EXPECT_EQ(expanded.rest, "~x");
}

TEST(Constants, FreeingEmptiesTheTable) {
  Piece piece("#const a 1\n#const b 2\n");
  EXPECT_EQ(piece.define(2), kOk);
  freeConstants(piece.source.constants);
  EXPECT_EQ(piece.source.constants.count, 0U);
  EXPECT_EQ(findName(piece.source.constants, "a"), nullptr);
}

}  // namespace

}  // namespace korvo
