#include "output/output_kinds.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "global/settings.h"

namespace korvo {

namespace {

TEST(OutputKinds, WidthsAndDecimals) {
  struct {
    int code;
    const char *name;
    int width;
    int decimals;
  } rows[] = {
      {14, "re", 6, kOwnPrecision},
      {6, "in", 5, kWhole},
      {2, "db", 4, 1},
      {4, "hz", 11, 5},
      {11, "op", 6, 3},
      {13, "od", 4, 2},
      {26, "tr", 8, 6},
      {27, "bn", 5, kWhole},
  };
  for (const auto &row : rows) {
    const OutputKind &kind = outputKind(static_cast<CommandCode>(row.code));
    EXPECT_EQ(kind.code, row.code);
    EXPECT_STREQ(kind.name, row.name);
    EXPECT_EQ(kind.width, row.width) << row.name;
    EXPECT_EQ(kind.decimals, row.decimals) << row.name;
    EXPECT_NE(kind.convert, nullptr) << row.name;
  }
  EXPECT_EQ(outputKind(kXX).code, kXX);
  EXPECT_EQ(outputKind(kXX).convert, nullptr);
  EXPECT_EQ(outputKind(kRA).code, kRE);  // a name that is no output kind
}

double converted(CommandCode code, float value) {
  return outputKind(code).convert(PfieldFormat{}, RunSettings{}.sampleRate, value);
}

TEST(OutputKinds, PitchesAreInSinglePrecision) {
  EXPECT_EQ(converted(kOP, 61), static_cast<double>(9.0F + 1.0F / 100.0F));
  EXPECT_EQ(converted(kOD, 55), static_cast<double>(8.0F + 7.0F / 12.0F));
  EXPECT_EQ(converted(kOP, -1), static_cast<double>(4.0F - 1.0F / 100.0F));
  EXPECT_NEAR(converted(kHZ, 57), 440.0, 0.0001);
  EXPECT_EQ(converted(kHZ, 57), static_cast<double>(static_cast<float>(converted(kHZ, 57))));
  EXPECT_EQ(converted(kDB, 32767), static_cast<double>(static_cast<float>(converted(kDB, 32767))));
}

TEST(OutputKinds, ATranspositionIsInDoublePrecision) {
  EXPECT_NEAR(converted(kTR, 1), 1.059463094359, 1e-15);
  EXPECT_NEAR(converted(kTR, 2), 1.059463094359 * 1.059463094359, 1e-15);
}

TEST(OutputKinds, ValuesFarOutsideTheirRange) {
  for (float value : {1e30F, -1e30F, 3e38F, -3e38F}) {
    for (CommandCode code : {kRE, kIN, kDB, kHZ, kOP, kOD, kTR, kBN}) {
      converted(code, value);  // nothing but a number comes back
    }
  }
  // The octave is the nearest that 32 bits have room for; the remainder of so large a value is 0.
  EXPECT_EQ(converted(kOD, 1e30F), static_cast<double>(static_cast<float>(2147483647 / 12 + 4)));
  EXPECT_EQ(converted(kOD, -1e30F), static_cast<double>(static_cast<float>(-2147483647 / 12 + 4)));
}

TEST(OutputKinds, Names) {
  const std::set<std::string> kNames = {"bn", "in", "db", "hz", "op", "od", "re", "tr", "xx"};
  for (int first = 1; first < 128; ++first) {
    for (int second = 1; second < 128; ++second) {
      std::string text = {static_cast<char>(first), static_cast<char>(second), '3', ')'};
      std::string lower = text.substr(0, 2);
      for (char &c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
      }
      EXPECT_EQ(isOutputKindName(text.c_str()), kNames.count(lower) == 1) << text;
    }
  }
  EXPECT_FALSE(isOutputKindName(""));
  EXPECT_FALSE(isOutputKindName("r"));
}

}  // namespace

}  // namespace korvo
