#include "preproc/macro_call.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

constexpr const char *kMacros =
    "#define m #M#\n"
    "#define add(a, b) #$a + $b#\n"
    "#define one(p) #<$p>#\n"
    "#define e ##\n"
    "#define twice(x) #$add($x'$x)#\n"
    "#define wrap(x) #$one($x)#\n"
    "#define dup(p, p) #$p#\n"
    "#define inner #a$m#\n";
constexpr int kMacroLines = 8;

struct Called {
  ErrorCode result;
  std::string line;
  std::string rest;
  std::string messages;
};

// What a line comes to; it begins at its second column, so that nothing is special about its calls.
Called call(const std::string &text, const std::string &definitions = "", int lines = 0,
            bool silent = false) {
  Piece piece(kMacros + definitions + "." + text);
  EXPECT_EQ(piece.define(kMacroLines + lines), kOk);
  piece.source.messages->silent = silent;
  ErrorCode result = piece.read();
  return {result, piece.line().substr(1), piece.rest(), piece.messages()};
}

TEST(MacroCall, BecomesTheBody) {
  struct {
    const char *text;
    const char *line;
  } rows[] = {
      {"$m", "M"},
      {" $m $m ", " M M "},
      {"$m.", "M."},
      {"$e", ""},
      {"$add(1'2)", "1 + 2"},
      {"$add(1#2)", "1 + 2"},
      {"$add( 1 ' 2 )x", " 1  +  2 x"},
      {"$add(')", " + "},
      {"$add(1, 2'3, 4)", "1, 2 + 3, 4"},
      {"$one()", "<>"},
      {"$one($m)", "<M>"},
      {"$one(a#b)", "<a#b>"},  // a mark in the last argument is nothing special
      {"$inner", "aM"},
      {"$add($m'$m)", "M + M"},
      // A macro without parameters swallows what stands in parentheses directly behind it.
      {"$m(x)y", "My"},
      {"$m(a(b)c)d", "Md"},
      {"$m (x)", "M (x)"},
      {"$m(a(b)c", "M"},
      // With a blank before the parenthesis the arguments stay in the line, too.
      {"$add (1'2)", "1 + 2 (1'2)"},
      {"$add \t(1'2)z", "1 + 2 \t(1'2)z"},
      // The arguments end at the first ")", the call at the one that balances its "(".
      {"$add(1'(2))x", "1 + (2x"},
      {"$add(a)b'c)d", "a)b + cb'c)d"},
      {"$wrap(3)", "<3>"},
  };
  for (const auto &row : rows) {
    Called called = call(row.text);
    EXPECT_EQ(called.result, kOk) << row.text;
    EXPECT_EQ(called.line, row.line) << row.text;
  }
}

TEST(MacroCall, FailuresAndWhereTheyAreFound) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
  } rows[] = {
      {"$add 1'2)", kCallNeedsParenthesis, "1'2)"},
      {"$add", kCallNeedsParenthesis, ""},
      {"$add   ", kCallNeedsParenthesis, ""},
      {"$add[1'2]", kCallNeedsParenthesis, "[1'2]"},
      {"$add(1'2'3)", kTooManyArguments, "'3)"},
      {"$one(1'2)", kTooManyArguments, "'2)"},
      {"$add(1", kCallNotClosed, ""},
      {"$add(1)", kCallNotClosed, ""},
      {"$add(1'2", kCallNotClosed, ""},
      {"$add(", kCallNotClosed, ""},
      {"$one(", kCallNotClosed, ""},
      {"$dup(1'2)", kMacroExists, nullptr},
  };
  for (const auto &row : rows) {
    Called called = call(row.text);
    EXPECT_EQ(called.result, row.result) << row.text;
    EXPECT_EQ(called.line, row.text);
    EXPECT_EQ(called.messages, "") << row.text;
    if (row.rest != nullptr) {
      EXPECT_EQ(called.rest, row.rest) << row.text;
    }
  }
}

TEST(MacroCall, UnknownNames) {
  struct {
    const char *text;
    const char *name;
    const char *rest;
  } rows[] = {
      {"$nobody(1) x", "nobody", "(1) x"},
      {"$M", "M", ""},
      {"$mm", "mm", ""},
      {"$ m", "", " m"},
      {"$1", "", "1"},
      {"$", "", ""},
      {"$$m", "", "$m"},
      {"$_m", "", "_m"},
  };
  for (const auto &row : rows) {
    Called called = call(row.text);
    EXPECT_EQ(called.result, kContextOnly) << row.text;
    EXPECT_EQ(called.rest, row.rest) << row.text;
    EXPECT_EQ(called.messages, std::string("\n\nERROR: Line 9: There is no macro \"") + row.name +
                                   "\" in your input file!\n");
  }
}

TEST(MacroCall, EveryExpansionIsTold) {
  EXPECT_EQ(call("$m").messages, "\n\tExpanding macro \"m\" into line 9...");
  EXPECT_EQ(call("$add(1'2)").messages,
            "\n\tExpanding macro \"a\" into line 9..."
            "\n\tExpanding macro \"b\" into line 9..."
            "\n\tExpanding macro \"add\" into line 9...");
  EXPECT_EQ(call("$inner").messages,
            "\n\tExpanding macro \"inner\" into line 9..."
            "\n\tExpanding macro \"m\" into line 9...");
  EXPECT_EQ(
      call("$add($m'2)").messages,
      // The argument brings a call to the beginning of what it inserts, which stays for the line.
      "\n\tExpanding macro \"a\" into line 9..."
      "\n\tExpanding macro \"b\" into line 9..."
      "\n\tExpanding macro \"add\" into line 9..."
      "\n\tExpanding macro \"m\" into line 9...");
  Called silent = call("$add(1'2) $m", "", 0, true);
  EXPECT_EQ(silent.line, "1 + 2 M");
  EXPECT_EQ(silent.messages, "");
}

TEST(MacroCall, ParametersHideMacros) {
  Called called = call("$h(1) $m", "#define h(m) #[$m]#\n", 1);
  EXPECT_EQ(called.line, "[1] M");
}

TEST(MacroCall, ParametersAreNotKnownOutsideTheirCall) {
  // The body calls a macro whose body names the parameter of its caller: the name is looked up
  // where the text has been inserted, which is inside the call.
  EXPECT_EQ(call("$o(7)", "#define o(q) #.$p1#\n#define p1 #.$q#\n", 2).line, "..7");
  EXPECT_EQ(call("$o(7)$q", "#define o(q) #.$q#\n", 1).result, kContextOnly);
}

// An argument that does not begin with a call is scanned where it has been inserted, and there the
// parameters of the outer macro are not known.
TEST(MacroCall, ParametersBehindTextAreNotPassedOn) {
  Called called = call("$pass(3)", "#define pass(x) #$one(.$x)#\n", 1);
  EXPECT_EQ(called.result, kContextOnly);
  EXPECT_NE(called.messages.find("There is no macro \"x\""), std::string::npos) << called.messages;
}

// What a call inside a body inserts is scanned as well, except for a call at its very beginning.
TEST(MacroCall, ACallAtTheBeginningOfAnInsertedTextIsPassedOver) {
  Called called = call("$twice(3)");
  EXPECT_EQ(called.result, kContextOnly);
  EXPECT_NE(called.messages.find("There is no macro \"x\""), std::string::npos) << called.messages;
}

TEST(MacroCall, AnErrorInABodyStandsBehindTheCall) {
  Called called = call("$bad(1) tail", "#define bad(p) #x $nobody y#\n", 1);
  EXPECT_EQ(called.result, kContextOnly);
  EXPECT_EQ(called.rest, " tail");
  called = call("$bad(1) tail", "#define bad(p) #x $add(1#\n", 1);
  EXPECT_EQ(called.result, kCallNotClosed);
  EXPECT_EQ(called.rest, " tail");
}

TEST(MacroCall, BodiesOfSeveralLines) {
  EXPECT_EQ(call("$two!", "#define two #x\ny#\n", 1).line, "x \ny!");
  EXPECT_EQ(call("$two(5)!", "#define two(p) #$p\n$p#\n", 1).line, "5 \n5!");
}

TEST(MacroCall, TheLineMayGrowToItsLimit) {
  std::string wide = "#define wide #" + std::string(95, 'w') + "#\n";
  std::string most(4000 - 1, 'a');
  Called called = call(most + "$wide", wide, 1);
  EXPECT_EQ(called.result, kOk);
  EXPECT_EQ(called.line, most + std::string(95, 'w'));
  called = call(most + "a$wide", wide, 1);
  EXPECT_EQ(called.result, kOutOfMemory);
  EXPECT_EQ(called.line, most + "a$wide");
  EXPECT_EQ(called.rest, "$wide");
}

TEST(MacroCall, OneThatCallsItselfEnds) {
  struct {
    const char *definition;
    const char *text;
  } rows[] = {
      {"#define s #x$s#\n", "$s"},
      {"#define s #$s#\n", "$s"},
      {"#define s #$s$s#\n", "$s"},
      {"#define s(a) #x$s($a)#\n", "$s(1)"},
      {"#define s(a) #$s($a)#\n", "$s(1)"},
      {"#define s(a) # $s( $a )#\n", "$s(1)"},
      {"#define s(a) # $a $s(. $a $a)#\n", "$s(1)"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(call(row.text, row.definition, 1, true).result, kOutOfMemory) << row.definition;
  }
}

TEST(MacroCall, ALineHas4096ExpansionsAtMost) {
  std::string calls;
  for (int i = 0; i < 1023; ++i) {
    calls += "$e";
  }
  std::string many = "#define many #" + calls + "#\n";
  Called called = call("$many$many$many$many", many, 1, true);  // 4 times 1 + 1023
  EXPECT_EQ(called.result, kOk);
  EXPECT_EQ(called.line, "");
  called = call("$many$many$many$many$e", many, 1, true);
  EXPECT_EQ(called.result, kOutOfMemory);
  EXPECT_EQ(called.rest, "$e");
}

TEST(MacroCall, TheCountBeginsAnewWithEveryLine) {
  std::string text = "#define e ##\n#define many #";
  for (int i = 0; i < 1023; ++i) {
    text += "$e";
  }
  text += "#\n";
  for (int i = 0; i < 20; ++i) {
    text += " $many$many$many\n";
  }
  Piece piece(text);
  EXPECT_EQ(piece.define(2), kOk);
  piece.source.messages->silent = true;
  EXPECT_EQ(piece.read(20), kOk);
}

// Macros c1 to cN, each of which calls the next; the last is a plain text.
std::string chainOf(int length) {
  std::string text;
  for (int i = 1; i < length; ++i) {
    text += "#define c" + std::to_string(i) + "(p) #" + "$c" + std::to_string(i + 1) + "(1)#\n";
  }
  return text + "#define c" + std::to_string(length) + "(p) #end#\n";
}

TEST(MacroCall, CallsNest64Deep) {
  Called called = call("$c1(1)", chainOf(64), 64, true);
  EXPECT_EQ(called.result, kOk);
  EXPECT_EQ(called.line, "end");
  EXPECT_EQ(call("$c1(1)", chainOf(65), 65, true).result, kOutOfMemory);
}

}  // namespace

}  // namespace korvo
