#include "base/mathematics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace korvo {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kSemitone = 1.059463094359;

struct Row {
  double x;
  double value;
};

// Values with a point in base 16 are worked out with 60 decimal digits and rounded once. Those that
// are marked lie so near to the middle between two doubles that the long series has to decide.

TEST(Mathematics, Exponentials) {
  constexpr Row kRows[] = {
      {0.0, 1.0},
      {1.0, 0x1.5bf0a8b145769p+1},
      {-1.0, 0x1.78b56362cef38p-2},
      {11.0524, 0x1.ecee672da9ec9p+15},
      {1.1708984375, 0x1.9cc927223d33ap+1},  // a middle, nearly
      {4.0908203125, 0x1.de4fb3d0be72bp+5},  // a middle, nearly
      {5.8359375, 0x1.5662b4b8f73b5p+8},     // a middle, nearly
      {710.0, kInfinity},
      {-746.0, 0.0},
      {kInfinity, kInfinity},
      {-kInfinity, 0.0},
  };
  for (const Row &row : kRows) {
    EXPECT_EQ(exponential(row.x), row.value) << row.x;
  }
  EXPECT_TRUE(std::isnan(exponential(kNotANumber)));
}

TEST(Mathematics, PowersOfTwo) {
  constexpr Row kRows[] = {
      {0.5, 0x1.6a09e667f3bcdp+0},
      {0x1.5555555555555p-2, 0x1.428a2f98d728bp+0},
      {-7.25, 0x1.ae89f995ad3adp-8},
      {0.6064453125, 0x1.85c2c5f83ac35p+0},  // a middle, nearly
      {2.6064453125, 0x1.85c2c5f83ac35p+2},  // a middle, nearly
      {1024.0, kInfinity},
      {1e9, kInfinity},
      {-1080.0, 0.0},
      {-1e9, 0.0},
  };
  for (const Row &row : kRows) {
    EXPECT_EQ(powerOfTwo(row.x), row.value) << row.x;
  }
  for (int octave = -1074; octave < 1024; ++octave) {
    EXPECT_EQ(powerOfTwo(octave), std::ldexp(1.0, octave));
  }
  EXPECT_TRUE(std::isnan(powerOfTwo(kNotANumber)));
}

TEST(Mathematics, Logarithms) {
  constexpr Row kRows[] = {
      {1.0, 0.0},
      {2.0, 0x1.62e42fefa39efp-1},
      {0.5, -0x1.62e42fefa39efp-1},
      {10.0, 0x1.26bb1bbb55516p+1},
      {34787.0, 0x1.4e9fbc6f7f28ap+3},  // a middle, nearly
      {9170.0, 0x1.23f54a1c504c1p+3},   // a middle, nearly
      {19143.0, 0x1.3b82999ed20cfp+3},  // a middle, nearly
      {0.0, -kInfinity},
      {-0.0, -kInfinity},
      {std::numeric_limits<double>::denorm_min(), -kInfinity},
      {kInfinity, kInfinity},
  };
  for (const Row &row : kRows) {
    EXPECT_EQ(logarithm(row.x), row.value) << row.x;
  }
  for (double below : {-1.0, -0.5, -1e300, -kInfinity}) {
    EXPECT_TRUE(std::isnan(logarithm(below))) << below;
    EXPECT_TRUE(std::signbit(logarithm(below))) << below;  // a score says "-nan"
  }
}

TEST(Mathematics, Powers) {
  struct {
    double base;
    float exponent;
    double value;
  } rows[] = {
      {kSemitone, 0.0F, 1.0},
      {kSemitone, 1.0F, kSemitone},
      {kSemitone, 0.5F, 0x1.078059f41534bp+0},
      {kSemitone, 12.0F, 0x1.fffffffff8a54p+0},
      {kSemitone, -12.0F, 0x1.0000000003ad6p-1},
      {kSemitone, 24.0F, 0x1.fffffffff14a8p+1},
      {kSemitone, 76.46875F, 0x1.4b64672e01a2ap+6},     // a middle, nearly
      {kSemitone, 134.921875F, 0x1.2f10f86caa221p+11},  // a middle, nearly
      {kSemitone, 1e5F, kInfinity},
      {kSemitone, -1e5F, 0.0},
      {kSemitone, std::numeric_limits<float>::infinity(), kInfinity},
      {kSemitone, -std::numeric_limits<float>::infinity(), 0.0},
      {0.25, 0.5F, 0.5},
      {0.5, 3.0F, 0.125},
      {0.0, 1.5F, 0.0},
      {1.0, 3e38F, 1.0},
      {0.5, 3e38F, 0.0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(power(row.base, row.exponent), row.value) << row.base << " " << row.exponent;
  }
  EXPECT_TRUE(std::isnan(power(kNotANumber, 1.0F)));
  EXPECT_TRUE(std::isnan(power(kSemitone, std::numeric_limits<float>::quiet_NaN())));
}

TEST(Mathematics, FifthPowers) {
  EXPECT_EQ(fifthPower(0.5F), 0.03125);
  EXPECT_EQ(fifthPower(1.0F), 1.0);
  EXPECT_EQ(fifthPower(3.0F), 243.0);
  EXPECT_EQ(fifthPower(0.1F), 0x1.4f8b5a31a4be9p-17);  // four roundings would end in e8
  EXPECT_EQ(fifthPower(0.3F), 0x1.3e814934acb58p-9);
}

TEST(Mathematics, Sines) {
  constexpr Row kRows[] = {
      {0.0, 0.0},
      {0x1p-30, 0x1p-30},
      {0.5, 0x1.eaee8744b05f0p-2},
      {1.0, 0x1.aed548f090ceep-1},
      {0.828369140625, 0x1.7941c02be1ad9p-1},  // a middle, nearly
      {0.62744140625, 0x1.2c95262e6b15cp-1},   // a middle, nearly
      {1.051025390625, 0x1.bc61b5f66b2ddp-1},  // a middle, nearly
      {1.5707963267948966, 1.0},
  };
  for (const Row &row : kRows) {
    EXPECT_EQ(sine(row.x), row.value) << row.x;
  }
  EXPECT_TRUE(std::isnan(sine(kNotANumber)));
}

}  // namespace

}  // namespace korvo
