// EX: EX(T 0.5 I [p4 * 2 + p5] 0.5 p4). Terms are applied strictly from left to right; P2 stands
// for the event's start, P3 for its duration as it is at that moment.
#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/numbers.h"
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/generator.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

bool isReferenceStart(char c) { return c == 'p' || c == 'P'; }

bool isOperator(char c) { return c == '+' || c == '-' || c == '*' || c == '/' || c == '%'; }

// The "p" and its number. Only a p-field of this block that has been specified, and is not the
// present one, can be used.
ErrorCode readReference(Generation &making, SourceReader &source, Term &term) {
  ++source.position;
  if (!read_short(term.pfield, source.line, source.position)) {
    return kBadPfieldNumber;
  }
  bool exists = term.pfield >= 2 && term.pfield <= making.block.header.pfieldCount;
  if (!exists || !making.block.pfields[term.pfield].given || term.pfield == making.pfield.number) {
    return kBadReference;
  }
  term.isReference = true;
  making.segments.referenceSeen = true;
  return kOk;
}

ErrorCode readTerm(Generation &making, SourceReader &source, ExpressionArguments &expression,
                   char operation) {
  Term term{operation, false, 0, 0.0F};
  if (isReferenceStart(current(source))) {
    RETURN_IF_ERROR(readReference(making, source, term));
    if (operation == '/') {
      warn(source, kMayDivideByZero);
    }
  } else if (!read_float(term.number, source.line, source.position)) {
    return kBadValue;
  } else if (operation == '/' && term.number == 0.0F) {
    return kDivisionByZero;
  }
  ++expression.terms.count;
  return addTerm(making.segments.terms, term) ? kOk : kOutOfMemory;
}

// What stands behind the "[", up to and with the "]".
ErrorCode readEquation(Generation &making, SourceReader &source, ExpressionArguments &expression) {
  char operation = '+';
  for (;;) {
    RETURN_IF_ERROR(skip_blanks(source));
    RETURN_IF_ERROR(readTerm(making, source, expression, operation));
    RETURN_IF_ERROR(skip_blanks(source));
    operation = current(source);
    if (operation == ']') {
      ++source.position;
      return kOk;
    }
    if (!isOperator(operation)) {
      return kBadOperation;
    }
    ++source.position;
  }
}

float valueOf(const Term &term, const EventRecord &event) {
  if (!term.isReference) {
    return term.number;
  }
  if (term.pfield == 2) {
    return event.start;
  }
  return term.pfield == 3 ? event.duration : valuesOf(event)[term.pfield - 4];
}

ErrorCode apply(float &result, char operation, float operand) {
  switch (operation) {
    case '+':
      result += operand;
      return kOk;
    case '-':
      result -= operand;
      return kOk;
    case '*':
      result *= operand;
      return kOk;
    case '/':
      if (operand == 0.0F) {
        return kDivisionByZeroPfield;
      }
      result /= operand;
      return kOk;
    default:
      result = remainderOf(result, operand);
      return kOk;
  }
}

}  // namespace

ErrorCode beginExpression(Generation &making, SourceReader &source) {
  if (making.pfield.number == 2) {
    return kBadReference;
  }
  if (making.pfield.number == 3) {
    warn(source, kBewareP3Codes);
  }
  return kOk;
}

ErrorCode readExpressionSegment(Generation &making, SourceReader &source, Segment &segment) {
  segment.arguments.expression = {};
  ExpressionArguments &expression = segment.arguments.expression;
  expression.terms.first = making.segments.terms.count;
  char letter = toLower(current(source));
  if (letter == 'f' || letter == 'i') {
    expression.integerResult = letter == 'i';
    ++source.position;
    RETURN_IF_ERROR(skip_separator(source));
  }
  if (current(source) == '[') {
    ++source.position;
    return readEquation(making, source, expression);
  }
  return isReferenceStart(current(source)) ? readTerm(making, source, expression, '+')
                                           : kBadReference;
}

// A segment of numbers alone is fine behind one that has named a p-field.
ErrorCode checkExpressionSegment(const Generation &making, const Segment & /*segment*/) {
  return making.segments.referenceSeen ? kOk : kReferenceMissing;
}

ErrorCode expressionValue(Generation &making, Segment &segment, const Moment &moment,
                          float &value) {
  const ExpressionArguments &expression = segment.arguments.expression;
  const Term *terms = making.segments.terms.items + expression.terms.first;
  value = valueOf(terms[0], *moment.event);
  for (std::uint32_t i = 1; i < expression.terms.count; ++i) {
    RETURN_IF_ERROR(apply(value, terms[i].operation, valueOf(terms[i], *moment.event)));
  }
  if (expression.integerResult) {
    value = roundHalfUp(value);
  }
  return kOk;
}

}  // namespace korvo
