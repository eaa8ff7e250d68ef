// Random ranges and their seven distributions.
#pragma once

#include <cstdint>

#include "base/random.h"
#include "ddf/segment_table.h"

namespace korvo {

// The type letters that may open a bracket: none or "f" is type 0.
//   0 f  uniform
//   1 l  exponential, towards the low end
//   2 h  exponential, towards the high end
//   3 t  triangular, the mean of two draws
//   4 g  bell-shaped, from the sum of twelve draws
//   5 x  double exponential around the middle
//   6 b  both ends likelier than the middle
// Takes a letter (either case) at the position and gives its type; type 0 and nothing taken when
// there is none.
int takeDistribution(const char *text, std::int32_t &position);

// A weight in 0..1 of a distribution other than type 0.
float drawWeight(Random &random, int distribution);

// A value of the range. Draws: type 0 one; 1 and 2 one, again while it is 0; 3 two; 4 twelve; 5
// one, again while it is 0 or 1; 6 pairs (each again while 0) until the pair fits.
inline float drawFromRange(Random &random, const Range &range) {
  float weight =
      range.distribution == 0 ? drawUnit(random) : drawWeight(random, range.distribution);
  return range.low + (range.high - range.low) * weight;
}

}  // namespace korvo
