// What engines compute.

#include <cmath>

#include "kestrava/engines/SoBoolOperation.h"
#include "kestrava/engines/SoCalculator.h"
#include "kestrava/engines/SoConcatenate.h"
#include "kestrava/engines/SoCounter.h"
#include "kestrava/engines/SoGate.h"
#include "kestrava/engines/SoOnOff.h"
#include "kestrava/engines/SoSelectOne.h"
#include "kestrava/engines/SoTriggerAny.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

std::string textOf(SoField const* field) {
  SbString text;
  if (field) field->get(text);
  return field ? text.str() : "none";
}

} // namespace

TEST(EnginesValues, EveryTypeCanBeMadeAndItsOutputsRead) {
  int count = 0;
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoEngine::getClassTypeId()) || !type.canCreateInstance()) continue;
    ++count;
    SoRef<SoFieldContainer> const engine(static_cast<SoFieldContainer*>(type.createInstance()));
    ASSERT_EQ(engine->getTypeId(), type);
    int outputs = 0;
    for (int k = 0; k < engine->getNumFields(); ++k) {
      SoField* const field = engine->getField(k);
      if (field->getFieldType() == SoField::EVENT_OUT) {
        ++outputs;
        textOf(field);
        EXPECT_FALSE(field->needsEvaluation());
      } else {
        EXPECT_TRUE(field->isDefault()) << type.getName().str() << "." << field->getName().str();
      }
    }
    if (!engine->getField(SbName("type"))) {
      EXPECT_GT(outputs, 0) << type.getName().str();
    }
  }
  EXPECT_GE(count, 29);
}

TEST(EnginesValues, OfInputs) {
  struct Case {
    char const *type, *inputs, *output, *value;
  };
  for (Case const& c : std::initializer_list<Case>{
           {"ComposeVec2f", "x [ 1, 2, 3 ] y 7", "vector", "[ 1 7, 2 7, 3 7 ]"},
           {"ComposeVec3f", "x 1 y [ ] z 2", "vector", "[ ]"},
           {"ComposeVec4f", "x 1 y 2 z 3 w 4", "vector", "1 2 3 4"},
           {"DecomposeVec2f", "vector [ 1 2, 3 4 ]", "y", "[ 2, 4 ]"},
           {"DecomposeVec3f", "vector 1 2 3", "z", "3"},
           {"DecomposeVec4f", "vector [ ]", "w", "[ ]"},
           {"ComposeRotation", "axis [ 2 0 0, 0 1 0 ] angle 0.5", "rotation", "[ 1 0 0 0.5, 0 1 0 0.5 ]"},
           {"DecomposeRotation", "rotation 0 1 0 2", "angle", "2"},
           {"DecomposeRotation", "rotation 0 1 0 2", "axis", "0 1 0"},
           {"ComposeRotationFromTo", "from 1 0 0 to 1 0 0", "rotation", "0 0 1 0"},
           {"ComposeMatrix", "translation 1 2 3 scaleFactor 2 2 2", "matrix",
            "2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1"},
           {"DecomposeMatrix", "matrix 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1", "translation", "1 2 3"},
           {"DecomposeMatrix", "matrix 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1", "scaleFactor", "2 2 2"},
           // About (1 0 0), twice as large: the centre stays where it is, the rest of the way is the
           // translation.
           {"DecomposeMatrix", "center 1 0 0 matrix 2 0 0 0 0 2 0 0 0 0 2 0 -1 0 0 1", "translation",
            "0 0 0"},
           {"TransformVec3f", "vector [ 1 0 0, 0 3 0 ] matrix 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1", "point",
            "[ 3 2 3, 1 8 3 ]"},
           {"TransformVec3f", "vector 0 3 0 matrix 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1", "direction", "0 6 0"},
           {"TransformVec3f", "vector 0 3 0 matrix 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1", "normalDirection",
            "0 1 0"},
           {"InterpolateFloat", "alpha 0.25 input0 [ 0, 4 ] input1 8", "output", "[ 2, 5 ]"},
           {"InterpolateVec2f", "alpha 1 input0 0.1 0.2 input1 0.3 0.7", "output", "0.3 0.7"},
           {"InterpolateVec3f", "alpha 0.5 input1 2 4 6", "output", "1 2 3"},
           {"InterpolateVec4f", "alpha 2 input1 1 1 1 1", "output", "2 2 2 2"},
           {"InterpolateRotation", "alpha 0 input0 1 0 0 1 input1 1 0 0 2", "output", "1 0 0 1"},
           {"BoolOperation", "a [ FALSE, TRUE ] b TRUE operation A_EQUALS_B", "output", "[ FALSE, TRUE ]"},
           {"BoolOperation", "a [ FALSE, TRUE ] b TRUE operation [ NOT_A_AND_B, NOT_A_OR_NOT_B ]", "inverse",
            "[ FALSE, TRUE ]"},
       }) {
    SCOPED_TRACE(std::string(c.type) + " { " + c.inputs + " }");
    SoRef<SoEngine> const engine(SoEngine::create(SoType::fromName(c.type)));
    ASSERT_TRUE(engine);
    ASSERT_TRUE(engine->set(c.inputs));
    EXPECT_EQ(textOf(engine->getField(SbName(c.output))), c.value);
  }
}

TEST(EnginesValues, TruthTableOfTwoValues) {
  using Op = SoBoolOperation;
  SoRef<Op> const engine(new Op);
  int truths = 0;
  for (int operation = Op::CLEAR; operation <= Op::A_NOT_EQUALS_B; ++operation) {
    // Each pair of an operation and its opposite adds up to all four cases.
    for (bool a : {false, true}) {
      for (bool b : {false, true}) {
        engine->a = a;
        engine->b = b;
        engine->operation.setValue(operation);
        EXPECT_NE(engine->output[0], engine->inverse[0]);
        truths += engine->output[0];
      }
    }
  }
  EXPECT_EQ(truths, 8 * 4);
}

TEST(EnginesValues, Triggers) {
  SoRef<SoOnOff> const onOff(new SoOnOff);
  EXPECT_TRUE(onOff->isOff.getValue());
  onOff->toggle.setValue();
  onOff->toggle.setValue();
  onOff->toggle.setValue();
  EXPECT_TRUE(onOff->isOn.getValue()) << "no trigger is lost although nobody read in between";
  onOff->off.setValue();
  EXPECT_FALSE(onOff->isOn.getValue());

  SoRef<SoCounter> const counter(new SoCounter);
  ASSERT_TRUE(counter->set("min 2 max 6 step 2"));
  EXPECT_EQ(counter->output.getValue(), 2);
  SoRef<SoTriggerAny> const any(new SoTriggerAny);
  SoRef<SoOnOff> const rounds(new SoOnOff);
  ASSERT_TRUE(counter->trigger.connectFrom(&any->output));
  ASSERT_TRUE(rounds->toggle.connectFrom(&counter->syncOut));
  std::vector<int> counts;
  for (int i = 0; i < 4; ++i) {
    (i % 2 ? any->input3 : any->input0).setValue();
    counts.push_back(counter->output.getValue());
  }
  EXPECT_EQ(counts, (std::vector<int>{4, 6, 2, 4}));
  EXPECT_TRUE(rounds->isOn.getValue()) << "it began over once";
  counter->reset = std::int16_t(100);
  EXPECT_EQ(counter->output.getValue(), 4) << "not before the next trigger";
  counter->trigger.setValue();
  EXPECT_EQ(counter->output.getValue(), 6) << "no further than to the end";
  counter->step = std::int16_t(-4);
  counter->trigger.setValue();
  EXPECT_EQ(counter->output.getValue(), 2);
  counter->trigger.setValue();
  EXPECT_EQ(counter->output.getValue(), 6);
  EXPECT_FALSE(rounds->isOn.getValue());
}

TEST(EnginesValues, AGateLetsThroughWhatCameWhileItWasOpen) {
  SoRef<SoGate> const gate(new SoGate);
  EXPECT_EQ(gate->getNumFields(), 3) << "no input before the type is known";
  gate->type = SbName("SFFloat");
  ASSERT_TRUE(gate->getInput() && gate->getOutput());
  SoRef<SoCube> const source(new SoCube), follower(new SoCube);
  ASSERT_TRUE(gate->getInput()->connectFrom(&source->width));
  ASSERT_TRUE(follower->width.connectFrom(gate->getOutput()));
  EXPECT_EQ(follower->width.getValue(), 0);
  Listener listener(follower);
  source->width = 3.f;
  EXPECT_TRUE(listener.take().empty());
  gate->trigger.setValue();
  source->width = 4.f;
  EXPECT_EQ(listener.take().size(), 1u);
  gate->enable = true;
  source->width = 5.f;
  gate->enable = false;
  source->width = 6.f;
  EXPECT_EQ(follower->width.getValue(), 5);
  gate->trigger.setValue();
  EXPECT_EQ(follower->width.getValue(), 6);

  // Another type takes the old fields away, with what was connected.
  gate->type = SbName("MFVec3f");
  EXPECT_FALSE(follower->width.isConnected());
  EXPECT_EQ(follower->width.getValue(), 6);
  EXPECT_EQ(gate->getOutput()->getTypeId().getName().str(), "MFVec3f");
  DebugErrors errors;
  gate->type = SbName("Cube");
  EXPECT_EQ(errors.texts.size(), 1u);
  EXPECT_EQ(gate->getInput(), nullptr);
  gate->enable = true;
  gate->trigger.setValue();
}

TEST(EnginesValues, SelectingAndJoiningOfAnyType) {
  SoRef<SoSelectOne> const select(new SoSelectOne);
  ASSERT_TRUE(select->set("type MFRotation index 1 input [ 1 0 0 1, 0 0.6 0.8 2 ]"));
  EXPECT_EQ(textOf(select->getOutput()), "0 0.6 0.8 2");
  select->index = 2;
  EXPECT_EQ(textOf(select->getOutput()), "0 0.6 0.8 2") << "there is none";
  SoRef<SoCube> const a(new SoCube), b(new SoCube);
  select->type = SbName("MFNode");
  static_cast<SoMFNode*>(select->getInput())->setValues({a, b});
  select->index = 1;
  EXPECT_EQ(static_cast<SoSFNode*>(select->getOutput())->getValue(), b.get()) << "the node itself";
  DebugErrors errors;
  select->type = SbName("SFFloat");
  EXPECT_EQ(errors.texts.size(), 1u);

  SoRef<SoConcatenate> const join(new SoConcatenate);
  ASSERT_TRUE(join->set("type MFString input0 [ a, b ] input2 \"c d\" input9 e"));
  auto const joined = [&] {
    std::string text;
    for (SbString const& value : static_cast<SoMFString*>(join->getOutput())->values()) text += value.str() + "|";
    return text;
  };
  EXPECT_EQ(joined(), "a|b|c d|e|");
  ASSERT_TRUE(join->set("input0 [ ]"));
  EXPECT_EQ(joined(), "c d|e|");
}

TEST(EnginesValues, CalculatorComputesPerElement) {
  struct Case {
    char const *expression, *output, *value;
  };
  for (Case const& c : std::initializer_list<Case>{
           {"oa = 1 + 2 * 3", "oa", "7"},
           {"oa = (1 + 2) * 3 - -4 % 3", "oa", "10"},
           {"oa = 2 - 3 - 4", "oa", "-5"},
           {"oa = a * 2 + b", "oa", "[ 12, 14, 16 ]"},
           {"oA = vec3f(a, b, 0) / 2", "oA", "[ 0.5 5 0, 1 5 0, 1.5 5 0 ]"},
           {"ta = a > 1 && b != 0 || !1; oa = ta ? b : -b", "oa", "[ -10, 10, 10 ]"},
           {"oa = a > 2 ? 1 : a > 1 ? 2 : 3", "oa", "[ 3, 2, 1 ]"},
           {"oa = A[2] + dot(A, A); oB[1] = length(A)", "oa", "25"},
           {"oA = A; oA[0] = 9", "oA", "9 4 0"},
           {"oA = cross(vec3f(1, 0, 0), vec3f(0, 1, 0)) * 2 + 3 * normalize(vec3f(0, 0, 5))", "oA", "0 0 5"},
           {"oa = A == vec3f(3, 4, 0)", "oa", "1"},
           {"oa = max(fabs(-3), floor(2.9)) + pow(2, 10) + fmod(7, 4)", "oa", "1030"},
           {"tb = 5; oa = tb; tb = tb + 1; ob = tb", "ob", "6"},
           {"oa = 1e3 + .5", "oa", "1000.5"},
           {"oa = c", "oa", "0"}, // without values
           {"", "oa", "0"},
       }) {
    SCOPED_TRACE(c.expression);
    SoRef<SoCalculator> const engine(new SoCalculator);
    ASSERT_TRUE(engine->set("a [ 1, 2, 3 ] b 10 c [ ] A 3 4 0"));
    engine->expression.setValue(SbString(c.expression));
    EXPECT_EQ(textOf(engine->getField(SbName(c.output))), c.value);
  }
  SoRef<SoCalculator> const engine(new SoCalculator);
  engine->expression.setValues({SbString("ta = sin(M_PI / 6)"), SbString("oa = ta; ob = rand(2)")});
  EXPECT_NEAR(engine->oa[0], 0.5f, 1e-6f) << "temporaries go from one string to the next";
  EXPECT_TRUE(engine->ob[0] >= 0 && engine->ob[0] <= 2);
}

TEST(EnginesValues, CalculatorFaultsSayWhere) {
  struct Case {
    std::string expression;
    char const* message;
  };
  std::string const deep(100'000, '(');
  for (Case const& c : std::initializer_list<Case>{
           {"oa = 1 +", "column 9: expected a value, found the end"},
           {"oa = (1 + 2", "column 12: expected ')', found the end"},
           {"oa = 1 2", "column 8: expected an operator or ';', found '2'"},
           {"a = 1", "column 1: 'a' is no output or temporary"},
           {"oa 1", "column 4: expected '=', found '1'"},
           {"oa = xyz", "column 6: 'xyz' is neither a variable nor a constant"},
           {"oa = sine(1)", "column 6: there is no function 'sine'"},
           {"oa = A", "column 6: expected a number, found a vector"},
           {"oA = a", "column 6: expected a vector, found a number"},
           {"oA = A + a", "column 8: '+' does not work on a vector and a number"},
           {"oa = a[0]", "column 7: a number has no parts"},
           {"oa = A[3]", "column 8: expected 0, 1 or 2, found '3'"},
           {"oa = dot(A, a)", "column 13: 'dot' takes a vector here"},
           {"oa = vec3f(1, 2)", "column 16: expected ',', found ')'"},
           {"oa = A ? 1 : 2", "column 6: the condition is a vector"},
           {"oa = 1e99", "column 6: this is no number, or one out of range"},
           {"oa = " + deep, "column 206: the expression is nested too deeply"},
           {"oa = " + std::string(100'000, '-') + "1", "nested too deeply"},
       }) {
    SCOPED_TRACE(c.expression.substr(0, 40));
    SoRef<SoCalculator> const engine(new SoCalculator);
    DebugErrors errors;
    engine->expression.setValues({SbString("ob = 2"), SbString(c.expression)});
    EXPECT_EQ(engine->ob[0], 2) << "the other string counts";
    engine->a = 3.f;
    EXPECT_EQ(engine->oa[0], 0);
    ASSERT_EQ(errors.texts.size(), 1u) << "once a change";
    EXPECT_NE(errors.texts[0].find(std::string("expression 1, column")), std::string::npos)
        << errors.texts[0];
    EXPECT_NE(errors.texts[0].find(c.message), std::string::npos) << errors.texts[0];
  }
}
