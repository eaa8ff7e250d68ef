// The program once more, with nothing in it but the library: the same options, the same files
// before the run and after it, the same bytes. But here the piece and all that it may include are
// read before the run begins, everything that the run makes and says is put together in memory, and
// only afterwards are files written. So whole runs can be made without the program's own way to
// files and streams.
//
// Every piece goes through both forms of the library. What the listener of `perform` was told and
// what `render` gives must be the same thing, and every place must lie in a text that was handed
// over; otherwise the run ends with status 98.
//
//   in_memory [-s] [-t] [-m] [-l LOG] [-x EXPANSION] INPUT OUTPUT
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "faces/same.h"
#include "korvo/korvo.h"
#include "program/version.h"

namespace {

constexpr int kNoSuchArguments = 97;
constexpr int kFacesDiffer = 98;

// ---- Arguments and files

struct Arguments {
  korvo::RenderOptions options;
  std::string input, output;
  std::optional<std::string> log, expansion;
};

// An option that takes a name, in the same argument or in the next one.
bool takeName(int argc, char **argv, int &i, std::optional<std::string> &name) {
  if (argv[i][2] != '\0') {
    name = argv[i] + 2;
    return true;
  }
  if (++i >= argc) {
    return false;
  }
  name = argv[i];
  return true;
}

bool readArguments(int argc, char **argv, Arguments &arguments) {
  int i = 1;
  for (; i < argc && argv[i][0] == '-'; ++i) {
    char letter = argv[i][1];
    if (letter == 'l' || letter == 'x') {
      if (!takeName(argc, argv, i, letter == 'l' ? arguments.log : arguments.expansion)) {
        return false;
      }
    } else if (letter == 'm') {
      arguments.options.midi = true;
    } else if (letter == 's') {
      arguments.options.silent = true;
    } else if (letter == 't') {
      arguments.options.tempoVerbose = true;
    } else {
      return false;
    }
  }
  if (argc - i != 2) {
    return false;
  }
  arguments.input = argv[i];
  arguments.output = argv[i + 1];
  return true;
}

// All files of the present folder, by their names seen from there.
using Texts = std::map<std::string, std::string>;

Texts readTexts() {
  Texts texts;
  for (const auto &entry : std::filesystem::recursive_directory_iterator(".")) {
    if (entry.is_regular_file()) {
      std::ifstream file(entry.path(), std::ios::binary);
      texts[entry.path().lexically_normal().string()] =
          std::string(std::istreambuf_iterator<char>(file), {});
    }
  }
  return texts;
}

const std::string *textOf(const Texts &texts, const std::string &name) {
  auto found = texts.find(std::filesystem::path(name).lexically_normal().string());
  return found == texts.end() ? nullptr : &found->second;
}

void writeFile(const std::string &name, const std::string &bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

// ---- What the listener was told

struct Told {
  bool ok = false;
  std::string score, expanded, standardOutput, standardError;
  std::vector<korvo::BlockData> blocks;
  std::vector<korvo::MessageData> messages;
  std::vector<std::string> words;  // of each message, over its caret; empty without a caret
};

korvo::PlaceData copyOf(const korvo::Place &place) {
  return {std::string(place.file), place.line, place.column, place.endColumn};
}

bool isWordPart(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("_+-.~@$#", c) != nullptr;
}

// The word that ends over the caret; else the character there, or at a blank the one before it. A
// message that shows its line ends with it and with the line of the caret.
std::string wordOverCaret(std::string_view printed) {
  std::size_t caretEnd = printed.size() - 2;
  if (printed.size() < 3 || printed.substr(caretEnd) != "^\n") {
    return {};
  }
  std::size_t lineEnd = printed.rfind('\n', caretEnd);
  std::size_t lineBegin = printed.rfind('\n', lineEnd - 1) + 1;
  std::string_view line = printed.substr(lineBegin, lineEnd - lineBegin);
  std::size_t caret = caretEnd - lineEnd - 1;
  std::size_t begin = caret;
  while (begin > 0 && isWordPart(line[begin - 1])) {
    --begin;
  }
  if (begin < caret) {
    return std::string(line.substr(begin, caret - begin));
  }
  bool blank = caret > 0 && std::isspace(static_cast<unsigned char>(line[caret])) != 0;
  return std::string(line.substr(blank ? caret - 1 : caret, 1));
}

void tellMessage(void *context, const korvo::Message &message) {
  auto *told = static_cast<Told *>(context);
  (message.onStandardOutput ? told->standardOutput : told->standardError) += message.printed;
  if (!message.onStandardOutput && !message.text.empty()) {
    told->messages.push_back({message.severity, message.number, std::string(message.text),
                              copyOf(message.place), copyOf(message.body)});
    told->words.push_back(wordOverCaret(message.printed));
  }
}

void tellOutput(void *context, const char *bytes, std::size_t size) {
  static_cast<Told *>(context)->score.append(bytes, size);
}

void tellExpanded(void *context, const char *line, std::size_t size) {
  static_cast<Told *>(context)->expanded.append(line, size).append("\n");
}

void tellEvent(void *context, const korvo::Event &event) {
  auto *block = static_cast<korvo::BlockData *>(context);
  std::size_t count = block->pfields.size() - 2;
  block->events.push_back(
      {event.start, event.duration, std::vector<float>(event.values, event.values + count)});
}

void tellBlock(void *context, const korvo::BlockView &view) {
  auto *told = static_cast<Told *>(context);
  korvo::BlockData block{view.number, view.instrument, {}, {}};
  block.pfields.assign(view.pfields, view.pfields + view.pfieldCount);
  korvo::visitEvents(view, &block, tellEvent);
  if (block.events.size() != view.eventCount) {
    block.events.clear();  // then it is not what `render` gives
  }
  told->blocks.push_back(block);
}

// ---- The text that the library reads

struct Reader {
  const std::string *text;
  std::size_t next;
};

struct World {
  const Texts *texts;
  std::string joined;
  Reader again;  // reads what is joined
};

std::ptrdiff_t readSome(void *context, char *bytes, std::size_t size) {
  auto *reader = static_cast<Reader *>(context);
  std::size_t count = reader->text->copy(bytes, size, reader->next);
  reader->next += count;
  return static_cast<std::ptrdiff_t>(count);
}

bool openInclude(void *context, const char *name, korvo::TextInput &input) {
  const std::string *text = textOf(*static_cast<World *>(context)->texts, name);
  if (text == nullptr) {
    return false;
  }
  input = {new Reader{text, 0}, readSome};
  return true;
}

void closeInclude(void * /*context*/, korvo::TextInput &input) {
  delete static_cast<Reader *>(input.context);
}

bool writeText(void *context, const char *bytes, std::size_t size) {
  static_cast<World *>(context)->joined.append(bytes, size);
  return true;
}

bool rewindText(void *context) {
  auto *world = static_cast<World *>(context);
  world->again = {&world->joined, 0};
  return true;
}

std::ptrdiff_t readText(void *context, char *bytes, std::size_t size) {
  return readSome(&static_cast<World *>(context)->again, bytes, size);
}

Told performInMemory(const Arguments &arguments, const std::string &piece, const Texts &texts) {
  Told told;
  World world{&texts, {}, {nullptr, 0}};
  Reader reader{&piece, 0};
  korvo::Options options = arguments.options;
  options.places = true;
  korvo::Host host{&world, openInclude, closeInclude, writeText, rewindText, readText};
  korvo::Listener listener;
  listener.context = &told;
  listener.message = tellMessage;
  listener.output = tellOutput;
  listener.expanded = arguments.expansion ? tellExpanded : nullptr;
  listener.block = tellBlock;
  korvo::Run *run = korvo::newRun();
  told.ok =
      korvo::perform(*run, options, arguments.input.c_str(), {&reader, readSome}, host, listener);
  korvo::freeRun(run);
  return told;
}

// ---- What both forms must agree in

bool differ(const char *what) {
  std::fprintf(stderr, "in_memory: %s\n", what);
  return false;
}

bool agree(const Told &told, const korvo::Result &result) {
  return (told.ok == result.ok || differ("one form ended well, the other did not")) &&
         (told.score == result.score || differ("the scores differ")) &&
         (told.expanded == result.expanded || differ("the expanded texts differ")) &&
         (same(told.messages, result.messages) || differ("the messages differ")) &&
         (same(told.blocks, result.blocks) || differ("the blocks differ"));
}

// ---- Places lie in a text

// The length of a line without its line feed; nothing when the text has no such line. A text that
// ends in a line feed has an empty line behind it: there stands what is missing at the end.
std::optional<std::size_t> lengthOfLine(const std::string &text, std::int64_t line) {
  std::size_t begin = 0;
  for (; line > 1; --line) {
    begin = text.find('\n', begin) + 1;
    if (begin == 0) {
      return {};
    }
  }
  return std::min(text.find('\n', begin), text.size()) - begin;
}

bool liesIn(const std::string &text, const korvo::PlaceData &place) {
  std::optional<std::size_t> length = lengthOfLine(text, place.line);
  return length && 1 <= place.column && place.column < place.endColumn &&
         static_cast<std::size_t>(place.endColumn) <= *length + 2;
}

// What stands at a place, as a line shows it.
std::string textAt(const std::string &text, const korvo::PlaceData &place) {
  std::size_t begin = 0;
  for (std::int64_t line = place.line; line > 1; --line) {
    begin = text.find('\n', begin) + 1;
  }
  auto column = static_cast<std::size_t>(place.column - 1);
  std::string found =
      text.substr(begin + column, static_cast<std::size_t>(place.endColumn - place.column));
  for (char &c : found) {
    c = c == '\n' || c == '\r' || c == '\xff' ? ' ' : c;
  }
  return found;
}

bool isPlaced(const Texts &texts, const korvo::PlaceData &place) {
  if (place.line == 0) {
    return place.file.empty();
  }
  const std::string *text = textOf(texts, place.file);
  return text != nullptr && liesIn(*text, place);
}

// In text that nothing has replaced the word stands at its place.
bool holdsWord(const Texts &texts, const korvo::MessageData &message, const std::string &word) {
  if (word.empty() || message.place.line == 0) {
    return true;
  }
  std::string found = textAt(*textOf(texts, message.place.file), message.place);
  return found == word || found.find_first_of("$~") != std::string::npos;
}

bool arePlaced(const Texts &texts, const Told &told) {
  for (std::size_t i = 0; i < told.messages.size(); ++i) {
    const korvo::MessageData &message = told.messages[i];
    if (!isPlaced(texts, message.place) || !isPlaced(texts, message.body) ||
        (message.place.line == 0 && (message.body.line > 0 || !told.words[i].empty())) ||
        !holdsWord(texts, message, told.words[i])) {
      std::fprintf(stderr, "in_memory: no such place: %s:%lld:%d-%d of \"%s\" (%s)\n",
                   message.place.file.c_str(), static_cast<long long>(message.place.line),
                   message.place.column, message.place.endColumn, told.words[i].c_str(),
                   message.text.c_str());
      return false;
    }
  }
  return true;
}

// ---- What the program says beside the library

std::string banner(const Arguments &arguments) {
  std::string text = std::string(kNameLine) + kAuthorshipLine + kCreditLines;
  text += "\n\nInput\t= \"" + arguments.input + "\"\nOutput\t= \"" + arguments.output + "\" ";
  text += arguments.options.midi ? "[MIDI file (type 1)]\n" : "[Csound score-file]\n";
  if (arguments.log) {
    text += "Log \t= \"" + *arguments.log + "\"\n";
  }
  if (arguments.expansion) {
    text += "MExp\t= \"" + *arguments.expansion + "\"\n";
  }
  return text;
}

void write(const Arguments &arguments, const Told &told) {
  std::string said = banner(arguments) + told.standardError;
  writeFile(arguments.output, told.score);
  if (arguments.expansion) {
    writeFile(*arguments.expansion, told.expanded);
  }
  if (arguments.log) {
    writeFile(*arguments.log, said);
  }
  said += told.ok ? "\n" : "";
  std::fwrite(told.standardOutput.data(), 1, told.standardOutput.size(), stdout);
  std::fwrite(said.data(), 1, said.size(), stderr);
}

int runInMemory(Arguments &arguments) {
  const Texts texts = readTexts();
  const std::string *piece = textOf(texts, arguments.input);
  if (piece == nullptr) {
    return kNoSuchArguments;
  }
  Told told = performInMemory(arguments, *piece, texts);
  arguments.options.name = arguments.input;
  arguments.options.expanded = arguments.expansion.has_value();
  arguments.options.include = [&](const std::string &name) {
    const std::string *text = textOf(texts, name);
    return text == nullptr ? std::nullopt : std::optional(*text);
  };
  bool right = agree(told, korvo::render(*piece, arguments.options)) && arePlaced(texts, told);
  write(arguments, told);
  if (!right) {
    return kFacesDiffer;
  }
  return told.ok ? 0 : 1;
}

}  // namespace

int main(int argc, char **argv) {
  Arguments arguments;
  return readArguments(argc, argv, arguments) ? runInMemory(arguments) : kNoSuchArguments;
}
