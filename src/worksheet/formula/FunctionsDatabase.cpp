// Functions over a table with a heading row, limited by a table of criteria: the criteria of one
// row must all hold, and of several rows any.
#include <algorithm>
#include <cmath>

#include "basic/Text.h"
#include "worksheet/formula/Compare.h"
#include "worksheet/formula/Dates.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

struct ColumnCriterion {
  int column;
  Criterion criterion;
};

// The table's column with a heading; -1 if there is none.
int findColumn(Evaluator& ev, const Operand& table, std::string_view heading) {
  const int columns = std::min(Evaluator::columnsOf(table), 16384);
  for (int column = 0; column < columns; ++column) {
    if (equalsNoCase(ev.toText(ev.element(table, 0, column)), heading)) return column;
  }
  return -1;
}

// The column that the second argument names or numbers; -1 for all when it is left out.
bool readField(Evaluator& ev, const Operand& table, const Operand& field, int& column,
               Operand& error) {
  const Operand value = ev.single(field);
  column = -1;
  if (value.isMissing() || value.isEmpty()) return true;
  error = value.isError() ? value : Operand(ErrorCode::Value);
  if (value.isText()) {
    column = findColumn(ev, table, value.view());
    return column >= 0;
  }
  if (!value.isNumber() || !wholeBetween(value.number, 1, Evaluator::columnsOf(table), column))
    return false;
  --column;
  return true;
}

std::vector<std::vector<ColumnCriterion>> readCriteria(Evaluator& ev, const Operand& table,
                                                       const Operand& criteria) {
  std::vector<std::vector<ColumnCriterion>> rows;
  const int columns = Evaluator::columnsOf(criteria);
  for (int row = 1; row < Evaluator::rowsOf(criteria); ++row) {
    std::vector<ColumnCriterion> all;
    bool possible = true;
    for (int column = 0; column < columns; ++column) {
      const Operand value = ev.element(criteria, row, column);
      if (value.isEmpty()) continue;
      const Operand heading = ev.element(criteria, 0, column);
      const int target = heading.isError() ? -1 : findColumn(ev, table, ev.toText(heading));
      if (target < 0) {
        // Without a field of that heading the criterion is a condition of its own.
        possible = possible && (value.isNumber() || value.isBoolean()) && value.number != 0;
        continue;
      }
      // A plain text fits all texts that begin with it.
      const bool plain = value.isText() && value.view().find_first_of("=<>") != 0 &&
                         !numberOfText(value.view(), ev.dates1904()) &&
                         !equalsNoCase(value.view(), "TRUE") &&
                         !equalsNoCase(value.view(), "FALSE");
      const Operand condition = plain ? ev.text(std::string(value.view()) + "*") : value;
      all.push_back({target, Criterion(condition, ev.dates1904())});
    }
    if (possible) rows.push_back(std::move(all));
  }
  return rows;
}

// The chosen column's values in the records that fit; whole records count as 1 when none is chosen.
bool selectValues(Evaluator& ev, Arguments a, std::vector<Operand>& values, Operand& error) {
  for (const size_t i : {size_t(0), size_t(2)}) {
    if (!a[i].isArea() && !a[i].isArray()) {
      error = a[i].isError() ? a[i] : Operand(ErrorCode::Value);
      return false;
    }
  }
  int field = -1;
  if (!readField(ev, a[0], a[1], field, error)) return false;
  const auto criteria = readCriteria(ev, a[0], a[2]);
  const int rows = a[0].isArea() ? ev.used(a[0].area).rows() : Evaluator::rowsOf(a[0]);
  for (int row = 1; row < rows; ++row) {
    const bool fits = std::any_of(criteria.begin(), criteria.end(), [&](const auto& all) {
      return std::all_of(all.begin(), all.end(), [&](const ColumnCriterion& one) {
        return one.criterion.matches(ev.element(a[0], row, one.column));
      });
    });
    if (fits) values.push_back(field < 0 ? Operand(1.0) : ev.element(a[0], row, field));
  }
  return true;
}

Operand applyTo(Evaluator& ev, Arguments a, std::string_view function) {
  std::vector<Operand> values;
  Operand error;
  if (!selectValues(ev, a, values, error)) return error;
  Array* array = ev.newArray(static_cast<int>(values.size()), 1);
  if (array == nullptr) return ErrorCode::Num;
  array->values = std::move(values);
  Operand argument{static_cast<const Array*>(array)};
  return findFunction(function)->routine(ev, Arguments(&argument, 1));
}

Operand fnDget(Evaluator& ev, Arguments a) {
  std::vector<Operand> values;
  Operand error;
  if (!selectValues(ev, a, values, error)) return error;
  if (values.empty()) return ErrorCode::Value;
  return values.size() > 1 ? Operand(ErrorCode::Num) : values[0];
}

constexpr FunctionInfo table[] = {
    {"DSUM", 3, 3, 41, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "SUM"); }},
    {"DAVERAGE", 3, 3, 42, "R",
     [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "AVERAGE"); }},
    {"DCOUNT", 3, 3, 40, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "COUNT"); }},
    {"DCOUNTA", 3, 3, 199, "R",
     [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "COUNTA"); }},
    {"DMAX", 3, 3, 44, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "MAX"); }},
    {"DMIN", 3, 3, 43, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "MIN"); }},
    {"DPRODUCT", 3, 3, 189, "R",
     [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "PRODUCT"); }},
    {"DSTDEV", 3, 3, 45, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "STDEV"); }},
    {"DSTDEVP", 3, 3, 195, "R",
     [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "STDEVP"); }},
    {"DVAR", 3, 3, 47, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "VAR"); }},
    {"DVARP", 3, 3, 196, "R", [](Evaluator& ev, Arguments a) { return applyTo(ev, a, "VARP"); }},
    {"DGET", 3, 3, 235, "R", fnDget},
};

}  // namespace

FunctionList databaseFunctions() {
  return table;
}

}  // namespace lodex::formula
