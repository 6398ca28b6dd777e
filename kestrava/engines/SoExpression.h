#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "kestrava/base/SbVec3f.h"

/// Assignments, separated by ';', to variables that are numbers (lower case) or vectors (upper case),
/// compiled for a machine with a stack. SoCalculator tells the names and the language.
class SoExpression {
 public:
  /// Where variables lie. Numbers use the first component. The inputs come first, then temporaries, then
  /// outputs.
  enum Slots { INPUTS = 16, TEMPORARIES = 16, OUTPUTS = 8, SLOTS = INPUTS + TEMPORARIES + OUTPUTS };
  using Variables = std::array<SbVec3f, SLOTS>;
  /// The slot of a name of one or two letters, -1 when it is none.
  static int findSlot(std::string_view name);
  /// True for vectors.
  static bool isVector(int slot);

  /// Compiles; false where it can not, with a fault like "column 7: expected a value, found ')'".
  bool compile(std::string_view text, std::string& fault);
  /// Reads and writes variables.
  void run(Variables& variables) const;
  /// True for variables that a compiled text reads or writes.
  bool reads(int slot) const { return m_reads[slot]; }
  bool writes(int slot) const { return m_writes[slot]; }

 private:
  friend class SoExpressionParser;
  enum class Op : unsigned char;
  struct Step {
    Op op;
    int slot = 0;     // of a variable, or the component
    float number = 0; // of a constant
  };
  std::vector<Step> m_steps;
  std::array<bool, SLOTS> m_reads{}, m_writes{};
};
