// Nearly every number in a score began as a single-precision float. Such a value times a small
// power of ten is exact in double precision, so rounding the product to an integer (ties to even)
// is the rounding that printf does on the exact decimal value; what is left is to write an integer
// and set the point. Everything else goes through std::to_chars.
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

constexpr int kQuickRoom = 24;  // 16 digits, the point and the sign

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

}  // namespace

char *writeFixed(char *out, double value, int width, int decimals) {
  bool negative = std::signbit(value);
  if (!std::isfinite(value)) {
    return writeWord(out, negative, std::isnan(value) ? "nan" : "inf", width);
  }
  double magnitude = std::fabs(value);
  bool isSingle = static_cast<double>(static_cast<float>(magnitude)) == magnitude;
  if (isSingle && decimals <= kMostQuickDecimals) {
    double scaled = magnitude * kPowersOfTen[decimals];
    if (scaled < kWholeFrom) {
      double rounded = (scaled + kWholeFrom) - kWholeFrom;
      return writePointed(out, negative, static_cast<std::uint64_t>(rounded), width, decimals);
    }
  }
  char *end =
      std::to_chars(out, out + kLongestNumber, value, std::chars_format::fixed, decimals).ptr;
  return alignRight(out, static_cast<int>(end - out), width);
}

char *writeInteger(char *out, std::int64_t value, int width) {
  char *end = std::to_chars(out, out + 20, value).ptr;
  return alignRight(out, static_cast<int>(end - out), width);
}

}  // namespace korvo
