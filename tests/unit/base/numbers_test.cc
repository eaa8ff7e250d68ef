#include "base/numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace korvo {

namespace {

constexpr int kAnywhere = -1;  // the position does not matter

template <typename Number>
struct Row {
  const char *text;
  bool readable;
  Number value;
  int position;
};

template <typename Out, typename Number, std::size_t kCount>
void check(bool (*read)(Out &, const char *, std::int32_t &), const Row<Number> (&rows)[kCount]) {
  for (const auto &row : rows) {
    SCOPED_TRACE("\"" + std::string(row.text) + "\"");
    // Also in the middle of a line.
    std::string padded = std::string("ab(") + row.text;
    for (int begin : {0, 3}) {
      const char *text = begin == 0 ? row.text : padded.c_str();
      Out value{};
      std::int32_t position = begin;
      EXPECT_EQ(read(value, text, position), row.readable);
      if (row.readable) {
        EXPECT_EQ(value, row.value);
      }
      if (row.position != kAnywhere) {
        EXPECT_EQ(position, begin + row.position);
      }
    }
  }
}

TEST(Numbers, ShortIntegers) {
  const Row<int> kRows[] = {
      {"0", true, 0, 1},
      {"7", true, 7, 1},
      {"+5", true, 5, 2},
      {"-5", true, -5, 2},
      {"-0", true, 0, 2},
      {"007", true, 7, 3},
      {"000000000000000000000000000012", true, 12, 30},
      {"  42", true, 42, 4},
      {" \t\v\f\r\n42", true, 42, 8},
      {"12  ", true, 12, 2},  // nothing is skipped behind it
      {"12x", true, 12, 2},
      {"1.5", true, 1, 1},
      {"8,16", true, 8, 1},
      {"-32768", true, -32768, 6},
      {"32767", true, 32767, 5},
      {"+32767 ", true, 32767, 6},
      {"32768", false, 0, 0},  // back to the first digit
      {"-32769", false, 0, 1},
      {"40000", false, 0, 0},
      {"  40000", false, 0, 2},
      {"  +40000", false, 0, 3},
      {"65536", false, 0, 0},
      {"4294967297", false, 0, 0},
      {"18446744073709551617", false, 0, 0},
      {"-99999999999999999999999999", false, 0, 1},
      {"", false, 0, 0},
      {"   ", false, 0, 3},
      {"x", false, 0, 0},
      {"  x", false, 0, 2},
      {".5", false, 0, 0},
      {"-", false, 0, 1},  // behind the sign
      {"+", false, 0, 1},
      {"-x", false, 0, 1},
      {"- 5", false, 0, 1},
      {"--5", false, 0, 1},
      {"+-5", false, 0, 1},
      {"  -", false, 0, 3},
  };
  check(read_short, kRows);
}

TEST(Numbers, LongIntegers) {
  constexpr std::int64_t kLow = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kHigh = std::numeric_limits<std::int64_t>::max();
  const Row<std::int64_t> kRows[] = {
      {"0", true, 0, 1},
      {"-12", true, -12, 3},
      {"+12", true, 12, 3},
      {"40000", true, 40000, 5},
      {"12  ", true, 12, 4},  // white space behind it is skipped
      {"12 \t\r\n x", true, 12, 7},
      {"12x", true, 12, 2},
      {"  7  =", true, 7, 5},
      {"9223372036854775807", true, kHigh, 19},
      {"-9223372036854775807", true, -kHigh, 20},
      {"-9223372036854775808", true, kLow, 20},
      {"9223372036854775808", false, 0, kAnywhere},
      {"-9223372036854775809", false, 0, kAnywhere},
      {"18446744073709551615", false, 0, kAnywhere},
      {"18446744073709551617", false, 0, kAnywhere},
      {"99999999999999999999999", false, 0, kAnywhere},
      {"", false, 0, 0},
      {"-", false, 0, 1},
      {"  + 5", false, 0, 3},
      {"x", false, 0, 0},
      {".", false, 0, 0},
  };
  check(read_long, kRows);
}

TEST(Numbers, UnsignedShortIntegers) {
  const Row<unsigned> kRows[] = {
      {"0", true, 0, 1},
      {"+12", true, 12, 3},
      {" 12 ", true, 12, 3},  // nothing is skipped behind it
      {"65535", true, 65535, 5},
      {"0000065535", true, 65535, 10},
      {"65536", false, 0, 0},
      {"70000", false, 0, 0},
      {"  +65536", false, 0, 3},
      {"4294967296", false, 0, 0},
      {"18446744073709551616", false, 0, 0},
      {"-5", false, 0, 0},  // no minus sign
      {"-0", false, 0, 0},
      {"+-5", false, 0, kAnywhere},
      {"++5", false, 0, kAnywhere},
      {"+", false, 0, kAnywhere},
      {"", false, 0, 0},
      {"x", false, 0, 0},
  };
  check(read_ushort, kRows);
}

TEST(Numbers, UnsignedLongIntegersWrap) {
  const Row<std::uint64_t> kRows[] = {
      {"0", true, 0, 1},
      {"44100  )", true, 44100, 7},  // white space behind it is skipped
      {"+ 5", false, 0, kAnywhere},
      {"+48000", true, 48000, 6},
      {"18446744073709551615", true, UINT64_MAX, 20},
      {"18446744073709551616", true, 0, 20},
      {"18446744073709551620", true, 4, 20},
      {"36893488147419103233", true, 1, 20},
      {"-1", false, 0, 0},
      {"", false, 0, 0},
      {"x1", false, 0, 0},
  };
  check(read_ulong, kRows);
}

// What stands in both tables of real numbers, with values that single and double precision share.
template <typename Real>
void checkReals(bool (*read)(Real &, const char *, std::int32_t &)) {
  const Row<Real> kRows[] = {
      {"0", true, 0, 1},
      {"5", true, 5, 1},
      {"5.", true, 5, 2},
      {".", true, 0, 1},
      {"-.", true, 0, 2},
      {".5", true, 0.5, 2},
      {"-.25", true, -0.25, 4},
      {"+.25", true, 0.25, 4},
      {"1.5", true, 1.5, 3},
      {"1.5   ", true, 1.5, 3},  // nothing is skipped behind it
      {"1.5\r", true, 1.5, 3},
      {" \t\v\f\r\n1.5", true, 1.5, 9},
      {"-12.75x", true, -12.75, 6},
      {"1.2.3", true, Real(12) / Real(10), 3},
      {"1..5", true, 1, 2},
      {"1e5", true, 1, 1},  // no exponents
      {"1.5e-3", true, 1.5, 3},
      {"0x10", true, 0, 1},
      {"1,5", true, 1, 1},
      {"007.5", true, 7.5, 5},
      {"0.1", true, Real(1) / Real(10), 3},
      {"0.3", true, Real(3) / Real(10), 3},
      {"96.7", true, Real(967) / Real(10), 4},
      {"123456.5", true, 123456.5, 8},
      {"", false, 0, 0},
      {"   ", false, 0, 3},
      {"x", false, 0, 0},
      {"  x", false, 0, 2},
      {"-", false, 0, 1},  // behind the sign
      {"+", false, 0, 1},
      {"-x", false, 0, 1},
      {"- 5", false, 0, 1},
      {"--5", false, 0, 1},
      {"+-5", false, 0, 1},
      {"  -.5.", true, -0.5, 5},
      {"inf", false, 0, 0},
      {"nan", false, 0, 0},
  };
  check(read, kRows);
}

TEST(Numbers, RealNumbersInSinglePrecision) { checkReals<float>(read_float); }

TEST(Numbers, RealNumbersInDoublePrecision) { checkReals<double>(read_double); }

TEST(Numbers, MinusNothingIsMinusZero) {
  for (const char *text : {"-0", "-0.0", "-."}) {
    float single = 1;
    double twice = 1;
    std::int32_t position = 0;
    EXPECT_TRUE(read_float(single, text, position));
    position = 0;
    EXPECT_TRUE(read_double(twice, text, position));
    EXPECT_TRUE(single == 0 && std::signbit(single)) << text;
    EXPECT_TRUE(twice == 0 && std::signbit(twice)) << text;
  }
}

// All digits gather in one value of the reader's own precision, which is divided once.
TEST(Numbers, DigitsGatherInThePrecisionOfTheReader) {
  const Row<float> kSingles[] = {
      {"16777217", true, 16777216.0F, 8},
      {"16777219", true, 16777220.0F, 8},
      {"123456789", true, 123456792.0F, 9},
      {"123456.789", true, 123456792.0F / 1000.0F, 10},
      {"0.123456789", true, 123456792.0F / 1e9F, 11},
      {"0.000000001", true, 1.0F / 1e9F, 11},
      {"1.000000001", true, 1.0F, 11},
  };
  check(read_float, kSingles);
  const Row<double> kDoubles[] = {
      {"9007199254740993", true, 9007199254740992.0, 16},
      {"123456.789", true, 123456789.0 / 1000.0, 10},
      {"0.123456789", true, 123456789.0 / 1e9, 11},
      {"1.000000001", true, 1000000001.0 / 1e9, 11},
  };
  check(read_double, kDoubles);
}

// The rule to the letter: ten times what there is, and the digit, rounded every time.
template <typename Real>
Real gatheredDigitByDigit(const std::string &text) {
  Real value = 0;
  std::size_t point = text.find('.');
  for (char c : text) {
    value = c == '.' ? value : value * 10 + static_cast<Real>(c - '0');
  }
  Real divisor = 1;
  for (std::size_t i = point + 1; i < text.size(); ++i) {
    divisor *= 10;
  }
  return value / divisor;
}

// With as many digits as a precision holds and some more, in both of the places they may stand.
TEST(Numbers, ARealIsGatheredDigitByDigit) {
  std::uint64_t number = 1;
  for (int i = 0; i < 20000; ++i) {
    number = number * 6364136223846793005U + 1442695040888963407U;
    std::string digits = std::to_string(number >> (i % 60));
    std::size_t fraction = std::min<std::size_t>(digits.size(), i % 9);
    std::string text = digits.insert(digits.size() - fraction, ".");
    float single = 0;
    double twice = 0;
    std::int32_t position = 0;
    ASSERT_TRUE(read_float(single, text.c_str(), position));
    ASSERT_EQ(single, gatheredDigitByDigit<float>(text)) << text;
    position = 0;
    ASSERT_TRUE(read_double(twice, text.c_str(), position));
    ASSERT_EQ(twice, gatheredDigitByDigit<double>(text)) << text;
    ASSERT_EQ(position, static_cast<std::int32_t>(text.size())) << text;
  }
}

// The divisor of the fraction wraps at 32 bits: 10^10 becomes 1410065408, 10^11 1215752192, 10^12
// -727379968, 10^13 1316134912, and from 10^32 on it is 0.
TEST(Numbers, FromTheTenthFractionDigitOnTheDivisorWraps) {
  const Row<double> kDoubles[] = {
      {"0.1234567890", true, 1234567890.0 / 1410065408.0, 12},
      {"1.0000000000", true, 1e10 / 1410065408.0, 12},
      {"0.00000000001", true, 1.0 / 1215752192.0, 13},
      {"1.000000000000", true, 1e12 / -727379968.0, 14},
      {"-1.000000000000", true, 1e12 / 727379968.0, 15},
      {"0.5000000000000", true, 5e12 / 1316134912.0, 15},
      {"0.0000000000000000000000000000001", true, 1.0 / -2147483648.0, 33},
      {"0.00000000000000000000000000000001", false, 0, kAnywhere},
      {"0.00000000000000000000000000000000", false, 0, kAnywhere},
      {"1.0000000000000000000000000000000000", false, 0, kAnywhere},
  };
  check(read_double, kDoubles);
  const Row<float> kSingles[] = {
      {"0.1234567890", true, 1234567936.0F / 1410065408.0F, 12},
      {"0.00000000001", true, 1.0F / 1215752192.0F, 13},
      {"0.00000000000000000000000000000001", false, 0, kAnywhere},
      {".00000000000000000000000000000000", false, 0, kAnywhere},
  };
  check(read_float, kSingles);
}

TEST(Numbers, ARealThatIsNotFiniteIsUnreadable) {
  std::string zeros38(38, '0');
  std::string zeros308(308, '0');
  float single = 0;
  double twice = 0;
  std::int32_t position = 0;
  EXPECT_TRUE(read_float(single, ("1" + zeros38).c_str(), position));
  EXPECT_NEAR(single / 1e38, 1.0, 1e-5);
  position = 0;
  EXPECT_FALSE(read_float(single, ("10" + zeros38).c_str(), position));
  position = 0;
  EXPECT_FALSE(read_float(single, ("-10" + zeros38 + ".5").c_str(), position));
  position = 0;
  EXPECT_FALSE(read_float(single, std::string(4000, '9').c_str(), position));
  position = 0;
  EXPECT_TRUE(read_double(twice, ("10" + zeros38).c_str(), position));
  position = 0;
  EXPECT_TRUE(read_double(twice, ("1" + zeros308).c_str(), position));
  EXPECT_NEAR(twice / 1e308, 1.0, 1e-12);
  position = 0;
  EXPECT_FALSE(read_double(twice, ("10" + zeros308).c_str(), position));
  position = 0;
  EXPECT_FALSE(read_double(twice, std::string(4000, '9').c_str(), position));
}

}  // namespace

}  // namespace korvo
