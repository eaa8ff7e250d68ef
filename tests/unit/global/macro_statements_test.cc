#include "global/macro_statements.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "preproc/macros.h"
#include "support/piece.h"

namespace korvo {

namespace {

const Macro *find(const Piece &piece, std::string_view name) {
  return static_cast<const Macro *>(findName(piece.source.macros, name));
}

std::vector<std::string> paramsOf(const Macro &macro) {
  return {macro.params, macro.params + macro.argc};
}

using Params = std::vector<std::string>;

TEST(MacroStatements, Definitions) {
  struct {
    const char *text;
    const char *name;
    Params params;
    const char *body;
    const char *rest;
  } rows[] = {
      {"#define m #1#", "m", {}, "1", ""},
      {"#define m #1# tail", "m", {}, "1", " tail"},
      {"#define m##x", "m", {}, "", "x"},
      {"#dxxxxx m #1#", "m", {}, "1", ""},  // only the "d" of the keyword counts
      {"#define a_B9 # x #", "a_B9", {}, " x ", ""},
      {"#define add(a, b) #$a + $b#", "add", {"a", "b"}, "$a + $b", ""},
      {"#define f(a b)#x#", "f", {"a", "b"}, "x", ""},
      {"#define f(a'b#c,d)#x#", "f", {"a", "b", "c", "d"}, "x", ""},
      {"#define f( a ,  b )#x#", "f", {"a", "b"}, "x", ""},
      {"#define f(a,)#x#", "f", {"a"}, "x", ""},
      {"#define f(a, a)#x#", "f", {"a", "a"}, "x", ""},
      {"#define f(/* one */ a /* two */, b ; three\n)#x#", "f", {"a", "b"}, "x", ""},
      {"#define f(a,\n\n b\n)\n #x# t", "f", {"a", "b"}, "x", " t"},
      {"#define \n\n ; c\n m /* d */\n #1#", "m", {}, "1", ""},
      {"#define m #< $a > { } ~b#", "m", {}, "< $a > { } ~b", ""},
      // Line ends inside a body are line feeds, behind the blank that every line ends with.
      {"#define m #x\ny\nz#", "m", {}, "x \ny \nz", ""},
      {"#define m #\n#", "m", {}, " \n", ""},
      // A mark in a comment does not end the body; the comment stays in it.
      {"#define m #a /* # */ b#", "m", {}, "a /* # */ b", ""},
      {"#define m #a ; note # still\n body#", "m", {}, "a ; note # still \n body", ""},
      {"#define m #a /* x\n # */ b#", "m", {}, "a /* x \n # */ b", ""},
      {"#define m #a ; /* b\nc#", "m", {}, "a ; /* b \nc", ""},
      {"#define m #a ; */ #\nc#", "m", {}, "a ; */ # \nc", ""},
      {"#define m #/*/ # */ b#", "m", {}, "/*/ # */ b", ""},
      {"#define m #/* ; */#", "m", {}, "/* ; */", ""},
      {"#define m #a / * b#", "m", {}, "a / * b", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    Piece piece(row.text);
    EXPECT_EQ(piece.define(), kOk);
    EXPECT_EQ(piece.rest(), row.rest);
    const Macro *macro = find(piece, row.name);
    ASSERT_NE(macro, nullptr);
    EXPECT_EQ(paramsOf(*macro), row.params);
    EXPECT_EQ(macro->body, row.body);
    EXPECT_EQ(piece.source.macros.count, 1U);
  }
}

TEST(MacroStatements, DefinitionsThatFail) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
  } rows[] = {
      {"#definem #1#", kBadDefinition, "m #1#"},
      {"#d m#x m #1#", kBadDefinition, nullptr},
      {"#define", kBadDefinition, ""},
      {"#def", kBadDefinition, ""},
      {"#define 1m #1#", kNameNeedsLetter, "1m #1#"},
      {"#define _m #1#", kNameNeedsLetter, "_m #1#"},
      {"#define #1#", kNameNeedsLetter, "#1#"},
      {"#define ", kNameNeedsLetter, ""},
      {"#define /* a */ /* b */ m #1#", kNameNeedsLetter, "/* b */ m #1#"},
      {"#define f(1) #x#", kNameNeedsLetter, "1) #x#"},
      {"#define f() #x#", kNameNeedsLetter, ") #x#"},
      {"#define f(a,,b) #x#", kNameNeedsLetter, ",b) #x#"},
      {"#define f(a", kNameNeedsLetter, ""},
      {"#define f(", kNameNeedsLetter, ""},
      {"#define f (a) #x#", kBodyNeedsMarks, "(a) #x#"},
      {"#define m 1#", kBodyNeedsMarks, "1#"},
      {"#define m", kBodyNeedsMarks, ""},
      {"#define m=#1#", kBodyNeedsMarks, "=#1#"},
      {"#define f(a)", kBodyNeedsMarks, ""},
      {"#define m #1", kMissingMacroBodyEnd, ""},
      {"#define m #", kMissingMacroBodyEnd, ""},
      {"#define m #1\n\n2\n", kMissingMacroBodyEnd, ""},
      {"#define m #1 ; #", kMissingMacroBodyEnd, ""},
      {"#define m #1 /* #", kMissingMacroBodyEnd, ""},
      {"#define m #1 /* #\n # \n", kMissingMacroBodyEnd, ""},
      {"#define m #1\n#endif\n#", kStrayEndif, nullptr},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    Piece piece(row.text);
    EXPECT_EQ(piece.define(), row.result);
    if (row.rest != nullptr) {
      EXPECT_EQ(piece.rest(), row.rest);
    }
    EXPECT_EQ(piece.source.macros.count, 0U);
  }
}

TEST(MacroStatements, ANameIsDefinedOnce) {
  Piece piece("#define x #1#\n#define X #2#\n#define xx #3#\n#define x #4#\n");
  EXPECT_EQ(piece.define(3), kOk);
  EXPECT_EQ(piece.define(), kMacroExists);
  EXPECT_EQ(find(piece, "x")->body, "1");
  EXPECT_EQ(find(piece, "X")->body, "2");
  EXPECT_EQ(piece.source.macros.count, 3U);
}

// A body of `length` characters: 2 from the rest of its first line, then lines of 100.
std::string definitionOf(int length) {
  std::string text = "#define big #\n";
  int left = length - 2;
  for (; left >= 100; left -= 100) {
    text += std::string(98, 'x') + "\n";
  }
  return text + std::string(static_cast<std::size_t>(left), 'y') + "#";
}

TEST(MacroStatements, ABodyHas4095CharactersAtMost) {
  Piece fits(definitionOf(4095));
  EXPECT_EQ(fits.define(), kOk);
  EXPECT_EQ(find(fits, "big")->body.size(), 4095U);
  Piece tooLong(definitionOf(4096));
  EXPECT_EQ(tooLong.read(), kOk);
  tooLong.source.position = 1;
  EXPECT_EQ(MacroStatement(tooLong.source), kContextOnly);
  EXPECT_EQ(tooLong.messages(),
            "\n\nERROR: Line 42: The macro body has exceeded the maximum number\nof characters "
            "allowed (4096).\n");
  EXPECT_EQ(tooLong.source.macros.count, 0U);
}

std::string withParams(int count) {
  std::string text = "#define f(";
  for (int i = 1; i <= count; ++i) {
    text += "p" + std::to_string(i) + (i % 10 == 0 ? ",\n" : ",");
  }
  return text + ") #$p1#";
}

TEST(MacroStatements, HaveUpTo128Parameters) {
  Piece fits(withParams(128));
  EXPECT_EQ(fits.define(), kOk);
  EXPECT_EQ(find(fits, "f")->argc, 128);
  EXPECT_EQ(find(fits, "f")->params[127], "p128");
  EXPECT_EQ(find(fits, "f")->body, "$p1");
  Piece tooMany(withParams(129));
  EXPECT_EQ(tooMany.define(), kOutOfMemory);
  EXPECT_EQ(tooMany.source.macros.count, 0U);
}

TEST(MacroStatements, AreForgotten) {
  for (const char *text : {"#undef m", "#undef   m x", "#undef\n\n m", "#unzzz m", "#uxxxx m",
                           "#xnxxx m", "#xxxxf m"}) {
    Piece piece(std::string("#define m #1#\n#define n #2#\n") + text + "\n");
    EXPECT_EQ(piece.define(3), kOk) << text;
    EXPECT_EQ(find(piece, "m"), nullptr) << text;
    EXPECT_NE(find(piece, "n"), nullptr) << text;
  }
}

TEST(MacroStatements, MayBeDefinedAgainWhenForgotten) {
  Piece piece("#define m #1#\n#undef m\n#define m #2#\n");
  EXPECT_EQ(piece.define(3), kOk);
  EXPECT_EQ(find(piece, "m")->body, "2");
}

TEST(MacroStatements, ForgettingThatFails) {
  struct {
    const char *text;
    ErrorCode result;
  } rows[] = {
      {"#xxxxx m", kBadDefinition}, {"#undefm", kBadDefinition}, {"#undef", kBadDefinition},
      {"# m", kBadDefinition},      {"#Undef", kBadDefinition},  {"#undefine m", kBadDefinition},
      {"#undef M", kContextOnly},   {"#undef m;", kContextOnly}, {"#undef mm", kContextOnly},
      {"#undef ", kContextOnly},
  };
  for (const auto &row : rows) {
    Piece piece(std::string("#define m #1#\n") + row.text);
    EXPECT_EQ(piece.define(), kOk);
    EXPECT_EQ(piece.define(), row.result) << row.text;
    EXPECT_NE(find(piece, "m"), nullptr) << row.text;
  }
}

TEST(MacroStatements, ForgettingAnUnknownOneIsTold) {
  Piece piece("#define m #1#\n#undef y z\n");
  EXPECT_EQ(piece.define(), kOk);
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(MacroStatement(piece.source), kContextOnly);
  EXPECT_EQ(piece.messages(), "\n\nERROR: Line 2: There is no macro \"y\" in your input file!\n");
}

TEST(MacroStatements, ThereMustBeOneToForget) {
  Piece piece("#undef y\n#define m #1#\n#undef m\n#undef m\n");
  EXPECT_EQ(piece.define(), kNoMacros);
  EXPECT_EQ(piece.define(2), kOk);
  EXPECT_EQ(piece.define(), kNoMacros);
}

TEST(MacroStatements, StrayConditionalsAreReadAndDropped) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
  } rows[] = {
      {"endif x", kOk, " x"},
      {"endifx", kOk, "x"},
      {"else", kOk, "else"},
      {"e", kOk, "e"},
      {"if(1) x", kOk, " x"},
      {"if(0)", kOk, ""},
      {"if 1", kBadIf, nullptr},
      {"include", kBadIf, nullptr},
      {"if(x)", kIfNeedsValue, nullptr},
      {"if(1", kIfNotClosed, nullptr},
  };
  for (const auto &row : rows) {
    Piece piece(row.text);
    EXPECT_EQ(piece.read(), kOk);
    EXPECT_EQ(MacroStatement(piece.source), row.result) << row.text;
    EXPECT_EQ(piece.source.conditional.depth, 0) << row.text;
    if (row.rest != nullptr) {
      EXPECT_EQ(piece.rest(), row.rest) << row.text;
    }
  }
}

}  // namespace

}  // namespace korvo
