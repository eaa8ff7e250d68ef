// Which lines a listener is told of as switched off.
#include <gtest/gtest.h>

#include <list>
#include <map>
#include <string>
#include <string_view>

#include "korvo/korvo.h"
#include "support/string_input.h"

namespace {

using korvo::StringInput;

const std::map<std::string, std::string> kIncludes = {
    {"two", "1\n2\n"},
    {"open", "1\n2"},  // its last line goes on with what stands behind the `#include`
    {"outer", "1\n#include |two|\n3\n"},
    {"begins", ";1\n#if(0)\n;3\n"},
    {"ends", "1\n#endif\n3\n"},
};

struct Heard {
  StringInput joined;
  std::list<StringInput> includes;
  std::string dropped;  // "file first-last " for each stretch
  std::string printed;
};

korvo::Host hostOf(Heard &heard) {
  korvo::Host host;
  host.context = &heard;
  host.openInclude = [](void *context, const char *name, korvo::TextInput &input) {
    auto &includes = static_cast<Heard *>(context)->includes;
    includes.push_back({kIncludes.at(name)});
    input = includes.back().input();
    return true;
  };
  host.writeText = [](void *context, const char *bytes, std::size_t size) {
    static_cast<Heard *>(context)->joined.text.append(bytes, size);
    return true;
  };
  host.rewindText = [](void *) { return true; };
  host.readText = [](void *context, char *bytes, std::size_t size) {
    return StringInput::read(&static_cast<Heard *>(context)->joined, bytes, size);
  };
  return host;
}

Heard hear(const std::string &text, bool asked = true) {
  Heard heard;
  korvo::Listener listener;
  listener.context = &heard;
  listener.message = [](void *context, const korvo::Message &message) {
    static_cast<Heard *>(context)->printed += message.printed;
  };
  if (asked) {
    listener.dropped = [](void *context, std::string_view file, std::int64_t first,
                          std::int64_t last) {
      static_cast<Heard *>(context)->dropped +=
          std::string(file) + " " + std::to_string(first) + "-" + std::to_string(last) + " ";
    };
  }
  korvo::Run *run = korvo::newRun();
  StringInput input{text};
  korvo::perform(*run, {}, "piece", input.input(), hostOf(heard), listener);
  korvo::freeRun(run);
  return heard;
}

struct DroppedRow {
  const char *text;
  const char *dropped;
};

void check(const std::vector<DroppedRow> &rows) {
  for (const DroppedRow &row : rows) {
    EXPECT_EQ(hear(row.text).dropped, row.dropped) << row.text;
  }
}

TEST(Dropped, AreTheLinesBetweenTheTwoMarks) {
  check({
      {";1\n#if(0)\n;3\n;4\n#endif\n;6\n", "piece 3-4 "},
      {"#if(1)\n;2\n#endif\n", ""},
      {"#if(0)\n#endif\n", ""},
      {"#if(0) ;1 #endif\n", ""},
      {"#if(0)\n\n#endif", "piece 2-2 "},
      {"#if(0)\r\n;2\r\n#endif\r\n", "piece 2-2 "},
      {"#if(0)\n;2\n#endif\n#if(0)\n;5\n#endif\n", "piece 2-2 piece 5-5 "},
  });
}

TEST(Dropped, SectionsInsideAreAPartOfThem) {
  check({
      {"#if(0)\n#if(1)\n;3\n#endif\n;5\n#endif\n", "piece 2-5 "},
      {"#if(1)\n;2\n#if(0)\n;4\n#endif\n;6\n#endif\n", "piece 4-4 "},
  });
}

TEST(Dropped, ASectionLeftOpenLastsToTheEnd) {
  check({
      {"#if(0)\n;2\n;3", "piece 2-3 "},
      {"#if(0)\n;2\n;3\n", "piece 2-3 "},
      {"#if(0)", ""},
  });
}

TEST(Dropped, EachTextHasItsOwn) {
  check({
      // The line with the `#include` goes with its neighbours.
      {"#if(0)\n;2\n#include |two|\n;4\n#endif\n", "piece 2-4 two 1-2 "},
      {"#if(0)\n;2\n#include |open|\n;4\n#endif\n", "piece 2-4 open 1-2 "},
      {"#if(0)\n#include |outer|\n#endif\n", "piece 2-2 outer 1-3 two 1-2 "},
      {"#if(0)\n#include |two|\n#include |two|\n#endif\n", "piece 2-3 two 1-2 two 1-2 "},
      {";1\n#include |begins|\n;3\n#endif\n", "piece 2-3 begins 3-3 "},
      {"#if(0)\n;2\n#include |ends|\n;4\n", "piece 2-2 ends 1-1 "},
  });
}

// A line of more than 4,095 characters is read in parts, and is one line to its composer.
TEST(Dropped, ALongLineIsOneLine) {
  std::string line = ";" + std::string(9000, '.') + "\n";
  EXPECT_EQ(hear("#if(0)\n" + line + ";3\n#endif\n").dropped, "piece 2-3 ");
}

TEST(Dropped, NobodyNeedAsk) {
  const std::string piece = "#if(0)\n;2\n#endif\ni1 = 3 0 -1 { p2 1 p3 1 }\n";
  EXPECT_EQ(hear(piece, false).dropped, "");
  EXPECT_EQ(hear(piece, false).printed, hear(piece).printed);
}

}  // namespace
