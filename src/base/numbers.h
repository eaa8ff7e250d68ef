// The number readers. Each takes the line and a position, skips leading white space, reads one
// number and leaves the position behind it. False means that there is no number, or one that does
// not fit; the caller knows which error that is. Numbers have no exponents.
#pragma once

#include <cstdint>

namespace korvo {

// A signed integer in -32768..32767. Without a digit the position stays behind the sign; out of
// range it goes back to the first digit.
bool read_short(int &out, const char *text, std::int32_t &position);

// A signed integer of 64 bits; white space behind it is skipped. One beyond 64 bits is refused.
bool read_long(std::int64_t &out, const char *text, std::int32_t &position);

// An unsigned integer in 0..65535, "+" allowed. Out of range the position goes back to the first
// digit.
bool read_ushort(unsigned &out, const char *text, std::int32_t &position);

// An unsigned integer, "+" allowed, that wraps at 64 bits; white space behind it is skipped.
bool read_ulong(std::uint64_t &out, const char *text, std::int32_t &position);

// A real number in single or double precision; "." alone is 0. The divisor of the fraction is a
// 32-bit integer that wraps, so from the tenth fraction digit on the value is not what is written.
// A value that is not finite is refused.
bool read_float(float &out, const char *text, std::int32_t &position);
bool read_double(double &out, const char *text, std::int32_t &position);

}  // namespace korvo
