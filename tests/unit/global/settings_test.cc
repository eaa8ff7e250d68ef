#include "global/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

using Reader = ErrorCode (*)(Piece &);

ErrorCode seed(Piece &piece) { return readRS(piece.source, piece.random); }
ErrorCode sampleRate(Piece &piece) { return readSR(piece.source, piece.global.settings); }
ErrorCode deviation(Piece &piece) { return readRD(piece.source, piece.global.settings); }
ErrorCode ownDeviation(Piece &piece) { return readDV(piece.source, piece.global.settings); }
ErrorCode factor(Piece &piece) { return readPF(piece.source, piece.global.settings, 4); }
ErrorCode factorInP3(Piece &piece) { return readPF(piece.source, piece.global.settings, 3); }
ErrorCode factorInP2(Piece &piece) { return readPF(piece.source, piece.global.settings, 2); }

struct Set {
  ErrorCode result;
  RunSettings settings;
  std::uint32_t nextDraw;
  std::string rest;
  std::string messages;
};

// What stands behind the name of a setting, where the draws so far were those of seed 99.
Set set(Reader reader, const char *text) {
  Piece piece(text);
  EXPECT_EQ(piece.read(), kOk);
  seedRandom(piece.random, 99);
  Set result{};
  result.result = reader(piece);
  result.settings = piece.global.settings;
  result.nextDraw = draw(piece.random);
  result.rest = piece.rest();
  result.messages = piece.messages();
  return result;
}

TEST(Settings, AllStandInParentheses) {
  for (Reader reader : {seed, sampleRate, deviation, ownDeviation, factor}) {
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
  } rows[] = {{seed, kBadSeed},
              {sampleRate, kBadSampleRate},
              {deviation, kBadDeviation},
              {ownDeviation, kBadDeviation},
              {factor, kBadFactor}};
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
    Set rd = set(deviation, row.text);
    EXPECT_EQ(rd.result, row.result) << row.text;
    EXPECT_EQ(rd.messages.find(kYowza) == 0, row.warned) << row.text;
    Set dv = set(ownDeviation, row.text);
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
  EXPECT_EQ(set(factor, "(2)").settings.pf, 2);
  EXPECT_EQ(set(factor, "(-0.5)").settings.pf, -0.5F);
  EXPECT_EQ(set(factor, "(0)").settings.pf, 0);
  EXPECT_EQ(set(factorInP3, "(2)").result, kOk);
  // In P2 nothing is looked at.
  for (const char *text : {"(2)", "2", " ", "(x)"}) {
    EXPECT_EQ(set(factorInP2, text).result, kFactorNeedsP3) << text;
  }
}

TEST(Settings, SampleRates) {
  EXPECT_EQ(RunSettings{}.sampleRate, 44100U);
  EXPECT_EQ(set(sampleRate, "(48000)").settings.sampleRate, 48000U);
  EXPECT_EQ(set(sampleRate, "(+1)").settings.sampleRate, 1U);
  EXPECT_EQ(set(sampleRate, "(18446744073709551617)").settings.sampleRate, 1U);  // wraps
  EXPECT_EQ(set(sampleRate, "(-1)").result, kBadSampleRate);
  EXPECT_EQ(set(sampleRate, "(0.5)").result, kMissingParenthesis);
}

std::uint32_t firstDraw(std::uint32_t seed) {
  Random random;
  seedRandom(random, seed);
  return draw(random);
}

TEST(Settings, SeedsMakeDrawsRepeat) {
  for (const char *text : {"(12)", "(+12)", "( 12 )", "(0012)"}) {
    EXPECT_EQ(set(seed, text).result, kOk) << text;
    EXPECT_EQ(set(seed, text).nextDraw, firstDraw(12)) << text;
  }
  EXPECT_EQ(set(seed, "(0)").result, kOk);
  EXPECT_EQ(set(seed, "(65535)").result, kOk);
  EXPECT_EQ(set(seed, "(65536)").result, kBadSeed);
  EXPECT_EQ(set(seed, "(70000)").rest, "70000)");
  EXPECT_EQ(set(seed, "(-1)").result, kBadSeed);
}

TEST(Settings, ASeedThatIsNotClosedSeedsNothing) {
  EXPECT_EQ(set(seed, "(12").result, kMissingParenthesis);
  EXPECT_EQ(set(seed, "(12").nextDraw, firstDraw(99));
  EXPECT_NE(firstDraw(12), firstDraw(99));
}

}  // namespace

}  // namespace korvo
