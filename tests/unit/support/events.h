// Event lists made by hand, for tests.
#pragma once

#include <initializer_list>
#include <vector>

#include "ddf/event_list.h"

namespace korvo {

struct MadeEvent {
  float start = 0.0F;
  float duration = 1.0F;
  std::vector<float> values;
};

// Appends one event; `list` has been begun.
inline std::uint32_t addEvent(EventList &list, const MadeEvent &event) {
  std::uint32_t made = makeEvent(list);
  EventRecord &record = eventAt(list, made);
  record.start = event.start;
  record.duration = event.duration;
  for (std::size_t i = 0; i < event.values.size(); ++i) {
    valuesOf(record)[i] = event.values[i];
  }
  appendEvent(list, made);
  return made;
}

// The events in their order.
inline std::vector<EventRecord *> eventsOf(const EventList &list) {
  std::vector<EventRecord *> events;
  forEachEvent(list, [&events](EventRecord &event) { events.push_back(&event); });
  return events;
}

}  // namespace korvo
