// The terms and the operators are gathered up to the "]", then applied in their order, without
// precedence.
#include "preproc/equation.h"

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/numbers.h"
#include "base/random.h"
#include "preproc/constants.h"
#include "preproc/source_reader.h"

namespace korvo {

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
double drawRandomTerm(SourceReader &source) {
  float value = static_cast<float>(drawIndex(*source.random, 32767)) / 32767.0F;
  if (!source.messages->silent) {
    say(*source.messages, "\n\tLine %d: '?' evaluated at = %f", {source.lineCounter, value});
  }
  return static_cast<double>(value);
}

constexpr CharacterSet kSigns("+-");
constexpr CharacterSet kOperators("+-*/%");
constexpr CharacterSet kBlanks(" \t\n");

// One step: a term, an operator or a blank.
ErrorCode takeTerm(SourceReader &source, Equation &equation) {
  char c = current(source);
  if (isLetter(c)) {
    const Constant *constant = nullptr;
    RETURN_IF_ERROR(LookupConst(source, constant));
    return addValue(equation, constant->value);
  }
  if (isDigit(c) || c == '.' || (contains(kSigns, c) && equation.afterOperator)) {
    double value = 0.0;
    return read_double(value, source.line, source.position) ? addValue(equation, value) : kBadFloat;
  }
  if (c == '@') {
    char which = source.line[source.position + 1];
    if (which != '1' && which != '2') {
      return kBadRunVariable;  // beats ("@3", "@4") are for references outside equations
    }
    source.position += 2;
    return addValue(
        equation, which == '1' ? source.values.lastBlockSeconds : source.values.cumulativeSeconds);
  }
  if (c != '?' && !contains(kBlanks, c) && !contains(kOperators, c)) {
    return kIllegalInEquation;
  }
  ++source.position;
  if (c == '?') {
    return addValue(equation, drawRandomTerm(source));
  }
  return contains(kOperators, c) ? addOperator(equation, c) : kOk;
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

ErrorCode EvaluateEquation(SourceReader &source, double &result) {
  Equation equation;
  ++source.position;
  skipBlanksInLine(source.line, source.position);
  while (current(source) != ']') {
    if (current(source) == '\0') {
      return kEquationNotClosed;
    }
    RETURN_IF_ERROR(takeTerm(source, equation));
  }
  return workOut(equation, result);
}

}  // namespace korvo
