#include "kestrava/engines/SoCalculator.h"

#include "kestrava/base/SoError.h"

void SoCalculator::inputChanged(SoField* input) {
  if (input == &expression) m_isCompiled = false;
  sendAll();
}

void SoCalculator::compile() {
  if (std::exchange(m_isCompiled, true)) return;
  m_compiled.clear();
  for (int i = 0; i < expression.getNum(); ++i) {
    std::string fault;
    if (m_compiled.emplace_back().compile(expression[i].str(), fault)) continue;
    SoDebugError::post("SoCalculator", "%s%sexpression %d, %s", getName().c_str(),
                       getName().empty() ? "" : ": ", i, fault.c_str());
  }
}

void SoCalculator::evaluate() {
  compile();
  SoMFFloat const* const numbers[] = {&a, &b, &c, &d, &e, &f, &g, &h};
  SoMFVec3f const* const vectors[] = {&A, &B, &C, &D, &E, &F, &G, &H};
  constexpr int HALF = SoExpression::INPUTS / 2;
  auto const countOf = [&](int slot) {
    return slot < HALF ? numbers[slot]->getNum() : vectors[slot - HALF]->getNum();
  };
  bool reads[SoExpression::INPUTS] = {};
  bool writes[SoExpression::SLOTS] = {};
  int count = 1;
  for (SoExpression const& part : m_compiled) {
    for (int slot = 0; slot < SoExpression::INPUTS; ++slot) reads[slot] |= part.reads(slot);
    for (int slot = 0; slot < SoExpression::SLOTS; ++slot) writes[slot] |= part.writes(slot);
  }
  for (int slot = 0; slot < SoExpression::INPUTS; ++slot) {
    if (reads[slot]) count = std::max(count, countOf(slot));
  }

  constexpr int OUTPUTS = SoExpression::INPUTS + SoExpression::TEMPORARIES;
  constexpr int HALF_OUTPUTS = SoExpression::OUTPUTS / 2;
  std::vector<float> numbersOut[HALF_OUTPUTS];
  std::vector<SbVec3f> vectorsOut[HALF_OUTPUTS];
  for (int i = 0; i < count; ++i) {
    SoExpression::Variables variables{};
    for (int slot = 0; slot < SoExpression::INPUTS; ++slot) {
      if (!reads[slot] || countOf(slot) == 0) continue;
      int const index = std::min(i, countOf(slot) - 1);
      variables[slot] =
          slot < HALF ? SbVec3f((*numbers[slot])[index], 0.f, 0.f) : (*vectors[slot - HALF])[index];
    }
    for (SoExpression const& part : m_compiled) part.run(variables);
    for (int k = 0; k < HALF_OUTPUTS; ++k) {
      if (writes[OUTPUTS + k]) numbersOut[k].push_back(variables[OUTPUTS + k][0]);
      if (writes[OUTPUTS + HALF_OUTPUTS + k]) vectorsOut[k].push_back(variables[OUTPUTS + HALF_OUTPUTS + k]);
    }
  }
  SoMFFloat* const numberFields[] = {&oa, &ob, &oc, &od};
  SoMFVec3f* const vectorFields[] = {&oA, &oB, &oC, &oD};
  for (int k = 0; k < HALF_OUTPUTS; ++k) {
    // What no expression sets is 0.
    if (numbersOut[k].empty()) numbersOut[k].push_back(0);
    if (vectorsOut[k].empty()) vectorsOut[k].emplace_back();
    numberFields[k]->setValues(std::move(numbersOut[k]));
    vectorFields[k]->setValues(std::move(vectorsOut[k]));
  }
}
