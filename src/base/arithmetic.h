// The arithmetic that the whole program shares, each rule in one place.
#pragma once

#include <cstdint>

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
std::int64_t toInt64(double value);
std::int32_t toInt32(double value);
std::uint64_t toUint64(double value);

}  // namespace korvo
