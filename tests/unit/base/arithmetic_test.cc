#include "base/arithmetic.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace korvo {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(Arithmetic, HalvesGoUp) {
  struct {
    double value;
    double rounded;
  } rows[] = {
      {0.0, 0.0},
      {2.5, 3.0},
      {-2.5, -2.0},
      {0.5, 1.0},
      {-0.5, 0.0},
      {1.5, 2.0},
      {-1.5, -1.0},
      {2.25, 2.0},
      {2.75, 3.0},
      {-2.25, -2.0},
      {-2.75, -3.0},
      {7.0, 7.0},
      {-7.0, -7.0},
      {0.49999, 0.0},
      {-0.50001, -1.0},
      {1000000.5, 1000001.0},
      {-1000000.5, -1000000.0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(roundHalfUp(row.value), row.rounded) << row.value;
    EXPECT_EQ(roundHalfUp(static_cast<float>(row.value)),
              static_cast<float>(std::floor(static_cast<float>(row.value) + 0.5)))
        << row.value;
  }
  EXPECT_EQ(roundHalfUp(0.49999999999999994), 0.0);  // adding a half would give 1
  EXPECT_EQ(roundHalfUp(0.49999997F), 0.0F);
  EXPECT_EQ(roundHalfUp(4503599627370495.5), 4503599627370496.0);
  EXPECT_EQ(roundHalfUp(9007199254740991.0), 9007199254740991.0);
  EXPECT_EQ(roundHalfUp(8388607.5F), 8388608.0F);
  EXPECT_EQ(roundHalfUp(-8388607.5F), -8388607.0F);
  EXPECT_EQ(roundHalfUp(16777215.0F), 16777215.0F);
  EXPECT_EQ(roundHalfUp(1e300), 1e300);
  EXPECT_EQ(roundHalfUp(kInfinity), kInfinity);
  EXPECT_EQ(roundHalfUp(-kInfinity), -kInfinity);
  EXPECT_TRUE(std::isnan(roundHalfUp(kNotANumber)));
}

TEST(Arithmetic, Remainders) {
  struct {
    float a;
    float b;
    float remainder;
  } rows[] = {
      {7, 3, 1},          {-7, 3, -1},         {7, -3, 1},
      {-7, -3, -1},       {6, 3, 0},           {-6, 3, 0},
      {2, 3, 2},          {-2, 3, -2},         {3, 3, 0},
      {0, 3, 0},          {7, 0, 0},           {-7, 0, 0},
      {0, 0, 0},          {7.5F, 2, 1.5F},     {-7.5F, 2, -1.5F},
      {61, 12, 1},        {54, 12, 6},         {-13, 12, -1},
      {130, 128, 2},      {-3, 128, -3},       {0.75F, 0.5F, 0.25F},
      {1e30F, 1e-30F, 0}, {-1e30F, 1e-30F, 0}, {3.4e38F, 1e-45F, 0},
      {1, 3e38F, 1},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(remainderOf(row.a, row.b), row.remainder) << row.a << " % " << row.b;
  }
}

TEST(Arithmetic, RemaindersOfWhatIsNotFinite) {
  EXPECT_EQ(remainderOf(5.0F, 0.0F), 0.0F);
  EXPECT_EQ(remainderOf(std::numeric_limits<float>::quiet_NaN(), 0.0F), 0.0F);
  EXPECT_EQ(remainderOf(std::numeric_limits<float>::infinity(), -0.0F), 0.0F);
  EXPECT_TRUE(std::isnan(remainderOf(std::numeric_limits<float>::quiet_NaN(), 3.0F)));
}

// The rule, one step at a time. `steps` is what is left of the patience.
float remainderStepByStep(float a, float b, std::int64_t &steps) {
  if (b == 0.0F) {
    return 0.0F;
  }
  float m = std::fabs(b);
  float r = a - std::trunc(a / m) * m;
  while (r > m) {
    float next = r - m;
    if (next == r) {
      return 0.0F;
    }
    r = next;
    --steps;
  }
  while (-r > m) {
    float next = r + m;
    if (next == r) {
      return 0.0F;
    }
    r = next;
    --steps;
  }
  return r;
}

void compare(float a, float b, std::int64_t &steps, int &longOnes) {
  std::int64_t before = steps;
  float expected = remainderStepByStep(a, b, steps);
  longOnes += before - steps > 1000 ? 1 : 0;
  float found = remainderOf(a, b);
  ASSERT_TRUE(found == expected || (std::isnan(found) && std::isnan(expected)))
      << std::hexfloat << a << " % " << b << ": " << found << ", step by step " << expected;
}

TEST(Arithmetic, RemaindersAreThoseOfTheStepByStepRule) {
  std::mt19937 random(1);
  std::int64_t steps = 300000000;
  int longOnes = 0;
  for (int i = 0; i < 400000; ++i) {
    float a = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    float b = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    // Quotients up to 2^40 are frequent, and so are the moderate numbers of scores.
    if (i % 4 != 0 && std::isfinite(a)) {
      b = std::ldexp(b / std::ldexp(1.0F, std::isfinite(b) && b != 0 ? std::ilogb(b) : 0),
                     (a == 0 ? 0 : std::ilogb(a)) - static_cast<int>(random() % 40));
    }
    if (std::isfinite(a) && std::isfinite(b) && b != 0) {
      double quotient = std::fabs(static_cast<double>(a) / static_cast<double>(b));
      if (quotient > 0x1p41 && quotient < 0x1p50) {
        continue;  // millions of steps each; a few of them are looked at below
      }
    }
    compare(a, b, steps, longOnes);
    if (HasFatalFailure()) {
      return;
    }
  }
  EXPECT_GT(longOnes, 1000);
  EXPECT_GT(steps, 0);
}

// Some thousand subtractions, one of which comes down on a power of two before it is rounded, where
// the numbers below are twice as fine.
TEST(Arithmetic, SubtractionsAcrossAPowerOfTwo) {
  std::int64_t steps = 0;
  int longOnes = 0;
  compare(0x1.ceee8ap+44F, 0x1.4007fp+6F, steps, longOnes);
  compare(-0x1.ceee8ap+44F, 0x1.4007fp+6F, steps, longOnes);
  EXPECT_EQ(longOnes, 2);
}

TEST(Arithmetic, VeryLargeQuotients) {
  std::mt19937 random(2);
  std::int64_t steps = 0;
  int longOnes = 0;
  for (int exponent = 41; exponent <= 50; ++exponent) {
    for (int compared = 0; compared < 3;) {
      float m = 1.0F + static_cast<float>(random() % 8388608) / 8388608.0F;
      float a = std::ldexp(1.0F + static_cast<float>(random() % 8388608) / 8388608.0F, exponent);
      if (a - std::trunc(a / m) * m != 0.0F) {
        compare(compared % 2 == 0 ? a : -a, m, steps, longOnes);
        ++compared;
      }
    }
  }
  EXPECT_GT(longOnes, 10);
}

TEST(Arithmetic, RemaindersOfEveryDivisorThatPitchesUse) {
  std::mt19937 random(3);
  std::int64_t steps = 1000000000;
  int longOnes = 0;
  for (float b : {12.0F, 128.0F, -12.0F}) {
    for (int i = 0; i < 100000; ++i) {
      float a = std::ldexp(static_cast<float>(random() % 16777216) - 8388608.0F,
                           static_cast<int>(random() % 40) - 23);
      compare(a, b, steps, longOnes);
    }
  }
}

TEST(Arithmetic, RealsBecomeIntegers) {
  struct {
    double value;
    std::int64_t integer;
  } rows[] = {
      {0.0, 0},
      {2.9, 2},
      {-2.9, -2},
      {-0.5, 0},
      {4503599627370495.5, 4503599627370495},
      {9223372036854774784.0, 9223372036854774784},
      {9223372036854775808.0, INT64_MAX},
      {-9223372036854775808.0, INT64_MIN},
      {-9223372036854777856.0, INT64_MIN},
      {1e300, INT64_MAX},
      {-1e300, INT64_MIN},
      {kInfinity, INT64_MAX},
      {-kInfinity, INT64_MIN},
      {kNotANumber, 0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(toInt64(row.value), row.integer) << row.value;
  }
}

TEST(Arithmetic, RealsBecomeShorterIntegers) {
  struct {
    double value;
    std::int32_t integer;
  } rows[] = {
      {2.9, 2},
      {-2.9, -2},
      {2147483646.9, 2147483646},
      {2147483647.0, INT32_MAX},
      {2147483648.0, INT32_MAX},
      {-2147483647.9, -2147483647},
      {-2147483648.0, INT32_MIN},
      {-2147483649.5, INT32_MIN},
      {kInfinity, INT32_MAX},
      {-kInfinity, INT32_MIN},
      {kNotANumber, 0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(toInt32(row.value), row.integer) << row.value;
  }
}

TEST(Arithmetic, RealsBecomeUnsignedIntegers) {
  struct {
    double value;
    std::uint64_t integer;
  } rows[] = {
      {0.0, 0},
      {-0.0, 0},
      {480.9, 480},
      {-1.0, 0},
      {-0.9, 0},
      {-kInfinity, 0},
      {9223372036854775808.0, 9223372036854775808U},
      {18446744073709549568.0, 18446744073709549568U},
      {18446744073709551616.0, UINT64_MAX},
      {kInfinity, UINT64_MAX},
      {kNotANumber, 0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(toUint64(row.value), row.integer) << row.value;
  }
}

}  // namespace

}  // namespace korvo
