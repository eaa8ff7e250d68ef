// Digits in, numbers out. The real readers gather all digits into one value of their own precision
// and divide once: that is what decides the last bits of every number a composer writes. As long as
// that value is a whole number which their precision holds exactly, it is gathered as an integer.
#include "base/numbers.h"

#include <cmath>
#include <limits>

#include "base/characters.h"

namespace korvo {

namespace {

// Steps over a sign and tells whether it was "-".
bool takeSign(const char *text, std::int32_t &position) {
  bool negative = text[position] == '-';
  if (negative || text[position] == '+') {
    ++position;
  }
  return negative;
}

struct Digits {
  std::uint64_t value = 0;  // wrapped at 64 bits
  bool overflow = false;    // the true value needs more than 64 bits
  std::int32_t first = 0;   // where the digits begin
};

bool takeDigits(Digits &digits, const char *text, std::int32_t &position) {
  digits.first = position;
  for (; isDigit(text[position]); ++position) {
    std::uint64_t digit = static_cast<std::uint64_t>(text[position] - '0');
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    digits.overflow = digits.overflow || digits.value > (kMost - digit) / 10;
    digits.value = digits.value * 10 + digit;
  }
  return position > digits.first;
}

// The digits that a whole number in a Real can take without rounding.
template <typename Real>
void takeExactDigits(std::int64_t &whole, const char *&text) {
  // One digit more and it is still below the first whole number that has no place in a Real.
  constexpr std::int64_t kLast = (std::int64_t{1} << std::numeric_limits<Real>::digits) / 10 - 1;
  for (; isDigit(*text) && whole < kLast; ++text) {
    whole = whole * 10 + (*text - '0');
  }
}

// The digits from where it begins to round.
template <typename Real>
void takeRoundedDigits(Real &value, const char *&text) {
  for (; isDigit(*text); ++text) {
    value = value * 10 + static_cast<Real>(*text - '0');
  }
}

template <typename Real>
bool readReal(Real &out, const char *text, std::int32_t &position) {
  skipBlanksInLine(text, position);
  bool negative = takeSign(text, position);
  const char *c = text + position;
  if (!isDigit(*c) && *c != '.') {
    return false;
  }
  const char *fraction = nullptr;
  std::int64_t whole = 0;
  takeExactDigits<Real>(whole, c);
  if (*c == '.') {
    fraction = ++c;
    takeExactDigits<Real>(whole, c);
  }
  Real value = static_cast<Real>(whole);
  takeRoundedDigits(value, c);
  if (*c == '.' && fraction == nullptr) {
    fraction = ++c;
    takeRoundedDigits(value, c);
  }
  position = static_cast<std::int32_t>(c - text);
  if (fraction != nullptr) {
    std::uint32_t divisor = 1;
    for (; fraction < c; ++fraction) {
      divisor *= 10;
    }
    value = value / static_cast<Real>(static_cast<std::int32_t>(divisor));
  }
  if (!std::isfinite(value)) {
    return false;
  }
  out = negative ? -value : value;
  return true;
}

}  // namespace

bool read_short(int &out, const char *text, std::int32_t &position) {
  skipBlanksInLine(text, position);
  bool negative = takeSign(text, position);
  Digits digits;
  if (!takeDigits(digits, text, position)) {
    return false;
  }
  if (digits.overflow || digits.value > (negative ? 32768U : 32767U)) {
    position = digits.first;
    return false;
  }
  int magnitude = static_cast<int>(digits.value);
  out = negative ? -magnitude : magnitude;
  return true;
}

bool read_long(std::int64_t &out, const char *text, std::int32_t &position) {
  skipBlanksInLine(text, position);
  bool negative = takeSign(text, position);
  Digits digits;
  if (!takeDigits(digits, text, position)) {
    return false;
  }
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (digits.overflow || digits.value > kMost + (negative ? 1 : 0)) {
    return false;
  }
  out = static_cast<std::int64_t>(negative ? 0 - digits.value : digits.value);
  skipBlanksInLine(text, position);
  return true;
}

bool read_ushort(unsigned &out, const char *text, std::int32_t &position) {
  skipBlanksInLine(text, position);
  if (text[position] == '+') {
    ++position;
  }
  Digits digits;
  if (!takeDigits(digits, text, position)) {
    return false;
  }
  if (digits.overflow || digits.value > 65535) {
    position = digits.first;
    return false;
  }
  out = static_cast<unsigned>(digits.value);
  return true;
}

bool read_ulong(std::uint64_t &out, const char *text, std::int32_t &position) {
  skipBlanksInLine(text, position);
  if (text[position] == '+') {
    ++position;
  }
  Digits digits;
  if (!takeDigits(digits, text, position)) {
    return false;
  }
  out = digits.value;
  skipBlanksInLine(text, position);
  return true;
}

bool read_float(float &out, const char *text, std::int32_t &position) {
  return readReal(out, text, position);
}

bool read_double(double &out, const char *text, std::int32_t &position) {
  return readReal(out, text, position);
}

}  // namespace korvo
