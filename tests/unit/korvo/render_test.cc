// The library's face as its users see it: a text goes in, everything comes out.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvo/korvo.h"

namespace {

using korvo::MessageData;
using korvo::PlaceData;
using korvo::RenderOptions;
using korvo::Result;
using korvo::Severity;

// Includes that are texts, by name.
auto from(const std::map<std::string, std::string> &texts) {
  return [texts](const std::string &name) {
    auto found = texts.find(name);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  };
}

std::vector<std::string> textsOf(const Result &result, Severity severity) {
  std::vector<std::string> texts;
  for (const MessageData &message : result.messages) {
    if (message.severity == severity) {
      texts.push_back(message.text);
    }
  }
  return texts;
}

using Texts = std::vector<std::string>;

// ---- What a piece becomes

TEST(Render, TheSmallestUse) {
  Result result = korvo::render("i1 = 3 0 -2 { p2 1 p3 1 }");
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.score, "\n;I-block #1 (i1):\ni1    0.000  1.000 \ni1    1.000  1.000 \n\ne\n");
  EXPECT_EQ(result.expanded, "");
  EXPECT_EQ(textsOf(result, Severity::kError), Texts());
}

TEST(Render, ATextWithoutABlockIsAScoreWithoutEvents) {
  Result result = korvo::render("");
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.score, "\ne\n");
  EXPECT_TRUE(result.blocks.empty());
}

TEST(Render, AnErrorEndsThePieceAndIsTheLastMessage) {
  Result result = korvo::render("i1 = 3 0 -1 { p2 1 p3 1 }\ni2 = 3 0 -1 { p4 1 }");
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.score, "\n;I-block #1 (i1):\ni1    0.000  1.000 \n");
  ASSERT_EQ(result.blocks.size(), 1U);
  const MessageData &last = result.messages.back();
  EXPECT_EQ(last.severity, Severity::kError);
  EXPECT_EQ(last.number, 44);
  EXPECT_EQ(last.text, "P-field out of bounds! (More than specified in i-header)");
  EXPECT_EQ(last.text, korvo::errorText(44));
}

// A note for the whole text before it is made, then one for each block, and the end.
TEST(Render, NotesAndWarningsComeInTheirOrder) {
  Result result = korvo::render("#define one #1#\ni1 = 3 0 -1 { p2 $one 2 p3 1 }");
  ASSERT_TRUE(result.ok);
  ASSERT_GE(result.messages.size(), 4U);
  EXPECT_EQ(result.messages[0].text, "Expanding macro \"one\" into line 2...");
  EXPECT_EQ(result.messages[0].severity, Severity::kNote);
  EXPECT_EQ(result.messages[1].severity, Severity::kWarning);
  EXPECT_EQ(result.messages[1].number, 10);
  EXPECT_EQ(result.messages[1].text, korvo::warningText(10));
  EXPECT_EQ(result.messages.back().text,
            "Global cumulative duration of all i-blocks =    1.00 (secs)");
}

TEST(Render, SilentKeepsWarningsAndNotesBack) {
  RenderOptions options;
  options.silent = true;
  Result result = korvo::render("#define one #1#\ni1 = 3 0 -1 { p2 $one 2 p3 1 }", options);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(textsOf(result, Severity::kWarning), Texts());
  for (const MessageData &message : result.messages) {
    EXPECT_EQ(message.text.find("Expanding"), std::string::npos);
  }
}

TEST(Render, TempoVerboseTellsMore) {
  constexpr const char *kPiece = "te(120)\ni1 = 3 0 -1 { p2 rh 4 p3 1 }";
  RenderOptions options;
  std::size_t usual = korvo::render(kPiece, options).messages.size();
  options.tempoVerbose = true;
  EXPECT_GT(korvo::render(kPiece, options).messages.size(), usual);
}

// Format 1, two tracks, 480 ticks; the second track: c4 is key 60, the velocity of 32767 is 127,
// note on at 0, note off after a second (960 ticks at the 120 beats a minute of MIDI files).
TEST(Render, MidiIsAFileOfBytes) {
  RenderOptions options;
  options.midi = true;
  Result result = korvo::render("i1 = 5 0 -1 { p2 1 p3 1 p4 32767 p5 no c4 }", options);
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(result.score.substr(0, 14), std::string("MThd\0\0\0\6\0\1\0\2\1\xe0", 14));
  EXPECT_EQ(result.score.substr(14, 4), "MTrk");
  EXPECT_NE(result.score.find("\x90\x3c\x7f"), std::string::npos);
  EXPECT_EQ(result.score.substr(result.score.size() - 3), std::string("\xff\x2f\0", 3));
  ASSERT_EQ(result.blocks.size(), 1U);
  EXPECT_EQ(result.blocks[0].events.size(), 1U);
}

// Every line of the text is there, with its line end as the blank that it has become.
TEST(Render, ExpandedTextOnlyWhenItIsWanted) {
  constexpr const char *kPiece =
      "#define two #2#\n#const half .5\ni1 = 3 0 -1 { p2 $two p3 ~half }";
  RenderOptions options;
  EXPECT_EQ(korvo::render(kPiece, options).expanded, "");
  options.expanded = true;
  EXPECT_EQ(korvo::render(kPiece, options).expanded,
            "#define two #2# \n#const half .5 \ni1 = 3 0 -1 { p2 2 p3 0.500 }\n");
}

TEST(Render, TwoRunsOfATextAreTheSameRun) {
  constexpr const char *kPiece = "rs(3) i1 = 4 0 -9 { p2 1 p3 1 p4 RA(T 1 [0 1]) }";
  EXPECT_EQ(korvo::render(kPiece).score, korvo::render(kPiece).score);
}

// ---- Includes

TEST(RenderIncludes, AreAskedForByTheirNameExactlyAsItIsWritten) {
  Texts asked;
  RenderOptions options;
  options.include = [&](const std::string &name) {
    asked.push_back(name);
    return std::optional<std::string>("p2 1 ");
  };
  EXPECT_TRUE(korvo::render("i1 = 3 0 -1 { #include |../a b.txt| p3 1 }", options).ok);
  EXPECT_EQ(asked, Texts({"../a b.txt"}));
}

TEST(RenderIncludes, MayIncludeOthers) {
  RenderOptions options;
  options.include = from({{"a", "p2 1 #include |b|"}, {"b", "p3 .5 "}});
  Result result = korvo::render("i1 = 3 0 -1 { #include |a| }", options);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.score, "\n;I-block #1 (i1):\ni1    0.000  0.500 \n\ne\n");
}

TEST(RenderIncludes, AreMissingWhenThereIsNoneAndWhenNobodyGivesThem) {
  RenderOptions options;
  for (bool given : {true, false}) {
    options.include = given ? from({{"other", ""}}) : decltype(options.include)();
    Result result = korvo::render("\n #include |part|\n", options);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.score, "");
    EXPECT_EQ(textsOf(result, Severity::kError), Texts({"Bad include file name: \"part\""}));
    // Told when the closing bar has been read.
    const PlaceData &place = result.messages.back().place;
    EXPECT_EQ(place.file, "piece");
    EXPECT_EQ(place.line, 2);
    EXPECT_EQ(place.column, 16);
    EXPECT_EQ(place.endColumn, 17);
  }
}

// A body whose text does not stand in one piece in a file has a call, but no place of its own.
TEST(RenderPlaces, BodiesThatAreNotOneRunOfLinesHaveNoPlace) {
  RenderOptions options;
  options.include = from({{"a", "1\n2\n3\nq\n"}});
  const std::string block = "i1 = 4 0 -9 { p2 1 p3 1 p4 $m }\n";
  const std::string blanks(4050, ' ');  // a line may have 4,095 characters
  for (const std::string &text : {"#define m #\n#include |a|\n#\n" + block,
                                  blanks + "#define m #" + std::string(100, ' ') + "\nq#\n" + block,
                                  "#define m #1\n#if(0)\n2\n#endif\nq#\n" + block}) {
    Result result = korvo::render(text, options);
    ASSERT_FALSE(result.ok) << text;
    EXPECT_GT(result.messages.back().place.line, 1) << text;
    EXPECT_EQ(result.messages.back().body.line, 0) << text;
  }
  Result plain = korvo::render("#define m #1\n2\n q#\n" + block, options);
  EXPECT_EQ(plain.messages.back().body.line, 3);
  EXPECT_EQ(plain.messages.back().body.column, 2);
}

TEST(RenderIncludes, ThatIncludeThemselvesEndTheRun) {
  RenderOptions options;
  options.include = from({{"a", "#include |a|"}});
  Result result = korvo::render("#include |a|", options);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(textsOf(result, Severity::kError),
            Texts({"Too many embedded include files! (Max = 12)"}));
}

// What a function of the caller's throws must not go through the run.
TEST(RenderIncludes, MayFailToBeMade) {
  RenderOptions options;
  options.include = [](const std::string &) -> std::optional<std::string> {
    throw std::runtime_error("no");
  };
  Result result = korvo::render("#include |a|", options);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.messages.back().number, 32);
}

// ---- Blocks and their events

struct Field {
  int number;
  std::string kind;
  int decimals;
  friend bool operator==(const Field &, const Field &) = default;
  friend std::ostream &operator<<(std::ostream &out, const Field &field) {
    return out << "p" << field.number << " " << field.kind << field.decimals;
  }
};

std::vector<Field> fieldsOf(const korvo::BlockData &block) {
  std::vector<Field> fields;
  for (const korvo::Pfield &field : block.pfields) {
    bool hasDecimals = field.number <= 3 || std::string_view(field.kind) == "re";
    fields.push_back({field.number, field.kind, hasDecimals ? field.decimals : 0});
  }
  return fields;
}

// Starts every quarter of a second from .5 on; durations are twice that. Semitones, decibels and
// the like are values before they become what their column shows.
TEST(RenderBlocks, EventsHaveTheValuesThatWereWritten) {
  Result result = korvo::render(
      "i3 = 8 .5 -3 { p2 .25 p3 2 p4(in) 1.5 2 3 p5(op) no c4 d e p6(re5) 7 p7(hz) no a4 p8(xx) 1 "
      "}");
  ASSERT_TRUE(result.ok);
  ASSERT_EQ(result.blocks.size(), 1U);
  const korvo::BlockData &block = result.blocks[0];
  EXPECT_EQ(block.number, 1);
  EXPECT_EQ(block.instrument, 3);
  EXPECT_EQ(fieldsOf(block), (std::vector<Field>{{2, "re", 3},
                                                 {3, "re", 3},
                                                 {4, "in", 0},
                                                 {5, "op", 0},
                                                 {6, "re", 5},
                                                 {7, "hz", 0},
                                                 {8, "xx", 0}}));
  ASSERT_EQ(block.events.size(), 3U);
  constexpr float kFirst[] = {1.5F, 2.0F, 3.0F};
  constexpr float kNotes[] = {48.0F, 50.0F, 52.0F};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(block.events[i].start, 0.5F + 0.25F * static_cast<float>(i));
    EXPECT_EQ(block.events[i].duration, 0.5F);
    EXPECT_EQ(block.events[i].values,
              (std::vector<float>{kFirst[i], kNotes[i], 7.0F, 57.0F, 1.0F}));
  }
}

TEST(RenderBlocks, DecimalsOfP2AndP3AreTheirs) {
  Result result = korvo::render("i1 = 3 0 -1 { p2(re1) 1 p3(re6) 1 }");
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(result.score, "\n;I-block #1 (i1):\ni1    0.0  1.000000 \n\ne\n");
  EXPECT_EQ(fieldsOf(result.blocks.at(0)), (std::vector<Field>{{2, "re", 1}, {3, "re", 6}}));
}

TEST(RenderBlocks, EachBlockIsThereWithItsNumber) {
  Result result = korvo::render(
      "i7 = 3 0 -1 { p2 1 p3 1 }\ni-2 = 3 0 -1 { p2 1 p3 1 }\ni9 = 3 4 -2 { p2 1 p3 1 }");
  ASSERT_TRUE(result.ok);
  ASSERT_EQ(result.blocks.size(), 2U);  // that of a negative instrument is skipped
  EXPECT_EQ(result.blocks[0].number, 1);
  EXPECT_EQ(result.blocks[0].instrument, 7);
  EXPECT_EQ(result.blocks[1].instrument, 9);
  EXPECT_EQ(result.blocks[1].events.size(), 2U);
  EXPECT_EQ(result.blocks[1].events.at(0).start, 4.0F);
}

std::vector<float> startsOf(const Result &result) {
  std::vector<float> starts;
  for (const korvo::EventData &event : result.blocks.at(0).events) {
    starts.push_back(event.start);
  }
  return starts;
}

// A rest of a second behind the first event; an event that lasts no time is a rest, too.
TEST(RenderBlocks, RestsAreNoEvents) {
  Result result = korvo::render("i1 = 3 0 -4 { p2 1 -1 0 1 p3 1 }");
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(startsOf(result), (std::vector<float>{0.0F, 2.0F}));
}

TEST(RenderBlocks, AnInsertedEventStartsWithTheOneBeforeIt) {
  Result result = korvo::render("i1 = 4 0 -2 { p2 1 p3 1 p4 1 2 : 3 }");
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(startsOf(result), (std::vector<float>{0.0F, 1.0F, 1.0F}));
  EXPECT_EQ(result.blocks[0].events.at(1).values, std::vector<float>{2.0F});
  EXPECT_EQ(result.blocks[0].events.at(2).values, std::vector<float>{3.0F});
}

TEST(RenderBlocks, AreNotGatheredWhenTheyAreNotWanted) {
  RenderOptions options;
  options.events = false;
  Result result = korvo::render("i1 = 3 0 -1 { p2 1 p3 1 }", options);
  EXPECT_TRUE(result.ok);
  EXPECT_TRUE(result.blocks.empty());
}

// ---- Places

// A piece in which the place of a message stands between « and », and the place in the definition
// between ‹ and ›. Lines and columns are counted here, from the marks.
struct Marked {
  const char *description;
  std::string text;
  int number;  // of the error or the warning
  std::map<std::string, std::string> includes = {};
  Severity severity = Severity::kError;
};

void PrintTo(const Marked &marked, std::ostream *out) { *out << marked.description; }

struct Marks {
  PlaceData place;
  PlaceData body;
};

// Takes one pair of marks out of the text. The ranges that are marked lie in one line.
void takeMarks(const std::string &file, std::string &text, std::string_view opening,
               std::string_view closing, PlaceData &place) {
  std::size_t begin = text.find(opening);
  if (begin == std::string::npos) {
    return;
  }
  text.erase(begin, opening.size());
  std::size_t end = text.find(closing);
  text.erase(end, closing.size());
  std::size_t line = 1;
  std::size_t lineBegin = 0;
  for (std::size_t at = text.find('\n'); at < begin; at = text.find('\n', at + 1)) {
    ++line;
    lineBegin = at + 1;
  }
  place = {file, static_cast<std::int64_t>(line), static_cast<std::int32_t>(begin - lineBegin + 1),
           static_cast<std::int32_t>(end - lineBegin + 1)};
}

// A definition and its call stand in different lines, so that no mark moves another.
std::string unmarked(const std::string &file, std::string text, Marks &marks) {
  takeMarks(file, text, "‹", "›", marks.body);
  takeMarks(file, text, "«", "»", marks.place);
  return text;
}

std::string shown(const PlaceData &place) {
  return place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + "-" +
         std::to_string(place.endColumn);
}

std::vector<Marked> allMarked() {
  const std::string kBlock = "i1 = 3 0 -1 { ";
  return {
      // The word that ends at the caret, which stands behind it.
      {"in the first line", kBlock + "«p9» 1 }", 44},
      {"in a later line, behind a tab", "\n; words\n" + kBlock + "\n\t«p9» 1\n}\n", 44},
      {"lines that end with CR LF", kBlock + "\r\np2 1\r\n\t«p9» 1\r\n}\r\n", 44},
      {"a name with its sign", kBlock + "p2 1 p3 «$nope» }", 0},
      {"a constant with its sign", kBlock + "p2 1 p3 «~nope» }", 0},
      // The character at the caret, where no word ends.
      {"at the caret", kBlock + "p2 «)» p3 1 }", 27},
      // The one before a caret at the line's end.
      {"at the end of the text", kBlock + "p2 1 p3 «1»", 5},
      {"behind the last line", kBlock + "p2 1 p3 1«\n»", 5},
      {"a warning", "i1 = 4 0 -1 { p2 1 p3 1 p4 2 «3» }", 10, {}, Severity::kWarning},

      // Lines too long for one go.
      {"far behind in a long line", kBlock + std::string(4100, ' ') + "«p9» 1 }", 44},
      {"very far behind", kBlock + std::string(9000, ' ') + "«p9» 1 }", 44},
      {"in the line after a long one", kBlock + std::string(4100, ' ') + "\n«p9» 1 }", 44},
      {"behind a line of just the length", kBlock + std::string(4080, ' ') + "\n«p9» 1 }", 44},
      {"behind a line of one more", kBlock + std::string(4081, ' ') + "\n«p9» 1 }", 44},
      {"behind a line of one more again", kBlock + std::string(4082, ' ') + "\n«p9» 1 }", 44},

      // Includes.
      {"in an include", kBlock + "\n#include |a|\n}\n", 44, {{"a", "p2 1\n «p9» 1\n"}}},
      {"behind an include", kBlock + "\n#include |a|\n«p9» 1 }\n", 44, {{"a", "p2 1\n\n\np3 1\n"}}},
      {"behind an include in its line", kBlock + "#include |a| «p9» 1 }", 44, {{"a", "p2 1 "}}},
      {"behind an include of many lines in its line",
       kBlock + "#include |a| «p9» 1 }",
       44,
       {{"a", "p2 1\n\np3 1\n"}}},
      {"in an include in mid-line", kBlock + "#include |a| }", 44, {{"a", "p2 1 «p9» 1"}}},
      {"in the second line of an include in mid-line",
       kBlock + "#include |a| }",
       44,
       {{"a", "p2 1\n«p9» 1"}}},
      {"behind two includes in a line",
       kBlock + "#include |a| #include |b| «p9» 1 }",
       44,
       {{"a", "p2 1"}, {"b", "\np3 1"}}},
      {"behind an empty include", kBlock + "#include |a| «p9» 1 }", 44, {{"a", ""}}},
      {"in an include of an include",
       kBlock + "\n#include |a|\n}",
       44,
       {{"a", "p2 1\n#include |folder/b|\np3 1\n"}, {"folder/b", "\n\n  «p9» 1"}}},
      {"behind the include of an include",
       kBlock + "\n#include |a|\n}",
       44,
       {{"a", "p2 1\n#include |b| «p9»\np3 1\n"}, {"b", "\n\n  p3 1"}}},
      {"a word that two texts share is placed where it begins",
       kBlock + "«p»#include |a|",
       44,
       {{"a", "9 1 }"}}},
      {"a text that is included twice",
       "#include |a|\n#include |a|\n",
       100,
       {{"a", "; words\n#const c «2»\n"}}},
      {"an include whose name has a line feed",
       kBlock + "#include |a\nb| «p9» 1 }",
       44,
       {{"ab", "p2 1"}}},

      // Text that is lost.
      {"behind what only begins like an include", kBlock + "#incx «p9» 1 }", 44},
      {"in the line after it", kBlock + "#inc\n«p9» 1 }", 44},
      {"behind two of them", kBlock + "#inx p2 1 #inclx «p9» 1 }", 44},
      {"in a conditional section", "#if(1)\n" + kBlock + "\n#if(0)\np9\n#endif\n «p9» 1 }", 44},

      // Macros without arguments: the call, and the word in the definition.
      {"all of a body", "#define bad #‹p9›#\n" + kBlock + "«$bad» 1 }", 44},
      {"in a body", "#define bad #p2 1 ‹p9› 1#\n" + kBlock + "«$bad» p3 1 }", 44},
      {"in a body of many lines", "#define bad #p2 1\n\n  ‹p9› 1#\n" + kBlock + "\n «$bad» }", 44},
      {"in a body of many lines that end with CR LF",
       "#define bad #p2 1\r\n\r\n  ‹p9› 1#\r\n" + kBlock + "\r\n «$bad» }", 44},
      {"in the first of many lines", "#define bad #p2 1 ‹p9›\n1#\n" + kBlock + "«$bad» }", 44},
      {"in a definition that an include brought",
       "#include |a|\n" + kBlock + "«$bad» }",
       44,
       {{"a", "\n  #define bad #p2 1 ‹p9› 1#\n"}}},
      {"a call in an include",
       "#define bad #p2 1 ‹p9› 1#\n#include |a|\n",
       44,
       {{"a", "\n" + kBlock + "«$bad» }"}}},
      {"behind calls in the line",
       "#define two #p2 1 1#\n#const c 1.5\n" + kBlock + "$two p3 ~c «p9» 1 }", 44},
      {"before a call in the line", "#define two #2 2 2 2#\n" + kBlock + "«p9» $two }", 44},
      {"between calls in the line",
       "#define a #p2 1#\n#define b ##\n" + kBlock + "$a $b «p9» $a $b }", 44},
      {"behind a call with an empty body", "#define a ##\n" + kBlock + "$a $a$a «p9» 1 }", 44},
      {"a word that a call begins", "#define a #‹p›#\n" + kBlock + "«$a()9» 1 }", 44},
      {"a call of a call", "#define a #‹p9› 1#\n#define b #p2 1 $a#\n" + kBlock + "«$b» }", 44},
      {"behind the call in a call",
       "#define a #2 2#\n#define b #p2 $a ‹p9› 1#\n" + kBlock + "«$b» }", 44},
      {"three calls deep",
       "#define a #‹p9›#\n#define b # $a 1#\n#define c #p2 1 $b#\n" + kBlock + "«$c» }", 44},
      {"a warning in a body",
       "#define two #2 ‹3›#\ni1 = 4 0 -1 { p2 1 p3 1 p4 «$two» }",
       10,
       {},
       Severity::kWarning},

      // Macros with arguments.
      {"a body beside its argument", "#define f(a) #p2 $a ‹p9› 1#\n" + kBlock + "«$f(1 1 1)» }",
       44},
      {"an argument", "#define f(a) #p2 1 ‹$a› 1#\n" + kBlock + "«$f(p9)» }", 44},
      {"the second argument", "#define f(a, b) #p2 $a ‹$b› 1#\n" + kBlock + "«$f(1'p9)» }", 44},
      {"a body beside two arguments",
       "#define f(a, b) #p2 $a p3 $b ‹p9› 1#\n" + kBlock + "«$f(1 2 3'4)» }", 44},
      {"a body before its argument", "#define f(a) #p2 1 ‹p9› $a#\n" + kBlock + "«$f(1 1 1)» }",
       44},
      {"a call with arguments in a body with arguments",
       "#define f(x) #‹p9› $x#\n#define g(y) #p2 $y $f($y)#\n" + kBlock + "«$g(1)» }", 44},
      {"behind a call with arguments in a body with arguments",
       "#define f(x) #1 $x $x#\n#define g(y) #p2 $f($y) ‹p9› 1#\n" + kBlock + "«$g(1)» }", 44},
      {"behind a call with arguments", "#define f(x) #$x $x $x#\n" + kBlock + "p2 $f(1) «p9» }",
       44},
      {"a call without parameters that swallows parentheses",
       "#define f #‹p9›#\n" + kBlock + "«$f(1 2 3)» 1 }", 44},
      {"a body of many lines with arguments",
       "#define f(a) #p2 $a\n  p3 $a ‹p9› 1#\n" + kBlock + "«$f(1)» }", 44},

      // Constants, whose definition is its name, and equations, which have none.
      {"a constant", "#const ‹c› 1\ni1 = «~c» 0 -1 { p2 1 }", 0},
      {"a constant before another", "#const a 1\n#const ‹c› 1\ni1 = «~c» ~a -1 { p2 1 }", 0},
      {"a constant of an include",
       "#include |a|\ni1 = «~c» 0 -1 { p2 1 }",
       0,
       {{"a", "\n\n #const  ‹c› 1\n"}}},
      {"an equation", "#const c 1\ni1 = «~[c * 1]» 0 -1 { p2 1 }", 0},
      {"a constant that a macro brought", "#const ‹c› 1\n#define m #~c#\ni1 = «$m» 0 -1 { p2 1 }",
       0},
      {"a word that ends in a constant", "#const c 9\n" + kBlock + "«p~c» 1 }", 44},
  };
}

class Places : public testing::TestWithParam<Marked> {};

TEST_P(Places, LeadToTheComposersText) {
  const Marked &marked = GetParam();
  Marks marks;
  RenderOptions options;
  options.name = "main.txt";
  std::string text = unmarked("main.txt", marked.text, marks);
  std::map<std::string, std::string> includes;
  for (const auto &[name, included] : marked.includes) {
    includes[name] = unmarked(name, included, marks);
  }
  ASSERT_GT(marks.place.line, 0);
  options.include = from(includes);
  Result result = korvo::render(text, options);
  const MessageData *told = nullptr;
  for (const MessageData &message : result.messages) {
    told = message.severity == marked.severity ? &message : told;
  }
  ASSERT_NE(told, nullptr);
  EXPECT_EQ(told->number, marked.number) << told->text;
  EXPECT_EQ(shown(told->place), shown(marks.place)) << told->text;
  EXPECT_EQ(shown(told->body), shown(marks.body)) << told->text;
}

INSTANTIATE_TEST_SUITE_P(Table, Places, testing::ValuesIn(allMarked()));

// A dropped section that is left open ends the run behind the line; what is told is its last word.
TEST(PlacesAtTheEnd, OfASectionLeftOpen) {
  Result result = korvo::render("#if(0)\n#");
  ASSERT_FALSE(result.ok);
  EXPECT_EQ(shown(result.messages.back().place), "piece:2:1-2");
}

// What a run says of itself belongs to no place in a text.
TEST(PlacesOfSummaries, AreNone) {
  Result result = korvo::render("i1 = 3 0 -1 { p2 1 p3 1 }");
  for (const MessageData &message : result.messages) {
    EXPECT_EQ(shown(message.place), ":0:0-0");
    EXPECT_EQ(shown(message.body), ":0:0-0");
  }
}

}  // namespace
