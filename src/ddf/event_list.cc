// Events are numbered as they are made and never move; the list is in their links. So a copy behind
// an event costs the same in a block of ten and in one of ten million.
#include "ddf/event_list.h"

#include <cstdlib>
#include <cstring>

namespace korvo {

namespace {

bool isRest(const EventRecord &event) { return event.duration <= 0.0F; }

void unlinkRests(EventList &list) {
  std::uint32_t walked = list.count;
  std::uint32_t event = firstEvent(list);
  list.last = kNoEvent;
  list.count = 0;
  while (walked-- > 0) {
    std::uint32_t next = eventAt(list, event).next;
    if (!isRest(eventAt(list, event))) {
      appendEvent(list, event);
    }
    event = next;
  }
}

}  // namespace

void beginEvents(EventList &list, int parameters) {
  list.parameters = static_cast<std::uint32_t>(parameters);
  list.stride = static_cast<std::uint32_t>(sizeof(EventRecord) + sizeof(float) * list.parameters);
}

void releaseEvents(EventList &list) {
  for (std::uint32_t i = 0; i < EventList::kChunkCount && list.chunks[i] != nullptr; ++i) {
    std::free(list.chunks[i]);
    list.chunks[i] = nullptr;
  }
  list.made = 0;
  list.count = 0;
  list.last = kNoEvent;
}

bool readyEvents(EventList &list) {
  if (list.made == kMaxEvents) {
    return false;
  }
  char *&chunk = list.chunks[list.made / EventList::kChunkEvents];
  if (chunk == nullptr) {
    chunk = static_cast<char *>(
        std::malloc(static_cast<std::size_t>(EventList::kChunkEvents) * list.stride));
    if (chunk == nullptr) {
      return false;
    }
  }
  std::memset(&eventAt(list, list.made), 0,
              static_cast<std::size_t>(EventList::kReadyEvents) * list.stride);
  return true;
}

std::uint32_t copyEventBehind(EventList &list, std::uint32_t event) {
  std::uint32_t copy = list.count < kMaxEvents ? makeEvent(list) : kNoEvent;
  if (copy == kNoEvent) {
    return kNoEvent;
  }
  EventRecord &original = eventAt(list, event);
  std::memcpy(&eventAt(list, copy), &original, list.stride);
  original.next = copy;
  if (list.last == event) {
    list.last = copy;
  }
  ++list.count;
  return copy;
}

std::uint32_t removeRests(EventList &list) {
  std::uint32_t rests = 0;
  forEachEvent(list, [&rests](const EventRecord &event) { rests += isRest(event) ? 1 : 0; });
  if (rests > 0) {
    unlinkRests(list);
  }
  return rests;
}

}  // namespace korvo
