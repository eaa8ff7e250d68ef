// A hash table with chains, doubled when there are as many names as buckets, so that ten thousand
// macros cost a piece no more for each call than ten.
#include "preproc/name_table.h"

#include <cstdlib>

namespace {

std::uint32_t hashOf(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (char c : name) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  }
  return hash;
}

NamedRecord **bucketOf(const NameTable &table, std::uint32_t hash) {
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
  larger.count = table.count;
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
  table = larger;
  return true;
}

}  // namespace

NamedRecord *findName(const NameTable &table, std::string_view name) {
  if (table.count == 0) {
    return nullptr;
  }
  std::uint32_t hash = hashOf(name);
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
  record->hash = hashOf(record->name);
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
