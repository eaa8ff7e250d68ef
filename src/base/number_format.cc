// Nearly every number in a score began as a single-precision float. Such a value times a small
// power of ten is exact in double precision, so rounding the product to an integer (ties to even)
// is the rounding that printf does on the exact decimal value; what is left is to write an integer
// and set the point. Every other number is a whole one of 53 bits times a power of two: times the
// power of ten it fits into 128 bits, where it is shifted and rounded; or it has no fraction at all.
#include "base/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace korvo {

namespace {

constexpr double kPowersOfTen[] = {1.0, 10.0, 100.0, 1000.0, 1e4, 1e5, 1e6, 1e7};
constexpr int kMostQuickDecimals = 7;

// Doubles from here on are whole numbers. Adding it to a smaller one and taking it away again
// rounds that one to an integer, ties to even.
constexpr double kWholeFrom = 4503599627370496.0;

using Wide = unsigned __int128;

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

// Whether a number is a single-precision one that a double holds exactly when it has been scaled.
bool scaleQuickly(double magnitude, int decimals, std::uint64_t &scaled) {
  bool isSingle = static_cast<double>(static_cast<float>(magnitude)) == magnitude;
  if (!isSingle || decimals > kMostQuickDecimals) {
    return false;
  }
  double product = magnitude * kPowersOfTen[decimals];
  if (!(product < kWholeFrom)) {
    return false;
  }
  scaled = static_cast<std::uint64_t>((product + kWholeFrom) - kWholeFrom);
  return true;
}

}  // namespace

char *writeFixed(char *out, double value, int width, int decimals) {
  bool negative = std::signbit(value);
  if (!std::isfinite(value)) {
    return writeWord(out, negative, std::isnan(value) ? "nan" : "inf", width);
  }
  double magnitude = std::fabs(value);
  std::uint64_t scaled = 0;
  if (!scaleQuickly(magnitude, decimals, scaled)) {
    Parts parts = takeApart(magnitude);
    if (parts.power > 0) {
      return writeWhole(out, negative, parts.mantissa, parts.power, width, decimals);
    }
    Wide wide = scaleAndRound(parts, decimals);
    scaled = static_cast<std::uint64_t>(wide);
    if (scaled != wide) {
      return writeWide(out, negative, wide, width, decimals);
    }
  }
  return writePointed(out, negative, scaled, width, decimals);
}

char *writeInteger(char *out, std::int64_t value, int width) {
  char *end = std::to_chars(out, out + 20, value).ptr;
  return alignRight(out, static_cast<int>(end - out), width);
}

}  // namespace korvo
