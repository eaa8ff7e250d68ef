#include "global/statements.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/memory_file.h"
#include "support/piece.h"

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
    EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, static_cast<CommandCode>(command)),
              kInvalidGlobalData)
        << command;
    EXPECT_EQ(piece.source.position, 0);
  }
}

TEST(Statements, SetWhatTheyName) {
  Piece piece("(0.25)(96)(48000)\n");
  EXPECT_EQ(piece.read(), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kRD), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kTE), kOk);
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kSR), kOk);
  EXPECT_EQ(piece.run.settings.rd, 0.25F);
  EXPECT_EQ(piece.run.tempo.defs[0].startTempo, 96);
  EXPECT_EQ(piece.run.settings.sampleRate, 48000U);
}

TEST(Statements, ReachThePreprocessor) {
  Piece piece("#const a 1\n#define m #1#\n");
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kConstWord), kOk);
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kMacroWord), kOk);
  EXPECT_EQ(piece.run.constants.count, 1U);
  EXPECT_EQ(piece.run.macros.count, 1U);
}

std::string literal(const char *line, bool midi) {
  Piece piece(line);
  MemoryFile output;
  piece.run.output.file = output.file();
  piece.run.options.midi = midi;
  EXPECT_EQ(piece.read(), kOk);
  piece.source.position = 1;
  EXPECT_EQ(RunGlobalStatement(piece.run, piece.source, kLiteralLine), kOk);
  EXPECT_EQ(piece.rest(), "");
  closeOutput(piece.run.output, true);
  output.wasClosed();
  return output.text();
}

TEST(Statements, ALiteralLineGoesIntoTheScore) {
  EXPECT_EQ(literal("> f1 0 4096 10 1\n", false), "\n f1 0 4096 10 1 ");
  EXPECT_EQ(literal(">", false), "\n");
  EXPECT_EQ(literal(">;x /* y\r\n", false), "\n;x /* y  ");
  EXPECT_EQ(literal("> f1 0 4096 10 1\n", true), "");
}

}  // namespace
