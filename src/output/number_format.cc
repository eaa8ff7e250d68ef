// Nearly every number in a score began as a single-precision float. Such a value times a small
// power of ten is exact in double precision, so rounding the product to an integer (ties to even)
// is the rounding that printf does on the exact decimal value; what is left is to write an integer
// and set the point. Everything else goes through std::to_chars.
#include "output/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr double kPowersOfTen[] = {1.0, 10.0, 100.0, 1000.0, 1e4, 1e5, 1e6, 1e7};
constexpr std::uint64_t kIntegerPowersOfTen[] = {1,     10,     100,     1000,
                                                 10000, 100000, 1000000, 10000000};
constexpr int kMostQuickDecimals = 7;
// Below 2^53: the scaled value is an exact integer after rounding.
constexpr double kQuickLimit = 9.0e15;

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

// The digits of `scaled` with the point before the last `decimals` of them.
char *writePointed(char *out, std::uint64_t scaled, int decimals) {
  std::uint64_t whole = scaled / kIntegerPowersOfTen[decimals];
  std::uint64_t fraction = scaled % kIntegerPowersOfTen[decimals];
  char *end = std::to_chars(out, out + 20, whole).ptr;
  if (decimals > 0) {
    *end = '.';
    for (int i = decimals; i > 0; --i) {
      end[i] = static_cast<char>('0' + fraction % 10);
      fraction /= 10;
    }
    end += decimals + 1;
  }
  return end;
}

}  // namespace

char *writeFixed(char *out, double value, int width, int decimals) {
  bool negative = std::signbit(value);
  if (!std::isfinite(value)) {
    return writeWord(out, negative, std::isnan(value) ? "nan" : "inf", width);
  }
  double magnitude = std::fabs(value);
  char *end = out;
  bool isSingle = static_cast<double>(static_cast<float>(magnitude)) == magnitude;
  if (isSingle && decimals <= kMostQuickDecimals &&
      magnitude * kPowersOfTen[decimals] < kQuickLimit) {
    if (negative) {
      *end++ = '-';
    }
    double rounded = std::nearbyint(magnitude * kPowersOfTen[decimals]);
    end = writePointed(end, static_cast<std::uint64_t>(rounded), decimals);
  } else {
    end = std::to_chars(out, out + kLongestNumber, value, std::chars_format::fixed, decimals).ptr;
  }
  return alignRight(out, static_cast<int>(end - out), width);
}

char *writeInteger(char *out, std::int64_t value, int width) {
  char *end = std::to_chars(out, out + 20, value).ptr;
  return alignRight(out, static_cast<int>(end - out), width);
}
