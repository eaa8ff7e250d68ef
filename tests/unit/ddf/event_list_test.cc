#include "ddf/event_list.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <set>
#include <vector>

#include "support/events.h"

namespace korvo {

namespace {

// An event list on the heap that is released at the end.
struct Lists {
  std::unique_ptr<EventList> owned = std::make_unique<EventList>();
  EventList &list = *owned;

  explicit Lists(int parameters = 0) { beginEvents(list, parameters); }
  ~Lists() { releaseEvents(list); }

  std::vector<float> starts() const {
    std::vector<float> result;
    for (EventRecord *event : eventsOf(list)) {
      result.push_back(event->start);
    }
    return result;
  }
};

using Floats = std::vector<float>;

TEST(EventList, IsEmptyAtFirst) {
  Lists lists;
  EXPECT_EQ(lists.list.count, 0U);
  EXPECT_EQ(lists.list.last, kNoEvent);
  EXPECT_EQ(firstEvent(lists.list), kNoEvent);
  EXPECT_EQ(removeRests(lists.list), 0U);
}

TEST(EventList, ANewEventIsAllZeroAndInNoList) {
  Lists lists(5);
  std::uint32_t made = makeEvent(lists.list);
  const EventRecord &event = eventAt(lists.list, made);
  EXPECT_EQ(event.flag, 0);
  EXPECT_EQ(event.start, 0);
  EXPECT_EQ(event.duration, 0);
  EXPECT_EQ(event.beat, 0);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(valuesOf(event)[i], 0) << i;
  }
  EXPECT_EQ(lists.list.count, 0U);
  EXPECT_EQ(firstEvent(lists.list), kNoEvent);
}

TEST(EventList, KeepsTheOrderAndIsCircular) {
  Lists lists;
  std::vector<std::uint32_t> numbers;
  for (float start : {3.0F, 1.0F, 2.0F}) {
    numbers.push_back(addEvent(lists.list, {start, 1, {}}));
  }
  EXPECT_EQ(lists.list.count, 3U);
  EXPECT_EQ(lists.starts(), (Floats{3, 1, 2}));
  EXPECT_EQ(firstEvent(lists.list), numbers[0]);
  EXPECT_EQ(lists.list.last, numbers[2]);
  EXPECT_EQ(eventAt(lists.list, numbers[2]).next, numbers[0]);
}

TEST(EventList, ASingleEventFollowsItself) {
  Lists lists;
  std::uint32_t event = addEvent(lists.list, {1, 1, {}});
  EXPECT_EQ(eventAt(lists.list, event).next, event);
  EXPECT_EQ(firstEvent(lists.list), event);
}

TEST(EventList, EventsDoNotShareTheirValues) {
  constexpr int kParameters = 125;
  constexpr int kEvents = 40000;  // several chunks
  Lists lists(kParameters);
  for (int i = 0; i < kEvents; ++i) {
    std::uint32_t made = makeEvent(lists.list);
    ASSERT_NE(made, kNoEvent);
    EventRecord &event = eventAt(lists.list, made);
    event.start = static_cast<float>(i);
    event.duration = static_cast<float>(-i);
    for (int k = 0; k < kParameters; ++k) {
      valuesOf(event)[k] = static_cast<float>(i * 7 + k);
    }
    appendEvent(lists.list, made);
  }
  int i = 0;
  for (const EventRecord *event : eventsOf(lists.list)) {
    ASSERT_EQ(event->start, static_cast<float>(i));
    ASSERT_EQ(event->duration, static_cast<float>(-i));
    for (int k = 0; k < kParameters; ++k) {
      ASSERT_EQ(valuesOf(*event)[k], static_cast<float>(i * 7 + k));
    }
    ++i;
  }
  EXPECT_EQ(i, kEvents);
}

TEST(EventList, ACopyStandsRightBehindItsOriginal) {
  Lists lists(2);
  std::uint32_t a = addEvent(lists.list, {1, 4, {10, 11}});
  std::uint32_t b = addEvent(lists.list, {2, 5, {20, 21}});
  eventAt(lists.list, a).beat = 7;
  std::uint32_t copy = copyEventBehind(lists.list, a);
  ASSERT_NE(copy, kNoEvent);
  EXPECT_EQ(lists.list.count, 3U);
  EXPECT_EQ(lists.starts(), (Floats{1, 1, 2}));
  EXPECT_EQ(lists.list.last, b);
  const EventRecord &record = eventAt(lists.list, copy);
  EXPECT_EQ(record.duration, 4);
  EXPECT_EQ(record.beat, 7);
  EXPECT_EQ(valuesOf(record)[0], 10);
  EXPECT_EQ(valuesOf(record)[1], 11);
  valuesOf(eventAt(lists.list, copy))[0] = 99;
  EXPECT_EQ(valuesOf(eventAt(lists.list, a))[0], 10);
}

TEST(EventList, ACopyOfTheLastIsTheLast) {
  Lists lists;
  std::uint32_t a = addEvent(lists.list, {1, 1, {}});
  std::uint32_t copy = copyEventBehind(lists.list, a);
  EXPECT_EQ(lists.list.last, copy);
  EXPECT_EQ(firstEvent(lists.list), a);
  EXPECT_EQ(eventAt(lists.list, copy).next, a);
  addEvent(lists.list, {2, 1, {}});
  EXPECT_EQ(lists.starts(), (Floats{1, 1, 2}));
}

TEST(EventList, RestsAreUnlinked) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const float kNotANumber = std::numeric_limits<float>::quiet_NaN();
  struct {
    Floats durations;
    Floats left;  // the starts, which count up from 0
  } rows[] = {
      {{1, 1, 1}, {0, 1, 2}},
      {{0, 1, 1}, {1, 2}},
      {{1, 0, 1}, {0, 2}},
      {{1, 1, 0}, {0, 1}},
      {{0, 0, 1, 0, 1, 0, 0}, {2, 4}},
      {{0, 0, 0}, {}},
      {{0}, {}},
      {{1}, {0}},
      {{-1, 1, -0.5F}, {1}},
      {{-0.0F, 1}, {1}},
      {{1e-45F, -1e-45F}, {0}},
      {{kInfinity, -kInfinity}, {0}},
      {{kNotANumber, 0}, {0}},  // not-a-number is no rest
  };
  for (const auto &row : rows) {
    Lists lists;
    float start = 0;
    for (float duration : row.durations) {
      addEvent(lists.list, {start++, duration, {}});
    }
    EXPECT_EQ(removeRests(lists.list), row.durations.size() - row.left.size());
    EXPECT_EQ(lists.starts(), row.left);
    EXPECT_EQ(lists.list.count, row.left.size());
    EXPECT_EQ(lists.list.last == kNoEvent, row.left.empty());
    // The list is as good as any other.
    addEvent(lists.list, {77, 1, {}});
    EXPECT_EQ(lists.starts().back(), 77);
    EXPECT_EQ(lists.starts().size(), row.left.size() + 1);
  }
}

TEST(EventList, CanBeUsedAgainForOtherEvents) {
  Lists lists(3);
  for (int i = 0; i < 20000; ++i) {
    addEvent(lists.list, {1, 1, {5, 5, 5}});
  }
  releaseEvents(lists.list);
  EXPECT_EQ(lists.list.count, 0U);
  EXPECT_EQ(firstEvent(lists.list), kNoEvent);
  beginEvents(lists.list, 8);
  for (int i = 0; i < 20000; ++i) {
    std::uint32_t made = makeEvent(lists.list);
    ASSERT_EQ(valuesOf(eventAt(lists.list, made))[7], 0);
    appendEvent(lists.list, made);
  }
  EXPECT_EQ(lists.list.count, 20000U);
}

}  // namespace

}  // namespace korvo
