#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/engines/SoExpression.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Computes outputs by expressions such as "ta = sin(a); oA = B * ta + vec3f(0, b, 0)".
///
/// Each string holds assignments, separated by ';', to the outputs oa..od (numbers) and oA..oD (vectors) or
/// to the temporaries ta..th and tA..tH, in terms of these and of the inputs a..h and A..H. Operators as in
/// C, loosest first:
/// ?: || && == != < <= > >= + - * / % and the signs - and !; `*` and `/` also scale vectors, + - == != take
/// two of them. [0] to [2] is a component of a vector, on either side. Functions: sin cos tan asin acos atan
/// atan2 sinh cosh tanh sqrt pow exp log log10 ceil floor fabs fmod min max rand(most), cross dot length
/// normalize vec3f(x, y, z). Constants: M_PI, M_E, MAXFLOAT and so on. Angles in radians.
///
/// Inputs with several values are worked off one by one; the last value of a shorter input counts for the
/// rest, and temporaries begin at 0 for each. A string that is faulty is left out, and posted as a debug
/// error once a change with the place of the fault.
class SoCalculator : public SoEngine {
  SO_ENGINE(SoCalculator, SoEngine)

  SoMFFloat a{this, "a", 0.f};
  SoMFFloat b{this, "b", 0.f};
  SoMFFloat c{this, "c", 0.f};
  SoMFFloat d{this, "d", 0.f};
  SoMFFloat e{this, "e", 0.f};
  SoMFFloat f{this, "f", 0.f};
  SoMFFloat g{this, "g", 0.f};
  SoMFFloat h{this, "h", 0.f};
  SoMFVec3f A{this, "A", SbVec3f()};
  SoMFVec3f B{this, "B", SbVec3f()};
  SoMFVec3f C{this, "C", SbVec3f()};
  SoMFVec3f D{this, "D", SbVec3f()};
  SoMFVec3f E{this, "E", SbVec3f()};
  SoMFVec3f F{this, "F", SbVec3f()};
  SoMFVec3f G{this, "G", SbVec3f()};
  SoMFVec3f H{this, "H", SbVec3f()};
  SoMFString expression{this, "expression"};
  SoMFFloat oa{this, "oa", 0.f, SoField::EVENT_OUT};
  SoMFFloat ob{this, "ob", 0.f, SoField::EVENT_OUT};
  SoMFFloat oc{this, "oc", 0.f, SoField::EVENT_OUT};
  SoMFFloat od{this, "od", 0.f, SoField::EVENT_OUT};
  SoMFVec3f oA{this, "oA", SbVec3f(), SoField::EVENT_OUT};
  SoMFVec3f oB{this, "oB", SbVec3f(), SoField::EVENT_OUT};
  SoMFVec3f oC{this, "oC", SbVec3f(), SoField::EVENT_OUT};
  SoMFVec3f oD{this, "oD", SbVec3f(), SoField::EVENT_OUT};

 protected:
  ~SoCalculator() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;

 private:
  void compile();

  std::vector<SoExpression> m_compiled;
  bool m_isCompiled = false;
};
