#include "global/curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace korvo {

namespace {

TEST(Curve, Letters) {
  struct {
    const char *text;
    bool readable;
    CurveType type;
    float exponent;
    int position;
  } rows[] = {
      {"", true, kLine, 1, 0},
      {" e", true, kLine, 1, 0},
      {"f", true, kLine, 1, 1},
      {"F", true, kLine, 1, 1},
      {"e", true, kPower, 1, 1},
      {"E5", true, kPower, 1, 1},
      {"l", true, kRoot, 1, 1},
      {"L", true, kRoot, 1, 1},
      {"s*", true, kQuarterSine, 1, 1},
      {"S", true, kQuarterSine, 1, 1},
      {"c", true, kMirroredSine, 1, 1},
      {"C", true, kMirroredSine, 1, 1},
      {"v2", true, kUserPower, 2, 2},
      {"V1.5)", true, kUserPower, 1.5F, 4},
      {"v.25 ", true, kUserPower, 0.25F, 4},
      {"v+2", true, kUserPower, 2, 3},
      {"x", true, kLine, 1, 0},
      {"[1 2]", true, kLine, 1, 0},
      {"0.5", true, kLine, 1, 0},
      {"v", false, kUserPower, 0, -1},
      {"v0", false, kUserPower, 0, -1},
      {"v-1", false, kUserPower, 0, -1},
      {"v 2", false, kUserPower, 0, -1},
      {"vx", false, kUserPower, 0, -1},
      {"v0.0", false, kUserPower, 0, -1},
  };
  for (const auto &row : rows) {
    std::string padded = std::string("ab") + row.text;
    std::int32_t position = 2;
    CurveType type = kQuarterSine;
    float exponent = 77.0F;
    EXPECT_EQ(readCurveLetter(padded.c_str(), position, type, exponent), row.readable) << row.text;
    if (row.readable) {
      EXPECT_EQ(type, row.type) << row.text;
      EXPECT_EQ(exponent, row.exponent) << row.text;
      EXPECT_EQ(position, 2 + row.position) << row.text;
    }
  }
}

TEST(Curve, NoOtherCharacterIsALetterOfACurve) {
  for (int c = 1; c < 256; ++c) {
    if (std::string("cefslvCEFSLV").find(static_cast<char>(c)) != std::string::npos) {
      continue;
    }
    char text[] = {static_cast<char>(c), '2', '\0'};
    std::int32_t position = 0;
    CurveType type = kQuarterSine;
    float exponent = 0.0F;
    EXPECT_TRUE(readCurveLetter(text, position, type, exponent)) << c;
    EXPECT_EQ(type, kLine) << c;
    EXPECT_EQ(position, 0) << c;
  }
}

// Worked out by hand: a quarter, half and three quarters of the way from 0 to 100.
TEST(Curve, Shapes) {
  struct {
    int type;
    float exponent;
    float quarter;
    float half;
    float threeQuarters;
  } rows[] = {
      {0, 1, 25, 50, 75},
      {1, 1, 6.25F, 25, 56.25F},
      {2, 1, 50, 70.710678F, 86.602540F},
      {3, 3, 1.5625F, 12.5F, 42.1875F},
      {3, 0.5F, 50, 70.710678F, 86.602540F},
      {4, 1, 38.268343F, 70.710678F, 92.387953F},
      {5, 1, 11.731657F, 29.289322F, 57.612047F},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.type);
    float type = static_cast<float>(row.type);
    EXPECT_FLOAT_EQ(interpolate(row.type, 0.25, 0, 100, row.exponent), row.quarter);
    EXPECT_FLOAT_EQ(interpolate(row.type, 0.5, 0, 100, row.exponent), row.half);
    EXPECT_FLOAT_EQ(interpolate(row.type, 0.75, 0, 100, row.exponent), row.threeQuarters);
    EXPECT_FLOAT_EQ(CurveValue(type, 2, 8, 0, 100, row.exponent), row.quarter);
    EXPECT_FLOAT_EQ(CurveValue(type, 4, 8, 0, 100, row.exponent), row.half);
    EXPECT_FLOAT_EQ(CurveValue(type, 6, 8, 0, 100, row.exponent), row.threeQuarters);
    // Downwards, and with an offset.
    EXPECT_FLOAT_EQ(CurveValue(type, 4, 8, 10, -90, row.exponent), 10 - row.half);
    // The fraction of the type is dropped.
    EXPECT_EQ(CurveValue(type + 0.75F, 4, 8, 0, 100, row.exponent),
              CurveValue(type, 4, 8, 0, 100, row.exponent));
  }
}

TEST(Curve, TheEndsComeFirst) {
  for (float type : {0.0F, 1.0F, 2.0F, 3.0F, 4.0F, 5.0F}) {
    EXPECT_EQ(CurveValue(type, 8, 8, 1, 2, 1), 2) << type;
    EXPECT_EQ(CurveValue(type, 9, 8, 1, 2, 1), 2) << type;
    EXPECT_EQ(CurveValue(type, 0, 8, 1, 2, 1), 1) << type;
    EXPECT_EQ(CurveValue(type, -1, 8, 1, 2, 1), 1) << type;
    // The far end is tested first: of a way without length there is only the end.
    EXPECT_EQ(CurveValue(type, 0, 0, 1, 2, 1), 2) << type;
    EXPECT_EQ(CurveValue(type, -1, -1, 1, 2, 1), 2) << type;
    EXPECT_EQ(CurveValue(type, -2, -1, 1, 2, 1), 1) << type;
  }
}

TEST(Curve, AnUnknownTypeIsAtItsEnd) {
  for (float type : {6.0F, 100.0F, 103.0F, -1.0F, -5.0F, 1e30F, -1e30F}) {
    EXPECT_EQ(CurveValue(type, 4, 8, 1, 2, 1), 2) << type;
    EXPECT_EQ(CurveValue(type, 0, 8, 1, 2, 1), 1) << type;
  }
}

TEST(Curve, TheSumIsRoundedOnce) {
  // A third of the way, in double precision, then to single.
  double third = static_cast<double>(1.0F) / static_cast<double>(3.0F);
  EXPECT_EQ(CurveValue(0, 1, 3, 0.1F, 0.7F, 1),
            static_cast<float>(static_cast<double>(0.1F) +
                               (static_cast<double>(0.7F) - static_cast<double>(0.1F)) * third));
  EXPECT_EQ(CurveValue(4, 1, 3, 60, 90, 1),
            static_cast<float>(60.0 + 30.0 * std::sin(third * 1.5707963267948966)));
}

}  // namespace

}  // namespace korvo
