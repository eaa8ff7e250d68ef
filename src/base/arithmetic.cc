// Small functions of numbers alone. Their roundings decide digits of scores, so none may change.
#include "base/arithmetic.h"

#include <cmath>

namespace korvo {

namespace {

// r less as many times m as it takes to bring it to m or below (r > m > 0), each subtraction
// rounded to single precision, as if done one by one; 0 when subtracting stops having an effect.
// While r stays in one power-of-two range, every subtraction but perhaps the first takes off the
// same amount, so all of them are taken at once: a huge r costs a few steps for each power of two,
// not millions.
float subtractRepeatedly(float r, float m) {
  while (r > m) {
    float first = r - m;
    if (first == r) {
      return 0.0F;
    }
    float second = first - m;
    double step = static_cast<double>(first) - static_cast<double>(second);
    double floorOfRange = std::ldexp(1.0, std::ilogb(r));
    double lowest = std::fmax(floorOfRange, static_cast<double>(m));
    double times = std::floor((static_cast<double>(second) - lowest) / step);
    if (static_cast<double>(second) - times * step == floorOfRange) {
      times -= 1.0;  // that last step might end below the range, where rounding is finer
    }
    bool canJump = step > 0.0 && second > m && times >= 1.0;
    r = canJump ? static_cast<float>(static_cast<double>(second) - times * step) : first;
  }
  return r;
}

}  // namespace

double roundHalfUp(double value) {
  double below = std::floor(value);
  double above = std::ceil(value);
  return value - below < above - value ? below : above;
}

float roundHalfUp(float value) {
  return static_cast<float>(roundHalfUp(static_cast<double>(value)));
}

float remainderOf(float a, float b) {
  if (b == 0.0F) {
    return 0.0F;
  }
  float m = std::fabs(b);
  if (a > 0.0F && a < m) {
    return a;
  }
  float r = a - std::trunc(a / m) * m;
  if (r > m) {
    return subtractRepeatedly(r, m);
  }
  return -r > m ? -subtractRepeatedly(-r, m) : r;
}

}  // namespace korvo
