#include "reader/include_pass.h"

#include <gtest/gtest.h>

#include <string>

#include "support/folder.h"
#include "support/memory_file.h"
#include "support/piece.h"

namespace {

struct Spliced {
  int result;
  std::string copy;
  std::string messages;
  int counter;
};

Spliced splice(const std::string &text, int counter = 0) {
  Piece piece(text);
  MemoryFile copy;
  Spliced spliced{};
  spliced.result = include_pass(piece.run, piece.source.input, copy.file(), counter);
  spliced.copy = copy.text();
  spliced.messages = piece.messages();
  spliced.counter = counter;
  return spliced;
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
    EXPECT_EQ(spliced.counter, 1);
  }
}

TEST(IncludePass, PutsTheFileWhereTheDirectiveStood) {
  Folder folder;
  std::string name = folder.write("inner", "one\ntwo");
  Spliced spliced = splice("before\n" + directive(name) + " behind\nlast");
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "before\none\ntwo behind\nlast");
  EXPECT_EQ(spliced.messages, opening(name));
  EXPECT_EQ(spliced.counter, 2);
}

TEST(IncludePass, WorksInTheMiddleOfALine) {
  Folder folder;
  std::string name = folder.write("inner", "X");
  EXPECT_EQ(splice("a" + directive(name) + "b" + directive(name) + "c").copy, "aXbXc");
}

TEST(IncludePass, AnEmptyFileInsertsNothing) {
  Folder folder;
  std::string name = folder.write("inner", "");
  Spliced spliced = splice("a" + directive(name) + "b");
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "ab");
}

TEST(IncludePass, BlanksAndLineEndsMayStandBeforeTheBar) {
  Folder folder;
  std::string name = folder.write("inner", "X");
  EXPECT_EQ(splice("#include|" + name + "|y").copy, "Xy");
  EXPECT_EQ(splice("#include \t\v\f\r\n\n |" + name + "|y").copy, "Xy");
}

TEST(IncludePass, FilesIncludeFiles) {
  Folder folder;
  std::string c = folder.write("c", "C\n");
  std::string b = folder.write("b", "B1 " + directive(c) + "B2\n");
  std::string a = folder.write("a", directive(b) + "A\n");
  Spliced spliced = splice("0" + directive(a) + "1" + directive(c) + "2");
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "0B1 C\nB2\nA\n1C\n2");
  EXPECT_EQ(spliced.messages, opening(a) + opening(b) + opening(c) + opening(c));
  EXPECT_EQ(spliced.counter, 5);
}

TEST(IncludePass, CommentsAndLiteralLinesAreCopiedAsTheyAre) {
  Folder folder;
  std::string name = folder.write("inner", "X");
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
    Spliced spliced = splice(row.text);
    EXPECT_EQ(spliced.result, 0) << row.text;
    EXPECT_EQ(spliced.copy, row.copy) << row.text;
  }
}

TEST(IncludePass, CommentsOfAFileEndWithIt) {
  Folder folder;
  std::string x = folder.write("x", "X");
  std::string open = folder.write("open", "/* ; open");
  EXPECT_EQ(splice(directive(open) + directive(x)).copy, "/* ; openX");
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
    EXPECT_EQ(spliced.copy, "a") << text;
  }
}

TEST(IncludePass, AFileThatCannotBeOpened) {
  Folder folder;
  std::string missing = folder / "missing";
  Spliced spliced = splice("a" + directive(missing) + "b");
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nBad include file name: \"" + missing + "\"\n\n");
  EXPECT_EQ(spliced.copy, "a");
  spliced = splice("#include ||");
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nBad include file name: \"\"\n\n");
  std::string itself = folder / ".";  // a folder is no file
  spliced = splice(directive(itself));
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, "\nBad include file name: \"" + itself + "\"\n\n");
}

TEST(IncludePass, TheNameIsTakenAsWritten) {
  Folder folder;
  std::string name = folder.write(" a #b; > \"c\t", "X");
  Spliced spliced = splice(directive(name));
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "X");
  EXPECT_EQ(spliced.messages, opening(name));
}

TEST(IncludePass, LineFeedsInANameAreLeftOut) {
  Folder folder;
  std::string name = folder.write("inner", "X");
  std::string broken = name;
  broken.insert(broken.size() / 2, "\n\n");
  Spliced spliced = splice("#include |" + broken + "\n|y");
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "Xy");
  EXPECT_EQ(spliced.messages, opening(name));
}

TEST(IncludePass, TheEndOfTheFileMayEndTheName) {
  Folder folder;
  std::string name = folder.write("inner", "X");
  Spliced spliced = splice("a#include |" + name);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "aX");
}

TEST(IncludePass, NamesHave255CharactersAtMost) {
  Folder folder;
  std::string name = folder.write("f", "X");
  std::string file = "/f";
  std::string base = name.substr(0, name.size() - file.size());
  while (base.size() + file.size() < 254) {
    base += "/.";
  }
  base += base.size() + file.size() < 255 ? "/" : "";
  std::string longest = base + file;
  ASSERT_EQ(longest.size(), 255U);
  Spliced spliced = splice("a" + directive(longest) + "b");
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, "aXb");
  const char *tooLong =
      "\nERROR: Include filename has exceeded maximum\nlength of 255 characters.\n\n";
  spliced = splice("a" + directive("/" + longest) + "b");
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
  spliced = splice("a" + directive("\n" + longest) + "b");  // line feeds count
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
  spliced = splice("#include |" + std::string(100000, 'x'));
  EXPECT_EQ(spliced.result, 999);
  EXPECT_EQ(spliced.messages, tooLong);
}

constexpr const char *kTooMany = "\n\nToo many embedded include files! (Max = 12)\n";

TEST(IncludePass, TwelveFilesOneAfterTheOther) {
  Folder folder;
  std::string name = folder.write("inner", "X");
  std::string text;
  for (int i = 0; i < 11; ++i) {
    text += directive(name);
  }
  Spliced spliced = splice(text);
  EXPECT_EQ(spliced.result, 0);
  EXPECT_EQ(spliced.copy, std::string(11, 'X'));
  spliced = splice(text + directive(name));
  EXPECT_EQ(spliced.result, 1);
  EXPECT_EQ(spliced.copy, std::string(11, 'X'));
  std::string openings;
  for (int i = 0; i < 12; ++i) {
    openings += opening(name);
  }
  EXPECT_EQ(spliced.messages, openings + kTooMany);
}

TEST(IncludePass, AFileThatIncludesItselfEndsAtTheTwelfth) {
  Folder folder;
  std::string name = folder / "self";
  folder.write("self", "x" + directive(name) + "y");
  Spliced spliced = splice(directive(name));
  EXPECT_EQ(spliced.result, 1);
  EXPECT_EQ(spliced.copy, std::string(11, 'x'));
  EXPECT_NE(spliced.messages.find(kTooMany), std::string::npos);
}

TEST(IncludePass, AFailureInsideEndsThePass) {
  Folder folder;
  std::string inner = folder.write("inner", "i#include x");
  std::string outer = folder.write("outer", "o" + directive(inner) + "p");
  Spliced spliced = splice("a" + directive(outer) + "b");
  EXPECT_EQ(spliced.result, 1);
  EXPECT_EQ(spliced.copy, "aoi");
}

}  // namespace
