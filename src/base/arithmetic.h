// The arithmetic that the whole program shares, each rule in one place.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace korvo {

// An amplitude is e to the power of its decibels times this, ln(10) / 20.
inline constexpr double kDecibelExponent = 0.11512925;

// The nearest integer, exact halves going up: 2.5 gives 3, -2.5 gives -2.
double roundHalfUp(double value);
float roundHalfUp(float value);

// The remainder of a by b in single precision, with the sign of a; 0 when b is 0. A remainder that
// rounding left too large to be brought below |b| step by step is 0.
float remainderOf(float a, float b);

// A real number as an integer, the fraction dropped. Not-a-number is 0; what lies beyond the range
// is its nearest end.
template <typename Integer>
Integer toInteger(double value) {
  constexpr Integer kLow = std::numeric_limits<Integer>::min();
  constexpr Integer kHigh = std::numeric_limits<Integer>::max();
  if (std::isnan(value)) {
    return 0;
  }
  if (value <= static_cast<double>(kLow)) {
    return kLow;
  }
  return value >= static_cast<double>(kHigh) ? kHigh : static_cast<Integer>(value);
}
inline std::int64_t toInt64(double value) { return toInteger<std::int64_t>(value); }
inline std::int32_t toInt32(double value) { return toInteger<std::int32_t>(value); }
inline std::uint64_t toUint64(double value) { return toInteger<std::uint64_t>(value); }

}  // namespace korvo
