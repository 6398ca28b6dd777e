#include "kestrava/engines/SoExpression.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "kestrava/engines/SoExpressionSteps.h"

int SoExpression::findSlot(std::string_view name) {
  auto const letter = [](char c, char first, int count) {
    return c >= first && c < first + count ? c - first : -1;
  };
  constexpr int HALF = 8, HALF_OUTPUTS = 4;
  char const last = name.empty() ? '\0' : name.back();
  if (name.size() == 1) {
    if (int const i = letter(last, 'a', HALF); i >= 0) return i;
    if (int const i = letter(last, 'A', HALF); i >= 0) return HALF + i;
  } else if (name.size() == 2 && name[0] == 't') {
    if (int const i = letter(last, 'a', HALF); i >= 0) return INPUTS + i;
    if (int const i = letter(last, 'A', HALF); i >= 0) return INPUTS + HALF + i;
  } else if (name.size() == 2 && name[0] == 'o') {
    if (int const i = letter(last, 'a', HALF_OUTPUTS); i >= 0) return INPUTS + TEMPORARIES + i;
    if (int const i = letter(last, 'A', HALF_OUTPUTS); i >= 0) return INPUTS + TEMPORARIES + HALF_OUTPUTS + i;
  }
  return -1;
}

bool SoExpression::isVector(int slot) {
  return slot < INPUTS + TEMPORARIES ? slot % 16 >= 8 : slot - INPUTS - TEMPORARIES >= 4;
}

namespace {

float randomNumber(float most) {
  static thread_local std::minstd_rand generator{std::random_device{}()};
  return std::uniform_real_distribution<float>(0, 1)(generator) * most;
}

} // namespace

void SoExpression::run(Variables& variables) const {
  std::vector<SbVec3f> stack;
  stack.reserve(16);
  for (Step const& step : m_steps) {
    // The operands: z is on top.
    std::size_t const n = stack.size();
    SbVec3f none;
    SbVec3f& z = n > 0 ? stack[n - 1] : none;
    SbVec3f& y = n > 1 ? stack[n - 2] : none;
    SbVec3f& x = n > 2 ? stack[n - 3] : none;
    auto const one = [&](auto function) { z[0] = static_cast<float>(function(z[0])); };
    auto const two = [&](auto result) {
      y = SbVec3f(static_cast<float>(result), 0.f, 0.f);
      stack.pop_back();
    };
    auto const vector = [&](SbVec3f const& result) {
      y = result;
      stack.pop_back();
    };
    switch (step.op) {
      case Op::CONSTANT:
        stack.emplace_back(step.number, 0.f, 0.f);
        break;
      case Op::LOAD:
        stack.push_back(variables[step.slot]);
        break;
      case Op::STORE:
        variables[step.slot] = z;
        stack.pop_back();
        break;
      case Op::STORE_PART:
        variables[step.slot / 3][step.slot % 3] = z[0];
        stack.pop_back();
        break;
      case Op::PART:
        z = SbVec3f(z[step.slot], 0.f, 0.f);
        break;
      case Op::NEGATE:
      case Op::NEGATE_V:
        z = -z;
        break;
      case Op::NOT:
        z[0] = z[0] == 0;
        break;
      case Op::ADD:
      case Op::ADD_V:
        vector(y + z);
        break;
      case Op::SUBTRACT:
      case Op::SUBTRACT_V:
        vector(y - z);
        break;
      case Op::MULTIPLY:
        two(y[0] * z[0]);
        break;
      case Op::SCALE:
        vector(y * z[0]);
        break;
      case Op::SCALE_BY_LEFT:
        vector(z * y[0]);
        break;
      case Op::DIVIDE:
        two(y[0] / z[0]);
        break;
      case Op::DIVIDE_V:
        vector(y / z[0]);
        break;
      case Op::FMOD:
      case Op::REMAINDER:
        two(std::fmod(y[0], z[0]));
        break;
      case Op::LESS:
        two(y[0] < z[0]);
        break;
      case Op::LESS_EQUAL:
        two(y[0] <= z[0]);
        break;
      case Op::GREATER:
        two(y[0] > z[0]);
        break;
      case Op::GREATER_EQUAL:
        two(y[0] >= z[0]);
        break;
      case Op::EQUAL:
        two(y[0] == z[0]);
        break;
      case Op::EQUAL_V:
        two(y == z);
        break;
      case Op::UNEQUAL:
        two(y[0] != z[0]);
        break;
      case Op::UNEQUAL_V:
        two(!(y == z));
        break;
      case Op::AND:
        two(y[0] != 0 && z[0] != 0);
        break;
      case Op::OR:
        two(y[0] != 0 || z[0] != 0);
        break;
      case Op::CHOOSE:
        x = x[0] != 0 ? y : z;
        stack.resize(n - 2);
        break;
      case Op::SIN:
        one([](float v) { return std::sin(v); });
        break;
      case Op::COS:
        one([](float v) { return std::cos(v); });
        break;
      case Op::TAN:
        one([](float v) { return std::tan(v); });
        break;
      case Op::ASIN:
        one([](float v) { return std::asin(v); });
        break;
      case Op::ACOS:
        one([](float v) { return std::acos(v); });
        break;
      case Op::ATAN:
        one([](float v) { return std::atan(v); });
        break;
      case Op::ATAN2:
        two(std::atan2(y[0], z[0]));
        break;
      case Op::SINH:
        one([](float v) { return std::sinh(v); });
        break;
      case Op::COSH:
        one([](float v) { return std::cosh(v); });
        break;
      case Op::TANH:
        one([](float v) { return std::tanh(v); });
        break;
      case Op::SQRT:
        one([](float v) { return std::sqrt(v); });
        break;
      case Op::POW:
        two(std::pow(y[0], z[0]));
        break;
      case Op::EXP:
        one([](float v) { return std::exp(v); });
        break;
      case Op::LOG:
        one([](float v) { return std::log(v); });
        break;
      case Op::LOG10:
        one([](float v) { return std::log10(v); });
        break;
      case Op::CEIL:
        one([](float v) { return std::ceil(v); });
        break;
      case Op::FLOOR:
        one([](float v) { return std::floor(v); });
        break;
      case Op::FABS:
        one([](float v) { return std::fabs(v); });
        break;
      case Op::MIN:
        two(std::fmin(y[0], z[0]));
        break;
      case Op::MAX:
        two(std::fmax(y[0], z[0]));
        break;
      case Op::RAND:
        one(randomNumber);
        break;
      case Op::CROSS:
        vector(y.cross(z));
        break;
      case Op::DOT:
        two(y.dot(z));
        break;
      case Op::LENGTH:
        z = SbVec3f(z.length(), 0.f, 0.f);
        break;
      case Op::NORMALIZE:
        z.normalize();
        break;
      case Op::VEC3F:
        x = SbVec3f(x[0], y[0], z[0]);
        stack.resize(n - 2);
        break;
    }
  }
}
