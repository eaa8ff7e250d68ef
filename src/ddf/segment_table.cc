// One table serves all calls of a run: a call empties it and leaves the memory to the next.
#include "ddf/segment_table.h"

#include <cstdlib>
#include <cstring>

namespace korvo {

namespace {

constexpr std::uint32_t kMaxPoolItems = 1U << 30;

// Makes room for `more` items behind those in the pool.
template <typename Item>
bool reserve(Pool<Item> &pool, std::uint32_t more) {
  if (more > kMaxPoolItems - pool.count) {
    return false;
  }
  std::uint32_t needed = pool.count + more;
  if (needed <= pool.capacity) {
    return true;
  }
  std::uint32_t capacity = pool.capacity < 64 ? 64 : pool.capacity * 2;
  capacity = capacity < needed ? needed : capacity;
  void *items = std::realloc(pool.items, sizeof(Item) * static_cast<std::size_t>(capacity));
  if (items == nullptr) {
    return false;
  }
  pool.items = static_cast<Item *>(items);
  pool.capacity = capacity;
  return true;
}

template <typename Item>
bool add(Pool<Item> &pool, const Item &item) {
  if (!reserve(pool, 1)) {
    return false;
  }
  pool.items[pool.count++] = item;
  return true;
}

template <typename Item>
void release(Pool<Item> &pool) {
  std::free(pool.items);
  pool = Pool<Item>{};
}

}  // namespace

bool addValue(Pool<float> &pool, float value) { return add(pool, value); }

bool addGroup(Pool<Group> &pool, const Group &group) { return add(pool, group); }

bool addTerm(Pool<Term> &pool, const Term &term) { return add(pool, term); }

bool addFlags(Pool<unsigned char> &pool, std::uint32_t count) {
  if (!reserve(pool, count)) {
    return false;
  }
  std::memset(pool.items + pool.count, 0, count);
  pool.count += count;
  return true;
}

void clearSegments(SegmentTable &table) {
  table.count = 0;
  table.referenceSeen = false;
  table.values.count = 0;
  table.groups.count = 0;
  table.terms.count = 0;
  table.usedFlags.count = 0;
}

void freeSegments(SegmentTable &table) {
  release(table.values);
  release(table.groups);
  release(table.terms);
  release(table.usedFlags);
}

}  // namespace korvo
