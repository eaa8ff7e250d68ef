// The events of one i-block: made by P2, filled by the other p-fields, written out, and released
// all at once.
//
// Events live in an arena of large chunks, each event 20 bytes and 4 for every p-field from P4 up,
// and are linked in the order of the score by their numbers. The list is circular and held by its
// last event, so both ends are at hand.
#pragma once

#include <cstdint>

namespace korvo {

inline constexpr std::uint32_t kNoEvent = 0xFFFFFFFFU;
inline constexpr std::uint32_t kMaxEvents = 67108864;  // in one i-block

struct EventRecord {
  // 1: inserted to start together with the event before it.
  std::int32_t flag;
  float start;     // seconds
  float duration;  // seconds; P2 leaves the rhythm here until P3 replaces it; 0 or less is a rest
  float beat;      // the beat clock when the event was made
  std::uint32_t next;  // the event behind it; of the last event, the first
};

struct EventList {
  static constexpr std::uint32_t kChunkEvents = 1U << 14;
  static constexpr std::uint32_t kChunkCount = kMaxEvents / kChunkEvents;
  static constexpr std::uint32_t kReadyEvents = 1U << 6;  // cleared at a time

  char *chunks[kChunkCount] = {};
  std::uint32_t stride = 0;      // bytes of one event
  std::uint32_t parameters = 0;  // p-fields from P4 up
  std::uint32_t made = 0;        // events in the arena, unlinked ones included
  std::uint32_t count = 0;       // events in the list
  std::uint32_t last = kNoEvent;
};

// Makes the list ready for events of `parameters` values each; it must be empty.
void beginEvents(EventList &list, int parameters);

// Releases all events.
void releaseEvents(EventList &list);

// The event with this number, and its values from P4 up.
inline EventRecord &eventAt(const EventList &list, std::uint32_t event) {
  char *chunk = list.chunks[event / EventList::kChunkEvents];
  return *reinterpret_cast<EventRecord *>(chunk + (event % EventList::kChunkEvents) * list.stride);
}
inline float *valuesOf(EventRecord &event) { return reinterpret_cast<float *>(&event + 1); }
inline const float *valuesOf(const EventRecord &event) {
  return reinterpret_cast<const float *>(&event + 1);
}

inline std::uint32_t firstEvent(const EventList &list) {
  return list.last == kNoEvent ? kNoEvent : eventAt(list, list.last).next;
}

// Hands every event to `visit`, in the order of the score.
template <typename Visit>
void forEachEvent(const EventList &list, Visit visit) {
  std::uint32_t event = firstEvent(list);
  for (std::uint32_t left = list.count; left > 0; --left) {
    EventRecord &record = eventAt(list, event);
    event = record.next;
    visit(record);
  }
}

// Makes the next EventList::kReadyEvents events ready, everything in them 0. False when memory is
// refused or the arena is full.
bool readyEvents(EventList &list);

// Makes an event that is in no list yet, everything in it 0. kNoEvent when memory is refused or the
// arena is full.
inline std::uint32_t makeEvent(EventList &list) {
  if (list.made % EventList::kReadyEvents == 0 && !readyEvents(list)) {
    return kNoEvent;
  }
  return list.made++;
}

// Links `event` behind the last one.
inline void appendEvent(EventList &list, std::uint32_t event) {
  EventRecord &record = eventAt(list, event);
  if (list.last == kNoEvent) {
    record.next = event;
  } else {
    EventRecord &last = eventAt(list, list.last);
    record.next = last.next;
    last.next = event;
  }
  list.last = event;
  ++list.count;
}

// Makes a copy of `event` and links it right behind it. kNoEvent when there is no room for it, or
// when the block would have more than kMaxEvents.
std::uint32_t copyEventBehind(EventList &list, std::uint32_t event);

// Unlinks all rests (a duration of 0 or less; not-a-number is none) and returns how many there
// were.
std::uint32_t removeRests(EventList &list);

}  // namespace korvo
