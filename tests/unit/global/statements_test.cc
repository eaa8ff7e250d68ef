#include "global/statements.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

TEST(Statements, OnlySevenNamesAreGlobal) {
  for (int command = -5; command <= 40; ++command) {
    bool global = command == kTE || command == kRD || command == kRS || command == kSR ||
                  command == kLiteralLine || command == kMacroWord || command == kConstWord;
    if (global) {
      continue;
    }
    Piece piece("(1)\n");
    EXPECT_EQ(piece.read(), kOk);
    EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, static_cast<CommandCode>(command)),
              kInvalidGlobalData)
        << command;
    EXPECT_EQ(piece.source.position, 0);
  }
}

TEST(Statements, SetWhatTheyName) {
  Piece piece("(0.25)(96)(48000)\n");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kRD), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kTE), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kSR), kOk);
  EXPECT_EQ(piece.global.settings.rd, 0.25F);
  EXPECT_EQ(piece.global.tempo.defs[0].startTempo, 96);
  EXPECT_EQ(piece.global.settings.sampleRate, 48000U);
}

TEST(Statements, ReachThePreprocessor) {
  Piece piece("#const a 1\n#define m #1#\n");
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kConstWord), kOk);
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kMacroWord), kOk);
  EXPECT_EQ(piece.source.constants.count, 1U);
  EXPECT_EQ(piece.source.macros.count, 1U);
}

std::string literal(const char *line, bool midi) {
  Piece piece(line);
  piece.global.score = midi ? nullptr : &piece.output;
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.source, piece.global, kLiteralLine), kOk);
  EXPECT_EQ(piece.rest(), "");
  return piece.written();
}

TEST(Statements, ALiteralLineGoesIntoTheScore) {
  EXPECT_EQ(literal("> f1 0 4096 10 1\n", false), "\n f1 0 4096 10 1 ");
  EXPECT_EQ(literal(">", false), "\n");
  EXPECT_EQ(literal(">;x /* y\r\n", false), "\n;x /* y  ");
  EXPECT_EQ(literal("> f1 0 4096 10 1\n", true), "");
}

}  // namespace

}  // namespace korvo
