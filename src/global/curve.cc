// A place on the way comes in, a value between two ends goes out.
#include "global/curve.h"

#include <cmath>
#include <cstring>

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/mathematics.h"
#include "base/numbers.h"

namespace korvo {

namespace {

constexpr double kHalfPi = 1.5707963267948966;

}  // namespace

bool readCurveLetter(const char *text, std::int32_t &position, CurveType &type, float &exponent) {
  constexpr char kLetters[] = "felvsc";  // in the order of the types
  char letter = toLower(text[position]);
  const char *found = letter == '\0' ? nullptr : std::strchr(kLetters, letter);
  type = found == nullptr ? kLine : static_cast<CurveType>(found - kLetters);
  exponent = 1.0F;
  position += found == nullptr ? 0 : 1;
  if (type != kUserPower) {
    return true;
  }
  return !isSpace(text[position]) && read_float(exponent, text, position) && exponent > 0.0F;
}

namespace {

// How far the curve has come at `u` (0 to 1) of its way.
double curveShape(int type, double u, float exponent) {
  switch (type) {
    case kLine:
      return u;
    case kPower:
      return u * u;
    case kRoot:
      return std::sqrt(u);
    case kUserPower:
      return power(u, exponent);
    case kQuarterSine:
      return sine(u * kHalfPi);
    default:
      return u - (sine(u * kHalfPi) - u);
  }
}

}  // namespace

float interpolate(int type, double u, float from, float to, float exponent) {
  double way = static_cast<double>(to) - static_cast<double>(from);
  return static_cast<float>(static_cast<double>(from) + way * curveShape(type, u, exponent));
}

float CurveValue(float type, float x, float length, float from, float to, float exponent) {
  if (x >= length) {
    return to;
  }
  if (x <= 0.0F) {
    return from;
  }
  int shape = toInt32(static_cast<double>(type));
  if (shape < kLine || shape > kMirroredSine) {
    return to;
  }
  double u = static_cast<double>(x) / static_cast<double>(length);
  return interpolate(shape, u, from, to, exponent);
}

}  // namespace korvo
