#include "reader/include_pass.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "support/piece.h"
#include "support/string_input.h"

namespace korvo {

namespace {

// The texts that can be included, by their names.
class Texts {
  std::map<std::string, std::string> texts;

 public:
  std::string write(const std::string &name, const std::string &text) {
    texts[name] = text;
    return name;
  }
  const std::string *find(const std::string &name) const {
    auto found = texts.find(name);
    return found == texts.end() ? nullptr : &found->second;
  }
};

struct Spliced {
  int result = 0;
  std::string copy;
  std::string messages;
  int opened = 0;
  int closed = 0;
};

// A host that keeps everything in memory.
struct MemoryHost {
  const Texts &texts;
  Spliced &spliced;
  std::size_t part;

  static bool openInclude(void *context, const char *name, TextInput &input) {
    auto &self = *static_cast<MemoryHost *>(context);
    const std::string *text = self.texts.find(name);
    if (text == nullptr) {
      return false;
    }
    ++self.spliced.opened;
    input = {new StringInput{*text, self.part}, StringInput::read};
    return true;
  }
  static void closeInclude(void *context, TextInput &input) {
    ++static_cast<MemoryHost *>(context)->spliced.closed;
    delete static_cast<StringInput *>(input.context);
  }
  static bool writeText(void *context, const char *bytes, std::size_t size) {
    static_cast<MemoryHost *>(context)->spliced.copy.append(bytes, size);
    return true;
  }
};

// What becomes of a text whose host hands it over, and its includes, in parts of so many bytes.
Spliced spliceParts(StringInput text, const Texts &texts) {
  Piece piece("");
  Spliced spliced;
  MemoryHost memory{texts, spliced, text.part};
  Host host{
      &memory, MemoryHost::openInclude, MemoryHost::closeInclude, MemoryHost::writeText, nullptr,
      nullptr};
  spliced.result =
      include_pass(*piece.source.messages, host, "piece", text.input(), piece.source.map, true);
  spliced.messages = piece.messages();
  EXPECT_EQ(spliced.opened, spliced.closed);
  return spliced;
}

Spliced splice(const std::string &text, const Texts &texts = {}) {
  return spliceParts({text}, texts);
}

std::string opening(const std::string &name) {
  return "\n\tOpening include file \"" + name + "\"...";
}

std::string directive(const std::string &name) { return "#include |" + name + "|"; }

TEST(IncludePass, CopiesAnyTextThroughUnchanged) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    if (c != '#') {
      bytes += static_cast<char>(c);
    }
  }
  for (const std::string &text :
       {std::string(), std::string("a\nb"), std::string("\r\n\n"), bytes}) {
    Spliced spliced = splice(text);
    EXPECT_EQ(spliced.result, 0);
    EXPECT_EQ(spliced.copy, text);
    EXPECT_EQ(spliced.messages, "");
    EXPECT_EQ(spliced.opened, 0);
  }
}

// What is copied as a piece is longer than what is read at once, and than what is written at once.
TEST(IncludePass, CopiesLongTextsBetweenMarksUnchanged) {
  std::string text;
  for (int length : {1, 4095, 4096, 4097, 16383, 16384, 16385, 40000}) {
    for (int i = 0; i < length; ++i) {
      text += static_cast<char>('a' + i % 23);
    }
    text += "\n/* ; */";
  }
  EXPECT_EQ(splice(text).copy, text);
}

TEST(IncludePass, PutsTheFileWhereTheDirectiveStood) {
  Texts texts;
  std::string name = texts.write("inner", "one\ntwo");
  Spliced spliced = splice("before\n" + directive(name) + " behind\nlast", texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "before\none\ntwo behind\nlast");
  EXPECT_EQ(spliced.messages, opening(name));
  EXPECT_EQ(spliced.opened, 1);
}

TEST(IncludePass, WorksInTheMiddleOfALine) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  EXPECT_EQ(splice("a" + directive(name) + "b" + directive(name) + "c", texts).copy, "aXbXc");
}

TEST(IncludePass, AnEmptyFileInsertsNothing) {
  Texts texts;
  std::string name = texts.write("inner", "");
  Spliced spliced = splice("a" + directive(name) + "b", texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "ab");
}

TEST(IncludePass, BlanksAndLineEndsMayStandBeforeTheBar) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  EXPECT_EQ(splice("#include|" + name + "|y", texts).copy, "Xy");
  EXPECT_EQ(splice("#include \t\v\f\r\n\n |" + name + "|y", texts).copy, "Xy");
}

TEST(IncludePass, FilesIncludeFiles) {
  Texts texts;
  std::string c = texts.write("c", "C\n");
  std::string b = texts.write("b", "B1 " + directive(c) + "B2\n");
  std::string a = texts.write("a", directive(b) + "A\n");
  Spliced spliced = splice("0" + directive(a) + "1" + directive(c) + "2", texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "0B1 C\nB2\nA\n1C\n2");
  EXPECT_EQ(spliced.messages, opening(a) + opening(b) + opening(c) + opening(c));
  EXPECT_EQ(spliced.opened, 4);
}

TEST(IncludePass, CommentsAndLiteralLinesAreCopiedAsTheyAre) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  std::string d = directive(name);
  struct {
    std::string text;
    std::string copy;
  } rows[] = {
      {"; " + d, "; " + d},
      {"> " + d, "> " + d},
      {"a > b " + d, "a > b " + d},
      {"; " + d + "\n" + d, "; " + d + "\nX"},  // the line end ends it
      {"> a\n" + d, "> a\nX"},
      {"/* " + d + " */ " + d, "/* " + d + " */ X"},
      {"/* /* " + d + " */ " + d + " */ " + d, "/* /* " + d + " */ " + d + " */ X"},
      {"/*\n" + d + "\n*/" + d, "/*\n" + d + "\n*/X"},
      {"*/ " + d, "*/ X"},  // a stray end mark is nothing
      {"/; " + d, "/; X"},  // "/" takes the meaning from ";" and ">"
      {"/> " + d, "/> X"},
      {"; a /; " + d, "; a /; X"},
      {"/ ; " + d, "/ ; " + d},
      {"/ * " + d, "/ * X"},
      {"/*/ " + d + " */" + d, "/*/ X */X"},  // "/*/" closes itself here
  };
  for (const auto &row : rows) {
    Spliced spliced = splice(row.text, texts);
    EXPECT_EQ(spliced.result, 0) << row.text;
    EXPECT_EQ(spliced.copy, row.copy) << row.text;
  }
}

TEST(IncludePass, CommentsOfAFileEndWithIt) {
  Texts texts;
  std::string x = texts.write("x", "X");
  std::string open = texts.write("open", "/* ; open");
  EXPECT_EQ(splice(directive(open) + directive(x), texts).copy, "/* ; openX");
}

TEST(IncludePass, OtherWordsBehindAMark) {
  struct {
    const char *text;
    const char *copy;
  } rows[] = {
      {"#define a #b#", "#define a #b#"},
      {"#if(1)", "#if(1)"},
      {"#i", "#i"},
      {"#", "#"},
      {"# include", "# include"},
      {"#Include |x|", "#Include |x|"},
      {"#iNclude |x|", "#iNclude |x|"},
      {"##include |x|", "##include |x|"},  // the second mark is only the character behind the first
      {"#i#include |x|", "#i#include |x|"},
      {"a#\nb", "a#\nb"},
      // What only begins like the word is lost up to the first character that differs.
      {"a #inx b", "a  b"},
      {"a #in b", "a b"},
      {"a #inclxyz", "a yz"},
      {"a #includ |x|", "a |x|"},
      {"a #in\nb", "a b"},
      {"a #in#include", "a include"},
      {"a #in", "a "},
      {"a #inclu", "a "},
      {"a #intro\n#undef x\n", "a ro\n#undef x\n"},
  };
  for (const auto &row : rows) {
    Spliced spliced = splice(row.text);
    EXPECT_EQ(spliced.result, 0) << row.text;
    EXPECT_EQ(spliced.copy, row.copy) << row.text;
    EXPECT_EQ(spliced.messages, "") << row.text;
  }
}

TEST(IncludePass, ABarIsWanted) {
  for (const char *text : {"a#include x|", "a#include", "a#include \n", "a#includes |x|",
                           "a#include \"x\"", "a#include<x>"}) {
    Spliced spliced = splice(text);
    EXPECT_EQ(spliced.result, 1) << text;
    EXPECT_EQ(spliced.messages, "\n\nInclude filename must be preceeded by a |.\n") << text;
  }
}

TEST(IncludePass, AFileThatCannotBeOpened) {
  Texts texts;
  std::string missing = "missing";
  Spliced spliced = splice("a" + directive(missing) + "b", texts);
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nBad include file name: \"" + missing + "\"\n\n");
  spliced = splice("#include ||", texts);
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nBad include file name: \"\"\n\n");
}

TEST(IncludePass, WhereTheHostsPartsEndMakesNoDifference) {
  Texts texts;
  texts.write("b", "/* #include |x| */ B\n#in #endif\n");
  texts.write("a", "; x\n#include |b|A\n");
  std::string text =
      "0 #include |a|1 /* # */\n> #include |b|\n#inclx #define m #2#\n#include\n |b|";
  std::string expected =
      "0 ; x\n/* #include |x| */ B\n#endif\nA\n1 /* # */\n> #include |b|\n #define m #2#\n"
      "/* #include |x| */ B\n#endif\n";
  for (std::size_t part = 1; part < text.size() + 2; ++part) {
    EXPECT_EQ(spliceParts({text, part}, texts).copy, expected) << part;
  }
}

TEST(IncludePass, ATextThatCannotBeRead) {
  StringInput text{"a\nb"};
  text.fails = true;
  Spliced spliced = spliceParts(text, {});
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nERROR: Can't read an input file.\n\n");
}

TEST(IncludePass, WithoutAnOpenerNothingCanBeIncluded) {
  Piece piece("");
  StringInput text{"a#include |b|"};
  Host host;
  host.writeText = [](void *, const char *, std::size_t) { return true; };
  EXPECT_EQ(
      include_pass(*piece.source.messages, host, "piece", text.input(), piece.source.map, true),
      999);
  EXPECT_EQ(piece.messages(), "\nBad include file name: \"b\"\n\n");
}

TEST(IncludePass, TheNameIsTakenAsWritten) {
  Texts texts;
  std::string name = texts.write(" a #b; > \"c\t", "X");
  Spliced spliced = splice(directive(name), texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "X");
  EXPECT_EQ(spliced.messages, opening(name));
}

TEST(IncludePass, LineFeedsInANameAreLeftOut) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  std::string broken = name;
  broken.insert(broken.size() / 2, "\n\n");
  Spliced spliced = splice("#include |" + broken + "\n|y", texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "Xy");
  EXPECT_EQ(spliced.messages, opening(name));
}

TEST(IncludePass, TheEndOfTheFileMayEndTheName) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  Spliced spliced = splice("a#include |" + name, texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "aX");
}

TEST(IncludePass, NamesHave255CharactersAtMost) {
  Texts texts;
  std::string longest = texts.write(std::string(255, 'n'), "X");
  Spliced spliced = splice("a" + directive(longest) + "b", texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "aXb");
  const char *tooLong =
      "\nERROR: Include filename has exceeded maximum\nlength of 255 characters.\n\n";
  spliced = splice("a" + directive("/" + longest) + "b", texts);
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
  spliced = splice("a" + directive("\n" + longest) + "b", texts);  // line feeds count
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
  spliced = splice("#include |" + std::string(100000, 'x'), texts);
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
}

constexpr const char *kTooMany = "\n\nToo many embedded include files! (Max = 12)\n";

TEST(IncludePass, TwelveFilesOneAfterTheOther) {
  Texts texts;
  std::string name = texts.write("inner", "X");
  std::string text;
  for (int i = 0; i < 11; ++i) {
    text += directive(name);
  }
  Spliced spliced = splice(text, texts);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, std::string(11, 'X'));
  spliced = splice(text + directive(name), texts);
  EXPECT_EQ(spliced.result, 1);
  std::string openings;
  for (int i = 0; i < 12; ++i) {
    openings += opening(name);
  }
  EXPECT_EQ(spliced.messages, openings + kTooMany);
}

TEST(IncludePass, AFileThatIncludesItselfEndsAtTheTwelfth) {
  Texts texts;
  std::string name = "self";
  texts.write("self", "x" + directive(name) + "y");
  Spliced spliced = splice(directive(name), texts);
  EXPECT_EQ(spliced.result, 1);
  std::string openings;
  for (int i = 0; i < 12; ++i) {
    openings += opening(name);
  }
  EXPECT_EQ(spliced.messages, openings + kTooMany);
}

TEST(IncludePass, AFailureInsideEndsThePass) {
  Texts texts;
  std::string inner = texts.write("inner", "i#include x");
  std::string outer = texts.write("outer", "o" + directive(inner) + "p");
  Spliced spliced = splice("a" + directive(outer) + "b", texts);
  EXPECT_EQ(spliced.result, 1);
  EXPECT_EQ(spliced.messages,
            opening(outer) + opening(inner) + "\n\nInclude filename must be preceeded by a |.\n");
}

}  // namespace

}  // namespace korvo
