#include "extender_base/VntExpression.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int DEEPEST = 100;
constexpr qsizetype LONGEST = 4096;

struct Function {
  char const* name;
  int fewest, most;
  double (*apply)(std::vector<double> const& x);
};

Function const FUNCTIONS[] = {
    {"sqrt", 1, 1, [](auto const& x) { return std::sqrt(x[0]); }},
    {"sin", 1, 1, [](auto const& x) { return std::sin(x[0]); }},
    {"cos", 1, 1, [](auto const& x) { return std::cos(x[0]); }},
    {"tan", 1, 1, [](auto const& x) { return std::tan(x[0]); }},
    {"asin", 1, 1, [](auto const& x) { return std::asin(x[0]); }},
    {"acos", 1, 1, [](auto const& x) { return std::acos(x[0]); }},
    {"atan", 1, 1, [](auto const& x) { return std::atan(x[0]); }},
    {"atan2", 2, 2, [](auto const& x) { return std::atan2(x[0], x[1]); }},
    {"exp", 1, 1, [](auto const& x) { return std::exp(x[0]); }},
    {"log", 1, 1, [](auto const& x) { return std::log(x[0]); }},
    {"pow", 2, 2, [](auto const& x) { return std::pow(x[0], x[1]); }},
    {"abs", 1, 1, [](auto const& x) { return std::abs(x[0]); }},
    {"min", 1, 100, [](auto const& x) { return *std::min_element(x.begin(), x.end()); }},
    {"max", 1, 100, [](auto const& x) { return *std::max_element(x.begin(), x.end()); }},
    {"floor", 1, 1, [](auto const& x) { return std::floor(x[0]); }},
    {"ceil", 1, 1, [](auto const& x) { return std::ceil(x[0]); }},
    {"round", 1, 1, [](auto const& x) { return std::round(x[0]); }},
};

/// Reads from left to right; after the first problem it does nothing any more.
class Parser {
  Q_DECLARE_TR_FUNCTIONS(VntExpression)
 public:
  Parser(QString const& text, double degree, std::span<VntExpression::Variable const> variables)
      : m_text(text), m_degree(degree), m_variables(variables) {
    m_text.replace(QChar(0x2212), QLatin1Char('-')); // as office programs write a minus
  }

  VntExpression::Result run() {
    if (m_text.size() > LONGEST) return {0, tr("The text is too long for a number.")};
    if (m_text.trimmed().isEmpty()) return {0, tr("A number is missing.")};
    double value = 0;
    if (isSpecial(value)) return {value, {}};
    value = sum();
    if (!failed() && peek() != QChar()) failAtToken();
    return {value, m_problem};
  }

 private:
  bool failed() const { return !m_problem.isEmpty(); }

  void fail(qsizetype at, QString const& what) {
    if (!failed()) m_problem = tr("column %1: %2").arg(at + 1).arg(what);
  }

  void failAtToken() {
    QChar const next = peek();
    if (next.isNull()) return fail(m_at, tr("a number is missing at the end"));
    if (next == QLatin1Char(','))
      return fail(m_at, tr("unexpected \",\" (decimals are written with a point)"));
    if (m_afterValue && (next.isLetterOrNumber() || next == QLatin1Char('(')))
      return fail(m_at, tr("an operator is missing before \"%1\"").arg(m_text.mid(m_at, 12)));
    fail(m_at, tr("unexpected \"%1\"").arg(next));
  }

  /// The next character that is no space; null at the end.
  QChar peek() {
    while (m_at < m_text.size() && m_text[m_at].isSpace()) ++m_at;
    return m_at < m_text.size() ? m_text[m_at] : QChar();
  }

  bool skip(char wanted) {
    if (peek() != QLatin1Char(wanted)) return false;
    ++m_at;
    m_afterValue = false;
    return true;
  }

  bool isSpecial(double& value) const {
    QString word = m_text.trimmed().toLower();
    bool const isNegative = word.startsWith(QLatin1Char('-'));
    if (isNegative || word.startsWith(QLatin1Char('+'))) word = word.mid(1).trimmed();
    if (word == QLatin1String("nan"))
      value = std::numeric_limits<double>::quiet_NaN();
    else if (word == QLatin1String("inf") || word == QLatin1String("infinity"))
      value = std::numeric_limits<double>::infinity();
    else
      return false;
    if (isNegative) value = -value;
    return true;
  }

  double checked(double value, qsizetype at) {
    if (std::isnan(value)) fail(at, tr("the result is no number"));
    if (std::isinf(value)) fail(at, tr("the result is too large"));
    return value;
  }

  double sum() {
    double value = product();
    while (!failed()) {
      peek();
      qsizetype const at = m_at;
      if (skip('+'))
        value = checked(value + product(), at);
      else if (skip('-'))
        value = checked(value - product(), at);
      else
        break;
    }
    return value;
  }

  double product() {
    double value = signedPower();
    while (!failed()) {
      peek();
      qsizetype const at = m_at;
      if (skip('*')) {
        value = checked(value * signedPower(), at);
      } else if (skip('/')) {
        double const divisor = signedPower();
        if (divisor == 0) fail(at, tr("division by zero"));
        value = checked(value / divisor, at);
      } else if (double const unit = skipUnit(); unit != 0) {
        value = checked(value * unit, at); // after the product: "180/2 deg" are 90 degrees
      } else {
        break;
      }
    }
    return value;
  }

  double skipUnit() {
    if (peek() == QChar(0xb0)) {
      ++m_at;
      return m_degree;
    }
    QString const word = wordAt(m_at);
    if (word != QLatin1String("deg") && word != QLatin1String("rad")) return 0;
    m_at += word.size();
    return word == QLatin1String("deg") ? m_degree : m_degree * 180 / std::numbers::pi;
  }

  double signedPower() {
    if (++m_depth > DEEPEST) {
      fail(m_at, tr("this is nested too deeply"));
      return 0;
    }
    double value;
    if (skip('-'))
      value = -signedPower();
    else if (skip('+'))
      value = signedPower();
    else
      value = power();
    --m_depth;
    return value;
  }

  double power() {
    double const base = postfix();
    peek();
    qsizetype const at = m_at;
    if (failed() || !skip('^')) return base;
    double const exponent = signedPower();
    if (base == 0 && exponent < 0) fail(at, tr("division by zero"));
    return checked(std::pow(base, exponent), at);
  }

  double postfix() {
    double value = primary();
    if (failed()) return 0;
    m_afterValue = true;
    while (skip('%')) {
      value /= 100;
      m_afterValue = true;
    }
    return value;
  }

  double primary() {
    if (failed()) return 0;
    QChar const next = peek();
    if (isDigit(next) || next == QLatin1Char('.')) return number();
    if (next.isLetter()) return named();
    if (!skip('(')) {
      failAtToken();
      return 0;
    }
    qsizetype const at = m_at - 1;
    double const value = sum();
    if (!failed() && !skip(')')) closingMissing(at);
    return value;
  }

  void closingMissing(qsizetype at) {
    if (peek().isNull())
      fail(at, tr("\"(\" is not closed"));
    else
      failAtToken();
  }

  static bool isDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

  double number() {
    qsizetype const at = m_at;
    QByteArray const rest =
        m_text.mid(at).toLatin1(); // what has no Latin-1 form ends the number all the same
    bool const isHex = rest.startsWith("0x") || rest.startsWith("0X");
    char const* const begin = rest.constData() + (isHex ? 2 : 0);
    double value = 0;
    auto const [end, error] = std::from_chars(begin, rest.constData() + rest.size(), value,
                                              isHex ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::invalid_argument) {
      fail(at, isHex ? tr("digits are missing after \"0x\"") : tr("a point is no number"));
      return 0;
    }
    m_at = at + (end - rest.constData());
    if (error == std::errc::result_out_of_range) {
      if (std::string_view(begin, end).find("e-") != std::string_view::npos) return 0;
      fail(at, tr("the number is too large"));
    }
    return value;
  }

  QString wordAt(qsizetype at) const {
    qsizetype end = at;
    while (end < m_text.size() && (m_text[end].isLetterOrNumber() || m_text[end] == QLatin1Char('_'))) ++end;
    return m_text.mid(at, end - at).toLower();
  }

  double named() {
    qsizetype const at = m_at;
    QString const word = wordAt(at);
    m_at += word.size();
    for (VntExpression::Variable const& variable : m_variables) {
      if (word == QLatin1String(variable.name)) return variable.value;
    }
    if (word == QLatin1String("pi")) return std::numbers::pi;
    if (word == QLatin1String("e")) return std::numbers::e;
    if (word == QLatin1String("deg") || word == QLatin1String("rad")) {
      m_at = at;
      double const unit = skipUnit();
      std::vector<double> const x = arguments(word, at);
      return x.size() == 1 ? x[0] * unit : (fail(at, tr("%1 takes one number").arg(word)), 0);
    }
    for (Function const& function : FUNCTIONS) {
      if (word == QLatin1String(function.name)) return call(function, at);
    }
    if (word == QLatin1String("nan") || word.startsWith(QLatin1String("inf")))
      fail(at, tr("\"%1\" stands only alone").arg(word));
    else
      fail(at, tr("\"%1\" is not known").arg(m_text.mid(at, word.size())));
    return 0;
  }

  double call(Function const& function, qsizetype at) {
    QString const name = QLatin1String(function.name);
    std::vector<double> const x = arguments(name, at);
    if (failed()) return 0;
    int const count = static_cast<int>(x.size());
    if (count < function.fewest || count > function.most) {
      fail(at, function.fewest == 1 ? tr("%1 takes one number").arg(name)
                                    : tr("%1 takes %2 numbers").arg(name).arg(function.fewest));
      return 0;
    }
    double const value = function.apply(x);
    if (std::isnan(value)) fail(at, tr("%1 of %2 is no number").arg(name).arg(x[0]));
    return checked(value, at);
  }

  std::vector<double> arguments(QString const& name, qsizetype at) {
    std::vector<double> values;
    if (!skip('(')) {
      fail(at, tr("\"(\" is missing after \"%1\"").arg(name));
      return values;
    }
    qsizetype const opening = m_at - 1;
    do values.push_back(sum());
    while (!failed() && skip(','));
    if (!failed() && !skip(')')) closingMissing(opening);
    return values;
  }

  QString m_text;
  double m_degree;
  std::span<VntExpression::Variable const> m_variables;
  qsizetype m_at = 0;
  int m_depth = 0;
  bool m_afterValue = false;
  QString m_problem;
};

} // namespace

VntExpression::Result VntExpression::evaluate(QString const& text, double degree,
                                              std::span<Variable const> variables) {
  return Parser(text, degree, variables).run();
}
