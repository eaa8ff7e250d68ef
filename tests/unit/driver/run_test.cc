#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "korvo/korvo.h"
#include "support/string_input.h"

namespace korvo {

namespace {

// A host that keeps everything in memory, and may fail.
struct MemoryHost {
  StringInput joined;
  bool refusesText = false;

  Host host() {
    Host host;
    host.context = this;
    host.writeText = [](void *context, const char *bytes, std::size_t size) {
      auto &self = *static_cast<MemoryHost *>(context);
      self.joined.text.append(bytes, size);
      return !self.refusesText;
    };
    host.rewindText = [](void *context) {
      return !static_cast<MemoryHost *>(context)->refusesText;
    };
    host.readText = [](void *context, char *bytes, std::size_t size) {
      return StringInput::read(&static_cast<MemoryHost *>(context)->joined, bytes, size);
    };
    return host;
  }
};

// A sign of life; what a listener is handed is gone when it returns.
struct Sign {
  Progress progress;
  std::string stage;
};

struct Performed {
  bool complete;
  std::string output;
  std::vector<int> errors;  // their numbers
  std::string printed;
  std::vector<Sign> signs;
};

Listener listenerOf(Performed &performed) {
  Listener listener;
  listener.context = &performed;
  listener.message = [](void *context, const Message &message) {
    auto &self = *static_cast<Performed *>(context);
    self.printed += message.printed;
    if (message.severity == Severity::kError) {
      self.errors.push_back(message.number);
    }
  };
  listener.output = [](void *context, const char *bytes, std::size_t size) {
    static_cast<Performed *>(context)->output.append(bytes, size);
  };
  listener.progress = [](void *context, const Progress &progress) {
    static_cast<Performed *>(context)->signs.push_back({progress, progress.stage});
  };
  return listener;
}

struct Freed {
  void operator()(Run *run) const { freeRun(run); }
};
using RunHolder = std::unique_ptr<Run, Freed>;

Performed performWith(MemoryHost &memory, StringInput text, const Options &options = {}) {
  RunHolder run(newRun());
  Performed performed{};
  performed.complete =
      perform(*run, options, "piece", text.input(), memory.host(), listenerOf(performed));
  return performed;
}

Performed performed(const std::string &text, const Options &options = {}) {
  MemoryHost memory;
  return performWith(memory, {text}, options);
}

constexpr const char *kPiece = "i1 = 3 0 -2 { p2 1 p3 0.5 }\n";

TEST(Run, MakesAScore) {
  Performed result = performed(kPiece);
  EXPECT_TRUE(result.complete);
  EXPECT_EQ(result.output, "\n;I-block #1 (i1):\ni1    0.000  0.500 \ni1    1.000  0.500 \n\ne\n");
  EXPECT_TRUE(result.errors.empty());
}

TEST(Run, MakesAMidiFileOfTheFirstBlock) {
  Options options;
  options.midi = true;
  Performed result = performed(std::string(kPiece) + kPiece, options);
  EXPECT_TRUE(result.complete);
  EXPECT_EQ(result.output.substr(0, 4), "MThd");
  EXPECT_EQ(result.output.find("MTrk", result.output.rfind("MTrk") + 1), std::string::npos);
}

TEST(Run, HandsOverWhatWasMadeBeforeAnError) {
  Performed result = performed(std::string(kPiece) + "x\n");
  EXPECT_FALSE(result.complete);
  EXPECT_EQ(result.errors, std::vector<int>{22});
  EXPECT_EQ(result.output, "\n;I-block #1 (i1):\ni1    0.000  0.500 \ni1    1.000  0.500 \n");
}

TEST(Run, AHostThatCannotKeepTheTextEndsIt) {
  MemoryHost memory;
  memory.refusesText = true;
  Performed result = performWith(memory, {kPiece});
  EXPECT_FALSE(result.complete);
  EXPECT_EQ(result.errors, std::vector<int>{9});
  EXPECT_EQ(result.output, "");
}

TEST(Run, AHostThatCannotGiveTheTextBackEndsIt) {
  MemoryHost memory;
  memory.joined.fails = true;
  Performed result = performWith(memory, {kPiece});
  EXPECT_FALSE(result.complete);
  EXPECT_EQ(result.errors, std::vector<int>{9});
}

TEST(Run, ATextThatCannotBeReadEndsIt) {
  MemoryHost memory;
  StringInput text{kPiece};
  text.fails = true;
  Performed result = performWith(memory, text);
  EXPECT_FALSE(result.complete);
  EXPECT_EQ(result.errors, std::vector<int>{0});
  EXPECT_EQ(result.printed, "\nERROR: Can't read an input file.\n\n");
}

TEST(Run, NobodyNeedListen) {
  MemoryHost memory;
  StringInput text{kPiece};
  RunHolder run(newRun());
  EXPECT_TRUE(perform(*run, {}, "piece", text.input(), memory.host(), {}));
  RunHolder failing(newRun());
  MemoryHost second;
  StringInput wrong{"x"};
  EXPECT_FALSE(perform(*failing, {}, "piece", wrong.input(), second.host(), {}));
}

TEST(Run, GivesSignsOfLife) {
  Performed result = performed("i1 = 3 0 -40000 { p2 1 p3 0.5 }\n");
  EXPECT_TRUE(result.complete);
  ASSERT_GE(result.signs.size(), 4U);
  EXPECT_EQ(result.signs[0].progress.steps, 0U);  // the beginning of the block
  EXPECT_EQ(result.signs[0].stage, "");
  // P2's 40,000 values, P3's and as many lines: the 32,768th step is in the first, and so on.
  const char *const kStages[] = {"", "P2", "P3", "score"};
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_EQ(result.signs[i].progress.steps, i * 32768) << i;
    EXPECT_EQ(result.signs[i].progress.block, 1) << i;
    EXPECT_EQ(result.signs[i].stage, kStages[i]) << i;
    EXPECT_EQ(result.signs[i].progress.done, static_cast<std::int64_t>(i * 32768 - (i - 1) * 40000))
        << i;
  }
  EXPECT_EQ(result.signs.size(), 4U);
}

// Two runs know nothing of each other, so two threads make what one after the other does.
TEST(Run, TwoMayGoOnAtOnce) {
  std::string text = "rs(7)\ni1 = 4 0 -20000 { p2 1 p3 0.5 p4 ra(T 1 [0 100]) }\n";
  std::string other = "rs(8)\ni1 = 4 0 -20000 { p2 1 p3 0.5 p4 ra(T 1 [0 100]) }\n";
  Performed first = performed(text);
  Performed second = performed(other);
  EXPECT_NE(first.output, second.output);
  Performed firstAgain;
  Performed secondAgain;
  std::thread a([&] { firstAgain = performed(text); });
  std::thread b([&] { secondAgain = performed(other); });
  a.join();
  b.join();
  EXPECT_TRUE(first.complete && second.complete);
  EXPECT_TRUE(firstAgain.output == first.output);
  EXPECT_TRUE(secondAgain.output == second.output);
  EXPECT_TRUE(firstAgain.printed == first.printed);
}

}  // namespace

}  // namespace korvo
