#include "extender_base/VntExpression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

struct Sum {
  char const* text;
  double value;
};

TEST(ExpressionTest, Values) {
  constexpr double PI = std::numbers::pi;
  for (Sum const& sum : {Sum{"0", 0},
                         {" 12.50 ", 12.5},
                         {".5", 0.5},
                         {"5.", 5},
                         {"-1e-3", -0.001},
                         {"1E3", 1000},
                         {"1e-999", 0},
                         {"1/3", 1.0 / 3},
                         {"1 - 2 - 3", -4},
                         {"8/4/2", 1},
                         {"2+3*4", 14},
                         {"(2+3)*4", 20},
                         {"-2^2", -4},
                         {"2^3^2", 512},
                         {"2^-1", 0.5},
                         {"--+3", 3},
                         {"2*-3", -6},
                         {"\xe2\x88\x92"
                          "5",
                          -5},
                         {"0x1F + 1", 32},
                         {"0XfF", 255},
                         {"pi/2", PI / 2},
                         {"PI", PI},
                         {"e", std::numbers::e},
                         {"2*sqrt(2)", 2 * std::sqrt(2.0)},
                         {"atan2(1, -1)", 3 * PI / 4},
                         {"min(3, 1, 2) + max(4)", 5},
                         {"pow(2, 10) + abs(-1) + floor(1.9) + ceil(1.1) + round(2.5)", 1031},
                         {"log(exp(2))", 2},
                         {"sin(90 deg) + cos(0) + asin(0) + acos(1) + atan(0) + tan(0)", 2},
                         {"90 deg", PI / 2},
                         {"180/2 deg", PI / 2},
                         {"-90\xc2\xb0", -PI / 2},
                         {"deg(90)", PI / 2},
                         {"1 rad", 1},
                         {"50 %", 0.5},
                         {"200*10%", 20}}) {
    auto const result = VntExpression::evaluate(QString::fromUtf8(sum.text));
    EXPECT_TRUE(result) << sum.text << ": " << result.problem.toStdString();
    EXPECT_NEAR(result.value, sum.value, 1e-12) << sum.text;
  }
  EXPECT_NEAR(VntExpression::evaluate("90 deg", 1).value, 90, 1e-12);
  EXPECT_NEAR(VntExpression::evaluate("pi rad", 1).value, 180, 1e-12);
}

TEST(ExpressionTest, SpecialNumbersStandAlone) {
  EXPECT_TRUE(std::isnan(VntExpression::evaluate(" NaN ").value));
  EXPECT_EQ(VntExpression::evaluate("-inf").value, -INFINITY);
  EXPECT_EQ(VntExpression::evaluate("+Infinity").value, INFINITY);
  EXPECT_EQ(VntExpression::evaluate("1+inf").problem, "column 3: \"inf\" stands only alone");
}

TEST(ExpressionTest, MistakesAreSaidWithTheirColumn) {
  struct Mistake {
    char const* text;
    char const* problem;
  };
  for (Mistake const& mistake : {
           Mistake{"", "A number is missing."},
           {"  ", "A number is missing."},
           {"abc", "column 1: \"abc\" is not known"},
           {"1 + foo(2)", "column 5: \"foo\" is not known"},
           {"1,5", "column 2: unexpected \",\" (decimals are written with a point)"},
           {"1.5.2", "column 4: unexpected \".\""},
           {"2 pi", "column 3: an operator is missing before \"pi\""},
           {"2(3)", "column 2: an operator is missing before \"(3)\""},
           {"1 +", "column 4: a number is missing at the end"},
           {"3 * / 2", "column 5: unexpected \"/\""},
           {"(1+2", "column 1: \"(\" is not closed"},
           {"1+2)", "column 4: unexpected \")\""},
           {"sqrt 2", "column 1: \"(\" is missing after \"sqrt\""},
           {"sqrt(1, 2)", "column 1: sqrt takes one number"},
           {"atan2(1)", "column 1: atan2 takes 2 numbers"},
           {"1/0", "column 2: division by zero"},
           {"0^-1", "column 2: division by zero"},
           {"1 + sqrt(-1)", "column 5: sqrt of -1 is no number"},
           {"(-8)^0.5", "column 5: the result is no number"},
           {"1e308*10", "column 6: the result is too large"},
           {"1e999", "column 1: the number is too large"},
           {"0x", "column 1: digits are missing after \"0x\""},
           {"2 \xc3\x97 3", "column 3: unexpected \"\xc3\x97\""},
       }) {
    auto const result = VntExpression::evaluate(QString::fromUtf8(mistake.text));
    EXPECT_FALSE(result) << mistake.text;
    EXPECT_EQ(result.problem.toStdString(), mistake.problem) << mistake.text;
  }
}

TEST(ExpressionTest, DepthAndLengthHaveALimit) {
  auto const nested = [](int depth) { return QString(depth, '(') + "1" + QString(depth, ')'); };
  EXPECT_TRUE(VntExpression::evaluate(nested(50)));
  EXPECT_TRUE(VntExpression::evaluate(nested(2000)).problem.contains("nested too deeply"));
  EXPECT_TRUE(VntExpression::evaluate(QString(2000, '-') + "1").problem.contains("nested too deeply"));
  EXPECT_FALSE(VntExpression::evaluate("1" + QString(3000, '^').replace("^", "^1")));
  EXPECT_FALSE(VntExpression::evaluate(QString(1'000'000, '1')));
}

} // namespace
