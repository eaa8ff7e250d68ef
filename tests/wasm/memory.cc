// Memory refused inside WebAssembly: a module has so much and no more. Korvo tells error 32 there as
// anywhere else, gives back what it has got, and the module goes on: the next piece is right. What is
// lent to a run lies in static memory, so that everything a run is refused is Korvo's own.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "korvo/korvo.h"

namespace {

constexpr int kOutOfMemory = 32;
constexpr int kRefusals[] = {kOutOfMemory, 45, 102};  // a loop and a constant have their own words

// 67 million events are allowed; each needs 20 bytes and 4 for p4, and the module has 16 MB.
constexpr const char *kLarge = "i1 = 4 0 -5000000 { p2 .001 p3 1 p4 7 }";

// Starts at 1, then a beat (a second) later; each lasts half of that.
constexpr const char *kSmall = "#const half .5\ni2 = 4 1 -3 { p2 1 p3 ~half p4 <4 5> ;a comment\n}";
constexpr const char *kSmallScore =
    "\n;I-block #1 (i2):\n"
    "i2    1.000  0.500     4.000 \n"
    "i2    2.000  0.500     5.000 \n"
    "i2    3.000  0.500     4.000 \n"
    "\ne\n";

struct Text {
  char bytes[4096];
  std::size_t size, next;
};

Text piece, joined;

struct Told {
  char score[4096];
  std::size_t size;  // of the score, beyond these bytes, too
  int errors, number;
  char text[256];  // of the last error
  long long events;
};

Told told;

std::ptrdiff_t readText(void *context, char *bytes, std::size_t size) {
  auto *text = static_cast<Text *>(context);
  std::size_t left = text->size - text->next;
  std::size_t count = size < left ? size : left;
  std::memcpy(bytes, text->bytes + text->next, count);
  text->next += count;
  return static_cast<std::ptrdiff_t>(count);
}

bool writeText(void *context, const char *bytes, std::size_t size) {
  auto *text = static_cast<Text *>(context);
  if (size > sizeof text->bytes - text->size) {
    return false;
  }
  std::memcpy(text->bytes + text->size, bytes, size);
  text->size += size;
  return true;
}

bool rewindText(void *context) {
  static_cast<Text *>(context)->next = 0;
  return true;
}

void tellMessage(void * /*context*/, const korvo::Message &message) {
  if (message.severity == korvo::Severity::kError) {
    ++told.errors;
    told.number = message.number;
    std::snprintf(told.text, sizeof told.text, "%.*s", static_cast<int>(message.text.size()),
                  message.text.data());
  }
}

void tellOutput(void * /*context*/, const char *bytes, std::size_t size) {
  if (told.size + size <= sizeof told.score) {
    std::memcpy(told.score + told.size, bytes, size);
  }
  told.size += size;
}

void tellProgress(void * /*context*/, const korvo::Progress &progress) {
  told.events = progress.events;
}

enum class Outcome { kComplete, kError, kNoRun };

Outcome perform(const char *text) {
  told = {};
  joined.size = 0;
  piece.size = std::strlen(text);
  piece.next = 0;
  std::memcpy(piece.bytes, text, piece.size);
  korvo::Run *run = korvo::newRun();
  if (run == nullptr) {
    return Outcome::kNoRun;
  }
  korvo::Host host;
  host.context = &joined;
  host.writeText = writeText;
  host.rewindText = rewindText;
  host.readText = readText;
  korvo::Listener listener;
  listener.message = tellMessage;
  listener.output = tellOutput;
  listener.progress = tellProgress;
  bool ok = korvo::perform(*run, {}, "piece", {&piece, readText}, host, listener);
  korvo::freeRun(run);
  return ok ? Outcome::kComplete : Outcome::kError;
}

int faults = 0;

void expect(bool right, const char *what, int round) {
  if (!right) {
    ++faults;
    std::printf("round %d: %s (%d errors, the last %d: %s; a score of %zu bytes)\n", round, what,
                told.errors, told.number, told.text, told.size);
  }
}

bool toldOne() {
  return told.errors == 1 && std::strcmp(told.text, korvo::errorText(told.number)) == 0;
}

bool toldRefusal() {
  return toldOne() &&
         std::find(std::begin(kRefusals), std::end(kRefusals), told.number) != std::end(kRefusals);
}

bool smallScoreIsRight() {
  return told.errors == 0 && told.size == std::strlen(kSmallScore) &&
         std::memcmp(told.score, kSmallScore, told.size) == 0;
}

int memoryInUse() { return mallinfo().uordblks; }

// A piece that is too large, then one that is not, again and again in one module.
void refuseAndGoOn() {
  int before = memoryInUse();
  for (int round = 0; round < 10; ++round) {
    expect(perform(kLarge) == Outcome::kError && toldOne() && told.number == kOutOfMemory,
           "no error 32", round);
    expect(told.events > 100000, "memory was refused before it could be short", round);
    expect(perform(kSmall) == Outcome::kComplete && smallScoreIsRight(), "not the score", round);
    expect(memoryInUse() == before, "memory that was never freed", round);
  }
}

// Takes all memory but the last `left` bytes; the blocks are a list, each leads to the next.
void **takeAllBut(std::size_t left) {
  void *volatile spared = std::malloc(left);  // else the compiler would do without it
  void **taken = nullptr;
  for (std::size_t size = 1U << 20U; size >= sizeof(void *); size /= 2) {
    while (auto **block = static_cast<void **>(std::malloc(size))) {
      *block = taken;
      taken = block;
    }
  }
  std::free(spared);
  return taken;
}

void giveBack(void **taken) {
  while (taken != nullptr) {
    auto **next = static_cast<void **>(*taken);
    std::free(taken);
    taken = next;
  }
}

// The small piece with ever more memory left for it: first there is none for a Run, then the piece is
// refused at one place after the other, at last there is enough.
void leaveEverMore() {
  int counts[3] = {};
  int before = memoryInUse();
  for (int round = 0; counts[static_cast<int>(Outcome::kComplete)] < 10 && round < 4096; ++round) {
    void **taken = takeAllBut(static_cast<std::size_t>(round) * 256 + 16);
    Outcome outcome = perform(kSmall);
    giveBack(taken);
    ++counts[static_cast<int>(outcome)];
    if (outcome == Outcome::kError) {
      expect(toldRefusal(), "no error of memory with little memory left", round);
    } else if (outcome == Outcome::kComplete) {
      expect(smallScoreIsRight(), "not the score with little memory left", round);
    }
    expect(memoryInUse() == before, "memory that was never freed", round);
  }
  std::printf("complete %d, refused %d, no run %d\n", counts[0], counts[1], counts[2]);
  expect(counts[0] > 0 && counts[1] > 2 && counts[2] > 0, "memory was not short in every way", 0);
}

}  // namespace

int main() {
  refuseAndGoOn();
  leaveEverMore();
  return faults == 0 ? 0 : 1;
}
