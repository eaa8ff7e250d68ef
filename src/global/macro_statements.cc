// A definition is gathered piece by piece (name, parameter names, body) into one growing text; only
// when its closing "#" has been read is it cut to size and put into the table.
//
// The keywords are tested loosely, and pieces may rely on it: of "#define" only the "d" and the
// blank behind six characters count, of "#undef" one letter in its place is enough.
#include "global/macro_statements.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

#include "base/characters.h"
#include "preproc/conditional.h"
#include "preproc/macros.h"
#include "preproc/names.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"

namespace korvo {

namespace {

constexpr int kNameLimit = kMaxNameLength + 1;
constexpr int kBodyLimit = kMaxBodyLength + 1;
constexpr int kDefineLength = 6;
constexpr std::string_view kUndef = "undef";
constexpr std::string_view kEndif = "endif";

// A definition being read: the texts one behind the other, and where each ends.
struct Definition {
  char *text = nullptr;
  std::size_t used = 0;
  std::size_t capacity = 0;
  std::size_t nameEnd = 0;
  std::size_t paramEnds[kMaxMacroParameters] = {};
  int argc = 0;
  Spot bodySpot;                  // line 0: it is not known
  std::int64_t bodyLineEnds = 0;  // in it so far
};

bool appendCharacter(Definition &definition, char c) {
  if (definition.used == definition.capacity) {
    std::size_t capacity = definition.capacity == 0 ? 256 : definition.capacity * 2;
    char *text = static_cast<char *>(std::realloc(definition.text, capacity));
    if (text == nullptr) {
      return false;
    }
    definition.text = text;
    definition.capacity = capacity;
  }
  definition.text[definition.used++] = c;
  return true;
}

constexpr const char *kNameTooLong =
    "\n\nERROR: Line %d: The macro name has exceeded the maximum number\n"
    "of characters allowed (%d).\n";
constexpr const char *kBodyTooLong =
    "\n\nERROR: Line %d: The macro body has exceeded the maximum number\n"
    "of characters allowed (%d).\n";

ErrorCode tooLong(SourceReader &source, const char *format, int limit) {
  sayError(source, format, {source.lineCounter, limit});
  return kContextOnly;
}

// A name, its first letter required. The name of a parameter may go on in the next line
// (`overLines`).
ErrorCode gatherName(SourceReader &source, Definition &definition, bool overLines) {
  if (!isLetter(current(source))) {
    return kNameNeedsLetter;
  }
  std::size_t begin = definition.used;
  for (;;) {
    while (isNamePart(current(source))) {
      if (!appendCharacter(definition, next_char(source))) {
        return kOutOfMemory;
      }
      if (definition.used - begin == kNameLimit) {
        return tooLong(source, kNameTooLong, kNameLimit);
      }
    }
    if (!overLines || current(source) != '\0') {
      return kOk;
    }
    ErrorCode error = inputEnded(source) ? kEndOfInput : read_line(source);
    if (error != kOk) {
      return error == kEndOfInput ? kOk : error;
    }
  }
}

// The parameter list behind its "(". Names are separated by blanks and at most one ",", "'" or "#".
ErrorCode gatherParameters(SourceReader &source, Definition &definition) {
  do {
    RETURN_IF_ERROR(skip_blanks_and_comments(source));
    if (definition.argc == kMaxMacroParameters) {
      return kOutOfMemory;
    }
    RETURN_IF_ERROR(gatherName(source, definition, true));
    definition.paramEnds[definition.argc++] = definition.used;
    RETURN_IF_ERROR(skip_blanks_and_comments(source));
    char c = current(source);
    if (c == ',' || c == '\'' || c == '#') {
      ++source.position;
    }
    RETURN_IF_ERROR(skip_blanks(source));
  } while (current(source) != ')');
  ++source.position;
  return kOk;
}

// Takes `count` characters of the line into the body.
ErrorCode appendToBody(SourceReader &source, Definition &definition, std::size_t begin,
                       const char *text, int count) {
  for (int i = 0; i < count; ++i) {
    if (!appendCharacter(definition, text[i])) {
      return kOutOfMemory;
    }
    if (definition.used - begin == kBodyLimit) {
      return tooLong(source, kBodyTooLong, kBodyLimit);
    }
  }
  return kOk;
}

// The comment state behind the characters at `text`, and how many of them make one step: a mark
// counts as a whole. Unlike in the scan of a line, nothing but the line's end closes a comment that
// ";" opened.
int stepInBody(const char *text, CommentState &comment) {
  if (comment == kNoComment && text[0] == ';') {
    comment = kLineComment;
  } else if (comment == kNoComment && text[0] == '/' && text[1] == '*') {
    comment = kBlockComment;
    return 2;
  } else if (comment == kBlockComment && text[0] == '*' && text[1] == '/') {
    comment = kNoComment;
    return 2;
  }
  return 1;
}

// Where the body begins; nowhere when its first line does not stand in the file as it is.
Spot spotOfBody(const SourceReader &source) {
  return isPlain(source.map, source.origin, source.replacements)
             ? spotOf(source.map, source.origin, source.replacements, source.position)
             : Spot{};
}

// Whether the line just read goes on in the file where the body so far has ended: no include, no
// section and no overlong line lies between, so that a character of the body can be found again.
bool goesOn(const SourceReader &source, const Definition &definition) {
  const Spot &spot = source.origin.spot;
  return isPlain(source.map, source.origin, source.replacements) &&
         spot.file == definition.bodySpot.file && spot.column == 1 &&
         spot.line == definition.bodySpot.line + definition.bodyLineEnds;
}

// The body between its marks. Comments stay in it, and a "#" in a comment does not end it.
ErrorCode gatherBody(SourceReader &source, Definition &definition) {
  definition.bodySpot = spotOfBody(source);
  std::size_t begin = definition.used;
  CommentState comment = kNoComment;
  while (comment != kNoComment || current(source) != '#') {
    if (current(source) != '\0') {
      const char *text = source.line + source.position;
      int count = stepInBody(text, comment);
      source.position += count;
      RETURN_IF_ERROR(appendToBody(source, definition, begin, text, count));
      continue;
    }
    if (inputEnded(source)) {
      return kMissingMacroBodyEnd;
    }
    RETURN_IF_ERROR(appendToBody(source, definition, begin, "\n", 1));
    ErrorCode error = read_line(source);
    if (error != kOk) {
      return error == kEndOfInput ? kMissingMacroBodyEnd : error;
    }
    comment = comment == kLineComment ? kNoComment : comment;
    ++definition.bodyLineEnds;
    if (!goesOn(source, definition)) {
      definition.bodySpot = Spot{};
    }
  }
  ++source.position;
  return kOk;
}

// The first parameter with the name of an earlier one; behind the last when all differ.
int repeatedParameter(const std::string_view *params, int argc) {
  for (int i = 1; i < argc; ++i) {
    if (std::find(params, params + i, params[i]) != params + i) {
      return i;
    }
  }
  return argc;
}

// One block of memory for the record, its parameter names and its texts.
Macro *makeMacro(const Definition &definition) {
  std::size_t paramBytes = sizeof(std::string_view) * static_cast<std::size_t>(definition.argc);
  char *memory = static_cast<char *>(std::malloc(sizeof(Macro) + paramBytes + definition.used));
  if (memory == nullptr) {
    return nullptr;
  }
  char *text = memory + sizeof(Macro) + paramBytes;
  std::memcpy(text, definition.text, definition.used);
  Macro *macro = new (memory) Macro;
  auto *params = reinterpret_cast<std::string_view *>(memory + sizeof(Macro));
  macro->name = {text, definition.nameEnd};
  std::size_t begin = definition.nameEnd;
  for (int i = 0; i < definition.argc; ++i) {
    new (params + i) std::string_view(text + begin, definition.paramEnds[i] - begin);
    begin = definition.paramEnds[i];
  }
  macro->params = params;
  macro->argc = definition.argc;
  macro->repeatedParam = repeatedParameter(params, definition.argc);
  macro->body = {text + begin, definition.used - begin};
  macro->spot = definition.bodySpot;
  return macro;
}
static_assert(std::is_trivially_destructible_v<Macro>, "a macro is freed as one block of memory");

ErrorCode storeMacro(MacroTable &table, const Definition &definition) {
  if (findName(table, {definition.text, definition.nameEnd}) != nullptr) {
    return kMacroExists;
  }
  Macro *macro = makeMacro(definition);
  if (macro == nullptr) {
    return kOutOfMemory;
  }
  if (!addName(table, macro)) {
    std::free(macro);
    return kOutOfMemory;
  }
  return kOk;
}

ErrorCode gatherDefinition(SourceReader &source, Definition &definition) {
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  RETURN_IF_ERROR(gatherName(source, definition, false));
  definition.nameEnd = definition.used;
  if (current(source) == '(') {
    ++source.position;
    RETURN_IF_ERROR(gatherParameters(source, definition));
  }
  RETURN_IF_ERROR(skip_blanks(source));
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  if (current(source) != '#') {
    return kBodyNeedsMarks;
  }
  ++source.position;
  return gatherBody(source, definition);
}

// Steps over `length` characters of a keyword and wants white space behind them.
bool takeKeyword(SourceReader &source, int length) {
  for (int i = 0; i < length; ++i) {
    next_char(source);
  }
  return isSpace(current(source));
}

ErrorCode defineMacro(SourceReader &source) {
  if (!takeKeyword(source, kDefineLength)) {
    return kBadDefinition;
  }
  RETURN_IF_ERROR(skip_blanks(source));
  Definition definition;
  ErrorCode error = gatherDefinition(source, definition);
  if (error == kOk) {
    error = storeMacro(source.macros, definition);
  }
  std::free(definition.text);
  return error;
}

ErrorCode undefineMacro(SourceReader &source) {
  if (!matchesLoosely(source.line + source.position, kUndef) ||
      !takeKeyword(source, static_cast<int>(kUndef.size()))) {
    return kBadDefinition;
  }
  RETURN_IF_ERROR(skip_blanks(source));
  const char *begin = source.line + source.position;
  while (current(source) != '\0' && !isSpace(current(source))) {
    ++source.position;
  }
  std::string_view name(begin, static_cast<std::size_t>(source.line + source.position - begin));
  if (source.macros.count == 0) {
    return kNoMacros;
  }
  NamedRecord *macro = findName(source.macros, name);
  if (macro == nullptr) {
    return unknownName(source, "macro", name);
  }
  removeName(source.macros, macro);
  forgetBodies(source.replacements);
  std::free(static_cast<Macro *>(macro));
  return kOk;
}

}  // namespace

ErrorCode MacroStatement(SourceReader &source) {
  switch (current(source)) {
    case 'd':
      return defineMacro(source);
    case 'i': {
      float unused = 0.0F;
      return ReadIfValue(source, unused);
    }
    case 'e':
      if (std::strncmp(source.line + source.position, kEndif.data(), kEndif.size()) == 0) {
        source.position += static_cast<std::int32_t>(kEndif.size());
      }
      return kOk;
    default:
      return undefineMacro(source);
  }
}

}  // namespace korvo
