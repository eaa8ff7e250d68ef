// The terms and the operators are gathered up to the "]", then applied in their order, without
// precedence.
#include "preproc/equation.h"

#include <cstring>

#include "ddf/draw.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "preproc/constants.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

constexpr int kMostTerms = 30;

struct Equation {
  double values[kMostTerms];
  char operators[kMostTerms];
  int valueCount = 0;
  int operatorCount = 0;
  bool afterOperator = false;  // a sign here belongs to a number
};

ErrorCode addValue(Equation &equation, double value) {
  if (equation.valueCount == kMostTerms) {
    return kBadTermCount;
  }
  equation.values[equation.valueCount++] = value;
  equation.afterOperator = false;
  return kOk;
}

ErrorCode addOperator(Equation &equation, char sign) {
  if (equation.operatorCount == kMostTerms) {
    return kBadTermCount;
  }
  equation.operators[equation.operatorCount++] = sign;
  equation.afterOperator = true;
  return kOk;
}

// "?": a whole number of 32767ths, in single precision.
double drawRandomTerm(RunState &run, const SourceReader &source) {
  float value = static_cast<float>(drawIndex(32767)) / 32767.0F;
  if (!run.options.silent) {
    say(run.screen, "\n\tLine %d: '?' evaluated at = %f", {source.lineCounter, value});
  }
  return static_cast<double>(value);
}

bool isOneOf(char c, const char *characters) {
  return c != '\0' && std::strchr(characters, c) != nullptr;
}

// One step: a term, an operator or a blank.
ErrorCode takeTerm(RunState &run, SourceReader &source, Equation &equation) {
  char c = current(source);
  if (isLetter(c)) {
    const Constant *constant = nullptr;
    ErrorCode error = LookupConst(run, source, constant);
    return error > 0 ? error : addValue(equation, constant->value);
  }
  if (isDigit(c) || c == '.' || (isOneOf(c, "+-") && equation.afterOperator)) {
    double value = 0.0;
    return read_double(value, source.line, source.position) ? addValue(equation, value) : kBadFloat;
  }
  if (c == '@') {
    char which = source.line[source.position + 1];
    if (which != '1' && which != '2') {
      return kBadRunVariable;  // beats ("@3", "@4") are for references outside equations
    }
    source.position += 2;
    return addValue(equation, which == '1' ? run.lastBlockSeconds : run.cumulativeSeconds);
  }
  if (c != '?' && !isOneOf(c, " \t\n+-*/%")) {
    return kIllegalInEquation;
  }
  ++source.position;
  if (c == '?') {
    return addValue(equation, drawRandomTerm(run, source));
  }
  return isOneOf(c, "+-*/%") ? addOperator(equation, c) : kOk;
}

double apply(double a, char sign, double b) {
  switch (sign) {
    case '+':
      return a + b;
    case '-':
      return a - b;
    case '*':
      return a * b;
    case '/':
      return a / b;
    default:
      return static_cast<double>(remainderOf(static_cast<float>(a), static_cast<float>(b)));
  }
}

ErrorCode workOut(const Equation &equation, double &result) {
  bool single = equation.valueCount == 1 && equation.operatorCount == 0;
  if (!single && (equation.valueCount < 2 || equation.operatorCount != equation.valueCount - 1)) {
    return kBadTermCount;
  }
  result = equation.values[0];
  for (int i = 0; i < equation.operatorCount; ++i) {
    result = apply(result, equation.operators[i], equation.values[i + 1]);
  }
  return kOk;
}

}  // namespace

ErrorCode EvaluateEquation(RunState &run, SourceReader &source, double &result) {
  Equation equation;
  ++source.position;
  skipBlanksInLine(source.line, source.position);
  while (current(source) != ']') {
    if (current(source) == '\0') {
      return kEquationNotClosed;
    }
    ErrorCode error = takeTerm(run, source, equation);
    if (error > 0) {
      return error;
    }
  }
  return workOut(equation, result);
}
