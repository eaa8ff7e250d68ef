// One table serves all calls of a run: a call empties it and leaves the memory to the next.
#include "ddf/segment_table.h"

#include <cstdlib>
#include <cstring>

#include "base/growing_array.h"

namespace korvo {

namespace {

constexpr std::uint32_t kMaxPoolItems = 1U << 30;

// Makes room for `more` items behind those in the pool.
template <typename Item>
bool reserve(Pool<Item> &pool, std::uint32_t more) {
  if (more > kMaxPoolItems - pool.count) {
    return false;
  }
  return makeRoom(pool.items, pool.capacity, pool.count + more);
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
