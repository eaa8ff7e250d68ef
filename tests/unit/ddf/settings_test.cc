#include "global/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/piece.h"

namespace {

using Reader = ErrorCode (*)(RunState &, SourceReader &);

struct Set {
  ErrorCode result;
  RunSettings settings;
  std::string rest;
  std::string messages;
};

// What stands behind the name of a setting, in P4.
Set set(Reader reader, const char *text, int pfield = 4) {
  Piece piece(text);
  EXPECT_EQ(piece.read(), kOk);
  piece.run.pfield.number = pfield;
  Set result{};
  result.result = reader(piece.run, piece.source);
  result.settings = piece.run.settings;
  result.rest = piece.rest();
  result.messages = piece.messages();
  return result;
}

TEST(Settings, AllStandInParentheses) {
  for (Reader reader : {readRS, readSR, readRD, readDV, readPF}) {
    for (const char *text : {"(1)", " ( 1 )", "\n(1\n)", "( 1\n\n )x", "(+1)"}) {
      EXPECT_EQ(set(reader, text).result, kOk) << text;
    }
    EXPECT_EQ(set(reader, "(1)x").rest, "x");
    for (const char *text : {"1)", " ", "[1]", "x(1)", "; c\n(1)"}) {
      EXPECT_EQ(set(reader, text).result, kIllegalStatementStart) << text;
    }
    for (const char *text : {"(1", "(1]", "(1 2)", "(1,)", "(1 ; c\n)"}) {
      EXPECT_EQ(set(reader, text).result, kMissingParenthesis) << text;
    }
  }
}

TEST(Settings, WhatCannotBeRead) {
  struct {
    Reader reader;
    ErrorCode error;
  } rows[] = {{readRS, kBadSeed},
              {readSR, kBadSampleRate},
              {readRD, kBadDeviation},
              {readDV, kBadDeviation},
              {readPF, kBadFactor}};
  for (const auto &row : rows) {
    for (const char *text : {"()", "(x)", "(", "(,1)", "(/* c */ 1)"}) {
      EXPECT_EQ(set(row.reader, text).result, row.error) << text;
    }
  }
}

constexpr const char *kYowza = "\n\nWARNING: Line 1: Yowza! Should RD be > 1 (100%)?\n";

TEST(Settings, Deviations) {
  struct {
    const char *text;
    ErrorCode result;
    float value;
    bool warned;
  } rows[] = {
      {"(0)", kOk, 0, false},
      {"(0.5)", kOk, 0.5F, false},
      {"(1)", kOk, 1, false},
      {"(1.5)", kOk, 1.5F, true},
      {"(100)", kOk, 100, true},
      {"(-0)", kOk, 0, false},
      {"(100.5)", kBadDeviation, 100.5F, false},
      {"(-0.1)", kBadDeviation, -0.1F, false},
      {"(101", kMissingParenthesis, 101, false},  // looked at only behind the parenthesis
  };
  for (const auto &row : rows) {
    Set rd = set(readRD, row.text);
    EXPECT_EQ(rd.result, row.result) << row.text;
    EXPECT_EQ(rd.messages.find(kYowza) == 0, row.warned) << row.text;
    Set dv = set(readDV, row.text);
    EXPECT_EQ(dv.result, row.result) << row.text;
    EXPECT_EQ(dv.messages.find(kYowza) == 0, row.warned) << row.text;
    if (row.result == kOk) {
      EXPECT_EQ(rd.settings.rd, row.value) << row.text;
      EXPECT_EQ(rd.settings.dv, 0) << row.text;
      EXPECT_EQ(dv.settings.dv, row.value) << row.text;
      EXPECT_EQ(dv.settings.rd, 0) << row.text;
    }
  }
}

TEST(Settings, Factors) {
  EXPECT_EQ(set(readPF, "(2)").settings.pf, 2);
  EXPECT_EQ(set(readPF, "(-0.5)").settings.pf, -0.5F);
  EXPECT_EQ(set(readPF, "(0)").settings.pf, 0);
  EXPECT_EQ(set(readPF, "(2)", 3).result, kOk);
  // In P2 nothing is looked at.
  for (const char *text : {"(2)", "2", " ", "(x)"}) {
    EXPECT_EQ(set(readPF, text, 2).result, kFactorNeedsP3) << text;
  }
}

TEST(Settings, SampleRates) {
  EXPECT_EQ(RunSettings{}.sampleRate, 44100U);
  EXPECT_EQ(set(readSR, "(48000)").settings.sampleRate, 48000U);
  EXPECT_EQ(set(readSR, "(+1)").settings.sampleRate, 1U);
  EXPECT_EQ(set(readSR, "(18446744073709551617)").settings.sampleRate, 1U);  // wraps
  EXPECT_EQ(set(readSR, "(-1)").result, kBadSampleRate);
  EXPECT_EQ(set(readSR, "(0.5)").result, kMissingParenthesis);
}

TEST(Settings, SeedsMakeDrawsRepeat) {
  std::srand(12);
  int first = std::rand();
  for (const char *text : {"(12)", "(+12)", "( 12 )", "(0012)"}) {
    std::srand(99);
    EXPECT_EQ(set(readRS, text).result, kOk) << text;
    EXPECT_EQ(std::rand(), first) << text;
  }
  EXPECT_EQ(set(readRS, "(0)").result, kOk);
  EXPECT_EQ(set(readRS, "(65535)").result, kOk);
  EXPECT_EQ(set(readRS, "(65536)").result, kBadSeed);
  EXPECT_EQ(set(readRS, "(70000)").rest, "70000)");
  EXPECT_EQ(set(readRS, "(-1)").result, kBadSeed);
}

TEST(Settings, ASeedThatIsNotClosedSeedsNothing) {
  std::srand(5);
  int next = std::rand();
  std::srand(5);
  EXPECT_EQ(set(readRS, "(12").result, kMissingParenthesis);
  EXPECT_EQ(std::rand(), next);
}

}  // namespace
