// A reference is read, its value found, a message printed, and the number written in its place.
#include "preproc/constants.h"

#include <cmath>
#include <cstdlib>

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/number_format.h"
#include "preproc/equation.h"
#include "preproc/line_edit.h"
#include "preproc/macro_call.h"
#include "preproc/names.h"

namespace korvo {

namespace {

// What a reference came to, and what the message calls it.
struct Reference {
  double value = 0.0;
  bool isEquation = false;  // its "]" is still to be stepped over
  BodyOrigin definition;
  std::string_view shownName;
};

ErrorCode readRunVariable(SourceReader &source, Reference &reference) {
  double beatsPerSecond = static_cast<double>(*source.values.tempo) / 60.0;
  switch (source.line[source.position + 1]) {
    case '1':
      reference.value = source.values.lastBlockSeconds;
      reference.shownName = "@1 (Last IB Time)";
      break;
    case '2':
      reference.value = source.values.cumulativeSeconds;
      reference.shownName = "@2 (Cumulative Time)";
      break;
    case '3':
      reference.value = beatsPerSecond * source.values.lastBlockSeconds;
      reference.shownName = "@3 (Last IB Time [BEATS])";
      break;
    case '4':
      reference.value = beatsPerSecond * source.values.cumulativeSeconds;
      reference.shownName = "@4 (Cumulative Time [BEATS])";
      break;
    default:
      return kBadRunVariable;
  }
  source.position += 2;
  return kOk;
}

ErrorCode readEquation(SourceReader &source, Reference &reference) {
  reference.shownName = "equation";
  reference.isEquation = true;
  return EvaluateEquation(source, reference.value);
}

ErrorCode readReference(SourceReader &source, Reference &reference) {
  switch (current(source)) {
    case '@':
      return readRunVariable(source, reference);
    case '[':
      return readEquation(source, reference);
    default: {
      const Constant *constant = nullptr;
      RETURN_IF_ERROR(LookupConst(source, constant));
      reference.value = constant->value;
      reference.definition = {constant->spot, constant->name};
      reference.shownName = constant->name;
      return kOk;
    }
  }
}

}  // namespace

ErrorCode LookupConst(SourceReader &source, const Constant *&constant) {
  std::string_view name = takeName(source.line, source.position);
  constant = static_cast<const Constant *>(findName(source.constants, name));
  return constant != nullptr ? kOk : unknownName(source, "constant", name);
}

ErrorCode ExpandConstRef(SourceReader &source) {
  std::int32_t start = source.position - 1;
  Reference reference;
  RETURN_IF_ERROR(readReference(source, reference));
  if (!source.messages->silent) {
    say(*source.messages, "\n\tExpanding const \"%s\" (%f) into line %d...",
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
  if (!countExpansion(source.spent, characters)) {
    return kOutOfMemory;
  }
  if (!replaceInLine(source.line, start, end, inserted)) {
    return kOutOfMemory;
  }
  if (source.wantsPlaces) {
    Replacement replacement;
    replacement.from = start;
    replacement.to = end;
    replacement.inserted = static_cast<std::int32_t>(inserted.size());
    replacement.inner = source.replacements.count;
    replacement.body = reference.definition;
    replacement.whole = true;
    addReplacement(source.replacements, replacement);
  }
  return kOk;
}

char *FormatConstValue(char *out, double value) {
  if (value < 0.0) {
    *out++ = '-';
  }
  value = std::fabs(value);
  double whole = std::trunc(value);
  out = writeFixed(out, whole, 0, 0);
  *out++ = '.';
  auto thousandths = static_cast<int>(roundHalfUp((value - whole) * 1000.0));
  for (int place = 100; place > 1 && thousandths < place; place /= 10) {
    *out++ = '0';
  }
  return writeInteger(out, thousandths, 0);
}

void freeConstants(NameTable &table) {
  freeNames(table, [](NamedRecord *record) { std::free(static_cast<Constant *>(record)); });
}

}  // namespace korvo
