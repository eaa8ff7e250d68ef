// Random draws. The numbers are those of the GNU C library's `rand`, which seeds have always meant;
// they are made here, so that a seed means them on every system and two runs never share them. The
// order of draws is part of what a seed promises: a function that draws says in its header how
// often and in which order.
#pragma once

#include <cstdint>

namespace korvo {

// Every number is the sum of those 3 and 31 before it, modulo 2 to the 32nd; the upper 31 bits are
// drawn. Numbers are made a batch at a time, each also as what is drawn of it in 0..1.
struct Random {
  static constexpr std::uint32_t kBehind = 31;
  static constexpr std::uint32_t kBatch = 12 * kBehind;
  std::uint32_t numbers[kBehind + kBatch] = {};  // the batch, behind the 31 numbers before it
  float units[kBatch] = {};
  std::uint32_t next = kBatch;  // of the batch
};

// Begins the sequence of a seed (below 2147483648); 0 is the same as 1.
void seedRandom(Random &random, std::uint32_t seed);

// Makes the next batch.
void makeNumbers(Random &random);

// One draw in 0..2147483647.
inline std::uint32_t draw(Random &random) {
  if (random.next == Random::kBatch) {
    makeNumbers(random);
  }
  return random.numbers[Random::kBehind + random.next++] >> 1;
}

// One draw in 0..1, in single precision.
inline float drawUnit(Random &random) {
  if (random.next == Random::kBatch) {
    makeNumbers(random);
  }
  return random.units[random.next++];
}

// Draws in 0..1 until one is neither below `low` nor above `high`; neither bound is negative. One
// draw when they are not numbers.
float drawUnitWithin(Random &random, float low, float high);

// One draw of an index below `count` (which is above 0).
inline std::uint32_t drawIndex(Random &random, std::uint32_t count) { return draw(random) % count; }

}  // namespace korvo
