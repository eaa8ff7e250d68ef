#include "preproc/equation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "support/piece.h"
#include "support/scripted_draws.h"

namespace korvo {

namespace {

struct Evaluated {
  ErrorCode result;
  double value;
  std::string rest;
  std::string messages;
  std::uint32_t draws;
};

// With half = 0.5 and minus = -3, @1 = 2.5, @2 = 10.
Evaluated evaluate(const std::string &text, bool silent = false,
                   std::initializer_list<std::uint32_t> draws = {}) {
  Piece piece("#const half 0.5\n#const minus -3\n");
  EXPECT_EQ(piece.define(2), kOk);
  std::memcpy(piece.source.line, text.c_str(), text.size() + 1);
  piece.source.position = 0;
  piece.source.values.lastBlockSeconds = 2.5;
  piece.source.values.cumulativeSeconds = 10.0;
  piece.source.messages->silent = silent;
  script(piece.random, draws);
  Evaluated evaluated{kOk, -99.0, "", "", 0};
  evaluated.result = EvaluateEquation(piece.source, evaluated.value);
  evaluated.rest = piece.rest();
  evaluated.messages = piece.messages();
  evaluated.draws = piece.random.next;
  return evaluated;
}

TEST(Equation, Values) {
  struct {
    const char *text;
    double value;
  } rows[] = {
      {"[7]", 7},
      {"[ 7 ]", 7},
      {"[\t7\n]", 7},
      {"[.5]", 0.5},
      {"[half]", 0.5},
      {"[@1]", 2.5},
      {"[@2]", 10},
      {"[1+2]", 3},
      {"[1 + 2 * 3]", 9},  // from left to right
      {"[2 * 3 + 1]", 7},
      {"[10 - 4 - 3]", 3},
      {"[12 / 4 / 3]", 1},
      {"[1 / 4]", 0.25},
      {"[2 * -1]", -2},
      {"[2 * +1]", 2},
      {"[2 - -3]", 5},
      {"[2--3]", 5},
      {"[2 + -.5]", 1.5},
      {"[2 -3]", -1},  // behind a value a sign is an operator
      {"[2-3]", -1},
      {"[2 +3]", 5},
      {"[half * 4]", 2},
      {"[half*minus]", -1.5},
      {"[2 - minus]", 5},
      {"[@2 / @1]", 4},
      {"[@1+half]", 3},
      {"[0 - @1]", -2.5},
      {"[7 % 3]", 1},
      {"[0 - 7 % 3]", -1},  // the sign of the left side
      {"[7 % -3]", 1},
      {"[7 % 0]", 0},
      {"[7.5 % 2]", 1.5},
      {"[3 % 3]", 0},
      {"[2 % 3]", 2},
      {"[0.1 + 0.2]", 0.1 + 0.2},
      {"[16777217 % 100000000]", 16777216},  // the remainder is in single precision
  };
  for (const auto &row : rows) {
    Evaluated evaluated = evaluate(std::string(row.text) + " x");
    EXPECT_EQ(evaluated.result, kOk) << row.text;
    EXPECT_EQ(evaluated.value, row.value) << row.text;
    EXPECT_EQ(evaluated.rest, "] x") << row.text;  // left on the bracket
  }
}

TEST(Equation, DivisionByZeroIsNotCaught) {
  EXPECT_EQ(evaluate("[1 / 0]").value, HUGE_VAL);
  EXPECT_EQ(evaluate("[1 / -0]").value, -HUGE_VAL);
  EXPECT_TRUE(std::isnan(evaluate("[0 / 0]").value));
}

TEST(Equation, Errors) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
  } rows[] = {
      {"[]", kBadTermCount, "]"},
      {"[ ] x", kBadTermCount, "] x"},
      {"[+]", kBadTermCount, "]"},
      {"[-1]", kBadTermCount, "]"},
      {"[-1 + 2]", kBadTermCount, "]"},  // a leading sign is an operator
      {"[2 +]", kBadTermCount, "]"},
      {"[2 3]", kBadTermCount, "]"},
      {"[2 3 + 4]", kBadTermCount, "]"},
      {"[1 * * 2]", kBadTermCount, "]"},
      {"[1 + * 2]", kBadTermCount, "]"},
      {"[* 2]", kBadTermCount, "]"},
      {"[2 half]", kBadTermCount, "]"},
      {"[1.2.3 + .4]", kBadTermCount, "]"},  // 1.2 and .3
      {"[", kEquationNotClosed, ""},
      {"[1 + 2", kEquationNotClosed, ""},
      {"[1 +   ", kEquationNotClosed, ""},
      {"[1 + + ]", kBadFloat, " ]"},
      {"[2 - - 3]", kBadFloat, " 3]"},
      {"[2 * -x]", kBadFloat, "x]"},
      {"[1 + (2)]", kIllegalInEquation, "(2)]"},
      {"[1 & 2]", kIllegalInEquation, "& 2]"},
      {"[~half]", kIllegalInEquation, "~half]"},
      {"[$m]", kIllegalInEquation, "$m]"},
      {"[1, 2]", kIllegalInEquation, ", 2]"},
      {"[[1]]", kIllegalInEquation, "[1]]"},
      {"[_a]", kIllegalInEquation, "_a]"},
      {"[1 ; 2]", kIllegalInEquation, "; 2]"},
      {"[@3]", kBadRunVariable, "@3]"},
      {"[1 + @4]", kBadRunVariable, "@4]"},
      {"[@", kBadRunVariable, "@"},
      {"[@ 1]", kBadRunVariable, "@ 1]"},
  };
  for (const auto &row : rows) {
    Evaluated evaluated = evaluate(row.text);
    EXPECT_EQ(evaluated.result, row.result) << row.text;
    EXPECT_EQ(evaluated.rest, row.rest) << row.text;
    EXPECT_EQ(evaluated.messages, "") << row.text;
  }
}

TEST(Equation, AnUnknownConstantIsTold) {
  Evaluated evaluated = evaluate("[1 + none * 2]");
  EXPECT_EQ(evaluated.result, kContextOnly);
  EXPECT_EQ(evaluated.rest, " * 2]");
  EXPECT_EQ(evaluated.messages,
            "\n\nERROR: Line 2: There is no constant \"none\" in your input file!\n");
}

std::string sumOf(int terms) {
  std::string text = "[1";
  for (int i = 1; i < terms; ++i) {
    text += "+1";
  }
  return text + "]";
}

TEST(Equation, HasRoomForThirtyValues) {
  EXPECT_EQ(evaluate(sumOf(29)).value, 29);
  EXPECT_EQ(evaluate(sumOf(30)).result, kOk);
  EXPECT_EQ(evaluate(sumOf(30)).value, 30);
  Evaluated evaluated = evaluate(sumOf(31));
  EXPECT_EQ(evaluated.result, kBadTermCount);
  EXPECT_EQ(evaluated.rest, "]");  // behind the 31st value
  evaluated = evaluate(sumOf(40));
  EXPECT_EQ(evaluated.result, kBadTermCount);
  EXPECT_EQ(evaluated.rest, "+1+1+1+1+1+1+1+1+1]");
  EXPECT_EQ(evaluate("[" + std::string(31, '*') + "]").result, kBadTermCount);
  EXPECT_EQ(evaluate("[" + std::string(4000, '*')).result, kBadTermCount);
  std::string many = "[";
  for (int i = 0; i < 1000; ++i) {
    many += "1 ";
  }
  EXPECT_EQ(evaluate(many).result, kBadTermCount);
}

TEST(Equation, TheRandomTerm) {
  Evaluated evaluated = evaluate("[?]", false, {100});
  EXPECT_EQ(evaluated.result, kOk);
  EXPECT_EQ(evaluated.value, static_cast<double>(100.0F / 32767.0F));
  EXPECT_EQ(evaluated.draws, 1U);
  EXPECT_EQ(evaluated.messages, "\n\tLine 2: '?' evaluated at =    0.00");
  evaluated = evaluate("[? + ?]", false, {32766, 32767});
  EXPECT_EQ(evaluated.draws, 2U);
  EXPECT_EQ(evaluated.value, static_cast<double>(32766.0F / 32767.0F));  // 32767 counts as 0
  EXPECT_EQ(evaluated.messages,
            "\n\tLine 2: '?' evaluated at =    1.00"
            "\n\tLine 2: '?' evaluated at =    0.00");
  evaluated = evaluate("[2 * ?]", true, {2147483647});
  EXPECT_EQ(evaluated.value, 2.0 * static_cast<double>(1.0F / 32767.0F));  // 2147483647 % 32767 = 1
  EXPECT_EQ(evaluated.messages, "");
  EXPECT_EQ(evaluated.draws, 1U);
}

}  // namespace

}  // namespace korvo
