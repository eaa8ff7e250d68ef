// Korvo as a library: the text of a piece comes in, its score or MIDI file, its events and its
// messages come out. Nothing here opens a file, writes to a stream, keeps a global state that
// changes or throws into the caller; two runs may go on in two threads at once.
//
// The smallest use:
//
//   korvo::Result result = korvo::render("i1 = 3 0 -2 { p2 1 p3 1 }");
//   if (result.ok) std::fwrite(result.score.data(), 1, result.score.size(), stdout);
//
// `render` stands on a second form in which the caller is told everything as it comes (a Listener)
// and lends what a run needs of the world (a Host): see `perform`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

// ---- What a run says

enum class Severity {
  kNote,     // progress of the run: expansions, summaries, listings
  kWarning,  // something that the composer may not have meant; never ends a run
  kError,    // ends the run, but for an unknown name in an `#if`
};

// A range of a text as the composer sees it. Lines and columns begin with 1; a column is a byte of
// the line. The range ends before `endColumn`. Line 0: no place; so it is for a message about the
// whole, and in text that was made to have no end of places (65,536 stretches of files, 8,192
// replacements in a line).
struct Place {
  std::string_view file;  // the name by which the text was handed over or included
  std::int64_t line = 0;
  std::int32_t column = 0;
  std::int32_t endColumn = 0;
};

struct Message {
  Severity severity = Severity::kNote;
  int number = 0;                 // of the catalogue of errors or of warnings; 0: it has none
  std::string_view text;          // what it says, without line number and line
  std::string_view printed;       // byte for byte what the program shows of it
  bool onStandardOutput = false;  // the program shows it on standard output
  Place place;  // where: in text that comes from a macro or constant, the place of the call
  Place body;   // there, the place in the text of the definition; otherwise line 0
};

// ---- What a run makes

// How a p-field is written.
struct Pfield {
  int number = 0;     // 2 and up
  char kind[3] = "";  // the output kind: "re", "in", "db", "hz", "op", "od", "tr", "bn" or "xx"
  int decimals = 0;   // of "re", and of P2 and P3
};

struct Event {
  float start = 0.0F;             // seconds
  float duration = 0.0F;          // seconds
  const float *values = nullptr;  // of P4 and up, before they are converted for their column
};

// A block whose events are about to be written; valid while the listener is told.
struct BlockView {
  int number = 0;  // in messages, from 1
  int instrument = 0;
  const Pfield *pfields = nullptr;  // P2 and up
  int pfieldCount = 0;              // of these
  std::uint32_t eventCount = 0;     // those that sound; rests are none
  const void *events = nullptr;     // for `visitEvents`
  const void *tempos = nullptr;     // for `tempoAt`
};

// Hands every event of the block to `visit`, in the order of the score.
void visitEvents(const BlockView &block, void *context,
                 void (*visit)(void *context, const Event &event));

// The tempo, in beats a minute, with which the block converts a rhythm that begins at this beat of the
// piece.
float tempoAt(const BlockView &block, float beat);

// A sign of life, at the beginning of a block and every 32,768 steps.
struct Progress {
  int block = 0;
  const char *stage = "";   // "P2", "score"; empty at the beginning of a block
  std::int64_t done = 0;    // events of the block that have got through the stage
  std::int64_t events = 0;  // of the block so far
  std::uint64_t steps = 0;  // values and lines of the block so far
};

// Who is told what comes, as it comes. A function that is null is not called, and none may throw;
// `context` goes to all of them. What they are handed is valid until they return.
struct Listener {
  void *context = nullptr;
  void (*message)(void *context, const Message &message) = nullptr;
  // A piece of the score or of the MIDI file; the pieces in their order are the whole.
  void (*output)(void *context, const char *bytes, std::size_t size) = nullptr;
  // A line of the text as it stands after macros and constants, without its line end.
  void (*expanded)(void *context, const char *line, std::size_t size) = nullptr;
  void (*block)(void *context, const BlockView &block) = nullptr;
  void (*progress)(void *context, const Progress &progress) = nullptr;
  // Lines of a text that an `#if` has switched off, first and last included; neither its own line
  // nor that of its `#endif` is one of them. Told behind the section, once for each text that has
  // lines in it.
  void (*dropped)(void *context, std::string_view file, std::int64_t firstLine,
                  std::int64_t lastLine) = nullptr;
};

// ---- What a run needs

struct Options {
  bool midi = false;          // a MIDI file of the first block instead of a score
  bool silent = false;        // no warnings and no optional notes
  bool tempoVerbose = false;  // notes on tempo definitions and conversions
  bool places = false;        // messages tell where in the composer's text they belong
  // Bytes that the caller has said before on behalf of the run, such as a banner; they count towards
  // the three gigabytes that a run may say.
  std::int64_t alreadySaid = 0;
};

// A text that is read from its beginning to its end. `read` has to be there; it may be called again
// after it has returned 0 or -1.
struct TextInput {
  void *context = nullptr;
  // Puts at most `size` bytes at `bytes`. Returns how many; 0 at the end of the text, -1 when it
  // cannot be read.
  std::ptrdiff_t (*read)(void *context, char *bytes, std::size_t size) = nullptr;
};

// What the caller lends; none of its functions may throw. All includes are read before the first
// block; the whole text waits meanwhile where the host says: in memory, in a file.
struct Host {
  void *context = nullptr;
  // Opens the include called `name` (exactly as it is written); false when there is none. Null: no
  // includes.
  bool (*openInclude)(void *context, const char *name, TextInput &input) = nullptr;
  void (*closeInclude)(void *context, TextInput &input) = nullptr;  // null: nothing is to be closed
  // These three have to be there. Takes a piece of the whole text; false when it cannot be kept,
  // which ends the run with error 9.
  bool (*writeText)(void *context, const char *bytes, std::size_t size) = nullptr;
  bool (*rewindText)(void *context) = nullptr;
  // As TextInput::read.
  std::ptrdiff_t (*readText)(void *context, char *bytes, std::size_t size) = nullptr;
};

// ---- Running a piece

// The memory of a run.
struct Run;

// Null when there is no memory for it.
Run *newRun();

// Gives the memory back; null is fine.
void freeRun(Run *run);

// Runs the piece that `input` gives and that messages call `name`. True when it was complete, false
// when an error, which the listener has been told, has ended it. What was made before the error has
// been handed over. `name` and the host have to last as long as the call. A Run serves one piece.
// Any error of docs/messages.md may come, those without a number (0) too.
bool perform(Run &run, const Options &options, const char *name, TextInput input, const Host &host,
             const Listener &listener);

// ---- The whole in one call

// An event with values of its own.
struct EventData {
  float start = 0.0F;         // seconds
  float duration = 0.0F;      // seconds
  std::vector<float> values;  // of P4 and up
};

struct BlockData {
  int number = 0;
  int instrument = 0;
  std::vector<Pfield> pfields;
  std::vector<EventData> events;
};

struct PlaceData {
  std::string file;
  std::int64_t line = 0;  // 0: no place
  std::int32_t column = 0;
  std::int32_t endColumn = 0;
};

struct MessageData {
  Severity severity = Severity::kNote;
  int number = 0;
  std::string text;
  PlaceData place;
  PlaceData body;
};

struct RenderOptions : Options {
  std::string name = "piece";  // what places call the text
  bool events = true;          // `blocks` are wanted
  bool expanded = false;       // the expanded text is wanted
  // Gives the text of an include by its name, or nothing when there is none. Without it there are
  // no includes.
  std::function<std::optional<std::string>(const std::string &name)> include;
};

struct Result {
  bool ok = false;       // the piece is complete; else the last error among the messages tells why
  std::string score;     // the bytes of the score, or of the MIDI file
  std::string expanded;  // the text as it stands after macros and constants
  std::vector<BlockData> blocks;
  std::vector<MessageData> messages;
};

// Runs the text of a piece. When memory is refused, `ok` is false and the message is error 32, or
// 102 for a constant and 45 for a loop; none where there is no memory for that either.
Result render(std::string_view text, const RenderOptions &options = {});

// The text of error `number` (3 to 500), for ever; "Unspecified error..." for one that has none.
const char *errorText(int number);

// The text of warning `number` (1 to 35).
const char *warningText(int number);

}  // namespace korvo
