// The tempo that a listener can ask of a block.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "korvo/korvo.h"
#include "support/string_input.h"

namespace {

using korvo::StringInput;

constexpr int kBeats = 6;

korvo::Host hostOf(StringInput &joined) {
  korvo::Host host;
  host.context = &joined;
  host.writeText = [](void *context, const char *bytes, std::size_t size) {
    static_cast<StringInput *>(context)->text.append(bytes, size);
    return true;
  };
  host.rewindText = [](void *) { return true; };
  host.readText = [](void *context, char *bytes, std::size_t size) {
    return StringInput::read(context, bytes, size);
  };
  return host;
}

using Tempos = std::vector<std::vector<float>>;  // of each block, at beats 0, 1, 2, ...

Tempos temposOf(const std::string &text) {
  Tempos tempos;
  korvo::Listener listener;
  listener.context = &tempos;
  listener.block = [](void *context, const korvo::BlockView &block) {
    std::vector<float> ofBlock(kBeats);
    for (int beat = 0; beat < kBeats; ++beat) {
      ofBlock[static_cast<std::size_t>(beat)] = korvo::tempoAt(block, static_cast<float>(beat));
    }
    static_cast<Tempos *>(context)->push_back(ofBlock);
  };
  StringInput input{text};
  StringInput joined;
  korvo::Run *run = korvo::newRun();
  EXPECT_TRUE(korvo::perform(*run, {}, "piece", input.input(), hostOf(joined), listener));
  korvo::freeRun(run);
  return tempos;
}

const std::string kBlock = "i1 = 3 0 -2 { p2 1 p3 1 }\n";

TEST(TempoAt, IsSixtyWithoutADefinition) {
  EXPECT_EQ(temposOf(kBlock), (Tempos{{60, 60, 60, 60, 60, 60}}));
}

TEST(TempoAt, FollowsAChangeAndHoldsItsEnd) {
  EXPECT_EQ(temposOf("te(0, 4, 60, 120, f)\n" + kBlock), (Tempos{{60, 75, 90, 105, 120, 120}}));
}

TEST(TempoAt, IsThatOfTheBlockWhereTheTempoIsDefinedAnew) {
  EXPECT_EQ(temposOf("te(90)\n" + kBlock + "te(40)\n" + kBlock),
            (Tempos{{90, 90, 90, 90, 90, 90}, {40, 40, 40, 40, 40, 40}}));
}

}  // namespace
