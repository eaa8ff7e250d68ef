// A call is expanded from the inside: the arguments of a macro act as macros themselves while its
// body is worked through, and only then does the body take the call's place. What has been inserted
// is scanned again by whoever asked for the expansion, so a body may call further macros; the
// limits on number, depth and length are what ends one that calls itself.
#include "preproc/macro_call.h"

#include <cstring>
#include <string_view>

#include "base/characters.h"
#include "preproc/line_edit.h"
#include "preproc/macros.h"
#include "preproc/names.h"

namespace korvo {

struct Argument {
  const char *text;
  std::size_t size;
};

struct ArgumentList {
  int count = 0;
  const std::string_view *names = nullptr;  // the macro's parameters
  Argument texts[kMaxMacroParameters];      // as many as there are
};

namespace {

// What a name stands for: a macro, or an argument of the enclosing call (which has no parameters).
struct Callee {
  std::string_view name;
  std::string_view body;
  const Macro *macro = nullptr;  // null for an argument
};

int findArgument(const ArgumentList &arguments, std::string_view name) {
  int i = arguments.count - 1;
  while (i >= 0 && arguments.names[i] != name) {
    --i;
  }
  return i;
}

bool findCallee(const MacroTable &macros, const ArgumentList *scope, std::string_view name,
                Callee &callee) {
  int argument = scope != nullptr ? findArgument(*scope, name) : -1;
  if (argument >= 0) {
    const Argument &text = scope->texts[argument];
    callee = {scope->names[argument], {text.text, text.size}, nullptr};
    return true;
  }
  const auto *macro = static_cast<const Macro *>(findName(macros, name));
  if (macro != nullptr) {
    callee = {macro->name, macro->body, macro};
  }
  return macro != nullptr;
}

// Where the call whose name ends before `p` ends in the text: there or, when "(" follows the name
// directly, behind the ")" that balances it. So a macro without parameters swallows what stands in
// parentheses behind it, and a blank before the "(" leaves the arguments in the line.
std::int32_t callEnd(const char *text, std::int32_t p) {
  if (text[p] != '(') {
    return p;
  }
  constexpr CharacterSet kStops("()\0");
  for (int open = 1; open > 0;) {
    p = static_cast<std::int32_t>(findIn(kStops, text + p + 1) - text);
    if (text[p] == '\0') {
      return p;
    }
    open += text[p] == '(' ? 1 : -1;
  }
  return p + 1;
}

// The arguments of a call, from its "(". Each lasts to "'" or "#", the last one to ")"; everything
// else, blanks, commas and parentheses included, belongs to the argument.
ErrorCode readArguments(const Macro &macro, const char *text, std::int32_t &cursor,
                        ArgumentList &arguments) {
  arguments.names = macro.params;
  skipBlanksInLine(text, cursor);
  if (text[cursor] != '(') {
    return kCallNeedsParenthesis;
  }
  ++cursor;
  for (int i = 0; i < macro.argc; ++i) {
    bool last = i == macro.argc - 1;
    const char *terminators = last ? "')" : "'#";
    std::int32_t begin = cursor;
    cursor += static_cast<std::int32_t>(std::strcspn(text + cursor, terminators));
    if (text[cursor] == '\0') {
      return kCallNotClosed;
    }
    if (last && text[cursor] == '\'') {
      return kTooManyArguments;
    }
    Argument argument = {text + begin, static_cast<std::size_t>(cursor - begin)};
    ++cursor;
    if (i == macro.repeatedParam) {
      return kMacroExists;
    }
    arguments.texts[arguments.count++] = argument;
  }
  return kOk;
}

// Behind the call that begins at the "$" at `p`.
std::int32_t passedOver(const char *text, std::int32_t p) {
  ++p;
  takeName(text, p);
  return callEnd(text, p);
}

// Expands all calls in the body of a macro with parameters. What a nested call inserts is scanned
// as well, except that a call that stands at its very beginning is passed over.
ErrorCode expandBody(SourceReader &source, const ArgumentList &arguments, char *body, int depth) {
  std::int32_t p = 0;
  while (body[p] != '\0') {
    if (body[p] != '$') {
      ++p;
      continue;
    }
    std::int32_t cursor = p + 1;
    RETURN_IF_ERROR(ExpandMacroCall(source, &arguments, body, cursor, depth + 1));
    p = body[cursor] == '$' ? passedOver(body, cursor) : cursor;
  }
  return kOk;
}

// What the call from `start` to `end` has become; `inner` is the first of the replacements in its
// body.
Replacement replacementBy(const Callee &callee, std::int32_t start, std::int32_t end, int depth,
                          std::uint32_t inner) {
  Replacement replacement;
  replacement.from = start;
  replacement.to = end;
  replacement.inserted = static_cast<std::int32_t>(callee.body.size());
  replacement.depth = depth;
  replacement.inner = inner;
  if (callee.macro != nullptr) {
    replacement.body = {callee.macro->spot, callee.macro->body};
  }
  return replacement;
}

}  // namespace

bool mayExpand(const ExpansionCount &spent) {
  return spent.expansions <= kMaxExpansionsInRun && spent.characters <= kMaxExpandedInRun;
}

bool countExpansion(ExpansionCount &spent, std::size_t characters) {
  ++spent.expansions;
  spent.characters += static_cast<std::int64_t>(characters);
  return mayExpand(spent);
}

ErrorCode ExpandMacroCall(SourceReader &source, const ArgumentList *scope, char *text,
                          std::int32_t &cursor, int depth) {
  std::int32_t start = cursor - 1;
  if (++source.expansions > kMaxExpansionsInLine || depth > kMaxCallDepth) {
    cursor = start;
    return kOutOfMemory;
  }
  std::string_view name = takeName(text, cursor);
  std::int32_t nameEnd = cursor;
  Callee callee;
  if (!findCallee(source.macros, scope, name, callee)) {
    return unknownName(source, "macro", name);
  }
  char body[kLineBytes];
  std::size_t characters = 0;
  std::uint32_t inner = source.replacements.count;
  if (callee.macro != nullptr && callee.macro->argc > 0) {
    ArgumentList arguments;
    RETURN_IF_ERROR(readArguments(*callee.macro, text, cursor, arguments));
    characters = callee.body.copy(body, kMaxLineLength);
    body[characters] = '\0';
    RETURN_IF_ERROR(expandBody(source, arguments, body, depth));
    callee.body = body;
  }
  if (!source.messages->silent) {
    say(*source.messages, "\n\tExpanding macro \"%s\" into line %d...",
        {callee.name, source.lineCounter});
  }
  cursor = start;
  std::int32_t end = callEnd(text, nameEnd);
  characters += static_cast<std::size_t>(end - start) + callee.body.size();
  if (!countExpansion(source.spent, characters)) {
    return kOutOfMemory;
  }
  if (!replaceInLine(text, start, end, callee.body)) {
    return kOutOfMemory;
  }
  if (source.wantsPlaces) {
    addReplacement(source.replacements, replacementBy(callee, start, end, depth, inner));
  }
  return kOk;
}

}  // namespace korvo
