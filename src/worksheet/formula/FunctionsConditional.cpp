// Sums, counts, means and extremes of the cells for which conditions hold.
#include <algorithm>
#include <limits>

#include "worksheet/formula/Compare.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Condition {
  Area area;
  Criterion criterion;
};

// How far from the first cell there is content in any of the areas: rows and columns.
struct Extent {
  int rows = 0, columns = 0;
  void reach(Evaluator& ev, const Area& area) {
    const Area part = ev.used(area);
    rows = std::max(rows, part.rows());
    columns = std::max(columns, part.columns());
  }
};

// Visits the positions (rows and columns from 0) at which all conditions hold, within an extent.
template <typename Visit>
void visitMatches(Evaluator& ev, const std::vector<Condition>& conditions, const Extent& extent,
                  Visit visit) {
  // A condition that empty cells do not fit limits the search to its cells with content.
  const Condition* guide = nullptr;
  for (const Condition& condition : conditions) {
    if (!condition.criterion.matchesEmpty()) guide = &condition;
  }
  const auto holds = [&](int row, int column) {
    return std::all_of(conditions.begin(), conditions.end(), [&](const Condition& c) {
      return &c == guide ||
             c.criterion.matches(ev.cell(c.area.sheet, c.area.row1 + row, c.area.column1 + column));
    });
  };
  if (guide != nullptr) {
    const Area area = guide->area;
    ev.visitCells(area, [&](int row, int column, const Operand& value) {
      const int r = row - area.row1;
      const int c = column - area.column1;
      if (guide->criterion.matches(value) && holds(r, c)) visit(r, c);
      return true;
    });
    return;
  }
  for (int column = 0; column < extent.columns; ++column) {
    for (int row = 0; row < extent.rows; ++row) {
      if (holds(row, column)) visit(row, column);
    }
  }
}

// Pairs of area and criterion from argument `first` on.
bool readConditions(Evaluator& ev, Arguments a, size_t first, std::vector<Condition>& conditions,
                    Operand& error) {
  for (size_t i = first; i + 1 < a.size(); i += 2) {
    if (!a[i].isArea()) {
      error = a[i].isError() ? a[i] : Operand(ErrorCode::Value);
      return false;
    }
    conditions.push_back({a[i].area, Criterion(a[i + 1], ev.dates1904())});
    const Area& shape = conditions.front().area;
    if (a[i].area.rows() != shape.rows() || a[i].area.columns() != shape.columns()) {
      error = ErrorCode::Value;
      return false;
    }
  }
  return true;
}

double countMatches(Evaluator& ev, const std::vector<Condition>& conditions) {
  const Area& shape = conditions[0].area;
  const double all = static_cast<double>(shape.rows()) * shape.columns();
  double count = 0;
  // The empty rest of whole columns is counted, not visited.
  if (conditions.size() == 1 && conditions[0].criterion.matchesEmpty()) {
    double visited = 0;
    ev.visitCells(shape, [&](int, int, const Operand& value) {
      ++visited;
      if (conditions[0].criterion.matches(value)) ++count;
      return true;
    });
    return count + all - visited;
  }
  Extent extent;
  for (const Condition& condition : conditions) extent.reach(ev, condition.area);
  extent.rows = std::min(extent.rows, shape.rows());
  extent.columns = std::min(extent.columns, shape.columns());
  visitMatches(ev, conditions, extent, [&](int, int) { ++count; });
  const bool restFits = std::all_of(conditions.begin(), conditions.end(),
                                    [](const Condition& c) { return c.criterion.matchesEmpty(); });
  return restFits ? count + all - static_cast<double>(extent.rows) * extent.columns : count;
}

Operand fnCountIf(Evaluator& ev, Arguments a) {
  std::vector<Condition> conditions;
  Operand error;
  if (!readConditions(ev, a, 0, conditions, error)) return error;
  return countMatches(ev, conditions);
}

// Visits the numbers of `values` where the conditions hold.
template <typename Visit>
bool visitMatchingNumbers(Evaluator& ev, const Area& values,
                          const std::vector<Condition>& conditions, Operand& error, Visit visit) {
  bool fine = true;
  // Where the values are empty there is nothing to gather.
  const Area& shape = conditions.front().area;
  Area same = values;
  same.row2 = std::min(maxRows, values.row1 + shape.rows() - 1);
  same.column2 = std::min(maxColumns, values.column1 + shape.columns() - 1);
  Extent extent;
  extent.reach(ev, same);
  visitMatches(ev, conditions, extent, [&](int row, int column) {
    if (values.row1 + row > maxRows || values.column1 + column > maxColumns) return;
    const Operand value = ev.cell(values.sheet, values.row1 + row, values.column1 + column);
    if (value.isNumber()) visit(value.number);
    if (value.isError() && fine) {
      error = value;
      fine = false;
    }
  });
  return fine;
}

enum class Gather { Sum, Average, Largest, Smallest };

Operand gather(Evaluator& ev, const Operand& values, const std::vector<Condition>& conditions,
               Gather what) {
  if (!values.isArea()) return values.isError() ? values : Operand(ErrorCode::Value);
  double sum = 0;
  double count = 0;
  double largest = -infinity;
  double smallest = infinity;
  Operand error;
  if (!visitMatchingNumbers(ev, values.area, conditions, error, [&](double number) {
        sum += number;
        ++count;
        largest = std::max(largest, number);
        smallest = std::min(smallest, number);
      })) {
    return error;
  }
  switch (what) {
    case Gather::Sum:
      return sum;
    case Gather::Average:
      return count == 0 ? Operand(ErrorCode::DivisionByZero) : Operand(sum / count);
    case Gather::Largest:
      return count == 0 ? 0.0 : largest;
    case Gather::Smallest:
      return count == 0 ? 0.0 : smallest;
  }
  return ErrorCode::Value;
}

// SUMIF and AVERAGEIF: the area to add up takes its size from the one with the conditions.
Operand gatherIf(Evaluator& ev, Arguments a, Gather what) {
  std::vector<Condition> conditions;
  Operand error;
  if (!readConditions(ev, a.first(2), 0, conditions, error)) return error;
  return gather(ev, given(a, 2) ? a[2] : a[0], conditions, what);
}

Operand gatherIfs(Evaluator& ev, Arguments a, Gather what) {
  std::vector<Condition> conditions;
  Operand error;
  if (a.size() % 2 == 0) return ErrorCode::Value;
  if (!readConditions(ev, a, 1, conditions, error)) return error;
  const Area& shape = conditions.front().area;
  if (a[0].isArea() &&
      (a[0].area.rows() != shape.rows() || a[0].area.columns() != shape.columns())) {
    return ErrorCode::Value;
  }
  return gather(ev, a[0], conditions, what);
}

constexpr FunctionInfo table[] = {
    {"COUNTIF", 2, 2, 346, "RE", fnCountIf},
    {"COUNTIFS", 2, anyNumber, since2007, "*RE",
     [](Evaluator& ev, Arguments a) {
       return a.size() % 2 == 0 ? fnCountIf(ev, a) : Operand(ErrorCode::Value);
     }},
    {"SUMIF", 2, 3, 345, "RER",
     [](Evaluator& ev, Arguments a) { return gatherIf(ev, a, Gather::Sum); }},
    {"AVERAGEIF", 2, 3, since2007, "RER",
     [](Evaluator& ev, Arguments a) { return gatherIf(ev, a, Gather::Average); }},
    {"SUMIFS", 3, anyNumber, since2007, "R*RE",
     [](Evaluator& ev, Arguments a) { return gatherIfs(ev, a, Gather::Sum); }},
    {"AVERAGEIFS", 3, anyNumber, since2007, "R*RE",
     [](Evaluator& ev, Arguments a) { return gatherIfs(ev, a, Gather::Average); }},
    {"MAXIFS", 3, anyNumber, newer, "R*RE",
     [](Evaluator& ev, Arguments a) { return gatherIfs(ev, a, Gather::Largest); }},
    {"MINIFS", 3, anyNumber, newer, "R*RE",
     [](Evaluator& ev, Arguments a) { return gatherIfs(ev, a, Gather::Smallest); }},
};

}  // namespace

FunctionList conditionalFunctions() {
  return table;
}

}  // namespace lodex::formula
