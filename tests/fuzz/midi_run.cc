// Whole pieces in memory that become a MIDI file, without warnings. What the library tells of them
// must hold together.
#include <cstring>
#include <memory>
#include <string>

#include "harness.h"
#include "korvo/korvo.h"

namespace {

// What has been told of a piece.
struct Told {
  std::string file;
  bool error = false;
  int blocks = 0;
};

void takeMessage(void *context, const korvo::Message &message) {
  if (message.severity == korvo::Severity::kWarning && message.number > 0) {
    fuzz::fail("a warning in silence");
  }
  if (message.severity == korvo::Severity::kError) {
    static_cast<Told *>(context)->error = true;
  }
}

void takeOutput(void *context, const char *bytes, std::size_t size) {
  static_cast<Told *>(context)->file.append(bytes, size);
}

void countEvent(void *context, const korvo::Event &event) {
  if (event.duration <= 0.0F) {
    fuzz::fail("a rest among the events");
  }
  ++*static_cast<std::uint32_t *>(context);
}

void takeBlock(void *context, const korvo::BlockView &block) {
  ++static_cast<Told *>(context)->blocks;
  std::uint32_t events = 0;
  korvo::visitEvents(block, &events, countEvent);
  if (events == 0 || events != block.eventCount) {
    fuzz::fail("a block without its events");
  }
}

bool openInclude(void * /*context*/, const char *name, korvo::TextInput &input) {
  std::optional<std::string> text = fuzz::includeText(name);
  if (!text) {
    return false;
  }
  input = fuzz::inputOf(*new fuzz::MemoryText{*text});
  return true;
}

void closeInclude(void * /*context*/, korvo::TextInput &input) {
  delete static_cast<fuzz::MemoryText *>(input.context);
}

bool writeText(void *context, const char *bytes, std::size_t size) {
  static_cast<fuzz::MemoryText *>(context)->text.append(bytes, size);
  return true;
}

bool rewindText(void * /*context*/) { return true; }

void check(const Told &told, bool complete) {
  if (!complete && !told.error) {
    fuzz::fail("a piece that ends without a word");
  }
  if (told.blocks > 1) {
    fuzz::fail("more than one block in a MIDI file");
  }
  if (!told.file.empty() && (told.blocks != 1 || told.file.compare(0, 4, "MThd") != 0)) {
    fuzz::fail("no MIDI file");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (!fuzz::isReasonable(data, size)) {
    return -1;
  }
  fuzz::beginRun();
  fuzz::MemoryText piece{std::string(reinterpret_cast<const char *>(data), size)};
  fuzz::MemoryText joined;
  korvo::Host host{&joined,   openInclude, closeInclude,
                   writeText, rewindText,  fuzz::inputOf(joined).read};
  Told told;
  korvo::Listener listener;
  listener.context = &told;
  listener.message = takeMessage;
  listener.output = takeOutput;
  listener.block = takeBlock;
  korvo::Options options;
  options.midi = true;
  options.silent = true;
  std::unique_ptr<korvo::Run, void (*)(korvo::Run *)> run(korvo::newRun(), korvo::freeRun);
  bool complete = korvo::perform(*run, options, "piece", fuzz::inputOf(piece), host, listener);
  check(told, complete);
  return 0;
}
