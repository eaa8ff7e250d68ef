// The curve shapes that the tempo map and the moving data functions share.
#pragma once

#include <cstdint>

namespace korvo {

enum CurveType : int {
  kLine = 0,          // u
  kPower = 1,         // u squared
  kRoot = 2,          // the square root of u
  kUserPower = 3,     // u to the power of the given exponent
  kQuarterSine = 4,   // sin(u pi/2)
  kMirroredSine = 5,  // 2u - sin(u pi/2)
};

// Takes the letter of a curve (any of "cefslv", either case) at the position, and directly behind
// "v" its exponent. Any other character is left where it is and means a straight line. False when
// the exponent is missing or not above 0.
bool readCurveLetter(const char *text, std::int32_t &position, CurveType &type, float &exponent);

// The value between `from` and `to` at `u` (0 to 1) of the way, for a type of CurveType. Worked out
// in double precision, rounded once.
float interpolate(int type, double u, float from, float to, float exponent);

// The value at `x` on the way from `from` (x <= 0) to `to` (x >= length, which is tested first, or
// a type that is none of CurveType). The fraction of the type is dropped.
float CurveValue(float type, float x, float length, float from, float to, float exponent);

}  // namespace korvo
