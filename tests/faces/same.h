// Whether two runs have given the same, for tests.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "korvo/korvo.h"

inline bool same(const korvo::PlaceData &a, const korvo::PlaceData &b) {
  return a.file == b.file && a.line == b.line && a.column == b.column && a.endColumn == b.endColumn;
}

inline bool same(const korvo::MessageData &a, const korvo::MessageData &b) {
  return a.severity == b.severity && a.number == b.number && a.text == b.text &&
         same(a.place, b.place) && same(a.body, b.body);
}

inline bool same(const korvo::Pfield &a, const korvo::Pfield &b) {
  return a.number == b.number && std::strcmp(a.kind, b.kind) == 0 && a.decimals == b.decimals;
}

// Values are compared as bits: a piece can make one that is no number.
inline bool same(const korvo::EventData &a, const korvo::EventData &b) {
  return std::memcmp(&a.start, &b.start, sizeof a.start) == 0 &&
         std::memcmp(&a.duration, &b.duration, sizeof a.duration) == 0 &&
         a.values.size() == b.values.size() &&
         (a.values.empty() ||
          std::memcmp(a.values.data(), b.values.data(), a.values.size() * sizeof(float)) == 0);
}

inline bool same(const korvo::BlockData &a, const korvo::BlockData &b);

template <typename Item>
bool same(const std::vector<Item> &a, const std::vector<Item> &b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Item &x, const Item &y) { return same(x, y); });
}

inline bool same(const korvo::BlockData &a, const korvo::BlockData &b) {
  return a.number == b.number && a.instrument == b.instrument && same(a.pfields, b.pfields) &&
         same(a.events, b.events);
}

inline bool same(const korvo::Result &a, const korvo::Result &b) {
  return a.ok == b.ok && a.score == b.score && a.expanded == b.expanded &&
         same(a.messages, b.messages) && same(a.blocks, b.blocks);
}
