#include "reader/names.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace korvo {

namespace {

// The groups of the cascade in their order, and the code of every name.
struct LetterGroup {
  char first;
  const char *seconds;
};
constexpr LetterGroup kGroups[] = {
    {'d', "vb"}, {'e', "x"},   {'h', "oz"},     {'i', "n"},  {'m', "so"}, {'n', "o"}, {'o', "pd"},
    {'p', "f"},  {'s', "2re"}, {'r', "adehsw"}, {'t', "re"}, {'x', "x"},  {'b', "n"},
};
const std::map<std::string, int> kCodes = {
    {"ex", 0},  {"te", 1},  {"db", 2},  {"dv", 3},  {"hz", 4},  {"ho", 5},  {"in", 6},
    {"mo", 7},  {"se", 9},  {"no", 10}, {"op", 11}, {"pf", 12}, {"od", 13}, {"re", 14},
    {"rh", 15}, {"ra", 16}, {"rd", 17}, {"rs", 18}, {"rw", 19}, {"ms", 22}, {"xx", 23},
    {"s2", 24}, {"tr", 26}, {"bn", 27}, {"sr", 28},
};

constexpr int kNotFound = -1;
constexpr int kUnchanged = -2;

// The code of a pair of characters, worked out from the rule: the first letter chooses where the
// groups are entered, the second is looked for from there on.
int expectedCode(char first, char second) {
  bool entered = false;
  for (const LetterGroup &group : kGroups) {
    entered = entered || group.first == first;
    if (entered && second != '\0' && std::strchr(group.seconds, second) != nullptr) {
      return kCodes.at({group.first, second});
    }
  }
  return entered ? kUnchanged : kNotFound;
}

char lower(int c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : static_cast<char>(c);
}

struct Found {
  bool found;
  std::int32_t position;
  NameLookup name;
};

Found lookUp(const std::string &text, std::int32_t position = 0, NameLookup name = {}) {
  Found result{false, position, name};
  result.found = lookupDdfName(text.c_str(), result.position, result.name);
  return result;
}

TEST(NameLookup, EveryPairOfCharactersGoesThroughTheCascade) {
  for (int first = 1; first < 256; ++first) {
    if (std::strchr(">#$", first) != nullptr) {
      continue;
    }
    for (int second = 1; second < 256; ++second) {
      std::string text = {static_cast<char>(first), static_cast<char>(second), ' '};
      int expected = expectedCode(lower(first), lower(second));
      // With two codes before it, so that "unchanged" shows.
      for (CommandCode before : {kTR, kPF}) {
        Found result = lookUp(text, 0, {before, 3, 4, false});
        ASSERT_EQ(result.found, expected != kNotFound) << text;
        ASSERT_EQ(result.position, expected == kNotFound ? 0 : 2) << text;
        ASSERT_EQ(result.name.code, expected < 0 ? before : expected) << text;
      }
    }
  }
}

TEST(NameLookup, FallsThroughToLaterGroups) {
  struct {
    const char *text;
    CommandCode code;
  } rows[] = {
      {"dx(", kEX}, {"sa ", kRA}, {"de ", kSE}, {"dn ", kIN}, {"d2 ", kS2}, {"io ", kMO},
      {"is ", kMS}, {"hd ", kOD}, {"tn ", kBN}, {"xn ", kBN}, {"rx ", kXX}, {"px ", kXX},
      {"sd ", kRD}, {"sw ", kRW}, {"oe ", kSE}, {"rr ", kTR}, {"db ", kDB}, {"nf ", kPF},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(lookUp(row.text).name.code, row.code) << row.text;
  }
}

TEST(NameLookup, EitherCaseIsTheSame) {
  for (const auto &entry : kCodes) {
    char a = entry.first[0];
    char b = entry.first[1];
    char bigA = static_cast<char>(std::toupper(a));
    char bigB = static_cast<char>(std::toupper(b));
    for (const std::string &text :
         {std::string{a, b}, std::string{a, bigB}, std::string{bigA, b}, std::string{bigA, bigB}}) {
      Found result = lookUp(text);
      EXPECT_TRUE(result.found) << text;
      EXPECT_EQ(result.name.code, entry.second) << text;
      EXPECT_EQ(result.position, 2) << text;
    }
  }
}

TEST(NameLookup, SingleCharacters) {
  struct {
    const char *text;
    int code;
  } rows[] = {
      {">", 20},      {"> f1", 20},     {">>", 20}, {"#", 21},  {"#d", 21},
      {"# c", 21},    {"$", 21},        {"$m", 21}, {"#c", 25}, {"#C", 25},
      {"#const", 25}, {"#Const x", 25}, {"$c", 25},
  };
  for (const auto &row : rows) {
    Found result = lookUp(row.text);
    EXPECT_TRUE(result.found) << row.text;
    EXPECT_EQ(result.name.code, row.code) << row.text;
    EXPECT_EQ(result.position, 1) << row.text;
  }
}

TEST(NameLookup, WorksAnywhereInALineAndSkipsNoBlanks) {
  Found result = lookUp("p4 ra(1)", 3);
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.name.code, kRA);
  EXPECT_EQ(result.position, 5);
  EXPECT_FALSE(lookUp(" ra").found);
}

TEST(NameLookup, TheEndOfALineIsNeverPassed) {
  EXPECT_FALSE(lookUp("").found);
  for (const char *text : {"d", "e", "r", "s", "t", "b", "x"}) {
    Found result = lookUp(text, 0, {kTR, 3, 4, false});
    EXPECT_TRUE(result.found) << text;
    EXPECT_EQ(result.name.code, kTR) << text;
    EXPECT_EQ(result.position, 1) << text;
  }
}

TEST(NameLookup, NumbersOfREAndBN) {
  struct {
    const char *text;
    bool found;
    int number;
    int position;
  } rows[] = {
      {"", true, -1, 2},      {" 5", true, -1, 2},
      {")", true, -1, 2},     {"+5", true, -1, 2},
      {"-1", true, -1, 2},    {"0", true, 0, 3},
      {"1", true, 1, 3},      {"2", true, 2, 3},
      {"3", true, 3, 3},      {"4", true, 4, 3},
      {"5", true, 5, 3},      {"6", true, 6, 3},
      {"7", true, 7, 3},      {"7.5", true, 7, 3},
      {"007 ", true, 7, 5},   {"8", false, 0, 3},
      {"9)", false, 0, 3},    {"10", false, 0, 4},
      {"70", false, 0, 4},    {"65535", false, 0, 7},
      {"65536", false, 0, 7}, {"99999999999999999999999 x", false, 0, 25},
  };
  for (const auto &row : rows) {
    for (const char *name : {"re", "RE", "Re"}) {
      Found result = lookUp(name + std::string(row.text), 0, {kTR, 6, 6, false});
      SCOPED_TRACE(name + std::string(row.text));
      EXPECT_EQ(result.found, row.found);
      EXPECT_EQ(result.position, row.position);
      if (row.found) {
        EXPECT_EQ(result.name.code, kRE);
        EXPECT_EQ(result.name.precision, row.number < 0 ? 3 : row.number);
        EXPECT_EQ(result.name.fftIndex, 6);
      }
    }
    for (const char *name : {"bn", "BN", "tn", "xn"}) {
      Found result = lookUp(name + std::string(row.text), 0, {kTR, 6, 6, false});
      SCOPED_TRACE(name + std::string(row.text));
      EXPECT_EQ(result.found, row.found);
      EXPECT_EQ(result.position, row.position);
      if (row.found) {
        EXPECT_EQ(result.name.code, kBN);
        EXPECT_EQ(result.name.fftIndex, row.number < 0 ? 4 : row.number);
        EXPECT_EQ(result.name.precision, 6);
      }
    }
  }
}

TEST(NameLookup, OtherNamesLeaveDigitsAlone) {
  for (const char *text : {"ra5", "rh4", "te6", "in3", "s22"}) {
    Found result = lookUp(text, 0, {kTR, 6, 6, true});
    EXPECT_EQ(result.position, 2) << text;
    EXPECT_EQ(result.name.precision, 6) << text;
    EXPECT_EQ(result.name.fftIndex, 6) << text;
    EXPECT_TRUE(result.name.quarterTones) << text;
  }
}

// For every pair of letters: an "x" behind it belongs to NO and OP, however they were reached.
TEST(NameLookup, QuarterToneMark) {
  for (char first = 'a'; first <= 'z'; ++first) {
    for (char second = 'a'; second <= 'z'; ++second) {
      int code = expectedCode(first, second);
      if (code < 0) {
        continue;
      }
      bool pitch = code == kNO || code == kOP;
      for (char third : {'x', 'X', ' ', 'c', '\0'}) {
        for (bool before : {false, true}) {
          std::string text = {first, second};
          if (third != '\0') {
            text += third;
          }
          Found result = lookUp(text, 0, {kTR, 3, 4, before});
          bool marked = pitch && (third == 'x' || third == 'X');
          EXPECT_EQ(result.position, marked ? 3 : 2) << text;
          EXPECT_EQ(result.name.quarterTones, pitch ? marked : before) << text;
        }
      }
    }
  }
}

TEST(BlockNames, EveryPairOfCharacters) {
  const std::map<char, std::string> kSeconds = {
      {'d', "bv"}, {'e', "x"}, {'h', "o"}, {'n', "o"},      {'i', "n"},
      {'m', "os"}, {'o', "p"}, {'p', "f"}, {'r', "adehsw"}, {'s', "e2"},
  };
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second) {
      std::string text = {'.', static_cast<char>(first), static_cast<char>(second), ' ', '1'};
      auto entry = kSeconds.find(lower(first));
      bool expected = first == '#' || (entry != kSeconds.end() &&
                                       entry->second.find(lower(second)) != std::string::npos);
      ASSERT_EQ(isBlockName(text.c_str(), 1), expected) << text;
      ASSERT_EQ(isPfieldName(text.c_str(), 1), expected) << text;
    }
  }
}

TEST(BlockNames, DxNeedsItsParenthesis) {
  struct {
    const char *text;
    bool name;
  } rows[] = {
      {"dx(", true},  {"dx (", true},   {"DX(", true},   {"dX \t (", true},
      {"dx", false},  {"dx ", false},   {"dx3", false},  {"dx 3", false},
      {"dx[", false}, {"dx 3(", false}, {"d x(", false},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(isPfieldName(row.text, 0), row.name) << row.text;
    EXPECT_FALSE(isBlockName(row.text, 0)) << row.text;  // no name outside a p-field
  }
}

TEST(BlockNames, AtTheEndOfALine) {
  for (const char *text : {"", "d", "e", "r", "s", "p", "$", ">"}) {
    EXPECT_FALSE(isPfieldName(text, 0)) << text;
  }
  EXPECT_TRUE(isPfieldName("#", 0));
}

}  // namespace

}  // namespace korvo
