#pragma once

#include <QCoreApplication>
#include <QString>
#include <numbers>
#include <span>

/// What a typed arithmetic expression comes to: "1/3", "2*sqrt(2)", "0x1f", "max(pi, 3)", "90 deg", "25 %".
///
/// Operators are + - * / ^ (to the right first, before a sign: -2^2 is -4) and parentheses; decimals have a
/// point whatever the locale. "nan" and "inf" stand only alone, with a sign or not: a calculation that has no
/// finite result is a mistake that is reported.
class VntExpression {
  Q_DECLARE_TR_FUNCTIONS(VntExpression)
 public:
  struct Result {
    double value = 0;
    /// Why there is no value, with the column; empty: there is one.
    QString problem;
    explicit operator bool() const { return problem.isEmpty(); }
  };

  /// A name of small letters that stands for a number.
  struct Variable {
    char const* name;
    double value;
  };

  /// `degree` is what "deg" and "°" stand for, 1 where numbers are angles in degrees; "rad" stands for as
  /// many as a radian has. Trigonometric functions count in radians at all times.
  static Result evaluate(QString const& text, double degree = std::numbers::pi / 180,
                         std::span<Variable const> variables = {});
};
