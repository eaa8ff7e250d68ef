#include "reader/line_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "preproc/conditional.h"
#include "support/piece.h"

namespace korvo {

namespace {

// Definitions for the tests of the scans: $m is M, $n is N, $e is nothing; ~x is 1.5.
constexpr const char *kNames =
    "#define m #M#\n"
    "#define n #N#\n"
    "#define e ##\n"
    "#const x 1.5\n";
constexpr int kNameLines = 4;

// The last line of `text` as it comes out, behind the definitions.
std::string expanded(const std::string &text) {
  Piece piece(kNames + text);
  EXPECT_EQ(piece.define(kNameLines), kOk);
  ErrorCode result = kOk;
  std::string line;
  while ((result = piece.read()) == kOk) {
    line = piece.line();
    EXPECT_EQ(piece.source.position, 0);
  }
  EXPECT_EQ(result, kEndOfInput) << text;
  return line;
}

TEST(LineReader, ReadsLinesAndCountsThem) {
  Piece piece("first\nsecond line\n\nlast");
  EXPECT_EQ(piece.source.lineCounter, 0);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "first ");  // the line end has become a blank
  EXPECT_EQ(piece.source.lineCounter, 1);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "second line ");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), " ");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "last");
  EXPECT_EQ(piece.source.lineCounter, 4);
}

TEST(LineReader, TheEndOfTheInputLeavesLineAndPositionAlone) {
  Piece piece("line\n");
  piece.read();
  piece.source.position = 2;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(piece.read(), kEndOfInput);
    EXPECT_EQ(piece.line(), "line ");
    EXPECT_EQ(piece.source.position, 2);
    EXPECT_EQ(piece.source.lineCounter, 1);
  }
}

TEST(LineReader, AnEmptyInputHasNoLine) {
  Piece piece("");
  EXPECT_EQ(piece.read(), kEndOfInput);
  EXPECT_EQ(piece.source.lineCounter, 0);
}

TEST(LineReader, CarriageReturnsAndByte255BecomeBlanks) {
  Piece piece("1.5\r\na\xff\rb\xfe\tc\v\n");
  piece.read();
  EXPECT_EQ(piece.line(), "1.5  ");
  piece.read();
  EXPECT_EQ(piece.line(), "a  b\xfe\tc\v ");
}

TEST(LineReader, AVeryLongLineComesInPieces) {
  std::string text(5000, 'a');
  Piece piece(text);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), std::string(4095, 'a'));
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), std::string(905, 'a'));
  EXPECT_EQ(piece.source.lineCounter, 2);
  EXPECT_EQ(piece.read(), kEndOfInput);
}

TEST(LineReader, LinesThatJustFit) {
  Piece piece(std::string(4094, 'a') + "\n" + std::string(4095, 'b') + "\nc\n");
  piece.read();
  EXPECT_EQ(piece.line(), std::string(4094, 'a') + " ");
  piece.read();
  EXPECT_EQ(piece.line(), std::string(4095, 'b'));
  piece.read();
  EXPECT_EQ(piece.line(), " ");  // the line end alone
  piece.read();
  EXPECT_EQ(piece.line(), "c ");
  EXPECT_EQ(piece.source.lineCounter, 4);
}

TEST(LineReader, CallsAndReferencesAreExpanded) {
  EXPECT_EQ(expanded("a $m b $n c ~x d"), "a M b N c 1.500 d");
  EXPECT_EQ(expanded("$m$n"), "MN");
  EXPECT_EQ(expanded("~x~x"), "1.5001.500");
  EXPECT_EQ(expanded("a$e"), "a");
  EXPECT_EQ(expanded("$e"), "");
  EXPECT_EQ(expanded(" $m.$m,$m "), " M.M,M ");
}

TEST(LineReader, ConstantsComeAfterMacros) {
  Piece piece(std::string(kNames) + "#define t #~x#\n#define u #~$v#\n#define v #x#\na $t $u\n");
  ASSERT_EQ(piece.define(kNameLines + 3), kOk);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "a 1.500 1.500 ");
}

TEST(LineReader, CommentsAreLeftAlone) {
  EXPECT_EQ(expanded("$m ; $m ~x"), "M ; $m ~x");
  EXPECT_EQ(expanded(";$m\n$m"), "M");
  EXPECT_EQ(expanded("/* $m ~x */ $m ~x"), "/* $m ~x */ M 1.500");
  EXPECT_EQ(expanded("/* a\n$m ~x"), "$m ~x");
  EXPECT_EQ(expanded("/* a\n$m\n ~x */ ~x $m"), " ~x */ 1.500 M");
  EXPECT_EQ(expanded("a / * $m * / $m"), "a / * M * / M");
}

TEST(LineReader, AnyClosingMarkEndsAComment) {
  // Whichever mark has opened it.
  EXPECT_EQ(expanded("; $m */ $m ~x"), "; $m */ M 1.500");
  EXPECT_EQ(expanded("; a /* b\n $m ~x"), " M 1.500");
  EXPECT_EQ(expanded("/* ; $m */ $m"), "/* ; $m */ M");
  EXPECT_EQ(expanded("/* /* */ $m */ $m"), "/* /* */ M */ M");  // no nesting for the scans
  EXPECT_EQ(expanded("*/ $m"), "*/ M");
}

TEST(LineReader, ACommentMarkIsSteppedOverAsAWhole) {
  EXPECT_EQ(expanded("/*/ $m ~x"), "/*/ $m ~x");
  EXPECT_EQ(expanded("/*/ $m */ $m ~x"), "/*/ $m */ M 1.500");
  EXPECT_EQ(expanded("/*/\n$m ~x"), "$m ~x");
}

TEST(LineReader, ALineFeedFromABodyEndsASemicolonComment) {
  Piece piece(std::string(kNames) + "#define two #; a $n\n$n#\n $two\n/* $two */\n");
  ASSERT_EQ(piece.define(kNameLines + 1), kOk);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), " ; a $n \nN ");
}

TEST(LineReader, ACallAtTheFirstCharacterIsFollowedFromTheSecond) {
  Piece piece(std::string(kNames) +
              "#define d #$n#\n"
              "#define xd #x$n#\n"
              "$d\n $d\n$xd\n$e$n\n$e $n\n$d$n\n");
  ASSERT_EQ(piece.define(kNameLines + 2), kOk);
  for (const char *line : {"$n ", " N ", "xN ", "$n ", " N ", "$nN "}) {
    EXPECT_EQ(piece.read(), kOk);
    EXPECT_EQ(piece.line(), line);
  }
}

TEST(LineReader, StatementsKeepTheirCallsButNotTheirReferences) {
  EXPECT_EQ(expanded("#const y $m ~x"), "#const y $m 1.500");
  EXPECT_EQ(expanded("  #undef $m ~x"), "  #undef $m 1.500");
  EXPECT_EQ(expanded("#else $m"), "#else $m");
  EXPECT_EQ(expanded("#i $m"), "#i $m");
  EXPECT_EQ(expanded("$m #c $m"), "M #c $m");
  EXPECT_EQ(expanded("#const a 1\n$m"), "M");  // up to the end of the line only
}

TEST(LineReader, ADefinitionIsLeftAloneUpToItsThirdMark) {
  EXPECT_EQ(expanded("#define a #$m ~x# $m ~x"), "#define a #$m ~x# M 1.500");
  EXPECT_EQ(expanded("$m #d a #$m ~x# $m ~x"), "M #d a #$m ~x# M 1.500");
  EXPECT_EQ(expanded("#d a # $m\n~x $m\n~x # $m ~x"), "~x # M 1.500");
  EXPECT_EQ(expanded("#d a\n$m ~x\n#b# $m"), "#b# M");
  EXPECT_EQ(expanded("#d a #b# #d c #$m# $m"), "#d a #b# #d c #$m# M");
  EXPECT_EQ(expanded("#C $m #a# $m"), "#C $m #a# M");  // only small letters make a statement
}

TEST(LineReader, MarksInCommentsOfADefinitionDoNotCount) {
  EXPECT_EQ(expanded("#d a #b ; c # $m\n$m # $m"), "$m # M");
  EXPECT_EQ(expanded("#d a #b /* # # */ $m ~x# $m"), "#d a #b /* # # */ $m ~x# M");
}

TEST(LineReader, TheMarksOfALineEndWithIt) {
  EXPECT_EQ(expanded("#d a #                                  ~x#\n ~x ~x ~x ~x ~x ~x ~x"),
            " 1.500 1.500 1.500 1.500 1.500 1.500 1.500");
}

TEST(LineReader, BehindALoopEndNoDefinitionOpens) {
  EXPECT_EQ(expanded("> #d a #$m ~x# $m"), "> #d a #M 1.500# M");
  EXPECT_EQ(expanded("1 > 2 #c $m"), "1 > 2 #c M");
  EXPECT_EQ(expanded("> 1\n#d a #$m# $m"), "#d a #$m# M");  // for the rest of the line only
  EXPECT_EQ(expanded("/* > */ #d a #$m# $m"), "/* > */ #d a #$m# M");
}

TEST(LineReader, ALoopEndAtPosition85TurnsNothingOff) {
  std::string definition = " #d a #$m ~x# $m";
  for (int position : {0, 1, 84, 86, 87, 170}) {
    std::string filler(static_cast<std::size_t>(position), '.');
    EXPECT_EQ(expanded(filler + ">" + definition), filler + "> #d a #M 1.500# M") << position;
  }
  std::string filler(85, '.');
  EXPECT_EQ(expanded(filler + ">" + definition), filler + "> #d a #$m ~x# M");
}

TEST(LineReader, AnOpenDefinitionMayHoldALoop) {
  EXPECT_EQ(expanded("#d a #< $m > ~x# $m"), "#d a #< $m > ~x# M");
  EXPECT_EQ(expanded("#d a #<\n $m > ~x# $m ~x"), " $m > ~x# M 1.500");
  EXPECT_EQ(expanded("#d a > #$m# $m"), "#d a > #$m# M");
}

TEST(LineReader, UnknownNamesStopTheLine) {
  Piece piece("a $no b\n a ~nay\n");
  EXPECT_EQ(piece.read(), kContextOnly);
  EXPECT_EQ(piece.messages(), "\n\nERROR: Line 1: There is no macro \"no\" in your input file!\n");
  EXPECT_EQ(piece.line(), "a $no b ");
  EXPECT_EQ(piece.rest(), " b ");  // behind the name
  EXPECT_EQ(piece.read(), kContextOnly);
  EXPECT_EQ(piece.messages(),
            "\n\nERROR: Line 2: There is no constant \"nay\" in your input file!\n");
  EXPECT_EQ(piece.rest(), " ");
}

TEST(LineReader, ExpansionsAreTold) {
  Piece piece(std::string(kNames) + "a $m ~x\n");
  ASSERT_EQ(piece.define(kNameLines), kOk);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.messages(),
            "\n\tExpanding macro \"m\" into line 5..."
            "\n\tExpanding const \"x\" (   1.50) into line 5...");
}

TEST(LineReader, SilentExpansionsAreNotTold) {
  Piece piece(std::string(kNames) + "a $m ~x\n");
  ASSERT_EQ(piece.define(kNameLines), kOk);
  piece.source.messages->silent = true;
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "a M 1.500 ");
  EXPECT_EQ(piece.messages(), "");
}

TEST(LineReader, ConditionalDirectivesOpenTheirLine) {
  Piece piece("  #if(1) tail\nx\n\t#endif tail\n");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.source.conditional.depth, 1);
  EXPECT_EQ(piece.rest(), " tail ");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.line(), "x ");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.source.conditional.depth, 0);
  EXPECT_EQ(piece.rest(), " tail ");
}

TEST(LineReader, WhatIsNoConditionalDirective) {
  for (const char *text : {"# if(1)", "#if (1)", "#IF(1)", "#If(1)", "x #if(1)", "##if(1)",
                           "# endif", "#ENDIF", "#endi", "x #endif", "; #if(1)"}) {
    Piece piece(text);
    EXPECT_EQ(piece.read(), kOk) << text;
    EXPECT_EQ(piece.source.conditional.depth, 0) << text;
    EXPECT_EQ(piece.line(), text);
    EXPECT_EQ(piece.source.position, 0) << text;
  }
}

TEST(LineReader, DirectivesAreFoundInCommentsToo) {
  Piece piece("/*\n#if(1)\n#endif\n#endif\n");
  EXPECT_EQ(piece.read(2), kOk);
  EXPECT_EQ(piece.source.conditional.depth, 1);
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(piece.read(), kStrayEndif);
}

TEST(LineReader, AStrayEndifStopsBehindTheWord) {
  Piece piece(" #endif x\n");
  EXPECT_EQ(piece.read(), kStrayEndif);
  EXPECT_EQ(piece.rest(), " x ");
}

TEST(LineReader, TheDirectiveMayBeGluedToText) {
  Piece piece("#if(1)\n#endifabc\n");
  EXPECT_EQ(piece.read(2), kOk);
  EXPECT_EQ(piece.rest(), "abc ");
  EXPECT_EQ(piece.source.conditional.depth, 0);
}

TEST(LineReader, TheListenerGetsEveryLineThatParsersSee) {
  Piece piece(std::string(kNames) +
              "a $m ~x\n"
              "\n"
              "#if(1)\n"
              "kept ; $m\n"
              "#endif\n"
              "#if(0)\n"
              "dropped\n"
              "#endif\n"
              "$e");
  ASSERT_EQ(piece.define(kNameLines), kOk);
  piece.keepExpanded();
  while (piece.read() == kOk) {
  }
  EXPECT_EQ(piece.expanded(),
            "a M 1.500 \n"
            " \n"
            "kept ; $m \n"
            "\n");
}

TEST(LineReader, ALineWithAnErrorIsNotEchoed) {
  Piece piece("good\nbad $nobody\n");
  piece.keepExpanded();
  EXPECT_EQ(piece.read(2), kContextOnly);
  EXPECT_EQ(piece.expanded(), "good \n");
}

TEST(LineReader, AFailureToReadIsNotTheEnd) {
  Piece piece("");
  piece.text.fails = true;
  EXPECT_EQ(piece.read(), kTemporaryFileLost);
  EXPECT_EQ(piece.read(), kTemporaryFileLost);
}

TEST(LineReader, AFailureToReadEndsADroppedSection) {
  Piece piece("");
  char text[] = "#if(0)\n";
  std::memcpy(piece.source.line, text, sizeof text);
  piece.source.position = 1;
  piece.text.fails = true;
  EXPECT_EQ(OpenConditional(piece.source), kTemporaryFileLost);
}

TEST(LineReader, NothingIsReadBehindTheLastMessage) {
  Piece piece("a\nb\n");
  piece.source.messages->printed = kMaxMessagesInRun;
  EXPECT_EQ(piece.read(), kOk);
  ++piece.source.messages->printed;
  EXPECT_EQ(piece.read(), kOutOfMemory);
  EXPECT_EQ(piece.line(), "a ");
}

}  // namespace

}  // namespace korvo
