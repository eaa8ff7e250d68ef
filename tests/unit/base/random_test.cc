#include "base/random.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "support/scripted_draws.h"

namespace korvo {

namespace {

// The C library's numbers of a seed; those of `random_r` are those of `rand`.
class LibraryNumbers {
  random_data data;
  char state[128];

 public:
  explicit LibraryNumbers(std::uint32_t seed) {
    std::memset(&data, 0, sizeof data);
    initstate_r(seed, state, sizeof state, &data);
  }
  LibraryNumbers(const LibraryNumbers &) = delete;
  LibraryNumbers &operator=(const LibraryNumbers &) = delete;

  std::uint32_t next() {
    std::int32_t number = 0;
    random_r(&data, &number);
    return static_cast<std::uint32_t>(number);
  }
};

// The first draw of these that is not the library's; `count` when all are.
int firstDifference(std::uint32_t seed, int count) {
  Random random;
  seedRandom(random, seed);
  LibraryNumbers library(seed);
  for (int i = 0; i < count; ++i) {
    if (draw(random) != library.next()) {
      return i;
    }
  }
  return count;
}

TEST(Random, EverySeedHasTheLibrarysNumbers) {
  for (std::uint32_t seed = 0; seed < 65536; ++seed) {
    ASSERT_EQ(firstDifference(seed, 1000), 1000) << seed;
  }
}

TEST(Random, TheNumbersStayThoseOfTheLibrary) {
  for (std::uint32_t seed : {1U, 2U, 12345U, 65535U}) {
    EXPECT_EQ(firstDifference(seed, 10000000), 10000000) << seed;
  }
}

TEST(Random, TheLibrarysNumbersAreThoseOfRand) {
  for (unsigned seed : {0U, 1U, 7U, 65535U}) {
    std::srand(seed);
    LibraryNumbers library(seed);
    for (int i = 0; i < 1000; ++i) {
      ASSERT_EQ(static_cast<std::uint32_t>(std::rand()), library.next()) << seed << " " << i;
    }
  }
}

TEST(Random, SeedZeroIsSeedOne) {
  Random zero;
  Random one;
  seedRandom(zero, 0);
  seedRandom(one, 1);
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(draw(zero), draw(one)) << i;
  }
}

TEST(Random, SeedingBeginsAnewWhateverWasDrawn) {
  Random random;
  seedRandom(random, 5);
  std::uint32_t first = draw(random);
  for (int drawn = 0; drawn < 100; ++drawn) {
    seedRandom(random, 5);
    for (int i = 0; i < drawn; ++i) {
      draw(random);
    }
    seedRandom(random, 5);
    ASSERT_EQ(draw(random), first) << drawn;
  }
}

TEST(Random, TwoSequencesDoNotMeet) {
  Random a;
  Random b;
  Random alone;
  seedRandom(a, 3);
  seedRandom(b, 4);
  seedRandom(alone, 3);
  for (int i = 0; i < 100; ++i) {
    draw(b);
    ASSERT_EQ(draw(a), draw(alone));
  }
}

TEST(Random, AUnitDrawIsBetweenZeroAndOne) {
  Random random;
  script(random, {kDrawZero, kDrawQuarter, kDrawHalf, kDrawThreeQuarters, kDrawOne, 1});
  EXPECT_EQ(drawUnit(random), 0.0F);
  EXPECT_EQ(drawUnit(random), 0.25F);
  EXPECT_EQ(drawUnit(random), 0.5F);
  EXPECT_EQ(drawUnit(random), 0.75F);
  EXPECT_EQ(drawUnit(random), 1.0F);
  EXPECT_EQ(drawUnit(random), 4.656613e-10F);
}

TEST(Random, AnIndexIsTheRemainderOfADraw) {
  Random random;
  script(random, {7, 2147483647, 0, 5});
  EXPECT_EQ(drawIndex(random, 3), 1U);
  EXPECT_EQ(drawIndex(random, 10), 7U);
  EXPECT_EQ(drawIndex(random, 1), 0U);
  EXPECT_EQ(drawIndex(random, 6), 5U);
}

}  // namespace

}  // namespace korvo
