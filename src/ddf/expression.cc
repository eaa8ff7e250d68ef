// EX: EX(T 0.5 I [p4 * 2 + p5] 0.5 p4). Terms are applied strictly from left to right; P2 stands
// for the event's start, P3 for its duration as it is at that moment.
#include "ddf/arguments.h"
#include "ddf/generator.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

bool isReferenceStart(char c) { return c == 'p' || c == 'P'; }

bool isOperator(char c) { return c == '+' || c == '-' || c == '*' || c == '/' || c == '%'; }

// The "p" and its number. Only a p-field of this block that has been specified, and is not the
// present one, can be used.
ErrorCode readReference(RunState &run, SourceReader &source, Term &term) {
  ++source.position;
  if (!read_short(term.pfield, source.line, source.position)) {
    return kBadPfieldNumber;
  }
  bool exists = term.pfield >= 2 && term.pfield <= run.block.header.pfieldCount;
  if (!exists || !run.block.pfields[term.pfield].given || term.pfield == run.pfield.number) {
    return kBadReference;
  }
  term.isReference = true;
  run.segments.referenceSeen = true;
  return kOk;
}

ErrorCode readTerm(RunState &run, SourceReader &source, Segment &segment, char operation) {
  Term term{operation, false, 0, 0.0F};
  if (isReferenceStart(current(source))) {
    ErrorCode error = readReference(run, source, term);
    if (error > 0) {
      return error;
    }
    if (operation == '/') {
      warn(run, source, kMayDivideByZero);
    }
  } else if (!read_float(term.number, source.line, source.position)) {
    return kBadValue;
  } else if (operation == '/' && term.number == 0.0F) {
    return kDivisionByZero;
  }
  ++segment.list.count;
  return addTerm(run.segments.terms, term) ? kOk : kOutOfMemory;
}

// What stands behind the "[", up to and with the "]".
ErrorCode readEquation(RunState &run, SourceReader &source, Segment &segment) {
  char operation = '+';
  for (;;) {
    ErrorCode error = skip_blanks(run, source);
    if (error <= 0) {
      error = readTerm(run, source, segment, operation);
    }
    if (error <= 0) {
      error = skip_blanks(run, source);
    }
    if (error > 0) {
      return error;
    }
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

ErrorCode beginExpression(RunState &run, SourceReader &source) {
  if (run.pfield.number == 2) {
    return kBadReference;
  }
  if (run.pfield.number == 3) {
    warn(run, source, kBewareP3Codes);
  }
  return kOk;
}

ErrorCode readExpressionSegment(RunState &run, SourceReader &source, Segment &segment) {
  segment.list.first = run.segments.terms.count;
  char letter = toLower(current(source));
  if (letter == 'f' || letter == 'i') {
    segment.integerResult = letter == 'i';
    ++source.position;
    ErrorCode error = skip_separator(run, source);
    if (error > 0) {
      return error;
    }
  }
  if (current(source) == '[') {
    ++source.position;
    return readEquation(run, source, segment);
  }
  return isReferenceStart(current(source)) ? readTerm(run, source, segment, '+') : kBadReference;
}

// A segment of numbers alone is fine behind one that has named a p-field.
ErrorCode checkExpressionSegment(const RunState &run, const Segment & /*segment*/) {
  return run.segments.referenceSeen ? kOk : kReferenceMissing;
}

ErrorCode expressionValue(RunState &run, Segment &segment, const Moment &moment, float &value) {
  const Term *terms = run.segments.terms.items + segment.list.first;
  value = valueOf(terms[0], *moment.event);
  for (std::uint32_t i = 1; i < segment.list.count; ++i) {
    ErrorCode error = apply(value, terms[i].operation, valueOf(terms[i], *moment.event));
    if (error > 0) {
      return error;
    }
  }
  if (segment.integerResult) {
    value = roundHalfUp(value);
  }
  return kOk;
}
