// A seed comes in, numbers go out. The first 31 come from the seed by a congruence, the others from
// those before them, and 310 are thrown away before the first that is drawn.
#include "base/random.h"

#include <cstring>

#include "base/same_bits.h"

namespace korvo {

namespace {

constexpr std::uint32_t kLag = 3;
constexpr std::uint32_t kThrownAway = 310;  // ten times all 31
constexpr std::int64_t kMultiplier = 16807;
constexpr std::int64_t kModulus = 2147483647;
constexpr float kUnit = 4.656613e-10F;  // 2 to the minus 31st, nearly

}  // namespace

// The three numbers before the one that is made wait in registers, not in the memory where they
// have just been put: that is what takes the time here.
void makeNumbers(Random &random) {
  constexpr std::uint32_t kBehind = Random::kBehind;
  constexpr std::uint32_t kBatch = Random::kBatch;
  static_assert(kBatch % kLag == 0);
  std::uint32_t *behind = random.numbers;
  std::memmove(behind, behind + kBatch, kBehind * sizeof *behind);
  std::uint32_t *made = behind + kBehind;
  std::uint32_t first = made[-3];
  std::uint32_t second = made[-2];
  std::uint32_t third = made[-1];
  for (std::uint32_t i = 0; i < kBatch; i += kLag) {
    made[i] = first += behind[i];
    made[i + 1] = second += behind[i + 1];
    made[i + 2] = third += behind[i + 2];
  }
  for (std::uint32_t i = 0; i < kBatch; ++i) {
    random.units[i] = static_cast<float>(static_cast<std::int32_t>(made[i] >> 1)) * kUnit;
  }
  random.next = 0;
}

// The sequence goes on with the first three numbers themselves: one turn of them comes before the
// sums begin, so the numbers of a seed are turned by three places.
void seedRandom(Random &random, std::uint32_t seed) {
  std::uint32_t *last = random.numbers + Random::kBatch;
  std::int64_t number = seed == 0 ? 1 : seed;
  for (std::uint32_t i = 0; i < Random::kBehind; ++i) {
    last[(i + Random::kBehind - kLag) % Random::kBehind] = static_cast<std::uint32_t>(number);
    number = number * kMultiplier % kModulus;
  }
  makeNumbers(random);
  static_assert(kThrownAway < Random::kBatch);
  random.next = kThrownAway;
}

// Numbers from 0 up are in the order of their bits, so that one comparison without a sign serves for
// both bounds: on which side of them a draw lies is not to be foreseen by a processor.
float drawUnitWithin(Random &random, float low, float high) {
  if (!(low <= high)) {
    return drawUnit(random);
  }
  std::uint32_t lowest = sameBits<std::uint32_t>(low);
  std::uint32_t width = sameBits<std::uint32_t>(high) - lowest;
  for (;;) {
    for (std::uint32_t i = random.next; i < Random::kBatch; ++i) {
      if (sameBits<std::uint32_t>(random.units[i]) - lowest <= width) {
        random.next = i + 1;
        return random.units[i];
      }
    }
    makeNumbers(random);
  }
}

}  // namespace korvo
