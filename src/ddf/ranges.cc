// Each distribution gives a weight in 0..1; the value is that far from low to high. Where a formula
// is in double precision it is so for its logarithm, power or decimal constants; everything else is
// single.
#include "ddf/ranges.h"

#include <algorithm>
#include <cstring>

#include "base/characters.h"
#include "base/mathematics.h"
#include "base/random.h"

namespace korvo {

namespace {

constexpr char kLetters[] = "flhtgxb";  // in the order of the types

float drawNonZero(Random &random) {
  float u = 0.0F;
  do {
    u = drawUnit(random);
  } while (u == 0.0F);
  return u;
}

float towardsLow(Random &random) {
  double weight =
      logarithm(static_cast<double>(drawNonZero(random))) / static_cast<double>(-6.9078F);
  return std::min(static_cast<float>(weight), 1.0F);
}

float towardsHigh(Random &random) { return 1.0F - towardsLow(random); }

float triangular(Random &random) {
  float u1 = drawUnit(random);
  float u2 = drawUnit(random);
  return (u1 + u2) / 2.0F;
}

float bell(Random &random) {
  float sum = 0.0F;
  for (int i = 0; i < 12; ++i) {
    sum += drawUnit(random);
  }
  double weight = (static_cast<double>(sum) - 6.0) * 0.155 + 0.5;
  return static_cast<float>(std::clamp(weight, 0.0, 1.0));
}

float doubleExponential(Random &random) {
  float t = 0.0F;
  do {
    t = 2.0F * drawUnit(random);
  } while (t == 0.0F || t == 2.0F);
  double sign = 1.0;
  if (t > 1.0F) {
    t = 2.0F - t;
    sign = -1.0;
  }
  float weight = static_cast<float>(logarithm(static_cast<double>(t)) * sign / 14.0);
  return std::clamp(weight, -0.5F, 0.5F) + 0.5F;
}

float bothEnds(Random &random) {
  for (;;) {
    float y1 = static_cast<float>(fifthPower(drawNonZero(random)));
    float y2 = static_cast<float>(fifthPower(drawNonZero(random)));
    if (y1 + y2 <= 1.0F) {
      return y1 / (y1 + y2);
    }
  }
}

// From type 1 on.
constexpr float (*kWeights[])(Random &) = {towardsLow, towardsHigh,       triangular,
                                           bell,       doubleExponential, bothEnds};

}  // namespace

int takeDistribution(const char *text, std::int32_t &position) {
  char letter = toLower(text[position]);
  const char *found = letter == '\0' ? nullptr : std::strchr(kLetters, letter);
  if (found == nullptr) {
    return 0;
  }
  ++position;
  return static_cast<int>(found - kLetters);
}

float drawWeight(Random &random, int distribution) { return kWeights[distribution - 1](random); }

}  // namespace korvo
