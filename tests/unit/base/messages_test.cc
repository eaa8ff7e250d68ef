#include "base/messages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace korvo {

namespace {

// What a listener keeps of a message.
struct Told {
  Message message;
  std::string text;
  std::string printed;
};

std::vector<Told> told(const std::function<void(Messages &)> &telling) {
  std::vector<Told> all;
  auto messages = std::make_unique<Messages>();
  messages->listener.context = &all;
  messages->listener.message = [](void *context, const Message &message) {
    static_cast<std::vector<Told> *>(context)->push_back(
        {message, std::string(message.text), std::string(message.printed)});
  };
  telling(*messages);
  return all;
}

std::string said(const char *format, std::initializer_list<MessageArgument> arguments = {}) {
  std::vector<Told> all = told([&](Messages &messages) { say(messages, format, arguments); });
  EXPECT_EQ(all.size(), 1U);
  return all[0].printed;
}

TEST(Messages, PlainTextComesOutAsItIs) {
  EXPECT_EQ(said(""), "");
  EXPECT_EQ(said("\n\tabc \\ \"x\"\n"), "\n\tabc \\ \"x\"\n");
}

TEST(Messages, CharactersAndTexts) {
  EXPECT_EQ(said("a%cb%c", {'x', '%'}), "axb%");
  EXPECT_EQ(said("<%s><%s>", {"", "100%d %s"}), "<><100%d %s>");
}

TEST(Messages, Integers) {
  EXPECT_EQ(said("%d %d %d", {0, -1, 12}), "0 -1 12");
  EXPECT_EQ(said("%d|%d", {std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::int64_t>::max()}),
            "-9223372036854775808|9223372036854775807");
}

TEST(Messages, RealsAreSevenWideWithTwoDecimals) {
  struct {
    double value;
    const char *text;
  } rows[] = {
      {0.0, "   0.00"},          {-0.0, "  -0.00"},       {3.14159, "   3.14"},
      {-3.14159, "  -3.14"},     {12345.678, "12345.68"}, {9999.994, "9999.99"},
      {1000000.0, "1000000.00"}, {0.125, "   0.12"},  // exactly between two: the even one
      {0.375, "   0.38"},        {-0.001, "  -0.00"},     {1e20, "100000000000000000000.00"},
      {HUGE_VAL, "    inf"},     {-HUGE_VAL, "   -inf"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(said("%f", {row.value}), row.text);
  }
  EXPECT_EQ(said("[%f]", {0.1F}), "[   0.10]");
  EXPECT_EQ(said("%f", {std::numeric_limits<double>::quiet_NaN()}), "    nan");
}

TEST(Messages, TheLargestRealHasAllItsDigits) {
  char expected[400];
  std::snprintf(expected, sizeof expected, "%.2f", -std::numeric_limits<double>::max());
  EXPECT_EQ(said("%f", {-std::numeric_limits<double>::max()}), expected);
}

TEST(Messages, WidthsAndUnknownConversionsArePrintedAndTakeNoArgument) {
  EXPECT_EQ(said("100%%"), "100%");
  EXPECT_EQ(said("100%"), "100");
  EXPECT_EQ(said("%5d|%d", {7}), "5d|7");
  EXPECT_EQ(said("%.2f|%f", {7.0}), ".2f|   7.00");
  EXPECT_EQ(said("%ld|%d", {7}), "ld|7");
  EXPECT_EQ(said("%x%D%S%d", {7}), "xDS7");
}

TEST(Messages, LongTextsArriveWhole) {
  std::string longText;
  for (std::size_t i = 0; i < kMessageBytes - 5; ++i) {
    longText += static_cast<char>('a' + i % 26);
  }
  EXPECT_EQ(said("<%s>%s", {longText.c_str(), "end"}), "<" + longText + ">end");
}

TEST(Messages, WhatHasNoRoomIsLeftOut) {
  std::string most(kMessageBytes, 'x');
  EXPECT_EQ(said("%s%s%d", {most.c_str(), "end", 5}), most);
  EXPECT_EQ(said("ab%s", {most.c_str()}), "ab" + most.substr(2));
  EXPECT_EQ(said("%s", {std::string(200000, 'x').c_str()}), most);
}

TEST(Messages, ManyShortTextsArriveInOrder) {
  std::string expected;
  std::string all;
  for (const Told &one : told([&](Messages &messages) {
         for (int i = 0; i < 30000; ++i) {
           say(messages, "%d,", {i});
           expected += std::to_string(i) + ",";
         }
       })) {
    all += one.printed;
  }
  EXPECT_EQ(all, expected);
}

TEST(Messages, AMessageIsComposedInPieces) {
  std::vector<Told> all = told([](Messages &messages) {
    compose(messages, "%d ", {1});
    composeBytes(messages, std::string_view("a\0b%d", 5));
    compose(messages, " %s", {std::string_view("two", 2)});
    tell(messages, {});
    say(messages, "next");
  });
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].printed, std::string("1 a\0b%d tw", 10));
  EXPECT_EQ(all[1].printed, "next");
}

TEST(Messages, ANoteHasItsPrintedTextWithoutWhatStandsAround) {
  struct {
    const char *printed;
    const char *text;
  } rows[] = {
      {"plain", "plain"}, {"\n\n\ta b\n", "a b"}, {"a\nb", "a\nb"},
      {"", ""},           {" \n\t ", ""},         {"\nx   1.50 \n", "x   1.50"},
  };
  for (const auto &row : rows) {
    std::vector<Told> all = told([&](Messages &messages) { say(messages, row.printed); });
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].printed, row.printed);
    EXPECT_EQ(all[0].text, row.text);
    EXPECT_EQ(all[0].message.severity, Severity::kNote);
    EXPECT_EQ(all[0].message.number, 0);
    EXPECT_FALSE(all[0].message.onStandardOutput);
  }
}

TEST(Messages, WhatAListenerWantsToKnowComesAlong) {
  std::vector<Told> all = told([](Messages &messages) {
    Message message;
    message.severity = Severity::kWarning;
    message.number = 12;
    message.text = "";
    message.place.line = 7;
    compose(messages, "printed");
    tell(messages, message);
  });
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].message.severity, Severity::kWarning);
  EXPECT_EQ(all[0].message.number, 12);
  EXPECT_EQ(all[0].message.place.line, 7);
  EXPECT_EQ(all[0].text, "");  // its own, though it is empty
  EXPECT_EQ(all[0].printed, "printed");
}

TEST(Messages, OnlyWhatIsMeantForStandardOutputSaysSo) {
  std::vector<Told> all = told([](Messages &messages) {
    say(messages, "screen");
    sayOnStandardOutput(messages, "\ntime =    1.00%d");
    say(messages, "again");
  });
  ASSERT_EQ(all.size(), 3U);
  EXPECT_FALSE(all[0].message.onStandardOutput);
  EXPECT_TRUE(all[1].message.onStandardOutput);
  EXPECT_EQ(all[1].printed, "\ntime =    1.00%d");
  EXPECT_FALSE(all[2].message.onStandardOutput);
}

TEST(Messages, TheirBytesAreCountedWhoeverListens) {
  auto messages = std::make_unique<Messages>();
  say(*messages, "12345");
  sayOnStandardOutput(*messages, "678");
  compose(*messages, "%d", {90});
  EXPECT_EQ(messages->printed, 8);
  tell(*messages, {});
  EXPECT_EQ(messages->printed, 10);
  EXPECT_EQ(messages->used, 0U);
}

}  // namespace

}  // namespace korvo
