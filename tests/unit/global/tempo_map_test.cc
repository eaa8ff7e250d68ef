#include "global/tempo_map.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

// Runs the statements of a text, each `te` and what follows; stops at the first error.
ErrorCode define(Piece &piece) {
  ErrorCode result = piece.read();
  while (result == kOk) {
    while (piece.source.line[piece.source.position] == ' ') {
      ++piece.source.position;
    }
    if (piece.rest().empty()) {
      result = piece.read();
      continue;
    }
    piece.source.position += 2;
    result = DefineTempo(piece.source, piece.global.tempo);
  }
  return result == kEndOfInput ? kOk : result;
}

void expectDef(const TempoDef &def, float startTime, float endTime, float startTempo,
               float endTempo, float curveType, float exponent) {
  EXPECT_EQ(def.startTime, startTime);
  EXPECT_EQ(def.endTime, endTime);
  EXPECT_EQ(def.startTempo, startTempo);
  EXPECT_EQ(def.endTempo, endTempo);
  EXPECT_EQ(def.curveType, curveType);
  EXPECT_EQ(def.Vcurve, exponent);
}

TEST(TempoMap, BeginsWithSixtyBeatsAMinute) {
  TempoMap map;
  EXPECT_EQ(map.count, 1);
  expectDef(map.defs[0], 0, 0, 60, 60, 1, 0);
  EXPECT_EQ(map.current, 60);
  for (float beat : {-1.0F, 0.0F, 0.5F, 10.0F, 1e6F}) {
    EXPECT_EQ(TempoAtBeat(map, beat), 60) << beat;
  }
}

TEST(TempoMap, OneTempoForThePiece) {
  for (const char *text : {"te(120)", "te ( 120 )", "te\n(120\n\n)", "te(120,)", "te(+120.0)",
                           "te(120 ; fast\n)", "te(120 /* fast */)"}) {
    SCOPED_TRACE(text);
    Piece piece(text);
    EXPECT_EQ(define(piece), kOk);
    EXPECT_EQ(piece.global.tempo.count, 1);
    expectDef(piece.global.tempo.defs[0], 0, 1000, 120, 120, 0, 0);
    EXPECT_EQ(piece.messages(), "");
    for (float beat : {0.0F, 500.0F, 1000.0F, 5000.0F}) {
      EXPECT_EQ(TempoAtBeat(piece.global.tempo, beat), 120) << beat;
    }
  }
}

TEST(TempoMap, OneTempoLeavesTheExponent) {
  Piece piece("te(0,10,60,90,v2.5) te(100)");
  EXPECT_EQ(define(piece), kOk);
  expectDef(piece.global.tempo.defs[0], 0, 1000, 100, 100, 0, 2.5F);
}

TEST(TempoMap, ChangesOfTempo) {
  struct {
    const char *text;
    float startTime;
    float endTime;
    float startTempo;
    float endTempo;
    float curveType;
    float exponent;
  } rows[] = {
      {"te(5, 20, 60, 90)", 5, 20, 60, 90, 1, 1},
      {"te(5 20 60 90)", 5, 20, 60, 90, 1, 1},
      {"te(5/20/60/90)", 5, 20, 60, 90, 1, 1},
      {"te( 5 , 20 , 60 , 90 )", 5, 20, 60, 90, 1, 1},
      {"te\n(5\n20 ; x\n60 /* y */, 90\n)", 5, 20, 60, 90, 1, 1},
      {"te(5, 20, 60, 90,)", 5, 20, 60, 90, 1, 1},
      {"te(.5, 2.5, 60.5, 90.25)", 0.5F, 2.5F, 60.5F, 90.25F, 1, 1},
      {"te(5, 20, 60, 90, f)", 5, 20, 60, 90, 0, 1},
      {"te(5, 20, 60, 90, e)", 5, 20, 60, 90, 1, 1},
      {"te(5, 20, 60, 90, E)", 5, 20, 60, 90, 1, 1},
      {"te(5, 20, 60, 90 l)", 5, 20, 60, 90, 2, 1},
      {"te(5, 20, 60, 90, v1.5)", 5, 20, 60, 90, 3, 1.5F},
      {"te(5, 20, 60, 90, V1.5 )", 5, 20, 60, 90, 3, 1.5F},
      {"te(5, 20, 60, 90, s)", 5, 20, 60, 90, 4, 1},
      {"te(5, 20, 60, 90, c ,)", 5, 20, 60, 90, 5, 1},
      {"te(5, 5, 60, 90)", 5, 5, 60, 90, 1, 1},
      {"te(5, 600, 30, 300)", 5, 600, 30, 300, 1, 1},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    Piece piece(row.text);
    EXPECT_EQ(define(piece), kOk);
    EXPECT_EQ(piece.global.tempo.count, 2);
    expectDef(piece.global.tempo.defs[1], row.startTime, row.endTime, row.startTempo, row.endTempo,
              row.curveType, row.exponent);
    expectDef(piece.global.tempo.defs[0], 0, 0, 60, 60, 1, 0);
    EXPECT_EQ(piece.messages(), "");
  }
}

TEST(TempoMap, AChangeAtBeatZeroReplacesTheFirst) {
  Piece piece("te(0, 10, 60, 120) te(0, 20, 90, 30, s)");
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(piece.global.tempo.count, 1);
  expectDef(piece.global.tempo.defs[0], 0, 20, 90, 30, 4, 1);
  Piece minus("te(-0, 10, 60, 120)");
  EXPECT_EQ(define(minus), kOk);
  EXPECT_EQ(minus.global.tempo.count, 1);
  EXPECT_EQ(minus.global.tempo.defs[0].endTime, 10);
}

TEST(TempoMap, Errors) {
  struct {
    const char *text;
    ErrorCode result;
    const char *rest;
  } rows[] = {
      {"te 60", kIllegalStatementStart, "60"},
      {"te", kIllegalStatementStart, ""},
      {"te; c\n(60)", kIllegalStatementStart, "; c "},
      {"te()", kBadTempoTerm1, ")"},
      {"te(x)", kBadTempoTerm1, "x)"},
      {"te(, 60)", kBadTempoTerm1, ", 60)"},
      {"te(", kBadTempoTerm1, ""},
      {"te(60", kBadTempoTerm2, ""},
      {"te(60 x)", kBadTempoTerm2, "x)"},
      {"te(60,,)", kBadTempoTerm2, ",)"},
      {"te(5, 20)", kBadTempoTerm3, ")"},
      {"te(5, 20, x)", kBadTempoTerm3, "x)"},
      {"te(5, 20, 60)", kBadTempoTerm4, ")"},
      {"te(0.5)", kTempoOutOfRange, ""},
      {"te(-60)", kTempoOutOfRange, ""},
      {"te(0)", kTempoOutOfRange, ""},
      {"te(4000.5)", kTempoOutOfRange, ""},
      {"te(5, 20, 60, 90, v)", kBadCurve, nullptr},
      {"te(5, 20, 60, 90, V0)", kBadCurve, nullptr},
      {"te(5, 20, 60, 90, v-1)", kBadCurve, nullptr},
      {"te(5, 20, 60, 90, v 2)", kBadCurve, nullptr},
      {"te(5, 20, 60, 90, s*)", kBeatMoveNotAllowed, "*)"},
      {"te(5, 20, 60, 90, e \n *)", kBeatMoveNotAllowed, "*)"},
      {"te(5, 20, 60, 90, q*)", kMissingParenthesis, "q*)"},
      {"te(10001, 10002, 60, 60)", kTempoStartTimeRange, nullptr},
      {"te(-1, 10, 60, 60)", kTempoStartTimeRange, nullptr},
      {"te(10001, -1, 0, 0)", kTempoStartTimeRange, nullptr},
      {"te(5, 10000.5, 60, 60)", kTempoEndTimeRange, nullptr},
      {"te(5, -1, 0, 0)", kTempoEndTimeRange, nullptr},
      {"te(5, 10, 0.5, 60)", kStartTempoRange, nullptr},
      {"te(5, 10, 4001, 0)", kStartTempoRange, nullptr},
      {"te(5, 10, 60, 0)", kEndTempoRange, nullptr},
      {"te(10, 5, 60, 4000.5)", kEndTempoRange, nullptr},
      {"te(10, 5, 60, 60)", kTempoTimesBackwards, nullptr},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    Piece piece(row.text);
    EXPECT_EQ(define(piece), row.result);
    if (row.rest != nullptr) {
      EXPECT_EQ(piece.rest(), row.rest);
    }
    EXPECT_EQ(piece.messages(), "");
    if (row.result != kMissingParenthesis) {
      EXPECT_EQ(piece.global.tempo.count, 1);
      expectDef(piece.global.tempo.defs[0], 0, 0, 60, 60, 1, 0);
    }
  }
}

TEST(TempoMap, AnUnknownCurveLetterIsLeftWhereItStands) {
  // It means a straight line, and then stands where the ")" should be.
  Piece piece("te(5, 20, 60, 90, q)");
  EXPECT_EQ(define(piece), kMissingParenthesis);
  EXPECT_EQ(piece.rest(), "q)");
  ASSERT_EQ(piece.global.tempo.count, 2);
  expectDef(piece.global.tempo.defs[1], 5, 20, 60, 90, 0, 1);
}

TEST(TempoMap, ADefinitionIsStoredBeforeItsEndIsMissed) {
  for (const char *text : {"te(5, 20, 60, 90", "te(5, 20, 60, 90 7)", "te(5, 20, 60, 90,, )"}) {
    Piece piece(text);
    EXPECT_EQ(define(piece), kMissingParenthesis) << text;
    EXPECT_EQ(piece.global.tempo.count, 2) << text;
  }
}

std::string warnings(const char *text, bool silent = false) {
  Piece piece(text);
  piece.source.messages->silent = silent;
  EXPECT_EQ(define(piece), kOk);
  std::string said = piece.messages();
  std::string codes;
  struct {
    const char *code;
    const char *text;
  } texts[] = {
      {"30 ", "Tempo1 is quite fast. Is that okay?"},
      {"31 ", "Tempo1 is quite slow. Is that okay?"},
      {"32 ", "Tempo2 is quite fast. Is that okay?"},
      {"33 ", "Tempo2 is quite slow. Is that okay?"},
      {"34 ", "This change starts quite late. Is that okay?"},
      {"35 ", "This tempo change is quite long. Is that okay?"},
  };
  for (std::size_t at = said.find("WARNING: Line 1: "); at != std::string::npos;
       at = said.find("WARNING: Line 1: ", at + 1)) {
    for (const auto &row : texts) {
      if (said.compare(at + 17, std::string(row.text).size() + 1, row.text + std::string("\n")) ==
          0) {
        codes += row.code;
      }
    }
  }
  return codes;
}

TEST(TempoMap, Warnings) {
  struct {
    const char *text;
    const char *codes;
  } rows[] = {
      {"te(300)", ""},
      {"te(300.5)", "30 "},
      {"te(30)", ""},
      {"te(29.5)", "31 "},
      {"te(1)", "31 "},
      {"te(4000)", "30 "},
      {"te(600, 600, 60, 60)", ""},
      {"te(600.5, 700, 60, 60)", "34 35 "},
      {"te(599, 601, 60, 60)", "35 "},  // the end is looked at, not the length
      {"te(5, 10, 301, 29)", "30 33 "},
      {"te(5, 10, 29, 301)", "31 32 "},
      {"te(10000, 10000, 4000, 1)", "34 35 30 33 "},
      {"te(700, 800, 1, 4000)", "34 35 31 32 "},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(warnings(row.text), row.codes) << row.text;
    EXPECT_EQ(warnings(row.text, true), "") << row.text;
  }
}

std::string conflict(int number) {
  return "\nWARNING: Tempo #" + std::to_string(number) +
         " conflicts with previous tempo's end time!";
}

TEST(TempoMap, ConflictsAreToldAfterEveryStatement) {
  Piece piece("te(20, 30, 60, 90)\nte(25, 40, 90, 60)\nte(40, 50, 60, 60)\nte(45, 60, 60, 60)\n");
  piece.source.messages->silent = true;  // these are no warnings of the catalogue
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(piece.messages(), conflict(3) + conflict(3) + conflict(3) + conflict(5));
}

TEST(TempoMap, OneTempoForThePieceReachesIntoLaterChanges) {
  Piece piece("te(20, 30, 60, 90) te(120)");
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(piece.messages(), conflict(2));  // it lasts to beat 1000
}

TEST(TempoMap, HasRoomForFiftyDefinitions) {
  std::string text;
  for (int i = 1; i < 50; ++i) {
    text += "te(" + std::to_string(i) + "," + std::to_string(i) + ",60,60)\n";
  }
  Piece piece(text + "te(0, 0, 90, 90)\nte(100)\nte(50,50,60,60)\n");
  EXPECT_EQ(define(piece), kOutOfMemory);
  EXPECT_EQ(piece.global.tempo.count, 50);
  EXPECT_EQ(piece.source.lineCounter, 52);
  EXPECT_EQ(piece.global.tempo.defs[49].startTime, 49);
}

TEST(TempoMap, TemposAlongAChange) {
  Piece piece("te(10, 20, 60, 160, f) te(30, 40, 200, 100, e)");
  EXPECT_EQ(define(piece), kOk);
  struct {
    float beat;
    float tempo;
  } rows[] = {
      {0, 60},   {9.5F, 60},   {10, 60},  {12.5F, 85}, {15, 110}, {20, 160},
      {25, 160}, {29.5F, 160}, {30, 200}, {35, 175},   {40, 100}, {1000, 100},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(TempoAtBeat(piece.global.tempo, row.beat), row.tempo) << row.beat;
  }
}

TEST(TempoMap, TheDefaultCurveIsTheSquare) {
  Piece piece("te(0, 10, 60, 120)");
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(TempoAtBeat(piece.global.tempo, 5), 75);
  EXPECT_EQ(TempoAtBeat(piece.global.tempo, 10), 120);
}

TEST(TempoMap, ADefinitionOutOfOrderHidesThoseBehindIt) {
  Piece piece("te(20, 20, 120, 120) te(40, 40, 90, 90) te(30, 30, 200, 200)");
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(TempoAtBeat(piece.global.tempo, 25), 120);
  EXPECT_EQ(TempoAtBeat(piece.global.tempo, 35),
            120);  // the one at 40 starts later, so 30 is not seen
  EXPECT_EQ(TempoAtBeat(piece.global.tempo, 45), 200);
}

TEST(TempoMap, BeatsBecomeSeconds) {
  Piece piece("te(10, 20, 60, 160, f)");
  EXPECT_EQ(define(piece), kOk);
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, 3), 3);
  piece.global.tempo.beat = 15;
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, 1), 60.0F / 110.0F);
  EXPECT_EQ(piece.global.tempo.current, 110);
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, -2), 60.0F / 110.0F * -2.0F);
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, 0), 0);
  // At one point only: a value that spans the change is not integrated.
  piece.global.tempo.beat = 9;
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, 100), 100);
  EXPECT_EQ(piece.global.tempo.current, 60);
  EXPECT_EQ(piece.messages(), "");
}

TEST(TempoMap, ConversionsAreShownWhenAsked) {
  Piece piece("te(120)");
  EXPECT_EQ(define(piece), kOk);
  piece.source.messages->tempoVerbose = true;
  piece.source.messages->silent = true;
  piece.global.tempo.beat = 2.5F;
  EXPECT_EQ(BeatsToSeconds(piece.global.tempo, *piece.source.messages, -3), -1.5F);
  EXPECT_EQ(piece.messages(),
            "\n  > Beat    2.50 Tempo =  120.00 Val =   -3.00 (bts)   -1.50 (secs)");
}

TEST(TempoMap, Listing) {
  Piece piece(
      "te(1, 2, 61, 62, f) te(2, 3, 63, 64, e) te(3, 4, 65, 66, l) te(4, 5, 67, 68, v1.25)\n"
      "te(5, 6, 69, 70, s) te(6, 7, 71, 72, c)");
  EXPECT_EQ(define(piece), kOk);
  ListTempos(piece.global.tempo, *piece.source.messages);
  EXPECT_EQ(piece.messages(),
            "\n  Stored Tempos (There are 7 defs):"
            "\n\t1: Stime    0.00, Etime    0.00, Stempo   60.00, Etempo   60.00, Type E"
            "\n\t2: Stime    1.00, Etime    2.00, Stempo   61.00, Etempo   62.00, Type F"
            "\n\t3: Stime    2.00, Etime    3.00, Stempo   63.00, Etempo   64.00, Type E"
            "\n\t4: Stime    3.00, Etime    4.00, Stempo   65.00, Etempo   66.00, Type L"
            "\n\t5: Stime    4.00, Etime    5.00, Stempo   67.00, Etempo   68.00, Type U, Vcurve "
            "=    1.25"
            "\n\t6: Stime    5.00, Etime    6.00, Stempo   69.00, Etempo   70.00, Type S"
            "\n\t7: Stime    6.00, Etime    7.00, Stempo   71.00, Etempo   72.00, Type X"
            "\n");
}

}  // namespace

}  // namespace korvo
