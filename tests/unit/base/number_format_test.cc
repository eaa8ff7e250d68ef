#include "base/number_format.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace korvo {

namespace {

std::string fixed(double value, int width, int decimals) {
  char text[kLongestNumber + 8];
  std::memset(text, '#', sizeof text);
  char *end = writeFixed(text, value, width, decimals);
  EXPECT_EQ(std::string(text + kLongestNumber, 8), "########")
      << "written beyond the promised room";
  return {text, end};
}

std::string integer(std::int64_t value, int width) {
  char text[kLongestNumber];
  return {text, writeInteger(text, value, width)};
}

TEST(NumberFormat, ByHand) {
  struct {
    double value;
    int width;
    int decimals;
    const char *text;
  } rows[] = {
      {0.0, 8, 3, "   0.000"},
      {-0.0, 8, 3, "  -0.000"},
      {1.5, 8, 3, "   1.500"},
      {-1.5, 6, 3, "-1.500"},
      {1.0, 5, 0, "    1"},
      {0.5, 5, 0, "    0"},  // ties go to the even neighbour
      {1.5, 5, 0, "    2"},
      {2.5, 5, 0, "    2"},
      {-2.5, 5, 0, "   -2"},
      {0.125, 0, 2, "0.12"},
      {0.375, 0, 2, "0.38"},
      {0.0625, 0, 3, "0.062"},
      {1.005, 0, 2, "1.00"},  // just below the tie as it is stored
      {2.675, 0, 2, "2.67"},
      {0.1F, 12, 7, "   0.1000000"},
      {0.3F, 0, 10, "0.3000000119"},
      {999.9996, 6, 3, "1000.000"},
      {123456789.0, 3, 1, "123456789.0"},  // wider than asked for
      {9007199254740993.0, 0, 0, "9007199254740992"},
      {1e15, 0, 7, "1000000000000000.0000000"},
      {1e22, 0, 0, "10000000000000000000000"},
      {4.9e-324, 0, 7, "0.0000000"},
      {-4.9e-324, 0, 0, "-0"},
      {-0.0004, 0, 3, "-0.000"},
      {HUGE_VAL, 8, 3, "     inf"},
      {-HUGE_VAL, 8, 3, "    -inf"},
      {HUGE_VAL, 0, 0, "inf"},
      {-HUGE_VAL, 2, 7, "-inf"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(fixed(row.value, row.width, row.decimals), row.text);
  }
}

TEST(NumberFormat, NotANumberKeepsItsSign) {
  double notANumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(fixed(std::copysign(notANumber, 1.0), 8, 3), "     nan");
  EXPECT_EQ(fixed(std::copysign(notANumber, -1.0), 8, 3), "    -nan");
  EXPECT_EQ(fixed(std::copysign(notANumber, -1.0), 0, 0), "-nan");
}

TEST(NumberFormat, Integers) {
  EXPECT_EQ(integer(0, 5), "    0");
  EXPECT_EQ(integer(3, 5), "    3");
  EXPECT_EQ(integer(-2, 5), "   -2");
  EXPECT_EQ(integer(123456, 5), "123456");
  EXPECT_EQ(integer(-7, 0), "-7");
  EXPECT_EQ(integer(INT64_MAX, 0), "9223372036854775807");
  EXPECT_EQ(integer(INT64_MIN, 5), "-9223372036854775808");
  EXPECT_EQ(integer(INT64_MIN, 25), "     -9223372036854775808");
}

void compare(double value, int width, int decimals) {
  char expected[400];
  char found[kLongestNumber + 1];
  int length = std::snprintf(expected, sizeof expected, "%*.*f", width, decimals, value);
  *writeFixed(found, value, width, decimals) = '\0';
  ASSERT_EQ(std::string(found), std::string(expected, static_cast<std::size_t>(length)))
      << std::hexfloat << value << " width " << width << " decimals " << decimals;
}

// Singles of every sign, exponent and kind, with every number of decimals that a score may have.
TEST(NumberFormat, SinglesOfAllBitPatterns) {
  std::mt19937 random(1);
  for (int i = 0; i < 1000000; ++i) {
    float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    int decimals = i % 8;
    ASSERT_NO_FATAL_FAILURE(compare(value, decimals + 3 + i / 8 % 4, decimals));
  }
}

// The numbers that scores are made of.
TEST(NumberFormat, SinglesOfModerateSize) {
  std::mt19937 random(2);
  for (int i = 0; i < 1000000; ++i) {
    float value =
        std::ldexp(static_cast<float>(random() % 16777216), static_cast<int>(random() % 48) - 40);
    int decimals = i % 8;
    ASSERT_NO_FATAL_FAILURE(compare(i % 3 == 0 ? -value : value, decimals + 5, decimals));
  }
}

// Where a number gets one digit more, to columns that have just room for it or not.
TEST(NumberFormat, AroundThePowersOfTen) {
  for (int power = 0; power <= 17; ++power) {
    for (int step = -2; step <= 2; ++step) {
      for (int decimals = 0; decimals <= 8; ++decimals) {
        float value = static_cast<float>(std::pow(10.0, power) + step);
        float scaled =
            static_cast<float>((std::pow(10.0, power) + step) / std::pow(10.0, decimals));
        for (int width = 0; width <= 20; ++width) {
          ASSERT_NO_FATAL_FAILURE(compare(value, width, decimals));
          ASSERT_NO_FATAL_FAILURE(compare(-value, width, decimals));
          ASSERT_NO_FATAL_FAILURE(compare(scaled, width, decimals));
          ASSERT_NO_FATAL_FAILURE(compare(-scaled, width, decimals));
        }
      }
    }
  }
}

TEST(NumberFormat, ExactTies) {
  for (int decimals = 0; decimals <= 7; ++decimals) {
    for (int i = 1; i < 20000; i += 2) {
      // An odd number of halves of the last place, as far as a binary fraction can be one.
      double value = i / std::ldexp(1.0, decimals + 1);
      ASSERT_NO_FATAL_FAILURE(compare(value, 0, decimals));
      ASSERT_NO_FATAL_FAILURE(compare(-value, 12, decimals));
    }
  }
}

TEST(NumberFormat, EverySingleExponent) {
  for (int exponent = -149; exponent <= 127; ++exponent) {
    for (float mantissa : {1.0F, 1.5F, 1.9999999F, 1.2345678F}) {
      for (int decimals = 0; decimals <= 7; ++decimals) {
        ASSERT_NO_FATAL_FAILURE(compare(std::ldexp(mantissa, exponent), 9, decimals));
        ASSERT_NO_FATAL_FAILURE(compare(-std::ldexp(mantissa, exponent), 0, decimals));
      }
    }
  }
}

TEST(NumberFormat, DoublesOfAllBitPatterns) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 150000; ++i) {
    double value = std::bit_cast<double>(random());
    ASSERT_NO_FATAL_FAILURE(compare(value, i % 65, i % 17));
  }
}

TEST(NumberFormat, DoublesOfModerateSize) {
  std::mt19937_64 random(4);
  for (int i = 0; i < 400000; ++i) {
    double value =
        std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 64) - 60);
    ASSERT_NO_FATAL_FAILURE(compare(i % 3 == 0 ? -value : value, 8, i % 17));
  }
}

// Around the size where singles stop being scaled exactly.
TEST(NumberFormat, LargeWholeNumbers) {
  for (int exponent = 20; exponent <= 64; ++exponent) {
    for (int step = -3; step <= 3; ++step) {
      double whole = std::ldexp(1.0, exponent);
      for (int decimals = 0; decimals <= 8; ++decimals) {
        ASSERT_NO_FATAL_FAILURE(compare(whole + step, 20, decimals));
        ASSERT_NO_FATAL_FAILURE(compare(
            static_cast<float>(whole) * (1.0F + 1.1920929e-7F * static_cast<float>(step + 3)), 20,
            decimals));
      }
    }
  }
}

TEST(NumberFormat, TheLongestNumbersFit) {
  double largest = std::numeric_limits<double>::max();
  for (int decimals = 0; decimals <= kMostDecimals; ++decimals) {
    for (int width : {0, 7, 64}) {
      ASSERT_NO_FATAL_FAILURE(compare(-largest, width, decimals));
      fixed(-largest, width, decimals);
      fixed(0.0, width, decimals);
    }
  }
}

TEST(NumberFormat, IntegersAsPrintfWritesThem) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 300000; ++i) {
    auto value = static_cast<std::int64_t>(random()) >> random() % 64;
    int width = i % 25;
    char expected[64];
    std::snprintf(expected, sizeof expected, "%*ld", width, static_cast<long>(value));
    ASSERT_EQ(integer(value, width), expected);
  }
}

}  // namespace

}  // namespace korvo
