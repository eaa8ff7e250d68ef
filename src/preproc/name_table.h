// A set of named records, found by exact name: what macros and constants are kept in. The table
// links records that their owners allocate and free.
#pragma once

#include <cstdint>
#include <string_view>

namespace korvo {

struct NamedRecord {
  NamedRecord *next = nullptr;
  std::string_view name;
  std::uint64_t hash = 0;
};

struct NameTable {
  std::uint64_t key = 0;  // of the hash; drawn for the first name
  NamedRecord **buckets = nullptr;
  std::uint32_t bucketCount = 0;
  std::uint32_t count = 0;
};

// The record called `name`, or null.
NamedRecord *findName(const NameTable &table, std::string_view name);

// Adds a record whose name is not in the table yet. False when memory is refused; the table is then
// unchanged.
bool addName(NameTable &table, NamedRecord *record);

// Takes a record out that is in the table.
void removeName(NameTable &table, const NamedRecord *record);

// Hands every record to `release`, which frees it, and frees the table's own memory.
void freeNames(NameTable &table, void (*release)(NamedRecord *));

}  // namespace korvo
