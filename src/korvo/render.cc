// The whole of a piece in one call: the host is memory, and the listener gathers what it is told.
// This is the one place where containers grow that may throw; what they throw ends the gathering
// and is told as the error that it is.
#include <memory>
#include <new>

#include "korvo/korvo.h"

namespace korvo {

namespace {

constexpr int kOutOfMemory = 32;

// A text in memory that is being read.
struct Reading {
  std::string text;
  std::size_t next = 0;
};

struct Gathering {
  const RenderOptions *options;
  Result *result;
  std::vector<std::unique_ptr<Reading>> includes;
  Reading joined;
  bool failed = false;  // memory was refused
};

// Does what may throw; what it throws is remembered.
template <typename Step>
bool attempt(Gathering &gathering, Step step) {
  try {
    if (!gathering.failed) {
      step();
    }
  } catch (...) {
    gathering.failed = true;
  }
  return !gathering.failed;
}

std::ptrdiff_t readFrom(Reading &reading, char *bytes, std::size_t size) {
  std::size_t count = reading.text.copy(bytes, size, reading.next);
  reading.next += count;
  return static_cast<std::ptrdiff_t>(count);
}

std::ptrdiff_t readText(void *context, char *bytes, std::size_t size) {
  return readFrom(*static_cast<Reading *>(context), bytes, size);
}

// The text that was handed to `render` is read where it lies.
struct Handed {
  std::string_view left;
};

std::ptrdiff_t readHanded(void *context, char *bytes, std::size_t size) {
  auto *handed = static_cast<Handed *>(context);
  std::size_t count = handed->left.copy(bytes, size);
  handed->left.remove_prefix(count);
  return static_cast<std::ptrdiff_t>(count);
}

bool openInclude(void *context, const char *name, TextInput &input) {
  auto *gathering = static_cast<Gathering *>(context);
  bool found = false;
  attempt(*gathering, [&] {
    if (!gathering->options->include) {
      return;
    }
    std::optional<std::string> text = gathering->options->include(name);
    if (text) {
      gathering->includes.push_back(std::make_unique<Reading>(Reading{std::move(*text)}));
      input = {gathering->includes.back().get(), readText};
      found = true;
    }
  });
  return found;
}

void closeInclude(void *context, TextInput & /*input*/) {
  static_cast<Gathering *>(context)->includes.pop_back();
}

bool writeJoined(void *context, const char *bytes, std::size_t size) {
  auto *gathering = static_cast<Gathering *>(context);
  return attempt(*gathering, [&] { gathering->joined.text.append(bytes, size); });
}

bool rewindJoined(void *context) { return !static_cast<Gathering *>(context)->failed; }

std::ptrdiff_t readJoined(void *context, char *bytes, std::size_t size) {
  auto *gathering = static_cast<Gathering *>(context);
  return gathering->failed ? -1 : readFrom(gathering->joined, bytes, size);
}

PlaceData copyOf(const Place &place) {
  return {std::string(place.file), place.line, place.column, place.endColumn};
}

void gatherMessage(void *context, const Message &message) {
  auto *gathering = static_cast<Gathering *>(context);
  bool listing = message.onStandardOutput || message.text.empty();
  if (!listing) {
    attempt(*gathering, [&] {
      gathering->result->messages.push_back({message.severity, message.number,
                                             std::string(message.text), copyOf(message.place),
                                             copyOf(message.body)});
    });
  }
}

void gatherOutput(void *context, const char *bytes, std::size_t size) {
  auto *gathering = static_cast<Gathering *>(context);
  attempt(*gathering, [&] { gathering->result->score.append(bytes, size); });
}

void gatherExpanded(void *context, const char *line, std::size_t size) {
  auto *gathering = static_cast<Gathering *>(context);
  attempt(*gathering, [&] {
    gathering->result->expanded.append(line, size);
    gathering->result->expanded.push_back('\n');
  });
}

// A block whose events are being copied.
struct Copying {
  Gathering *gathering;
  BlockData *block;
};

void gatherEvent(void *context, const Event &event) {
  auto *copying = static_cast<Copying *>(context);
  attempt(*copying->gathering, [&] {
    std::size_t count = copying->block->pfields.size() - 2;
    copying->block->events.push_back(
        {event.start, event.duration, {event.values, event.values + count}});
  });
}

void gatherBlock(void *context, const BlockView &block) {
  auto *gathering = static_cast<Gathering *>(context);
  attempt(*gathering, [&] {
    BlockData data{block.number, block.instrument, {}, {}};
    data.pfields.assign(block.pfields, block.pfields + block.pfieldCount);
    data.events.reserve(block.eventCount);
    gathering->result->blocks.push_back(std::move(data));
    Copying copying{gathering, &gathering->result->blocks.back()};
    visitEvents(block, &copying, gatherEvent);
  });
}

Result outOfMemory() {
  Result result;
  try {
    result.messages.push_back({Severity::kError, kOutOfMemory, errorText(kOutOfMemory), {}, {}});
  } catch (...) {
    result.messages.clear();  // not even for that; `ok` tells
  }
  return result;
}

Result renderWith(Run &run, std::string_view text, const RenderOptions &options) {
  Result result;
  Gathering gathering{&options, &result, {}, {}, false};
  Handed handed{text};
  Listener listener;
  listener.context = &gathering;
  listener.message = gatherMessage;
  listener.output = gatherOutput;
  listener.expanded = options.expanded ? gatherExpanded : nullptr;
  listener.block = options.events ? gatherBlock : nullptr;
  Host host{&gathering, openInclude, closeInclude, writeJoined, rewindJoined, readJoined};
  Options runOptions = options;
  runOptions.places = true;
  result.ok = perform(run, runOptions, options.name.c_str(), {&handed, readHanded}, host, listener);
  return gathering.failed ? outOfMemory() : std::move(result);
}

}  // namespace

Result render(std::string_view text, const RenderOptions &options) {
  Run *run = newRun();
  if (run == nullptr) {
    return outOfMemory();
  }
  Result result = renderWith(*run, text, options);
  freeRun(run);
  return result;
}

}  // namespace korvo
