// Compiles expressions by descending along the levels of their operators.

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <optional>

#include "kestrava/engines/SoExpressionSteps.h"

namespace {

enum Kind { NUMBER, VECTOR };
constexpr int MOST_ARGUMENTS = 3;
constexpr int DEEPEST = 200;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

struct Constant {
  char const* name;
  double value;
};
constexpr Constant CONSTANTS[] = {
    {"MAXFLOAT", std::numeric_limits<float>::max()},
    {"MINFLOAT", std::numeric_limits<float>::min()},
    {"M_E", std::numbers::e},
    {"M_LOG2E", std::numbers::log2e},
    {"M_LOG10E", std::numbers::log10e},
    {"M_LN2", std::numbers::ln2},
    {"M_LN10", std::numbers::ln10},
    {"M_PI", std::numbers::pi},
    {"M_PI_2", std::numbers::pi / 2},
    {"M_PI_4", std::numbers::pi / 4},
    {"M_1_PI", 1 / std::numbers::pi},
    {"M_SQRT2", std::numbers::sqrt2},
    {"M_SQRT1_2", 1 / std::numbers::sqrt2},
};

} // namespace

/// One text. Every operation answers false (or nothing) after the first fault, which is kept.
class SoExpressionParser {
 public:
  SoExpressionParser(SoExpression& expression, std::string_view text)
      : m_expression(expression), m_text(text) {}

  bool parse() {
    while (true) {
      while (skip(";")) {
      }
      if (peek() == '\0') return true;
      if (!parseAssignment()) return false;
      if (peek() != '\0' && peek() != ';') return fail("an operator or ';'");
    }
  }
  std::string const& getFault() const { return m_fault; }

 private:
  using Op = SoExpression::Op;
  struct Function {
    char const* name;
    Op op;
    char const* arguments; // a letter each, v for vectors
    Kind result;
  };
  struct Operator {
    char const* text;
    int level;
    Op numbers;
    std::optional<Op> vectors;
    Kind ofVectors;
  };
  static Function const FUNCTIONS[];
  static Operator const OPERATORS[];

  char peek() {
    while (m_at < m_text.size() && std::strchr(" \t\r\n", m_text[m_at])) ++m_at;
    return m_at < m_text.size() ? m_text[m_at] : '\0';
  }
  bool skip(std::string_view token) {
    peek();
    if (!m_text.substr(m_at).starts_with(token)) return false;
    m_at += token.size();
    return true;
  }
  std::string_view readName() {
    peek();
    std::size_t const start = m_at;
    while (m_at < m_text.size() && (isLetter(m_text[m_at]) || (m_at > start && isDigit(m_text[m_at]))))
      ++m_at;
    return m_text.substr(start, m_at - start);
  }
  bool failAt(std::size_t at, std::string const& what) {
    if (m_fault.empty()) m_fault = "column " + std::to_string(at + 1) + ": " + what;
    return false;
  }
  bool fail(std::string const& expected) {
    char const c = peek();
    std::string found = c == '\0' ? "the end" : std::string("'") + c + "'";
    return failAt(m_at, "expected " + expected + ", found " + found);
  }
  bool expect(char const* token) { return skip(token) || fail("'" + std::string(token) + "'"); }
  void add(Op op, int slot = 0, float number = 0) { m_expression.m_steps.push_back({op, slot, number}); }

  /// "[0]" to "[2]"; -1 without one, -2 after a fault.
  int parsePart() {
    if (!skip("[")) return -1;
    char const c = peek();
    if (c < '0' || c > '2') {
      fail("0, 1 or 2");
      return -2;
    }
    ++m_at;
    return expect("]") ? c - '0' : -2;
  }

  bool parseAssignment() {
    peek();
    std::size_t const start = m_at;
    std::string const name(readName());
    int const slot = SoExpression::findSlot(name);
    if (name.empty()) return fail("the name of an output or a temporary");
    if (slot < SoExpression::INPUTS) return failAt(start, "'" + name + "' is no output or temporary");
    int const part = parsePart();
    if (part == -2) return false;
    bool const isVector = SoExpression::isVector(slot);
    if (part >= 0 && !isVector) return failAt(start, "'" + name + "' is a number and has no parts");
    if (!expect("=")) return false;
    peek();
    std::size_t const value = m_at;
    std::optional<Kind> const kind = parseChoice();
    if (!kind) return false;
    Kind const wanted = isVector && part < 0 ? VECTOR : NUMBER;
    if (*kind != wanted) {
      return failAt(value, wanted == VECTOR ? "expected a vector, found a number"
                                            : "expected a number, found a vector");
    }
    part >= 0 ? add(Op::STORE_PART, slot * 3 + part) : add(Op::STORE, slot);
    m_expression.m_writes[slot] = true;
    return true;
  }

  std::optional<Kind> parseChoice() {
    peek();
    std::size_t const start = m_at;
    std::optional<Kind> const condition = parseOperators(0);
    if (!condition || !skip("?")) return condition;
    if (*condition == VECTOR) return mismatch(start, "the condition is a vector");
    if (++m_depth > DEEPEST) return mismatch(start, "the expression is nested too deeply");
    std::optional<Kind> const first = parseChoice();
    if (!first || !expect(":")) return {};
    peek();
    std::size_t const other = m_at;
    std::optional<Kind> const second = parseChoice();
    --m_depth;
    if (second && *second != *first) return mismatch(other, "both choices must be numbers or both vectors");
    if (second) add(Op::CHOOSE);
    return second;
  }

  std::optional<Kind> mismatch(std::size_t at, std::string const& what) {
    failAt(at, what);
    return {};
  }

  Operator const* nextOperator(int level) {
    peek();
    for (Operator const* o = OPERATORS; o->text; ++o) {
      if (o->level == level && m_text.substr(m_at).starts_with(o->text)) return o;
    }
    return nullptr;
  }

  std::optional<Kind> parseOperators(int level) {
    constexpr int LEVELS = 6;
    if (level == LEVELS) return parseSigned();
    std::optional<Kind> left = parseOperators(level + 1);
    while (left) {
      Operator const* const found = nextOperator(level);
      if (!found) break;
      std::size_t const at = m_at;
      m_at += std::strlen(found->text);
      std::optional<Kind> const right = parseOperators(level + 1);
      if (!right) return {};
      left = combine(*found, *left, *right, at);
    }
    return left;
  }

  std::optional<Kind> combine(Operator const& with, Kind left, Kind right, std::size_t at) {
    if (left == NUMBER && right == NUMBER) {
      add(with.numbers);
      return NUMBER;
    }
    if (left == VECTOR && right == VECTOR && with.vectors) {
      add(*with.vectors);
      return with.ofVectors;
    }
    if (with.numbers == Op::MULTIPLY && left != right) {
      add(left == VECTOR ? Op::SCALE : Op::SCALE_BY_LEFT);
      return VECTOR;
    }
    if (with.numbers == Op::DIVIDE && left == VECTOR && right == NUMBER) {
      add(Op::DIVIDE_V);
      return VECTOR;
    }
    auto const text = [](Kind kind) { return kind == VECTOR ? "a vector" : "a number"; };
    return mismatch(
        at, std::string("'") + with.text + "' does not work on " + text(left) + " and " + text(right));
  }

  std::optional<Kind> parseSigned() {
    peek();
    std::size_t const at = m_at;
    bool const isNegated = skip("-");
    bool const isNot = !isNegated && skip("!");
    if (!isNegated && !isNot) return parsePrimary();
    if (++m_depth > DEEPEST) return mismatch(at, "the expression is nested too deeply");
    std::optional<Kind> const kind = parseSigned();
    --m_depth;
    if (kind && isNot && *kind == VECTOR) return mismatch(at, "'!' does not work on a vector");
    if (kind) add(isNot ? Op::NOT : Op::NEGATE);
    return kind;
  }

  std::optional<Kind> parsePrimary() {
    char const next = peek();
    std::size_t const start = m_at;
    if (isDigit(next) || next == '.') return parseNumber();
    if (skip("(")) {
      if (++m_depth > DEEPEST) return mismatch(start, "the expression is nested too deeply");
      std::optional<Kind> const kind = parseChoice();
      --m_depth;
      if (!kind || !expect(")")) return {};
      return takePart(*kind);
    }
    if (!isLetter(next)) {
      fail("a value");
      return {};
    }
    std::string const name(readName());
    if (peek() == '(') return parseCall(name, start);
    if (int const slot = SoExpression::findSlot(name); slot >= 0) {
      add(Op::LOAD, slot);
      m_expression.m_reads[slot] = true;
      return takePart(SoExpression::isVector(slot) ? VECTOR : NUMBER);
    }
    for (Constant const& constant : CONSTANTS) {
      if (name != constant.name) continue;
      add(Op::CONSTANT, 0, static_cast<float>(constant.value));
      return NUMBER;
    }
    return mismatch(start, "'" + name + "' is neither a variable nor a constant");
  }

  std::optional<Kind> takePart(Kind kind) {
    peek();
    std::size_t const at = m_at;
    int const part = parsePart();
    if (part == -1) return kind;
    if (part == -2) return {};
    if (kind == NUMBER) return mismatch(at, "a number has no parts");
    add(Op::PART, part);
    return NUMBER;
  }

  std::optional<Kind> parseNumber() {
    float value = 0;
    char const* const first = m_text.data() + m_at;
    auto const [end, error] = std::from_chars(first, m_text.data() + m_text.size(), value);
    if (error != std::errc() || end == first) return mismatch(m_at, "this is no number, or one out of range");
    m_at += static_cast<std::size_t>(end - first);
    add(Op::CONSTANT, 0, value);
    return NUMBER;
  }

  std::optional<Kind> parseCall(std::string const& name, std::size_t start) {
    Function const* function = FUNCTIONS;
    while (function->name && name != function->name) ++function;
    if (!function->name) return mismatch(start, "there is no function '" + name + "'");
    if (++m_depth > DEEPEST) return mismatch(start, "the expression is nested too deeply");
    expect("(");
    for (char const* argument = function->arguments; *argument; ++argument) {
      if (argument != function->arguments && !expect(",")) return {};
      peek();
      std::size_t const at = m_at;
      std::optional<Kind> const kind = parseChoice();
      if (!kind) return {};
      if ((*kind == VECTOR) != (*argument == 'v')) {
        return mismatch(at, "'" + name + "' takes a " + (*argument == 'v' ? "vector" : "number") + " here");
      }
    }
    --m_depth;
    if (!expect(")")) return {};
    add(function->op);
    return takePart(function->result);
  }

  SoExpression& m_expression;
  std::string_view m_text;
  std::size_t m_at = 0;
  int m_depth = 0;
  std::string m_fault;
};

SoExpressionParser::Function const SoExpressionParser::FUNCTIONS[] = {
    {"sin", Op::SIN, "n", NUMBER},       {"cos", Op::COS, "n", NUMBER},
    {"tan", Op::TAN, "n", NUMBER},       {"asin", Op::ASIN, "n", NUMBER},
    {"acos", Op::ACOS, "n", NUMBER},     {"atan", Op::ATAN, "n", NUMBER},
    {"atan2", Op::ATAN2, "nn", NUMBER},  {"sinh", Op::SINH, "n", NUMBER},
    {"cosh", Op::COSH, "n", NUMBER},     {"tanh", Op::TANH, "n", NUMBER},
    {"sqrt", Op::SQRT, "n", NUMBER},     {"pow", Op::POW, "nn", NUMBER},
    {"exp", Op::EXP, "n", NUMBER},       {"log", Op::LOG, "n", NUMBER},
    {"log10", Op::LOG10, "n", NUMBER},   {"ceil", Op::CEIL, "n", NUMBER},
    {"floor", Op::FLOOR, "n", NUMBER},   {"fabs", Op::FABS, "n", NUMBER},
    {"fmod", Op::FMOD, "nn", NUMBER},    {"min", Op::MIN, "nn", NUMBER},
    {"max", Op::MAX, "nn", NUMBER},      {"rand", Op::RAND, "n", NUMBER},
    {"cross", Op::CROSS, "vv", VECTOR},  {"dot", Op::DOT, "vv", NUMBER},
    {"length", Op::LENGTH, "v", NUMBER}, {"normalize", Op::NORMALIZE, "v", VECTOR},
    {"vec3f", Op::VEC3F, "nnn", VECTOR}, {nullptr, Op::ADD, "", NUMBER},
};

// Of those that begin alike the longer one comes first.
SoExpressionParser::Operator const SoExpressionParser::OPERATORS[] = {
    {"||", 0, Op::OR, {}, NUMBER},
    {"&&", 1, Op::AND, {}, NUMBER},
    {"==", 2, Op::EQUAL, Op::EQUAL_V, NUMBER},
    {"!=", 2, Op::UNEQUAL, Op::UNEQUAL_V, NUMBER},
    {"<=", 3, Op::LESS_EQUAL, {}, NUMBER},
    {">=", 3, Op::GREATER_EQUAL, {}, NUMBER},
    {"<", 3, Op::LESS, {}, NUMBER},
    {">", 3, Op::GREATER, {}, NUMBER},
    {"+", 4, Op::ADD, Op::ADD_V, VECTOR},
    {"-", 4, Op::SUBTRACT, Op::SUBTRACT_V, VECTOR},
    {"*", 5, Op::MULTIPLY, {}, NUMBER},
    {"/", 5, Op::DIVIDE, {}, NUMBER},
    {"%", 5, Op::REMAINDER, {}, NUMBER},
    {nullptr, -1, Op::ADD, {}, NUMBER},
};

bool SoExpression::compile(std::string_view text, std::string& fault) {
  *this = SoExpression();
  SoExpressionParser parser(*this, text);
  if (parser.parse()) return true;
  fault = parser.getFault();
  *this = SoExpression();
  return false;
}
