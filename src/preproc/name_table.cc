// A hash table with chains, doubled when there are as many names as buckets, so that ten thousand
// macros cost a piece no more for each call than ten. The hash has a key that nobody knows
// beforehand: no text can be made whose names all end in one chain.
#include "preproc/name_table.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace korvo {

namespace {

constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61) - 1;

// a times b modulo the prime; both are below it.
std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
  unsigned __int128 product = static_cast<unsigned __int128>(a) * b;
  std::uint64_t sum =
      static_cast<std::uint64_t>(product >> 61) + (static_cast<std::uint64_t>(product) & kPrime);
  return sum >= kPrime ? sum - kPrime : sum;
}

// The characters, seven at a time, are the coefficients of a polynomial, and the hash is its value
// at the key: two names agree at no more keys than they have such pieces.
std::uint64_t hashOf(const NameTable &table, std::string_view name) {
  constexpr std::size_t kPieceLength = 7;
  std::uint64_t hash = 1;
  while (!name.empty()) {
    std::uint64_t piece = 0;
    std::size_t length = std::min(kPieceLength, name.size());
    for (std::size_t i = 0; i < length; ++i) {
      piece = piece << 8 | static_cast<unsigned char>(name[i]);
    }
    hash = multiply(hash, table.key) + piece;
    hash = hash >= kPrime ? hash - kPrime : hash;
    name.remove_prefix(length);
  }
  return hash;
}

// Without the system's randomness the names are found all the same.
std::uint64_t drawKey() {
  std::uint64_t key = 0;
  if (getentropy(&key, sizeof key) != 0) {
    key = static_cast<std::uint64_t>(std::time(nullptr));
  }
  return 1 + key % (kPrime - 1);
}

NamedRecord **bucketOf(const NameTable &table, std::uint64_t hash) {
  return table.buckets + (hash & (table.bucketCount - 1));
}

void link(NameTable &table, NamedRecord *record) {
  NamedRecord **bucket = bucketOf(table, record->hash);
  record->next = *bucket;
  *bucket = record;
}

bool grow(NameTable &table) {
  NameTable larger;
  larger.bucketCount = table.bucketCount == 0 ? 64 : table.bucketCount * 2;
  larger.buckets =
      static_cast<NamedRecord **>(std::calloc(larger.bucketCount, sizeof(NamedRecord *)));
  if (larger.buckets == nullptr) {
    return false;
  }
  for (std::uint32_t i = 0; i < table.bucketCount; ++i) {
    for (NamedRecord *record = table.buckets[i]; record != nullptr;) {
      NamedRecord *next = record->next;
      link(larger, record);
      record = next;
    }
  }
  std::free(table.buckets);
  table.buckets = larger.buckets;
  table.bucketCount = larger.bucketCount;
  return true;
}

}  // namespace

NamedRecord *findName(const NameTable &table, std::string_view name) {
  if (table.count == 0) {
    return nullptr;
  }
  std::uint64_t hash = hashOf(table, name);
  NamedRecord *record = *bucketOf(table, hash);
  while (record != nullptr && !(record->hash == hash && record->name == name)) {
    record = record->next;
  }
  return record;
}

bool addName(NameTable &table, NamedRecord *record) {
  if (table.count == table.bucketCount && !grow(table)) {
    return false;
  }
  if (table.key == 0) {
    table.key = drawKey();
  }
  record->hash = hashOf(table, record->name);
  link(table, record);
  ++table.count;
  return true;
}

void removeName(NameTable &table, const NamedRecord *record) {
  NamedRecord **place = bucketOf(table, record->hash);
  while (*place != record) {
    place = &(*place)->next;
  }
  *place = record->next;
  --table.count;
}

void freeNames(NameTable &table, void (*release)(NamedRecord *)) {
  for (std::uint32_t i = 0; i < table.bucketCount; ++i) {
    for (NamedRecord *record = table.buckets[i]; record != nullptr;) {
      NamedRecord *next = record->next;
      release(record);
      record = next;
    }
  }
  std::free(table.buckets);
  table = NameTable{};
}

}  // namespace korvo
