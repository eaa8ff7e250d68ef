#include "ddf/selection.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

#include "support/scripted_draws.h"

namespace korvo {

namespace {

// A selection from `count` items.
struct Selector {
  std::unique_ptr<SegmentTable> table = std::make_unique<SegmentTable>();
  Selection selection;
  std::uint32_t count;
  Random random;

  Selector(SelectionMode mode, std::uint32_t items) : count(items) {
    selection.mode = mode;
    EXPECT_EQ(beginSelection(*table, selection, items), kOk);
    seedRandom(random, 1);
  }
  Selector(const Selector &) = delete;
  Selector &operator=(const Selector &) = delete;
  ~Selector() { freeSegments(*table); }

  std::vector<std::uint32_t> take(int times) {
    std::vector<std::uint32_t> indices;
    for (int i = 0; i < times; ++i) {
      indices.push_back(selectIndex(*table, random, selection, count));
    }
    return indices;
  }
};

using Indices = std::vector<std::uint32_t>;

TEST(Selection, Free) {
  Selector selector(kFree, 3);
  script(selector.random, {0, 0, 5, 4, 2147483647});
  EXPECT_EQ(selector.take(5), (Indices{0, 0, 2, 1, 1}));
  EXPECT_EQ(selector.random.next, 5U);
}

TEST(Selection, AllBeforeAnyAgain) {
  Selector selector(kExhaustive, 3);
  // 1, again 1 and 4 (refused), 0, refused 0 and 1, 2; then all are free again: 2, 2 refused, 1, 0.
  script(selector.random, {1, 1, 4, 0, 0, 1, 2, 2, 2, 1, 0});
  EXPECT_EQ(selector.take(6), (Indices{1, 0, 2, 2, 1, 0}));
  EXPECT_EQ(selector.random.next, 11U);
}

TEST(Selection, NeverTheSameTwiceInARow) {
  Selector selector(kNoRepeat, 3);
  script(selector.random, {0, 0, 3, 1, 0, 0, 2});
  EXPECT_EQ(selector.take(4), (Indices{0, 1, 0, 2}));
  EXPECT_EQ(selector.random.next, 7U);
}

TEST(Selection, OneItemIsSelectedFreely) {
  for (SelectionMode mode : {kFree, kExhaustive, kNoRepeat}) {
    Selector selector(mode, 1);
    EXPECT_EQ(selector.selection.mode, kFree);
    script(selector.random, {5, 6, 7});
    EXPECT_EQ(selector.take(3), (Indices{0, 0, 0}));
    EXPECT_EQ(selector.random.next, 3U);
  }
}

TEST(Selection, SelectionsOfOneCallDoNotMeet) {
  auto table = std::make_unique<SegmentTable>();
  Selection a;
  Selection b;
  a.mode = kExhaustive;
  b.mode = kExhaustive;
  ASSERT_EQ(beginSelection(*table, a, 2), kOk);
  ASSERT_EQ(beginSelection(*table, b, 3), kOk);
  Random random;
  script(random, {0, 0, 1, 1, 2});
  EXPECT_EQ(selectIndex(*table, random, a, 2), 0U);
  EXPECT_EQ(selectIndex(*table, random, b, 3), 0U);
  EXPECT_EQ(selectIndex(*table, random, a, 2), 1U);
  EXPECT_EQ(selectIndex(*table, random, b, 3), 1U);
  EXPECT_EQ(selectIndex(*table, random, b, 3), 2U);
  freeSegments(*table);
}

TEST(Selection, EveryRoundHasEveryItem) {
  Selector selector(kExhaustive, 50);
  for (int round = 0; round < 20; ++round) {
    Indices indices = selector.take(50);
    EXPECT_EQ(std::set<std::uint32_t>(indices.begin(), indices.end()).size(), 50U);
  }
}

TEST(Selection, NoItemFollowsItself) {
  Selector selector(kNoRepeat, 2);
  Indices indices = selector.take(1000);
  for (std::size_t i = 1; i < indices.size(); ++i) {
    ASSERT_NE(indices[i - 1], indices[i]);
  }
}

}  // namespace

}  // namespace korvo
