// The table of kinds: what makes a name a data function.
#include "ddf/generator.h"

namespace korvo {

namespace {

constexpr Generator kGenerators[] = {
    {kRA, kPercentageExpected, nullptr, readRandomSegment, nullptr, randomValue},
    {kRW, kPercentageExpected, nullptr, readWalkSegment, nullptr, walkValue},
    {kMO, kPercentageExpected, nullptr, readMoveSegment, checkMoveSegment, moveValue},
    {kSE, kPercentageExpected, nullptr, readSelectSegment, nullptr, selectValue},
    {kEX, kBadEquationData, beginExpression, readExpressionSegment, checkExpressionSegment,
     expressionValue},
    {kMS, kPercentageExpected, nullptr, readTwoListSegment, nullptr, twoListValue},
    {kHO, kOk, nullptr, readHoldSegment, nullptr, holdValue},
};

}  // namespace

const Generator *findGenerator(CommandCode name) {
  for (const Generator &generator : kGenerators) {
    if (generator.name == name) {
      return &generator;
    }
  }
  return nullptr;
}

}  // namespace korvo
