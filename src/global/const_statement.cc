// `#const name value`: a name and a number come in, a constant is kept.
#include "global/const_statement.h"

#include <cstdlib>
#include <new>
#include <type_traits>

#include "base/characters.h"
#include "base/numbers.h"
#include "preproc/constants.h"
#include "preproc/names.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr std::string_view kConst = "const";

// One block of memory for the record and its name.
ErrorCode storeConstant(ConstTable &table, std::string_view name, double value, const Spot &spot) {
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
  constant->spot = spot;
  if (!addName(table, constant)) {
    std::free(memory);
    return kOutOfConstantMemory;
  }
  return kOk;
}
static_assert(std::is_trivially_destructible_v<Constant>,
              "a constant is freed as one block of memory");

}  // namespace

ErrorCode ConstStatement(SourceReader &source) {
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
  RETURN_IF_ERROR(skip_blanks(source));
  RETURN_IF_ERROR(skip_blanks_and_comments(source));
  if (!isLetter(current(source))) {
    return kConstantNeedsLetter;
  }
  Spot spot = isPlain(source.map, source.origin, source.replacements)
                  ? spotOf(source.map, source.origin, source.replacements, source.position)
                  : Spot{};
  char name[kLineBytes];  // the line may be read over before the name is needed
  std::size_t length = takeName(source.line, source.position).copy(name, kMaxLineLength);
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) == '$') {
    return kMacroInConstant;
  }
  double value = 0.0;
  if (!read_double(value, source.line, source.position)) {
    return kBadFloat;
  }
  return storeConstant(source.constants, {name, length}, value, spot);
}

}  // namespace korvo
