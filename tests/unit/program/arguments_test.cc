#include "program/arguments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "program/version.h"
#include "support/capture.h"

namespace {

struct Parsed {
  bool ok;
  Arguments taken;
  std::string output;
  std::string error;
};

Parsed parse(std::vector<const char *> arguments) {
  arguments.insert(arguments.begin(), "korvo");
  arguments.push_back(nullptr);
  Capture error({2});
  Capture output({1});
  Parsed parsed{};
  parsed.ok =
      parseArguments(static_cast<int>(arguments.size()) - 1, arguments.data(), parsed.taken);
  parsed.output = output.text();
  parsed.error = error.text();
  return parsed;
}

std::string usage() {
  return std::string(kNameLine) + kCreditLines +
         "  Usage: korvo [options] infile outfile\n"
         "  Options:\n"
         "  -l <logfile>  screen ouput (text)\n"
         "  -m            outfile is a MIDI file (format 1)\n"
         "  -s            suppress non-error messages\n"
         "  -t            verbose tempo information\n"
         "  -x <expfile>  macro expansions (text)\n\n";
}

std::string shown(const char *text) { return text == nullptr ? "(none)" : text; }

TEST(Arguments, TheNameLineSaysTheVersion) {
  EXPECT_EQ(std::string(kNameLine).substr(0, 15), "\nKorvo (2.1.3, ");
  // Three credit lines, the last followed by an empty line.
  std::string credits = kCreditLines;
  EXPECT_EQ(std::count(credits.begin(), credits.end(), '\n'), 4);
  EXPECT_EQ(credits.substr(credits.size() - 2), "\n\n");
}

TEST(Arguments, TwoNamesAreEnough) {
  Parsed parsed = parse({"in", "out"});
  EXPECT_TRUE(parsed.ok);
  EXPECT_STREQ(parsed.taken.inputName, "in");
  EXPECT_STREQ(parsed.taken.outputName, "out");
  EXPECT_EQ(parsed.taken.logName, nullptr);
  EXPECT_EQ(parsed.taken.expansionName, nullptr);
  EXPECT_FALSE(parsed.taken.midi);
  EXPECT_FALSE(parsed.taken.silent);
  EXPECT_FALSE(parsed.taken.tempoVerbose);
  EXPECT_EQ(parsed.output, "");
  EXPECT_EQ(parsed.error, "");
}

TEST(Arguments, AreTaken) {
  struct {
    std::vector<const char *> arguments;
    bool midi;
    bool silent;
    bool tempo;
    const char *log;
    const char *expansion;
  } rows[] = {
      {{"-m", "in", "out"}, true, false, false, nullptr, nullptr},
      {{"-s", "in", "out"}, false, true, false, nullptr, nullptr},
      {{"-t", "in", "out"}, false, false, true, nullptr, nullptr},
      {{"-m", "-s", "in", "out"}, true, true, false, nullptr, nullptr},
      {{"-mfoo", "in", "out"}, true, false, false, nullptr, nullptr},
      {{"-st", "in", "out"}, false, true, false, nullptr, nullptr},
      {{"-tl", "in", "out"}, false, false, true, nullptr, nullptr},
      {{"-m", "-m", "in", "out"}, true, false, false, nullptr, nullptr},
      {{"-l", "log.txt", "in", "out"}, false, false, false, "log.txt", nullptr},
      {{"-llog.txt", "in", "out"}, false, false, false, "log.txt", nullptr},
      {{"-lx.txt", "in", "out"}, false, false, false, "x.txt", nullptr},
      {{"-l-s", "in", "out"}, false, false, false, "-s", nullptr},
      {{"-x", "e", "in", "out"}, false, false, false, nullptr, "e"},
      {{"-xe", "in", "out"}, false, false, false, nullptr, "e"},
      {{"-la", "-lb", "in", "out"}, false, false, false, "b", nullptr},
      {{"-x", "a", "-xb", "in", "out"}, false, false, false, nullptr, "b"},
      {{"-t", "-xe", "-s", "-l", "g", "-m", "in", "out"}, true, true, true, "g", "e"},
  };
  for (const auto &row : rows) {
    Parsed parsed = parse(row.arguments);
    SCOPED_TRACE(row.arguments[0]);
    EXPECT_TRUE(parsed.ok);
    EXPECT_EQ(parsed.taken.midi, row.midi);
    EXPECT_EQ(parsed.taken.silent, row.silent);
    EXPECT_EQ(parsed.taken.tempoVerbose, row.tempo);
    EXPECT_EQ(shown(parsed.taken.logName), shown(row.log));
    EXPECT_EQ(shown(parsed.taken.expansionName), shown(row.expansion));
    EXPECT_EQ(shown(parsed.taken.inputName), "in");
    EXPECT_EQ(shown(parsed.taken.outputName), "out");
    EXPECT_EQ(parsed.output + parsed.error, "");
  }
}

TEST(Arguments, TheUsageTextAnswersEverythingElse) {
  std::vector<std::vector<const char *>> rows = {
      {},
      {"in"},
      {"in", "out", "more"},
      {"in", "out", "-m"},
      {"in", "-m", "out"},
      {"in", "-m"},
      {"-m"},
      {"-m", "in"},
      {"-m", "-s"},
      {"-q", "in", "out"},
      {"-M", "in", "out"},
      {"-L", "log", "in", "out"},
      {"-", "in", "out"},
      {"--", "in", "out"},
      {"--help"},
      {"-h"},
      {"-l", "in", "out"},  // takes in as the log name
      {"-l", "in"},
      {"-lx.txt"},
      {"-x", "e", "in"},
      {"in", "-out"},  // no name may begin with "-"
  };
  for (const auto &row : rows) {
    Parsed parsed = parse(row);
    SCOPED_TRACE(row.empty() ? "no argument" : row[0]);
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.error, usage());
    EXPECT_EQ(parsed.output, "");
  }
}

TEST(Arguments, AMissingNameIsToldOnStandardOutput) {
  struct {
    std::vector<const char *> arguments;
    const char *output;
  } rows[] = {
      {{"-l"}, "\nError: No logfile name\n\n"},
      {{"-l", "-s", "in", "out"}, "\nError: No logfile name\n\n"},
      {{"-m", "-l"}, "\nError: No logfile name\n\n"},
      {{"-l", "-"}, "\nError: No logfile name\n\n"},
      {{"-x"}, "\nError: No macro-expansion file name\n\n"},
      {{"-x", "-l", "in", "out"}, "\nError: No macro-expansion file name\n\n"},
      {{"-la", "-x", "-m", "in", "out"}, "\nError: No macro-expansion file name\n\n"},
  };
  for (const auto &row : rows) {
    Parsed parsed = parse(row.arguments);
    SCOPED_TRACE(row.arguments[0]);
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.output, row.output);
    EXPECT_EQ(parsed.error, "");
  }
}

TEST(Arguments, NoFileNameMayBeUsedTwice) {
  struct {
    const char *input;
    const char *output;
    const char *log;
    const char *expansion;
    bool unique;
  } rows[] = {
      {"a", "b", nullptr, nullptr, true}, {"a", "a", nullptr, nullptr, false},
      {"a", "b", "c", nullptr, true},     {"a", "b", "a", nullptr, false},
      {"a", "b", "b", nullptr, false},    {"a", "b", nullptr, "c", true},
      {"a", "b", nullptr, "a", false},    {"a", "b", nullptr, "b", false},
      {"a", "b", "c", "d", true},         {"a", "b", "c", "c", false},
      {"a", "b", "c", "a", false},        {"a", "b", "b", "d", false},
      {"a", "A", nullptr, nullptr, true},  // names are compared as written
      {"a", "./a", "a ", "/a", true},
  };
  for (const auto &row : rows) {
    Arguments names;
    names.inputName = row.input;
    names.outputName = row.output;
    names.logName = row.log;
    names.expansionName = row.expansion;
    EXPECT_EQ(namesAreUnique(names), row.unique)
        << row.input << " " << row.output << " " << shown(row.log) << " " << shown(row.expansion);
  }
}

}  // namespace
