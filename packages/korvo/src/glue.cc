// The library as JavaScript sees it: everything that a run asks for or tells goes straight through to an imported
// function, and nothing is kept here but the run itself. Numbers of 64 bits go as doubles, texts as address and size.
//
// Events are the one thing that is put in order on the way: JavaScript wants columns, so those of a block are turned
// from rows into columns, a batch at a time, and copied from there into arrays of the block's full length.
#include "korvo/korvo.h"

#define IMPORTED(name) __attribute__((import_module("korvo"), import_name(#name)))
#define EXPORTED(name) __attribute__((export_name(#name)))

extern "C" {

// Texts, by number: 0 is the piece. `openText` gives -1 when there is no include of that name.
IMPORTED(openText) int openText(const char *name);
IMPORTED(readText) int readText(int text, char *bytes, std::size_t size);

// The whole text, includes and all, waits outside.
IMPORTED(writeWhole) int writeWhole(const char *bytes, std::size_t size);
IMPORTED(rewindWhole) void rewindWhole();
IMPORTED(readWhole) int readWhole(char *bytes, std::size_t size);

IMPORTED(output) void tellOutput(const char *bytes, std::size_t size);
IMPORTED(expanded) void tellExpanded(const char *line, std::size_t size);

// The places of a message come before it: `which` is 0 for its place and 1 for the one in a body. The name of the piece
// is nobody's business here: its places have an address of 0.
IMPORTED(place)
void tellPlace(int which, const char *file, std::size_t fileSize, double line, int column,
               int endColumn);
IMPORTED(message)
void tellMessage(int severity, int number, int onStandardOutput, const char *text,
                 std::size_t textSize, const char *printed, std::size_t printedSize);

// A block, then its p-fields, then its events by batches: `stride` floats lie between the beginnings of two columns.
IMPORTED(block) void tellBlock(int number, int instrument, std::uint32_t eventCount);
IMPORTED(pfield) void tellPfield(int number, const char *kind, int decimals);
// The tempo at beat 0, 1, 2 and so on of the piece, as long as the answer is not 0.
IMPORTED(tempo) int tellTempo(float beatsPerMinute);
IMPORTED(events) void tellEvents(const float *columns, std::size_t stride, std::size_t count);

IMPORTED(dropped)
void tellDropped(const char *file, std::size_t fileSize, double firstLine, double lastLine);

IMPORTED(progress) void tellProgress(int block, const char *stage, double done, double events);

}  // extern "C"

namespace {

constexpr std::size_t kBatchFloats = std::size_t{1} << 15U;

// Nothing prints it; it is known by its address.
constexpr char kPiece[] = "piece";

float batch[kBatchFloats];

korvo::Run *run = nullptr;

// What stands for a text where a pointer is asked for.
void *contextOf(std::intptr_t text) { return reinterpret_cast<void *>(text); }

std::ptrdiff_t readFrom(void *context, char *bytes, std::size_t size) {
  return readText(static_cast<int>(reinterpret_cast<std::intptr_t>(context)), bytes, size);
}

bool openInclude(void * /*context*/, const char *name, korvo::TextInput &input) {
  int text = openText(name);
  input = {contextOf(text), readFrom};
  return text >= 0;
}

void output(void * /*context*/, const char *bytes, std::size_t size) { tellOutput(bytes, size); }

void expanded(void * /*context*/, const char *line, std::size_t size) { tellExpanded(line, size); }

const char *addressOf(std::string_view file) {
  return file.data() == kPiece ? nullptr : file.data();
}

void place(int which, const korvo::Place &place) {
  if (place.line > 0) {
    tellPlace(which, addressOf(place.file), place.file.size(), static_cast<double>(place.line),
              place.column, place.endColumn);
  }
}

void message(void * /*context*/, const korvo::Message &message) {
  place(0, message.place);
  place(1, message.body);
  tellMessage(static_cast<int>(message.severity), message.number, message.onStandardOutput ? 1 : 0,
              message.text.data(), message.text.size(), message.printed.data(),
              message.printed.size());
}

struct Batch {
  std::size_t columns;
  std::size_t stride;
  std::size_t count = 0;
};

void flush(Batch &rows) {
  tellEvents(batch, rows.stride, rows.count);
  rows.count = 0;
}

void addEvent(void *context, const korvo::Event &event) {
  auto &rows = *static_cast<Batch *>(context);
  float *cell = batch + rows.count;
  cell[0] = event.start;
  cell[rows.stride] = event.duration;
  for (std::size_t i = 2; i < rows.columns; ++i) {
    cell[i * rows.stride] = event.values[i - 2];
  }
  if (++rows.count == rows.stride) {
    flush(rows);
  }
}

// The context says whether tempos are wanted.
void block(void *context, const korvo::BlockView &block) {
  tellBlock(block.number, block.instrument, block.eventCount);
  for (int i = 0; i < block.pfieldCount; ++i) {
    tellPfield(block.pfields[i].number, block.pfields[i].kind, block.pfields[i].decimals);
  }
  auto columns = static_cast<std::size_t>(block.pfieldCount);
  Batch rows{columns, kBatchFloats / columns};
  korvo::visitEvents(block, &rows, addEvent);
  flush(rows);
  if (*static_cast<const bool *>(context)) {
    float beat = 0.0F;
    while (tellTempo(korvo::tempoAt(block, beat)) != 0) {
      beat += 1.0F;
    }
  }
}

void dropped(void * /*context*/, std::string_view file, std::int64_t firstLine,
             std::int64_t lastLine) {
  tellDropped(addressOf(file), file.size(), static_cast<double>(firstLine),
              static_cast<double>(lastLine));
}

void progress(void * /*context*/, const korvo::Progress &progress) {
  tellProgress(progress.block, progress.stage, static_cast<double>(progress.done),
               static_cast<double>(progress.events));
}

bool writePiece(void * /*context*/, const char *bytes, std::size_t size) {
  return writeWhole(bytes, size) != 0;
}

bool rewindPiece(void * /*context*/) {
  rewindWhole();
  return true;
}

std::ptrdiff_t readPiece(void * /*context*/, char *bytes, std::size_t size) {
  return readWhole(bytes, size);
}

enum Wish : unsigned {
  kMidi = 1,
  kSilent = 2,
  kTempoVerbose = 4,
  kPlaces = 8,
  kEvents = 16,
  kExpanded = 32,
  kProgress = 64,
  kTempos = 128,
};

enum Outcome { kComplete, kFailed, kNoRun };

}  // namespace

extern "C" {

// Gives back what a run has taken that JavaScript has left by an exception.
EXPORTED(abandon) void abandon() {
  korvo::freeRun(run);
  run = nullptr;
}

EXPORTED(perform) int perform(unsigned wishes) {
  run = korvo::newRun();
  if (run == nullptr) {
    return kNoRun;
  }
  korvo::Options options;
  options.midi = (wishes & kMidi) != 0;
  options.silent = (wishes & kSilent) != 0;
  options.tempoVerbose = (wishes & kTempoVerbose) != 0;
  options.places = (wishes & kPlaces) != 0;
  bool wantsTempos = (wishes & kTempos) != 0;
  korvo::Listener listener;
  listener.context = &wantsTempos;
  listener.message = message;
  listener.output = output;
  listener.dropped = dropped;
  listener.expanded = (wishes & kExpanded) != 0 ? expanded : nullptr;
  listener.block = (wishes & kEvents) != 0 ? block : nullptr;
  listener.progress = (wishes & kProgress) != 0 ? progress : nullptr;
  korvo::Host host;
  host.openInclude = openInclude;
  host.writeText = writePiece;
  host.rewindText = rewindPiece;
  host.readText = readPiece;
  bool ok = korvo::perform(*run, options, kPiece, {contextOf(0), readFrom}, host, listener);
  abandon();
  return ok ? kComplete : kFailed;
}

EXPORTED(errorText) const char *errorText(int number) { return korvo::errorText(number); }

EXPORTED(warningText) const char *warningText(int number) { return korvo::warningText(number); }

}  // extern "C"
