// Logarithms, powers and sines. A C library's own differ from system to system in the last bit, and
// on one system from processor to processor. These are the same everywhere: sums and products of
// doubles in a fixed order. Each gives the double that is nearest to the exact value, so there is
// one right answer, which can be worked out without this code. Arguments that are too small for all
// bits of a double count as 0.
#pragma once

namespace korvo {

// e to the power of x.
double exponential(double x);

// 2 to the power of x.
double powerOfTwo(double x);

// The natural logarithm: minus infinity of 0, not a number (with a minus) of what is below.
double logarithm(double x);

// A base of 0 or more to a power; a base of 0 to a power above 0.
double power(double base, float exponent);

// x times itself five times over.
double fifthPower(float x);

// The sine of an angle from 0 to a quarter of the circle, in radians. Any other comes back.
double sine(double x);

}  // namespace korvo
