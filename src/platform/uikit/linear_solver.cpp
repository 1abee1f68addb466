#include "platform/uikit/linear_solver.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <set>

namespace quellaro {

namespace {

// Layout counts in points and pixels; a difference below this is rounding.
constexpr double kNothing = 1e-9;

// The textbook tableau over columns that are never negative: each row is solved for its basic column. A variable of
// any sign is the difference of two columns; an inequality has a column for its slack; what violates a constraint has
// a column of its own, whose cost stands in the row of its priority. So there is always a solution to begin with.
class Tableau {
 public:
  Tableau(std::size_t variableCount, const std::vector<LinearConstraint>& constraints)
      : variableCount_(variableCount), width_(2 * variableCount + 2 * constraints.size()) {
    std::set<float, std::greater<>> priorities;
    for (const LinearConstraint& constraint : constraints) priorities.insert(constraint.priority);
    levels_.assign(priorities.begin(), priorities.end());
    costs_.assign(levels_.size(), std::vector<double>(width_, 0));
    for (const LinearConstraint& constraint : constraints) addRow(constraint);
  }

  std::vector<double> solve() {
    // Rounding could still send the search in circles; an honest one takes some steps for each row.
    std::size_t stepsLeft = 100 * rows_.size();
    for (std::size_t level = 0; level < levels_.size(); ++level)
      while (const auto column = enteringColumn(level)) {
        const auto row = leavingRow(*column);
        if (!row || stepsLeft-- == 0) return values();
        pivot(*row, *column);
      }
    return values();
  }

 private:
  std::vector<double> values() const {
    std::vector<double> result(variableCount_, 0);
    for (std::size_t row = 0; row < rows_.size(); ++row)
      if (basis_[row] < 2 * variableCount_)
        result[basis_[row] / 2] += basis_[row] % 2 == 0 ? rightSides_[row] : -rightSides_[row];
    return result;
  }

  // Brings the constraint into the form: sum of variables + slack - excess = right side, the right side not negative.
  // For an equality the "slack" is the shortfall, and costs as much as the excess.
  void addRow(const LinearConstraint& constraint) {
    const std::size_t slack = 2 * variableCount_ + 2 * rows_.size();
    const std::size_t excess = slack + 1;
    const bool isEquality = constraint.relation == LinearRelation::Equal;
    const double towardsLess = constraint.relation == LinearRelation::GreaterThanOrEqual ? -1 : 1;
    double right = -constraint.expression.constant * towardsLess;
    const double sign = right < 0 ? -1 : 1;
    right *= sign;

    std::vector<double> row(width_, 0);
    for (const LinearExpression::Term& term : constraint.expression.terms) {
      row[2 * term.variable] += term.coefficient * towardsLess * sign;
      row[2 * term.variable + 1] -= term.coefficient * towardsLess * sign;
    }
    row[slack] = sign;
    row[excess] = -sign;
    const std::size_t basic = sign > 0 ? slack : excess;

    const auto level = std::find(levels_.begin(), levels_.end(), constraint.priority) - levels_.begin();
    std::vector<double>& cost = costs_[static_cast<std::size_t>(level)];
    cost[excess] += 1;
    if (isEquality) cost[slack] += 1;
    // Costs are kept relative to the basic columns, which then have none.
    if (isEquality || basic == excess)
      for (std::size_t column = 0; column < width_; ++column) cost[column] -= row[column];

    rows_.push_back(std::move(row));
    rightSides_.push_back(right);
    basis_.push_back(basic);
  }

  // A column that lowers the cost of this level and leaves those above it alone. The first such column, as always
  // taking the first keeps the search from going in circles.
  std::optional<std::size_t> enteringColumn(std::size_t level) const {
    for (std::size_t column = 0; column < width_; ++column) {
      if (costs_[level][column] >= -kNothing) continue;
      const bool isFree = std::all_of(costs_.begin(), costs_.begin() + static_cast<std::ptrdiff_t>(level),
                                      [&](const std::vector<double>& cost) { return cost[column] <= kNothing; });
      if (isFree) return column;
    }
    return std::nullopt;
  }

  // The row that reaches 0 first as the column grows.
  std::optional<std::size_t> leavingRow(std::size_t column) const {
    std::optional<std::size_t> best;
    double bestRatio = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (rows_[row][column] <= kNothing) continue;
      const double ratio = rightSides_[row] / rows_[row][column];
      if (best && ratio > bestRatio) continue;
      if (best && ratio == bestRatio && basis_[row] > basis_[*best]) continue;
      best = row;
      bestRatio = ratio;
    }
    return best;
  }

  void pivot(std::size_t pivotRow, std::size_t column) {
    std::vector<double>& source = rows_[pivotRow];
    const double divisor = source[column];
    for (double& entry : source) entry /= divisor;
    rightSides_[pivotRow] /= divisor;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      const double factor = rows_[row][column];
      if (row == pivotRow || factor == 0) continue;
      subtract(rows_[row], source, factor, column);
      rightSides_[row] = std::max(0.0, rightSides_[row] - factor * rightSides_[pivotRow]);
    }
    for (std::vector<double>& cost : costs_)
      if (cost[column] != 0) subtract(cost, source, cost[column], column);
    basis_[pivotRow] = column;
  }

  static void subtract(std::vector<double>& row, const std::vector<double>& source, double factor, std::size_t column) {
    for (std::size_t i = 0; i < row.size(); ++i) row[i] -= factor * source[i];
    row[column] = 0;
  }

  std::size_t variableCount_;
  std::size_t width_;
  std::vector<float> levels_;
  std::vector<std::vector<double>> costs_;
  std::vector<std::vector<double>> rows_;
  std::vector<double> rightSides_;
  std::vector<std::size_t> basis_;
};

}  // namespace

void LinearExpression::add(const LinearExpression& other, double factor) {
  constant += other.constant * factor;
  for (const Term& term : other.terms) terms.push_back({term.variable, term.coefficient * factor});
}

std::vector<double> solveConstraints(std::size_t variableCount, const std::vector<LinearConstraint>& constraints) {
  return Tableau(variableCount, constraints).solve();
}

}  // namespace quellaro
