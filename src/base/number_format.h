// Numbers as text, byte for byte what the C library's printf gives, many times faster.
#pragma once

#include <cstdint>

namespace korvo {

// Room for the longest number that these functions write: a double of 309 digits, its sign, its
// point and its decimals.
inline constexpr int kLongestNumber = 344;
inline constexpr int kMostDecimals = 16;

// Writes what "%*.*f" gives for (width, decimals, value): right-aligned, rounded from the exact
// value with ties to even, "inf", "-inf", "nan" and "-nan" included. `out` has room for
// kLongestNumber characters; width is at most 64, decimals 0 to kMostDecimals. Returns the end of
// the text; no NUL is written.
char *writeFixed(char *out, double value, int width, int decimals);

// The same for a single, which nearly every number of a score is, and somewhat faster.
char *writeFixed(char *out, float value, int width, int decimals);

// Writes what "%*ld" gives for (width, value). Returns the end of the text; no NUL is written.
char *writeInteger(char *out, std::int64_t value, int width);

}  // namespace korvo
