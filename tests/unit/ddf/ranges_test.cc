#include "ddf/ranges.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstring>

#include "base/random.h"
#include "support/scripted_draws.h"

namespace korvo {

namespace {

TEST(Ranges, TypeLetters) {
  const char kLetters[] = "flhtgxb";
  for (int c = 0; c < 256; ++c) {
    char text[] = {'[', static_cast<char>(c), '3', '\0'};
    std::int32_t position = 1;
    int lower = c < 128 ? std::tolower(c) : c;
    const char *found = c == 0 ? nullptr : std::strchr(kLetters, lower);
    EXPECT_EQ(takeDistribution(text, position),
              found == nullptr ? 0 : static_cast<int>(found - kLetters))
        << c;
    EXPECT_EQ(position, found == nullptr ? 1 : 2) << c;
  }
}

// The weight that a distribution makes of a script: a value of the range 0 to 1.
float weight(int distribution, std::initializer_list<std::uint32_t> draws, std::uint32_t taken) {
  Random random;
  script(random, draws);
  float value = drawFromRange(random, {distribution, 0.0F, 1.0F});
  EXPECT_EQ(random.next, taken) << distribution;
  return value;
}

TEST(Ranges, Uniform) {
  EXPECT_EQ(weight(0, {kDrawQuarter}, 1), 0.25F);
  EXPECT_EQ(weight(0, {kDrawZero}, 1), 0.0F);
  EXPECT_EQ(weight(0, {kDrawOne}, 1), 1.0F);
}

TEST(Ranges, TowardsTheLowEnd) {
  EXPECT_FLOAT_EQ(weight(1, {kDrawHalf}, 1), 0.10034268F);  // ln 2 / 6.9078
  EXPECT_EQ(weight(1, {kDrawHalf}, 1),
            static_cast<float>(std::log(0.5) / static_cast<double>(-6.9078F)));
  EXPECT_EQ(weight(1, {kDrawZero, kDrawZero, kDrawHalf}, 3), weight(1, {kDrawHalf}, 1));
  EXPECT_EQ(weight(1, {kDrawOne}, 1), 0.0F);
  EXPECT_EQ(weight(1, {1}, 1), 1.0F);  // capped
}

TEST(Ranges, TowardsTheHighEnd) {
  EXPECT_EQ(weight(2, {kDrawHalf}, 1),
            1.0F - static_cast<float>(std::log(0.5) / static_cast<double>(-6.9078F)));
  EXPECT_EQ(weight(2, {kDrawZero, kDrawHalf}, 2), weight(2, {kDrawHalf}, 1));
  EXPECT_EQ(weight(2, {kDrawOne}, 1), 1.0F);
  EXPECT_EQ(weight(2, {1}, 1), 0.0F);
}

TEST(Ranges, Triangular) {
  EXPECT_EQ(weight(3, {kDrawQuarter, kDrawThreeQuarters}, 2), 0.5F);
  EXPECT_EQ(weight(3, {kDrawZero, kDrawQuarter}, 2), 0.125F);
  EXPECT_EQ(weight(3, {kDrawOne, kDrawOne}, 2), 1.0F);
}

TEST(Ranges, BellShaped) {
  constexpr std::uint32_t kH = kDrawHalf;
  EXPECT_EQ(weight(4, {kH, kH, kH, kH, kH, kH, kH, kH, kH, kH, kH, kH}, 12), 0.5F);
  EXPECT_EQ(weight(4, {kDrawThreeQuarters, kH, kH, kH, kH, kH, kH, kH, kH, kH, kH, kH}, 12),
            static_cast<float>(0.25 * 0.155 + 0.5));
  EXPECT_EQ(weight(4, {}, 12), 0.0F);  // clamped
  constexpr std::uint32_t kO = kDrawOne;
  EXPECT_EQ(weight(4, {kO, kO, kO, kO, kO, kO, kO, kO, kO, kO, kO, kO}, 12), 1.0F);
}

TEST(Ranges, DoubleExponential) {
  // t = 1/2: ln(1/2) / 14 = -0.0495105 to either side of the middle.
  float away = static_cast<float>(std::log(0.5) / 14.0);
  EXPECT_FLOAT_EQ(away, -0.0495105F);
  EXPECT_EQ(weight(5, {kDrawQuarter}, 1), away + 0.5F);
  EXPECT_EQ(weight(5, {kDrawThreeQuarters}, 1), -away + 0.5F);
  EXPECT_EQ(weight(5, {kDrawHalf}, 1), 0.5F);
  EXPECT_EQ(weight(5, {kDrawZero, kDrawOne, kDrawZero, kDrawQuarter}, 4), away + 0.5F);
  EXPECT_EQ(weight(5, {1}, 1), 0.0F);                 // clamped
  EXPECT_EQ(weight(5, {2147483647 - 127}, 1), 1.0F);  // as near to 1 as a single can be
}

TEST(Ranges, BothEnds) {
  EXPECT_EQ(weight(6, {kDrawHalf, kDrawHalf}, 2), 0.5F);
  // 1/32 and 1/1024.
  EXPECT_EQ(weight(6, {kDrawHalf, kDrawQuarter}, 2), 0.03125F / (0.03125F + 0.0009765625F));
  EXPECT_EQ(weight(6, {kDrawZero, kDrawHalf, kDrawZero, kDrawZero, kDrawHalf}, 5), 0.5F);
  // A pair whose sum is above 1 is drawn again as a whole.
  EXPECT_EQ(weight(6, {kDrawOne, kDrawHalf, kDrawHalf, kDrawQuarter}, 4),
            weight(6, {kDrawHalf, kDrawQuarter}, 2));
  EXPECT_EQ(weight(6, {kDrawOne, 1}, 2), 1.0F);
}

TEST(Ranges, FromTheLowToTheHighEnd) {
  struct {
    float low;
    float high;
    float quarter;
  } rows[] = {
      {0, 8, 2}, {10, 20, 12.5F}, {-4, 4, -2}, {5, 5, 5}, {8, 0, 6},
  };
  for (const auto &row : rows) {
    Random random;
    script(random, {kDrawQuarter});
    EXPECT_EQ(drawFromRange(random, {0, row.low, row.high}), row.quarter);
  }
}

TEST(Ranges, EveryTypeStaysInItsRange) {
  Random random;
  seedRandom(random, 1);
  for (int type = 0; type <= 6; ++type) {
    float low = 100;
    float high = -100;
    for (int i = 0; i < 20000; ++i) {
      float value = drawFromRange(random, {type, -2.0F, 3.0F});
      ASSERT_GE(value, -2.0F) << type;
      ASSERT_LE(value, 3.0F) << type;
      low = std::fmin(low, value);
      high = std::fmax(high, value);
    }
    EXPECT_LT(low, -0.5F) << type;
    EXPECT_GT(high, 1.5F) << type;
  }
}

TEST(Ranges, OneValueIsThatValueWhateverTheType) {
  Random random;
  seedRandom(random, 1);
  for (int type = 0; type <= 6; ++type) {
    EXPECT_EQ(drawFromRange(random, {type, 3.0F, 3.0F}), 3.0F);
  }
}

}  // namespace

}  // namespace korvo
