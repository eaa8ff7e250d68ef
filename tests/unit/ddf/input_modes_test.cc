#include "ddf/input_modes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

struct Read {
  bool readable;
  float value;
  std::string rest;
  int octave;
};

struct Setting {
  bool midi = false;
  bool quarterTones = false;
  int octave = 0;
  float lastValue = 0.0F;
};

Read read(CommandCode mode, const std::string &text, const Setting &setting = {}) {
  Piece piece("");
  piece.making.pfield.inputMode = mode;
  piece.making.pfield.noteOctave = setting.octave;
  piece.making.pfield.lastValue = setting.lastValue;
  piece.making.midi = setting.midi;
  piece.global.name.quarterTones = setting.quarterTones;
  std::string padded = "p4 " + text;
  std::int32_t position = 3;
  float value = -99.0F;
  bool readable = readValue(piece.making, padded.c_str(), position, value);
  return {readable, value, padded.substr(static_cast<std::size_t>(position)),
          piece.making.pfield.noteOctave};
}

struct Row {
  const char *text;
  float value;
  const char *rest;
};

template <std::size_t kCount>
void check(CommandCode mode, const Row (&rows)[kCount], const Setting &setting = {}) {
  for (const Row &row : rows) {
    Read result = read(mode, row.text, setting);
    EXPECT_TRUE(result.readable) << row.text;
    EXPECT_EQ(result.value, row.value) << row.text;
    EXPECT_EQ(result.rest, row.rest) << row.text;
  }
}

void refuse(CommandCode mode, std::initializer_list<const char *> texts,
            const Setting &setting = {}) {
  for (const char *text : texts) {
    EXPECT_FALSE(read(mode, text, setting).readable) << text;
  }
}

TEST(InputModes, WhatTheyAreAllowedFor) {
  struct {
    int code;
    bool forStarts;
    bool forDurations;
  } rows[] = {
      {14, true, true},  {6, true, true},    {15, true, false},
      {2, false, false}, {10, false, false}, {11, false, false},
  };
  for (const auto &row : rows) {
    const InputMode *mode = findInputMode(static_cast<CommandCode>(row.code));
    ASSERT_NE(mode, nullptr) << row.code;
    EXPECT_EQ(mode->code, row.code);
    EXPECT_EQ(mode->forStarts, row.forStarts) << row.code;
    EXPECT_EQ(mode->forDurations, row.forDurations) << row.code;
  }
  for (CommandCode code : {kEX, kTE, kHZ, kTR, kBN, kXX, kRA, kPF}) {
    EXPECT_EQ(findInputMode(code), nullptr) << code;
  }
}

TEST(InputModes, WhatMayBeginAValue) {
  struct {
    CommandCode mode;
    const char *characters;
    bool letters;
  } rows[] = {
      {kRE, "+-.0123456789zZ", false}, {kRH, "+-.0123456789zZ", false},
      {kDB, "+-.0123456789zZ", false}, {kIN, "+-0123456789", false},
      {kNO, "0123456789", true},       {kOP, "+-0123456789zZ", false},
  };
  for (const auto &row : rows) {
    for (int c = 1; c < 256; ++c) {
      bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
      bool expected = (row.letters && letter) || std::strchr(row.characters, c) != nullptr;
      EXPECT_EQ(findInputMode(row.mode)->mayBegin(static_cast<char>(c)), expected)
          << row.mode << " " << c;
    }
  }
}

TEST(InputModes, TheLastValueInEveryMode) {
  Setting setting;
  setting.lastValue = 7.25F;
  for (CommandCode mode : {kRE, kIN, kRH, kDB, kNO, kOP}) {
    for (const char *text : {"z", "Z", "z 5", "z5"}) {
      Read result = read(mode, text, setting);
      EXPECT_TRUE(result.readable);
      EXPECT_EQ(result.value, 7.25F);
      EXPECT_EQ(result.rest, text + 1);
    }
  }
}

TEST(InputModes, Reals) {
  const Row kRows[] = {
      {"1.5", 1.5F, ""}, {"-.25 x", -0.25F, " x"}, {"+2]", 2, "]"},
      {"  3", 3, ""},    {"1e5", 1, "e5"},         {".", 0, ""},
      {"5x3", 5, "x3"},
  };
  check(kRE, kRows);
  refuse(kRE, {"", "x", "-", "c4", "]"});
}

TEST(InputModes, Integers) {
  const Row kRows[] = {
      {"2", 2, ""},      {"2.5", 3, ""},     {"-2.5", -2, ""},
      {"2.4999", 2, ""}, {"-2.6", -3, ""},   {"0.5", 1, ""},
      {"-0.5", 0, ""},   {"1.5 x", 2, " x"}, {"16777216", 16777216, ""},
  };
  check(kIN, kRows);
  refuse(kIN, {"", "x", "-"});
}

TEST(InputModes, Decibels) {
  // The amplitude, truncated: e to the power of (decibels times 0.11512925).
  const Row kRows[] = {
      {"0", 1, ""},      {"1", 1, ""},           {"6", 1, ""},        {"20", 9, ""},
      {"40", 99, ""},    {"60", 999, ""},        {"80", 9999, ""},    {"90", 31622, ""},
      {"96", 63095, ""}, {"96.0", 63095, ""},    {"95.9", 56234, ""},  // the fraction is dropped
      {"0.9", 1, ""},    {"+90 x", 31622, " x"},
  };
  check(kDB, kRows);
  refuse(kDB, {"97", "96.1", "-1", "-0.5", "x", "", "1000000"});
}

TEST(InputModes, Rhythms) {
  const Row kRows[] = {
      {"4", 1, ""},          {"8", 0.5F, ""},         {"2", 2, ""},
      {"1", 4, ""},          {"3", 4.0F / 3.0F, ""},  {"16", 0.25F, ""},
      {"+4", 1, ""},         {"-4", -1, ""},          {"4.", 1.5F, ""},
      {"4..", 1.75F, ""},    {"4...", 1.875F, ""},    {"2..", 3.5F, ""},
      {"-4.", -1.5F, ""},    {"8,16", 0.75F, ""},     {"8,8,8", 1.5F, ""},
      {"8.,16", 1, ""},      {"8,16..", 0.9375F, ""}, {"8, 8", 1, ""},
      {"8,   8 4", 1, " 4"}, {"8 , 8", 0.5F, " , 8"}, {"-8,16", -0.75F, ""},
      {"-8,8.", -1.25F, ""}, {"4 8", 1, " 8"},        {"4x3", 1, "x3"},
      {"4:8", 1, ":8"},      {"4]", 1, "]"},          {"32767", 4.0F / 32767.0F, ""},
  };
  check(kRH, kRows);
  refuse(kRH, {"", "x", "0", "-0", "4,0", ".", ".4", "8,", "8,x", "8,,8", "8, ", "40000", "-"});
}

TEST(InputModes, Notes) {
  Setting setting;
  setting.octave = 3;
  const Row kRows[] = {
      {"c4", 48, ""},   {"d4", 50, ""},    {"e4", 52, ""},     {"f4", 53, ""},   {"g4", 55, ""},
      {"a4", 57, ""},   {"b4", 59, ""},    {"c0", 0, ""},      {"c9", 108, ""},  {"cs4", 49, ""},
      {"bf3", 46, ""},  {"cf4", 47, ""},   {"cn4", 48, ""},    {"css4", 50, ""}, {"bff4", 57, ""},
      {"csf4", 48, ""}, {"ff4", 52, ""},   {"fs4", 54, ""},    {"cf0", -1, ""},  {"c", 36, ""},
      {"bs", 48, ""},   {"c e", 36, " e"}, {"c4e4", 48, "e4"}, {"c4s", 48, "s"}, {"c4.5", 48, ".5"},
      {"r", -1, ""},    {"r4", -1, "4"},   {"rs", -1, "s"},    {"c]", 36, "]"},  {"  c4", 48, ""},
      {"c004", 48, ""},
  };
  check(kNO, kRows, setting);
  refuse(kNO, {"", "x", "h4", "4", "c10", "c99999", "c+4", "c-4", "cs+4", "]", "+"}, setting);
}

TEST(InputModes, QuarterTones) {
  Setting setting;
  setting.quarterTones = true;
  const Row kRows[] = {
      {"c+4", 48.5F, ""}, {"c-4", 47.5F, ""}, {"c++4", 49, ""},    {"cs+4", 49.5F, ""},
      {"c-+4", 48, ""},   {"c4", 48, ""},     {"bf-3", 45.5F, ""},
  };
  check(kNO, kRows, setting);
}

TEST(InputModes, NotesOfAMidiFileAreAnOctaveHigher) {
  Setting setting;
  setting.midi = true;
  const Row kRows[] = {{"c4", 60, ""}, {"bf3", 58, ""}, {"c", 12, ""}, {"r", -1, ""}};
  check(kNO, kRows, setting);
}

TEST(InputModes, TheOctaveIsKept) {
  Setting setting;
  setting.octave = 5;
  EXPECT_EQ(read(kNO, "c4", setting).octave, 4);
  EXPECT_EQ(read(kNO, "c", setting).octave, 5);
  EXPECT_EQ(read(kNO, "r", setting).octave, 5);
  EXPECT_EQ(read(kNO, "c0", setting).octave, 0);
}

TEST(InputModes, OctaveAndPitchClass) {
  const Row kRows[] = {
      {"8.00", 48, ""},     {"8.01", 49, ""},     {"8.11", 59, ""},    {"8", 48, ""},
      {"9.00", 60, ""},     {"4.00", 0, ""},      {"0.00", -48, ""},   {"8.", 48, ""},
      {"8.115", 59.5F, ""}, {"8.5", 98, ""},      {"+8.02", 50, ""},   {"-8.01", -49, ""},
      {"-9", -60, ""},      {"8.02 x", 50, " x"}, {" 8.02]", 50, "]"}, {"10.01", 73, ""},
  };
  check(kOP, kRows);
  Setting midi;
  midi.midi = true;
  const Row kMidiRows[] = {
      {"8.00", 60, ""}, {"8.01", 61, ""}, {"-8.01", 61, ""}, {"4.00", 12, ""}, {"-9", 72, ""},
  };
  check(kOP, kMidiRows, midi);
  refuse(kOP, {"", "x", "-", ".05", "40000.01"});
}

TEST(InputModes, ValuesMayStandAtTheEndOfALine) {
  for (const char *text : {"c", "cs", "4", "8.", "8,", "-", "r"}) {
    for (CommandCode mode : {kRE, kIN, kRH, kDB, kNO, kOP}) {
      Read result = read(mode, text);
      EXPECT_LE(result.rest.size(), std::strlen(text));
    }
  }
}

}  // namespace

}  // namespace korvo
