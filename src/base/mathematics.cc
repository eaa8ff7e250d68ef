// A number goes in, and a value comes out as the sum of two doubles, the second of which says what
// the first has lost. Tables bring the number so near to a known place that a short series does the
// rest: about 64 bits. Once in some thousand times that leaves open which of two doubles is nearer;
// then a long series in sums of two doubles throughout decides, with some 90 bits. The tables come
// from the long series, too, while this file is compiled.
#include "base/mathematics.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/same_bits.h"

#ifdef __FAST_MATH__
#error "-ffast-math changes digits of scores"
#endif
static_assert(FLT_EVAL_METHOD == 0, "arithmetic that keeps more bits changes digits of scores");
static_assert(std::numeric_limits<double>::is_iec559);

namespace korvo {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A number as the sum of two; `high` is `high + low`, rounded.
struct Sum {
  double high = 0.0;
  double low = 0.0;
};

// Sums and products of two doubles, nothing lost.

// The magnitude of a is not below that of b, or a is 0.
constexpr Sum addInOrder(double a, double b) {
  double sum = a + b;
  return {sum, b - (sum - a)};
}

constexpr Sum addExactly(double a, double b) {
  double sum = a + b;
  double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

// The first 26 bits.
constexpr double upperHalf(double a) {
  double scaled = a * 134217729.0;  // 2^27 + 1
  return scaled - (scaled - a);
}

constexpr Sum multiplyExactly(double a, double b) {
  double product = a * b;
  double a1 = upperHalf(a);
  double a2 = a - a1;
  double b1 = upperHalf(b);
  double b2 = b - b1;
  return {product, ((a1 * b1 - product) + a1 * b2 + a2 * b1) + a2 * b2};
}

// Arithmetic with sums, right to some 100 bits.

constexpr Sum operator+(Sum a, Sum b) {
  Sum high = addExactly(a.high, b.high);
  Sum low = addExactly(a.low, b.low);
  Sum sum = addInOrder(high.high, high.low + low.high);
  return addInOrder(sum.high, sum.low + low.low);
}

constexpr Sum operator-(Sum a) { return {-a.high, -a.low}; }

constexpr Sum operator*(Sum a, Sum b) {
  Sum product = multiplyExactly(a.high, b.high);
  return addInOrder(product.high, product.low + (a.high * b.low + a.low * b.high));
}

constexpr Sum operator/(Sum a, Sum b) {
  double first = a.high / b.high;
  Sum rest = a + -(b * Sum{first, 0.0});
  double second = rest.high / b.high;
  rest = rest + -(b * Sum{second, 0.0});
  return addInOrder(first, second) + Sum{rest.high / b.high, 0.0};
}

constexpr Sum times(Sum a, double powerOfTwo) { return {a.high * powerOfTwo, a.low * powerOfTwo}; }

// The long series.

constexpr Sum kOne = {1.0, 0.0};

// The logarithm of (1 + s) / (1 - s): twice s + s^3/3 + s^5/5 and so on; |s| is at most 1/5.
constexpr Sum longLogarithmOfRatio(Sum s) {
  constexpr int kLast = 45;
  Sum square = s * s;
  Sum sum = kOne / Sum{kLast, 0.0};
  for (int n = kLast - 2; n > 0; n -= 2) {
    sum = sum * square + kOne / Sum{static_cast<double>(n), 0.0};
  }
  return times(s * sum, 2.0);
}

// Of 4/3 and of 3/2.
constexpr Sum kLogarithmOfTwo =
    longLogarithmOfRatio(kOne / Sum{7.0, 0.0}) + longLogarithmOfRatio(kOne / Sum{5.0, 0.0});

// x is 0.7 to 1.41.
constexpr Sum longLogarithm(double x) {
  return longLogarithmOfRatio(addExactly(x, -1.0) / addExactly(x, 1.0));
}

// |x| is below 0.7. The 256th root comes from the series; squaring it eight times gives the rest.
constexpr Sum longExponential(Sum x) {
  Sum r = times(x, 0x1p-8);
  Sum sum = kOne;
  for (int n = 11; n > 0; --n) {
    sum = kOne + sum * r / Sum{static_cast<double>(n), 0.0};
  }
  for (int i = 0; i < 8; ++i) {
    sum = sum * sum;
  }
  return sum;
}

// The series of the sine, x - x^3/6 and so on, without its first factor, or that of the cosine.
constexpr Sum longSeriesOfAngle(double x, int last) {
  Sum square = multiplyExactly(x, x);
  Sum sum = kOne;
  for (int n = last; n > 1; n -= 2) {
    sum = kOne + -(sum * square / Sum{static_cast<double>(n * (n - 1)), 0.0});
  }
  return sum;
}

constexpr Sum longSine(double x) { return longSeriesOfAngle(x, 35) * Sum{x, 0.0}; }
constexpr Sum longCosine(double x) { return longSeriesOfAngle(x, 34); }

// Rounding.

// Whether all values within `error` of the sum are rounded to one double.
bool isCertain(Sum sum, double error) {
  return sum.high + (sum.low + error) == sum.high + (sum.low - error);
}

double rounded(Sum sum) { return sum.high + sum.low; }

// The nearest integer; |x| is below 2^51.
constexpr double nearest(double x) {
  constexpr double kShift = 0x1.8p52;
  return (x + kShift) - kShift;
}

// All but what lies below `unit`, a power of two.
constexpr double inUnits(double x, double unit) { return nearest(x / unit) * unit; }

// Logarithms.

// A number as `mantissa`, 0.703125 to 1.40625, times 2 to the power of `power`. The mantissa lies
// near the place `index` of the table.
struct Scaled {
  double mantissa;
  double power;
  std::size_t index;
};

constexpr int kMantissaBits = 52;
constexpr int kPlaceBits = 7;
constexpr std::size_t kPlaces = std::size_t{1} << kPlaceBits;
constexpr double kLowestMantissa = 0.703125;
constexpr std::size_t kPlacesBelowOne = 76;  // 256ths; above 1 they are 128ths

bool hasLogarithm(double x) { return x >= std::numeric_limits<double>::min() && x < kInfinity; }

Scaled scale(double x) {
  std::uint64_t bits = sameBits<std::uint64_t>(x);
  std::uint64_t above = bits - sameBits<std::uint64_t>(kLowestMantissa);
  std::int64_t power = static_cast<std::int64_t>(above) >> kMantissaBits;
  std::uint64_t mantissa = bits - (static_cast<std::uint64_t>(power) << kMantissaBits);
  std::size_t index = (above >> (kMantissaBits - kPlaceBits)) % kPlaces;
  return {sameBits<double>(mantissa), static_cast<double>(power), index};
}

// The inverse of a place, in 15 bits, and minus the logarithm of that inverse. The high part has
// few bits, so that the logarithm of a power of two can be added and nothing is lost.
struct Place {
  double inverse = 1.0;
  double high = 0.0;
  double low = 0.0;
};

constexpr double kLogarithmUnit = 0x1p-41;
constexpr double kTwoHigh = inUnits(kLogarithmOfTwo.high, kLogarithmUnit);
constexpr double kTwoLow = (kLogarithmOfTwo.high - kTwoHigh) + kLogarithmOfTwo.low;

constexpr Place makePlace(std::size_t index) {
  if (index == kPlacesBelowOne || index + 1 == kPlacesBelowOne) {
    return {};  // around 1, whose logarithm is small and must be right in its own bits
  }
  double steps = static_cast<double>(index) - kPlacesBelowOne + 0.5;
  double inverse =
      inUnits(1.0 / (1.0 + steps / (index < kPlacesBelowOne ? 256.0 : 128.0)), 0x1p-14);
  Sum logarithm = -longLogarithm(inverse);
  double high = inUnits(logarithm.high, kLogarithmUnit);
  return {inverse, high, (logarithm.high - high) + logarithm.low};
}

constexpr std::array<Place, kPlaces> makePlaces() {
  std::array<Place, kPlaces> places{};
  for (std::size_t i = 0; i < kPlaces; ++i) {
    places[i] = makePlace(i);
  }
  return places;
}

constexpr std::array<Place, kPlaces> kLogarithms = makePlaces();

constexpr double kLogarithmError = 0x1p-64;  // of the whole

// The mantissa times the inverse of its place is 1 + r, |r| at most 2^-7; the logarithm of that is
// r - r^2/2 + r^3/3 and so on, of which the first two are exact.
[[gnu::always_inline]] inline Sum quickLogarithm(const Scaled &x) {
  const Place &place = kLogarithms[x.index];
  double upper = upperHalf(x.mantissa);
  Sum r = addInOrder(upper * place.inverse - 1.0, (x.mantissa - upper) * place.inverse);
  double a = r.high;
  double a1 = upperHalf(a);
  double lowOfSquare = (a - a1) * (a + a1) * 0.5;
  double further =
      a * a * a *
      (1.0 / 3.0 -
       a * (1.0 / 4.0 -
            a * (1.0 / 5.0 -
                 a * (1.0 / 6.0 - a * (1.0 / 7.0 - a * (1.0 / 8.0 - a * (1.0 / 9.0)))))));
  Sum first = addInOrder(x.power * kTwoHigh + place.high, a);
  Sum second = addInOrder(first.high, -(a1 * a1 * 0.5));
  double constants = x.power * kTwoLow + place.low;
  double low = (further - lowOfSquare) + (r.low - a * r.low) + constants;
  return addInOrder(second.high, (first.low + second.low) + low);
}

// Of an x that has none.
double logarithmOfOther(double x) {
  if (x < 0.0) {
    return -std::numeric_limits<double>::quiet_NaN();
  }
  return x < 1.0 ? -kInfinity : x;
}

Sum slowLogarithm(const Scaled &x) {
  return kLogarithmOfTwo * Sum{x.power, 0.0} + longLogarithm(x.mantissa);
}

// Powers.

constexpr int kRootBits = 6;
constexpr std::size_t kRoots = std::size_t{1} << kRootBits;

// 2 to the power of (index / 64), its first 26 bits and the others.
constexpr std::array<Sum, kRoots> makeRoots() {
  std::array<Sum, kRoots> roots{};
  for (std::size_t i = 0; i < kRoots; ++i) {
    Sum root = longExponential(kLogarithmOfTwo * Sum{static_cast<double>(i) / kRoots, 0.0});
    double upper = upperHalf(root.high);
    roots[i] = {upper, (root.high - upper) + root.low};
  }
  return roots;
}

constexpr std::array<Sum, kRoots> kPowersOfRoot = makeRoots();

constexpr double kRootsInE = kRoots / kLogarithmOfTwo.high;
constexpr double kRootHigh = inUnits(kLogarithmOfTwo.high / kRoots, 0x1p-42);
constexpr double kRootLow =
    (kLogarithmOfTwo.high / kRoots - kRootHigh) + kLogarithmOfTwo.low / kRoots;

constexpr double kTwoUpper = upperHalf(kLogarithmOfTwo.high);
constexpr double kTwoRest = (kLogarithmOfTwo.high - kTwoUpper) + kLogarithmOfTwo.low;

constexpr double kHighestExponent = 709.8;  // e to this power is infinite,
constexpr double kLowestExponent = -745.2;  // to this one 0
constexpr double kExponentialError = 0x1p-64;

double timesPowerOfTwo(double x, int power) {
  constexpr int kHighestPower = 1023;
  if (power < 1 - kHighestPower || power > kHighestPower) {
    return std::ldexp(x, power);
  }
  return x * sameBits<double>(static_cast<std::uint64_t>(power + kHighestPower) << 52U);
}

// A number as so many 64ths of the logarithm of 2, and the rest, which is at most 2^-7.
struct Reduced {
  double steps;
  Sum rest;
};

Reduced reduce(Sum x) {
  double steps = nearest(x.high * kRootsInE);
  return {steps, {x.high - steps * kRootHigh, x.low - steps * kRootLow}};
}

// x times the logarithm of 2.
Reduced reducePowerOfTwo(double x) {
  double steps = nearest(x * kRoots);
  double fraction = x - steps / kRoots;
  double upper = upperHalf(fraction);
  return {steps, {upper * kTwoUpper, upper * kTwoRest + (fraction - upper) * kLogarithmOfTwo.high}};
}

// e to the power of a number r of 2^-7 or less is 1 + r + r^2/2 + r^3/6 and so on.
[[gnu::always_inline]] inline Sum quickExponential(const Reduced &x) {
  const Sum &root =
      kPowersOfRoot[static_cast<std::uint64_t>(static_cast<std::int64_t>(x.steps)) % kRoots];
  double r = x.rest.high + x.rest.low;
  double further =
      r * r *
      (1.0 / 2.0 +
       r * (1.0 / 6.0 +
            r * (1.0 / 24.0 + r * (1.0 / 120.0 + r * (1.0 / 720.0 + r * (1.0 / 5040.0))))));
  double upper = upperHalf(x.rest.high);
  Sum sum = addInOrder(root.high, root.high * upper);
  double rest = (x.rest.high - upper) + x.rest.low + further;
  return addInOrder(sum.high, sum.low + (root.high * rest + (root.low + root.low * (r + further))));
}

double slowExponential(Sum x) {
  double power = nearest(x.high / kLogarithmOfTwo.high);
  Sum rest = x + -(kLogarithmOfTwo * Sum{power, 0.0});
  return timesPowerOfTwo(rounded(longExponential(rest)), static_cast<int>(power));
}

bool isOutOfRange(double x) { return !(x > kLowestExponent && x < kHighestExponent); }

// Of an x that is out of range.
double limitOfExponential(double x) { return x > 0.0 ? kInfinity : (x < 0.0 ? 0.0 : x); }

// e to the power of x, which is known to within `error`. False when that leaves two doubles.
[[gnu::always_inline]] inline bool exponentialIsCertain(const Reduced &x, double error,
                                                        double &result) {
  Sum sum = quickExponential(x);
  int power = static_cast<int>(static_cast<std::int64_t>(x.steps) >> kRootBits);
  result = timesPowerOfTwo(rounded(sum), power);
  return isCertain(sum, 2.0 * (kExponentialError + error));
}

// Sines.

constexpr int kAngles = 102;  // 64ths, to above a quarter of the circle
constexpr double kAnglesInOne = 64.0;

// The sine at a place, its cosine in 26 bits, and the others of that.
struct Angle {
  Sum sine;
  double cosine = 0.0;
  double restOfCosine = 0.0;
};

constexpr std::array<Angle, kAngles> makeAngles() {
  std::array<Angle, kAngles> angles{};
  for (std::size_t i = 0; i < kAngles; ++i) {
    double x = static_cast<double>(i) / kAnglesInOne;
    Sum cosine = longCosine(x);
    double upper = upperHalf(cosine.high);
    angles[i] = {longSine(x), upper, (cosine.high - upper) + cosine.low};
  }
  return angles;
}

constexpr std::array<Angle, kAngles> kSines = makeAngles();

constexpr double kSineError = 0x1p-64;  // of the whole

// The sine of a place and r is its sine times the cosine of r, and its cosine times the sine of r.
Sum quickSine(double x) {
  double steps = nearest(x * kAnglesInOne);
  const Angle &angle = kSines[static_cast<std::size_t>(steps)];
  double r = x - steps / kAnglesInOne;
  double r1 = upperHalf(r);
  double square = r * r;
  double lessThanOne =
      square *
      (1.0 / 2.0 - square * (1.0 / 24.0 - square * (1.0 / 720.0 - square * (1.0 / 40320.0))));
  double lessThanR =
      r * square *
      (1.0 / 6.0 - square * (1.0 / 120.0 - square * (1.0 / 5040.0 - square * (1.0 / 362880.0))));
  Sum sum = addInOrder(angle.sine.high, angle.cosine * r1);
  double low = angle.cosine * ((r - r1) - lessThanR) + angle.restOfCosine * (r - lessThanR) -
               angle.sine.high * lessThanOne + angle.sine.low;
  return addInOrder(sum.high, sum.low + low);
}

}  // namespace

double exponential(double x) {
  if (isOutOfRange(x)) {
    return limitOfExponential(x);
  }
  double result = 0.0;
  return exponentialIsCertain(reduce({x, 0.0}), 0.0, result) ? result : slowExponential({x, 0.0});
}

double powerOfTwo(double x) {
  if (isOutOfRange(x * kLogarithmOfTwo.high)) {
    return limitOfExponential(x);
  }
  double result = 0.0;
  bool certain = exponentialIsCertain(reducePowerOfTwo(x), 0.0, result);
  return certain ? result : slowExponential(kLogarithmOfTwo * Sum{x, 0.0});
}

double logarithm(double x) {
  if (!hasLogarithm(x)) {
    return logarithmOfOther(x);
  }
  Scaled scaled = scale(x);
  Sum sum = quickLogarithm(scaled);
  return rounded(isCertain(sum, std::fabs(sum.high) * kLogarithmError) ? sum
                                                                       : slowLogarithm(scaled));
}

double power(double base, float exponent) {
  double y = static_cast<double>(exponent);
  if (!hasLogarithm(base) || std::isnan(y)) {
    return base * y;  // 0, infinity or not a number
  }
  Scaled scaled = scale(base);
  Sum sum = quickLogarithm(scaled);
  if (isOutOfRange(sum.high * y)) {
    return limitOfExponential(sum.high * y);
  }
  double upper = upperHalf(sum.high);
  Sum product = addInOrder(upper * y, (sum.high - upper) * y + sum.low * y);
  double result = 0.0;
  bool certain =
      exponentialIsCertain(reduce(product), std::fabs(product.high) * kLogarithmError, result);
  return certain ? result : slowExponential(slowLogarithm(scaled) * Sum{y, 0.0});
}

double fifthPower(float x) {
  double base = static_cast<double>(x);
  double square = base * base;  // 48 bits
  return rounded(multiplyExactly(square, square) * Sum{base, 0.0});
}

double sine(double x) {
  if (!(x > 0.0 && x * kAnglesInOne < kAngles - 1)) {
    return x;
  }
  Sum sum = quickSine(x);
  return rounded(isCertain(sum, sum.high * kSineError) ? sum : longSine(x));
}

}  // namespace korvo
