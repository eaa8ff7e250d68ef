// Nearly every number in a score began as a single-precision float. Such a value times a small
// power of ten is exact in double precision, so rounding the product to an integer (ties to even)
// is the rounding that printf does on the exact decimal value; what is left is to write an integer
// and set the point. Its digits are made eight at a time in one word. Every other number is a whole one of 53 bits times a power of two: times the
// power of ten it fits into 128 bits, where it is shifted and rounded; or it has no fraction at all.
#include "base/number_format.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "base/same_bits.h"

namespace korvo {

namespace {

constexpr double kPowersOfTen[] = {1.0, 10.0, 100.0, 1000.0, 1e4, 1e5, 1e6, 1e7};
constexpr int kMostQuickDecimals = 7;

// Doubles from here on are whole numbers. Adding it to a smaller one rounds that one to an integer,
// ties to even, which then stands in the fraction of the sum.
constexpr double kWholeFrom = 4503599627370496.0;
constexpr std::uint64_t kFractionBits = 0xFFFFFFFFFFFFFU;

using Wide = unsigned __int128;

constexpr int kQuickWidth = 16;
constexpr int kQuickRoom = 24;  // 20 digits, the point and the sign

// Moves the text at `begin`, `length` characters long, to the right until it ends at column
// `width`.
char *alignRight(char *begin, int length, int width) {
  if (length < width) {
    std::memmove(begin + (width - length), begin, static_cast<std::size_t>(length));
    std::memset(begin, ' ', static_cast<std::size_t>(width - length));
    length = width;
  }
  return begin + length;
}

char *writeWord(char *out, bool negative, const char *word, int width) {
  char *end = out;
  if (negative) {
    *end++ = '-';
  }
  std::memcpy(end, word, 3);
  return alignRight(out, static_cast<int>(end + 3 - out), width);
}

// Eight characters in a word, the first in its lowest byte. Written out, since so a compiler makes
// one move of it.
void writeEight(char *out, std::uint64_t characters) {
  out[0] = static_cast<char>(characters);
  out[1] = static_cast<char>(characters >> 8);
  out[2] = static_cast<char>(characters >> 16);
  out[3] = static_cast<char>(characters >> 24);
  out[4] = static_cast<char>(characters >> 32);
  out[5] = static_cast<char>(characters >> 40);
  out[6] = static_cast<char>(characters >> 48);
  out[7] = static_cast<char>(characters >> 56);
}

// The eight digits of a number below kEightDigits, the first in the lowest byte. Halves of four
// digits lie side by side, are halved to two and to one, each time all at once: a multiplication
// and a shift divide by 100 and by 10.
inline std::uint64_t eightDigits(std::uint64_t number) {
  std::uint64_t fours = number / 10000 | number % 10000 << 32;
  std::uint64_t hundreds = fours * 10486 >> 20 & 0x0000007F0000007FU;
  std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
  std::uint64_t tens = twos * 103 >> 10 & 0x000F000F000F000FU;
  return tens | (twos - 10 * tens) << 8;
}

constexpr std::uint64_t kEightDigits = 100000000;
constexpr std::uint64_t kEightZeros = 0x3030303030303030U;

// The zeros that a word of digits begins with, less those that are wanted before `decimals` others.
int leadingZeros(std::uint64_t digits, int decimals) {
  constexpr std::uint64_t kLast = std::uint64_t{1} << 56;
  return std::countr_zero(digits | kLast >> (8 * decimals)) / 8;
}

// Writes blanks and the sign before a number of `length` characters, sign included, which will end
// at column `width`.
char *writeLead(char *out, bool negative, int length, int width) {
  std::memset(out, ' ', kQuickWidth);
  char *begin = out + (width - length);
  *begin = '-';
  return begin + (negative ? 1 : 0);
}

// Puts the point into digits that end at `end`, or rather writes the last of them anew behind it.
char *writeDecimals(char *end, std::uint64_t digits, int decimals) {
  if (decimals > 0) {
    *(end - decimals - 1) = '.';
    writeEight(end - decimals, digits >> (8 * (8 - decimals)));
  }
  return end;
}

// Writes a number of up to 8 digits to a column of no more than kQuickWidth. Whole words are
// written; what is too much of one is written over by what comes next. Where a number ends does not
// hang on its digits unless it is too long for its column, so that a processor can begin with the
// next one before it knows them.
char *writeEightDigits(char *out, bool negative, std::uint64_t scaled, int width, int decimals) {
  std::uint64_t digits = eightDigits(scaled);
  int zeros = leadingZeros(digits, decimals);
  int length = 8 - zeros + (decimals > 0 ? 1 : 0) + (negative ? 1 : 0);
  if (length > width) {
    return writeEightDigits(out, negative, scaled, length, decimals);
  }
  digits |= kEightZeros;
  writeEight(writeLead(out, negative, length, width), digits >> (8 * zeros));
  return writeDecimals(out + width, digits, decimals);
}

// The same for a number of up to 16 digits.
char *writeSixteenDigits(char *out, bool negative, std::uint64_t scaled, int width, int decimals) {
  std::uint64_t high = eightDigits(scaled / kEightDigits);
  std::uint64_t low = eightDigits(scaled % kEightDigits);
  int zeros = leadingZeros(high, 0);
  int length = 16 - zeros + (decimals > 0 ? 1 : 0) + (negative ? 1 : 0);
  if (length > width) {
    return writeSixteenDigits(out, negative, scaled, length, decimals);
  }
  char *begin = writeLead(out, negative, length, width);
  writeEight(begin, (high | kEightZeros) >> (8 * zeros));
  writeEight(begin + 8 - zeros, low | kEightZeros);
  return writeDecimals(out + width, low | kEightZeros, decimals);
}

// The digits of `scaled` with the point before the last `decimals` of them, made from the right.
char *writePointed(char *out, bool negative, std::uint64_t scaled, int width, int decimals) {
  char text[kQuickRoom];
  char *const end = text + kQuickRoom;
  char *begin = end;
  for (int i = 0; i < decimals; ++i) {
    *--begin = static_cast<char>('0' + scaled % 10);
    scaled /= 10;
  }
  if (decimals > 0) {
    *--begin = '.';
  }
  do {
    *--begin = static_cast<char>('0' + scaled % 10);
    scaled /= 10;
  } while (scaled > 0);
  if (negative) {
    *--begin = '-';
  }
  for (std::ptrdiff_t blanks = width - (end - begin); blanks > 0; --blanks) {
    *out++ = ' ';
  }
  std::memcpy(out, begin, static_cast<std::size_t>(end - begin));
  return out + (end - begin);
}

// The same for a number of more than 64 bits.
char *writeWide(char *out, bool negative, Wide scaled, int width, int decimals) {
  constexpr int kWideRoom = 48;  // 39 digits, the point and the sign
  char text[kWideRoom];
  char *const end = text + kWideRoom;
  char *begin = end;
  for (int digits = 0; scaled > 0; ++digits) {
    if (digits == decimals && decimals > 0) {
      *--begin = '.';
    }
    *--begin = static_cast<char>('0' + static_cast<int>(scaled % 10));
    scaled /= 10;
  }
  if (negative) {
    *--begin = '-';
  }
  std::memcpy(out, begin, static_cast<std::size_t>(end - begin));
  return alignRight(out, static_cast<int>(end - begin), width);
}

// A whole number shifted to the right and rounded, ties to even.
Wide shiftAndRound(Wide number, int shift) {
  Wide quotient = number >> shift;
  Wide rest = number - (quotient << shift);
  Wide half = Wide{1} << (shift - 1);
  bool up = rest > half || (rest == half && (quotient & 1) != 0);
  return quotient + (up ? 1 : 0);
}

// A whole number times a power of two, and zeros behind the point.
char *writeWhole(char *out, bool negative, std::uint64_t number, int power, int width,
                 int decimals) {
  constexpr std::uint64_t kLimb = 1000000000;
  constexpr int kLimbDigits = 9;
  constexpr int kStep = 29;  // a limb times 2 to its power, and a carry, fits into 64 bits
  std::uint64_t limbs[36] = {number % kLimb, number / kLimb};
  for (; power > 0; power -= kStep) {
    std::uint64_t carry = 0;
    for (std::uint64_t &limb : limbs) {
      carry += limb << (power < kStep ? power : kStep);
      limb = carry % kLimb;
      carry /= kLimb;
    }
  }
  char text[sizeof limbs / sizeof *limbs * kLimbDigits];
  char *digit = text + sizeof text;
  for (std::uint64_t limb : limbs) {
    for (int i = 0; i < kLimbDigits; ++i) {
      *--digit = static_cast<char>('0' + limb % 10);
      limb /= 10;
    }
  }
  while (*digit == '0') {
    ++digit;
  }
  char *end = out;
  if (negative) {
    *end++ = '-';
  }
  std::size_t length = static_cast<std::size_t>(text + sizeof text - digit);
  std::memcpy(end, digit, length);
  end += length;
  if (decimals > 0) {
    *end++ = '.';
    std::memset(end, '0', static_cast<std::size_t>(decimals));
    end += decimals;
  }
  return alignRight(out, static_cast<int>(end - out), width);
}

// A finite number, taken apart into a whole one of 53 bits and a power of two.
struct Parts {
  std::uint64_t mantissa;
  int power;
};

Parts takeApart(double magnitude) {
  constexpr int kMantissaBits = 53;
  int exponent = 0;
  double fraction = std::frexp(magnitude, &exponent);
  return {static_cast<std::uint64_t>(std::ldexp(fraction, kMantissaBits)),
          exponent - kMantissaBits};
}

// The number times the power of ten, rounded; its power of two is not above 0.
Wide scaleAndRound(const Parts &parts, int decimals) {
  constexpr int kWideBits = 128;
  Wide scaled = parts.mantissa;
  for (int i = 0; i < decimals; ++i) {
    scaled *= 10;
  }
  if (parts.power == 0) {
    return scaled;
  }
  return parts.power > -kWideBits ? shiftAndRound(scaled, -parts.power) : 0;
}

// Scales the magnitude of a single, where a double holds the product exactly; that of one that is
// not finite is none.
inline bool scaleQuickly(double magnitude, int decimals, std::uint64_t &scaled) {
  if (decimals > kMostQuickDecimals) {
    return false;
  }
  double product = magnitude * kPowersOfTen[decimals];
  if (!(product < kWholeFrom)) {
    return false;
  }
  scaled = sameBits<std::uint64_t>(product + kWholeFrom) & kFractionBits;
  return true;
}

// Any number. Out of line, so that the room that it needs on the stack is no load for the others.
[[gnu::noinline]] char *writeExactly(char *out, double value, int width, int decimals) {
  bool negative = std::signbit(value);
  if (!std::isfinite(value)) {
    return writeWord(out, negative, std::isnan(value) ? "nan" : "inf", width);
  }
  Parts parts = takeApart(std::fabs(value));
  if (parts.power > 0) {
    return writeWhole(out, negative, parts.mantissa, parts.power, width, decimals);
  }
  Wide wide = scaleAndRound(parts, decimals);
  auto scaled = static_cast<std::uint64_t>(wide);
  return scaled == wide ? writePointed(out, negative, scaled, width, decimals)
                        : writeWide(out, negative, wide, width, decimals);
}

}  // namespace

char *writeFixed(char *out, double value, int width, int decimals) {
  float single = static_cast<float>(value);
  return static_cast<double>(single) == value ? writeFixed(out, single, width, decimals)
                                              : writeExactly(out, value, width, decimals);
}

char *writeFixed(char *out, float value, int width, int decimals) {
  bool negative = std::signbit(value);
  std::uint64_t scaled = 0;
  if (width > kQuickWidth ||
      !scaleQuickly(static_cast<double>(std::fabs(value)), decimals, scaled)) {
    return writeExactly(out, static_cast<double>(value), width, decimals);
  }
  return scaled < kEightDigits ? writeEightDigits(out, negative, scaled, width, decimals)
                               : writeSixteenDigits(out, negative, scaled, width, decimals);
}

char *writeInteger(char *out, std::int64_t value, int width) {
  char *end = std::to_chars(out, out + 20, value).ptr;
  return alignRight(out, static_cast<int>(end - out), width);
}

}  // namespace korvo
