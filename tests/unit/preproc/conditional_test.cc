#include "preproc/conditional.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/piece.h"

namespace korvo {

namespace {

using Lines = std::vector<std::string>;

// Everything that can be read of a text, and what the reading ends with.
struct Kept {
  Lines lines;
  ErrorCode end;
  int depth;
};

Kept keep(const std::string &text) {
  Piece piece(text);
  Kept kept{{}, kOk, 0};
  while ((kept.end = piece.read()) == kOk) {
    kept.lines.push_back(piece.rest());
  }
  kept.depth = piece.source.conditional.depth;
  return kept;
}

struct SectionRow {
  const char *text;
  Lines lines;
};

void check(const std::vector<SectionRow> &rows) {
  for (const SectionRow &row : rows) {
    Kept kept = keep(row.text);
    EXPECT_EQ(kept.lines, row.lines) << row.text;
    EXPECT_EQ(kept.end, kEndOfInput) << row.text;
    EXPECT_EQ(kept.depth, 0) << row.text;
  }
}

TEST(Conditional, SectionsAreKeptOrDropped) {
  check({
      {"#if(1)\na\n#endif\nb", {" ", "a ", " ", "b"}},
      {"#if(0)\na\n#endif\nb", {" ", "b"}},
      {"#if(0.5)\na\n#endif\nb", {" ", "a ", " ", "b"}},
      {"#if(0.000)\na\n#endif\nb", {" ", "b"}},
      {"#if(00)\na\n#endif\nb", {" ", "b"}},
      {" \t #if( 0 )\na\n  #endif\nb", {" ", "b"}},
      {"#if(0)\n#endif\nb", {" ", "b"}},
      {"#if(0)\n\n\n\n#endif", {""}},
      {"#if(1) x\na\n#endif y\nb", {" x ", "a ", " y ", "b"}},
  });
}

TEST(Conditional, TheEndIsFoundAnywhereInADroppedLine) {
  check({
      {"#if(0) x #endif tail\nb", {" tail ", "b"}},
      {"#if(0)\nx #endif tail\nb", {" tail ", "b"}},
      {"#if(0)\nx#endiftail\nb", {"tail ", "b"}},
      {"#if(0)#endif", {""}},
      {"#if(0)\n#define a #\n#endif\nb", {" ", "b"}},
  });
}

TEST(Conditional, SectionsNest) {
  check({
      {"#if(0)\n#if(1)\na\n#endif\nb\n#endif t\nc", {" t ", "c"}},
      {"#if(0)\n#if(1)\n#if(x)\n#endif\n#endif\nb\n#endif t\nc", {" t ", "c"}},
      {"#if(1)\n#if(0)\na\n#endif\nb\n#endif\nc", {" ", " ", "b ", " ", "c"}},
      {"#if(1)\n#if(1)\na\n#endif\n#endif\nc", {" ", " ", "a ", " ", " ", "c"}},
      {"#if(0)\nx #if( y\n#endif\n#endif t\nc", {" t ", "c"}},
      {"#if(0) #if(1) #endif x #endif t\nc", {" t ", "c"}},
      {"#if(0)\n#if (1)\n# endif\n#IF(1)\n#endif t\nc", {" t ", "c"}},  // none of these counts
  });
}

TEST(Conditional, TheCharacterBehindAMarkIsSteppedOver) {
  check({
      {"#if(0)\n##endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n#if(1)\n#endif#endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n#; #endif\n#endif t\nb", {" t ", "b"}},
  });
}

TEST(Conditional, CommentsInADroppedSection) {
  check({
      {"#if(0)\n; #endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n; #if(1)\n#endif t\nb", {" t ", "b"}},
      {"#if(0) ; #endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n/* #endif */ #endif t\nb", {" t ", "b"}},
      {"#if(0)\n/*\n#endif\n*/\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n/* /* */ #endif t\nb", {" t ", "b"}},  // these do not nest
      {"#if(0)\n/*/ #endif t\nb", {" t ", "b"}},       // and this opens and closes
      {"#if(0)\n; /*\n#endif\n*/ #endif t\nb",
       {" t ", "b"}},  // the two kinds do not know each other
      {"#if(0)\n/* ; */ #endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n; */ #endif\n#endif t\nb", {" t ", "b"}},
      {"#if(0)\n*/ #endif t\nb", {" t ", "b"}},
  });
}

TEST(Conditional, AMalformedValueRepeatsTheOneBefore) {
  check({
      {"#if(x)\na\n#endif\nb", {" ", "b"}},
      {"#if(-1)\na\n#endif\nb", {" ", "b"}},
      {"#if(.5)\na\n#endif\nb", {" ", "b"}},
      {"#if()\na\n#endif\nb", {" ", "b"}},
      {"#if(2\na\n#endif\nb", {"", "a ", " ", "b"}},  // the number counts at once
      {"#if(1)\n#endif\n#if(0)\n#endif\n#if(x)\na\n#endif\nb", {" ", " ", " ", " ", "b"}},
  });
}

TEST(Conditional, AMalformedValueKeepsASectionBehindOneThatWasKept) {
  Kept kept = keep("#if(1)\n#endif\n#if(-1)\na\n#endif\nb");
  ASSERT_EQ(kept.lines.size(), 6U);
  EXPECT_EQ(kept.lines[3], "a ");
  EXPECT_EQ(kept.lines[5], "b");
}

TEST(Conditional, OneWithoutItsEnd) {
  for (const char *text : {"#if(0)\na\n", "#if(0)\na", "#if(0)", "#if(0)\n", "#if(0)\n; #endif\n",
                           "#if(0)\n#if(0)\n#endif\n", "#if(0)\n/* #endif\n", "#if(0)\n#endi",
                           // Behind a last "#" nothing is left of the line before.
                           "#if(0)\n; #endif\n#", "#if(0)\n#if(1)\n;   #endif\n#endif"}) {
    Kept kept = keep(text);
    EXPECT_EQ(kept.end, kEndifMissingAtEnd) << text;
    EXPECT_TRUE(kept.lines.empty()) << text;
  }
  Kept kept = keep("#if(1)\na\n");
  EXPECT_EQ(kept.end, kEndOfInput);
  EXPECT_EQ(kept.depth, 1);
}

TEST(Conditional, AnEndWithoutItsBeginning) {
  EXPECT_EQ(keep("a\n#endif\n").end, kStrayEndif);
  EXPECT_EQ(keep("#if(1)\n#endif\n#endif\n").end, kStrayEndif);
  EXPECT_EQ(keep("#if(0)\n#endif\n#endif\n").end, kStrayEndif);
}

TEST(Conditional, ManyCanBeOpen) {
  std::string text;
  for (int i = 0; i < 5000; ++i) {
    text += "#if(1)\n";
  }
  EXPECT_EQ(keep(text).depth, 5000);
  std::string ends;
  for (int i = 0; i < 5000; ++i) {
    ends += "#endif\n";
  }
  EXPECT_EQ(keep(text + ends).depth, 0);
  EXPECT_EQ(keep("#if(0)\n" + text + ends + "#endif t\n").lines, Lines{" t "});
}

TEST(Conditional, IsOpenWhileItsDepthIsNotZero) {
  EXPECT_TRUE(NoConditionalOpen({0, 1.0F}));
  EXPECT_FALSE(NoConditionalOpen({1, 0.0F}));
}

TEST(Conditional, ClosingWantsTheWord) {
  Piece piece("#if(1)\n endi\n");
  EXPECT_EQ(piece.read(2), kOk);
  piece.source.position = 1;
  EXPECT_EQ(CloseConditional(piece.source), kBadEndif);
  EXPECT_EQ(piece.source.conditional.depth, 1);
}

// Values of a directive that stands in the line buffer; m is 2, t is ~x, b begins with a blank; x
// is 1.5, minus is -1.
struct Value {
  ErrorCode result;
  float value;
  std::string rest;
  std::string messages;
};

Value readIf(const char *text) {
  Piece piece(
      "#define m #2#\n#define t #~x#\n#define b # 1#\n#define f(p) #$p#\n"
      "#const x 1.5\n#const minus -1\n");
  EXPECT_EQ(piece.define(6), kOk);
  std::strcpy(piece.source.line, text);
  piece.source.position = 0;
  Value value{kOk, -99.0F, "", ""};
  value.result = ReadIfValue(piece.source, value.value);
  value.rest = piece.rest();
  value.messages = piece.messages();
  return value;
}

TEST(Conditional, Values) {
  struct {
    const char *text;
    float value;
    const char *rest;
  } rows[] = {
      {"if(1)", 1, ""},
      {"if(0) x", 0, " x"},
      {"if( \t12.25 \t) x", 12.25F, " x"},
      {"if(5.)", 5, ""},
      {"if(0.0001)", 1.0F / 10000.0F, ""},
      {"if($m)", 2, ""},
      {"if( $m ) x", 2, " x"},
      {"if($f(7))", 7, ""},
      {"if(~x)", 1.5F, ""},
      {"if( ~[x * 2] )", 3, ""},
      {"if($t)", 1.5F, ""},
      {"if(~@1)", 0, ""},
  };
  for (const auto &row : rows) {
    Value value = readIf(row.text);
    EXPECT_EQ(value.result, kOk) << row.text;
    EXPECT_EQ(value.value, row.value) << row.text;
    EXPECT_EQ(value.rest, row.rest) << row.text;
  }
}

TEST(Conditional, ValuesThatFailLeaveTheOldOne) {
  struct {
    const char *text;
    ErrorCode result;
    const char *messages;
  } rows[] = {
      {"if (1)", kBadIf, ""},
      {"iff(1)", kBadIf, ""},
      {"IF(1)", kBadIf, ""},
      {"if", kBadIf, ""},
      {"", kBadIf, ""},
      {"if(", kIfNeedsValue, ""},
      {"if()", kIfNeedsValue, ""},
      {"if(x)", kIfNeedsValue, ""},
      {"if(-1)", kIfNeedsValue, ""},
      {"if(+1)", kIfNeedsValue, ""},
      {"if(.5)", kIfNeedsValue, ""},
      {"if($none)", kContextOnly,
       "\n\nERROR: Line 6: There is no macro \"none\" in your input file!\n"},
      {"if(~none)", kContextOnly,
       "\n\nERROR: Line 6: There is no constant \"none\" in your input file!\n"},
      {"if(~@5)", kBadRunVariable, ""},
      {"if(~[1 +)", kIllegalInEquation, ""},
      {"if($f 1)", kCallNeedsParenthesis, ""},
  };
  for (const auto &row : rows) {
    Value value = readIf(row.text);
    EXPECT_EQ(value.result, row.result) << row.text;
    EXPECT_EQ(value.value, -99.0F) << row.text;
    EXPECT_EQ(value.messages, row.messages) << row.text;
  }
  for (const char *text : {"if(1", "if(1 2)", "if(1x)"}) {  // the number counts at once
    EXPECT_EQ(readIf(text).result, kIfNotClosed) << text;
    EXPECT_EQ(readIf(text).value, 1.0F) << text;
  }
  EXPECT_EQ(readIf("if($b)").result, kIfNeedsValue);      // a blank is no digit
  EXPECT_EQ(readIf("if(~minus)").result, kIfNeedsValue);  // nor is a sign
}

TEST(Conditional, AnUnknownNameInAValueIsToldAndTheRunGoesOn) {
  Piece piece("#if($none)\na\n#endif\nb\n");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.messages(),
            "\n\nERROR: Line 1: There is no macro \"none\" in your input file!\n");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "b ");
}

TEST(Conditional, AStrayOneChangesNothing) {
  Piece piece("x if(1)\n#if(bad)\na\n#endif\nb\n");
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 2;
  EXPECT_EQ(MacroStatement(piece.source), kOk);
  EXPECT_EQ(piece.source.conditional.depth, 0);
  EXPECT_EQ(piece.read(2), kOk);
  EXPECT_EQ(piece.line(), "b ");  // the value is still the 0 of the beginning
}

}  // namespace

}  // namespace korvo
