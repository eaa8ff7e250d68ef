#include "preproc/names.h"

#include <gtest/gtest.h>

#include <string>

#include "support/piece.h"

namespace korvo {

namespace {

TEST(PreprocNames, ANameIsALetterAndWhatMayFollow) {
  struct {
    const char *text;
    const char *name;
  } rows[] = {
      {"a", "a"},      {"abc def", "abc"}, {"a_1B2 ", "a_1B2"}, {"A(", "A"}, {"a-b", "a"},
      {"a.b", "a"},    {"", ""},           {"1a", ""},          {"_a", ""},  {" a", ""},
      {"a\xe4x", "a"}, {"Z9", "Z9"},       {"$a", ""},
  };
  for (const auto &row : rows) {
    std::string text = std::string("..") + row.text;
    std::int32_t position = 2;
    EXPECT_EQ(takeName(text.c_str(), position), row.name) << row.text;
    EXPECT_EQ(position, 2 + static_cast<int>(std::string(row.name).size())) << row.text;
  }
}

TEST(PreprocNames, KeywordsMatchWhenOneCharacterDoes) {
  struct {
    const char *text;
    bool matches;
  } rows[] = {
      {"undef x", true}, {"unzzz", true},  {"uxxxx", true},  {"xnxxx", true},
      {"xxdxx", true},   {"xxxex", true},  {"xxxxf", true},  {"xxxxx", false},
      {"nuxfe", false},  {"fexun", false}, {"", false},      {"x", false},
      {"u", true},       {"xn", true},     {"UNDEF", false}, {"xxxxxundef", false},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(matchesLoosely(row.text, "undef"), row.matches) << row.text;
  }
}

TEST(PreprocNames, AnUnknownNameIsToldWithItsLine) {
  Piece piece("a\nb\n");
  piece.read(2);
  EXPECT_EQ(unknownName(piece.source, "macro", "it"), kContextOnly);
  EXPECT_EQ(piece.messages(), "\n\nERROR: Line 2: There is no macro \"it\" in your input file!\n");
  EXPECT_EQ(unknownName(piece.source, "constant", ""), kContextOnly);
  EXPECT_EQ(piece.messages(), "\n\nERROR: Line 2: There is no constant \"\" in your input file!\n");
  piece.source.messages->silent = true;
  std::string longest(4095, 'n');
  EXPECT_EQ(unknownName(piece.source, "macro", longest), kContextOnly);
  EXPECT_EQ(piece.messages(),
            "\n\nERROR: Line 2: There is no macro \"" + longest + "\" in your input file!\n");
}

}  // namespace

}  // namespace korvo
