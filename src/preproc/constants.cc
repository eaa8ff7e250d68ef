// A reference is read, its value found, a message printed, and the number written in its place.
#include "preproc/constants.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <new>
#include <type_traits>

#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "preproc/equation.h"
#include "preproc/line_edit.h"
#include "preproc/macro_call.h"
#include "preproc/names.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

constexpr std::string_view kConst = "const";

// What a reference came to, and what the message calls it.
struct Reference {
  double value = 0.0;
  bool isEquation = false;  // its "]" is still to be stepped over
  char shownName[kLineBytes] = "";
};

void nameReference(Reference &reference, std::string_view name) {
  reference.shownName[name.copy(reference.shownName, kMaxLineLength)] = '\0';
}

ErrorCode readRunVariable(const RunState &run, SourceReader &source, Reference &reference) {
  double beatsPerSecond = static_cast<double>(run.tempo.current) / 60.0;
  switch (source.line[source.position + 1]) {
    case '1':
      reference.value = run.lastBlockSeconds;
      nameReference(reference, "@1 (Last IB Time)");
      break;
    case '2':
      reference.value = run.cumulativeSeconds;
      nameReference(reference, "@2 (Cumulative Time)");
      break;
    case '3':
      reference.value = beatsPerSecond * run.lastBlockSeconds;
      nameReference(reference, "@3 (Last IB Time [BEATS])");
      break;
    case '4':
      reference.value = beatsPerSecond * run.cumulativeSeconds;
      nameReference(reference, "@4 (Cumulative Time [BEATS])");
      break;
    default:
      return kBadRunVariable;
  }
  source.position += 2;
  return kOk;
}

ErrorCode readEquation(RunState &run, SourceReader &source, Reference &reference) {
  nameReference(reference, "equation");
  reference.isEquation = true;
  return EvaluateEquation(run, source, reference.value);
}

ErrorCode readReference(RunState &run, SourceReader &source, Reference &reference) {
  switch (current(source)) {
    case '@':
      return readRunVariable(run, source, reference);
    case '[':
      return readEquation(run, source, reference);
    default: {
      const Constant *constant = nullptr;
      ErrorCode error = LookupConst(run, source, constant);
      if (error > 0) {
        return error;
      }
      reference.value = constant->value;
      nameReference(reference, constant->name);
      return kOk;
    }
  }
}

// One block of memory for the record and its name.
ErrorCode storeConstant(ConstTable &table, std::string_view name, double value) {
  if (findName(table, name) != nullptr) {
    return kConstantExists;
  }
  char *memory = static_cast<char *>(std::malloc(sizeof(Constant) + name.size()));
  if (memory == nullptr) {
    return kOutOfConstantMemory;
  }
  auto *constant = new (memory) Constant;
  char *text = memory + sizeof(Constant);
  name.copy(text, name.size());
  constant->name = {text, name.size()};
  constant->value = value;
  if (!addName(table, constant)) {
    std::free(memory);
    return kOutOfConstantMemory;
  }
  return kOk;
}
static_assert(std::is_trivially_destructible_v<Constant>,
              "a constant is freed as one block of memory");

}  // namespace

ErrorCode ConstStatement(RunState &run, SourceReader &source) {
  if (current(source) != 'c') {
    return kOk;
  }
  // The keyword is tested as loosely as that of #undef; its "c" always matches.
  for (std::size_t i = 0; i < kConst.size(); ++i) {
    next_char(source);
  }
  if (!isSpace(current(source))) {
    return kBadDefinition;
  }
  ErrorCode error = skip_blanks(run, source);
  if (error <= 0) {
    error = skip_blanks_and_comments(run, source);
  }
  if (error > 0) {
    return error;
  }
  if (!isLetter(current(source))) {
    return kConstantNeedsLetter;
  }
  char name[kLineBytes];  // the line may be read over before the name is needed
  std::size_t length = takeName(source.line, source.position).copy(name, kMaxLineLength);
  error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) == '$') {
    return kMacroInConstant;
  }
  double value = 0.0;
  if (!read_double(value, source.line, source.position)) {
    return kBadFloat;
  }
  return storeConstant(run.constants, {name, length}, value);
}

ErrorCode LookupConst(RunState &run, SourceReader &source, const Constant *&constant) {
  std::string_view name = takeName(source.line, source.position);
  constant = static_cast<const Constant *>(findName(run.constants, name));
  return constant != nullptr ? kOk : unknownName(run, source, "constant", name);
}

ErrorCode ExpandConstRef(RunState &run, SourceReader &source) {
  std::int32_t start = source.position - 1;
  Reference reference;
  ErrorCode error = readReference(run, source, reference);
  if (error > 0) {
    return error;
  }
  if (!run.options.silent) {
    say(run.screen, "\n\tExpanding const \"%s\" (%f) into line %d...",
        {reference.shownName, reference.value, source.lineCounter});
  }
  if (!std::isfinite(reference.value)) {
    return kBadTermCount;
  }
  std::int32_t end = source.position + (reference.isEquation ? 1 : 0);
  char text[kConstTextBytes];
  char *textEnd = FormatConstValue(text, reference.value);
  source.position = start;
  std::string_view inserted(text, static_cast<std::size_t>(textEnd - text));
  std::size_t characters = static_cast<std::size_t>(end - start) + inserted.size();
  if (!countExpansion(source, characters)) {
    return kOutOfMemory;
  }
  return replaceInLine(source.line, start, end, inserted) ? kOk : kOutOfMemory;
}

char *FormatConstValue(char *out, double value) {
  // cppcheck-suppress ctuPointerArith ; one past the end is where it should be
  char *limit = out + kConstTextBytes;
  if (value < 0.0) {
    *out++ = '-';
  }
  value = std::fabs(value);
  double whole = std::trunc(value);
  out = std::to_chars(out, limit, whole, std::chars_format::fixed, 0).ptr;
  *out++ = '.';
  auto thousandths = static_cast<int>(roundHalfUp((value - whole) * 1000.0));
  for (int place = 100; place > 1 && thousandths < place; place /= 10) {
    *out++ = '0';
  }
  return std::to_chars(out, limit, thousandths).ptr;
}

void freeConstants(ConstTable &table) {
  freeNames(table, [](NamedRecord *record) { std::free(static_cast<Constant *>(record)); });
}
