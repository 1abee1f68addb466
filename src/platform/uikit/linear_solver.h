#pragma once

#include <cstddef>
#include <vector>

namespace quellaro {

// A sum of variables, each times a coefficient, and a constant.
struct LinearExpression {
  struct Term {
    std::size_t variable;
    double coefficient;
  };
  std::vector<Term> terms;
  double constant = 0;

  // Adds another expression times a factor.
  void add(const LinearExpression& other, double factor = 1);
};

// What an expression is to 0.
enum class LinearRelation { LessThanOrEqual, Equal, GreaterThanOrEqual };

struct LinearConstraint {
  LinearExpression expression;
  LinearRelation relation = LinearRelation::Equal;
  // The more, the more it weighs: no amount of lower priority outweighs it.
  float priority = 0;
};

// Values for the variables (0 to count - 1; any sign) that violate the constraints of the highest priority least, by
// the sum of the amounts, and of all such values those that violate the next priority least, and so on. Exact up to
// rounding: a simplex over the levels one after the other. What the constraints leave open tends to 0.
std::vector<double> solveConstraints(std::size_t variableCount, const std::vector<LinearConstraint>& constraints);

}  // namespace quellaro
