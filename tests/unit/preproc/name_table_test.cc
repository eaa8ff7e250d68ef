#include "preproc/name_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <vector>

namespace korvo {

namespace {

// Records whose names live as long as they do; a deque does not move them.
struct Records {
  std::deque<std::string> names;
  std::deque<NamedRecord> records;

  NamedRecord *make(const std::string &name) {
    names.push_back(name);
    records.emplace_back();
    records.back().name = names.back();
    return &records.back();
  }
};

std::set<NamedRecord *> released;
void release(NamedRecord *record) {
  EXPECT_TRUE(released.insert(record).second) << "released twice: " << record->name;
}

TEST(NameTable, AnEmptyOneFindsNothing) {
  NameTable table;
  EXPECT_EQ(findName(table, ""), nullptr);
  EXPECT_EQ(findName(table, "a"), nullptr);
  released.clear();
  freeNames(table, release);
  EXPECT_TRUE(released.empty());
}

TEST(NameTable, NamesAreComparedExactly) {
  NameTable table;
  Records records;
  for (const char *name : {"a", "A", "ab", "aB", "", "a_1"}) {
    NamedRecord *record = records.make(name);
    EXPECT_EQ(findName(table, name), nullptr) << name;
    ASSERT_TRUE(addName(table, record));
    EXPECT_EQ(findName(table, name), record) << name;
  }
  EXPECT_EQ(table.count, 6U);
  for (const char *name : {"b", "AB", "Ab", "abc", "a_", "a_12", " a"}) {
    EXPECT_EQ(findName(table, name), nullptr) << name;
  }
  EXPECT_EQ(findName(table, std::string_view("abc", 2)), findName(table, "ab"));
  EXPECT_EQ(findName(table, std::string_view("a\0", 2)), nullptr);
  released.clear();
  freeNames(table, release);
  EXPECT_EQ(released.size(), 6U);
}

TEST(NameTable, NamesMayDifferInAnyCharacter) {
  NameTable table;
  Records records;
  std::vector<std::string> names;
  for (std::size_t length = 1; length < 24; ++length) {
    names.emplace_back(length, 'a');
    for (std::size_t i = 0; i < length; ++i) {
      names.push_back(names.back());
      names.back()[i] = static_cast<char>('b' + i);
    }
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  std::set<std::uint64_t> hashes;
  for (const std::string &name : names) {
    ASSERT_EQ(findName(table, name), nullptr) << name;
    ASSERT_TRUE(addName(table, records.make(name)));
    hashes.insert(findName(table, name)->hash);
  }
  EXPECT_EQ(hashes.size(), names.size());
  released.clear();
  freeNames(table, release);
}

TEST(NameTable, KeepsThousandsOfNames) {
  constexpr int kNames = 20000;
  NameTable table;
  Records records;
  for (int i = 0; i < kNames; ++i) {
    ASSERT_TRUE(addName(table, records.make("name_" + std::to_string(i))));
  }
  EXPECT_EQ(table.count, static_cast<unsigned>(kNames));
  for (int i = 0; i < kNames; ++i) {
    ASSERT_EQ(findName(table, "name_" + std::to_string(i)), &records.records[i]);
  }
  EXPECT_EQ(findName(table, "name_20000"), nullptr);
  released.clear();
  freeNames(table, release);
  EXPECT_EQ(released.size(), static_cast<std::size_t>(kNames));
  EXPECT_EQ(table.count, 0U);
  EXPECT_EQ(findName(table, "name_1"), nullptr);
}

TEST(NameTable, EveryTableHashesInItsOwnWay) {
  NameTable one;
  NameTable other;
  Records records;
  ASSERT_TRUE(addName(one, records.make("name")));
  ASSERT_TRUE(addName(other, records.make("name")));
  released.clear();
  EXPECT_NE(findName(one, "name")->hash, findName(other, "name")->hash);
  freeNames(one, release);
  freeNames(other, release);
}

TEST(NameTable, RemovedNamesAreGoneAndOthersStay) {
  constexpr int kNames = 5000;
  NameTable table;
  Records records;
  for (int i = 0; i < kNames; ++i) {
    ASSERT_TRUE(addName(table, records.make(std::to_string(i))));
  }
  for (int i = 0; i < kNames; i += 3) {
    removeName(table, &records.records[i]);
  }
  for (int i = 0; i < kNames; ++i) {
    ASSERT_EQ(findName(table, std::to_string(i)), i % 3 == 0 ? nullptr : &records.records[i]) << i;
  }
  // A name that has gone may come back.
  for (int i = 0; i < kNames; i += 3) {
    ASSERT_TRUE(addName(table, &records.records[i]));
    ASSERT_EQ(findName(table, std::to_string(i)), &records.records[i]);
  }
  EXPECT_EQ(table.count, static_cast<unsigned>(kNames));
  for (int i = 0; i < kNames; ++i) {
    removeName(table, &records.records[i]);
  }
  EXPECT_EQ(table.count, 0U);
  EXPECT_EQ(findName(table, "1"), nullptr);
  released.clear();
  freeNames(table, release);
  EXPECT_TRUE(released.empty());  // what has been removed is not the table's any more
}

TEST(NameTable, CanBeUsedAgainAfterFreeing) {
  NameTable table;
  Records records;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 200; ++i) {
      ASSERT_TRUE(addName(table, records.make(std::to_string(i))));
    }
    released.clear();
    freeNames(table, release);
    EXPECT_EQ(released.size(), 200U);
  }
}

}  // namespace

}  // namespace korvo
