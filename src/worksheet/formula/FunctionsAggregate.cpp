// Sums, counts, means and extremes over areas.
#include <algorithm>
#include <limits>
#include <numeric>

#include "basic/Text.h"
#include "worksheet/formula/FunctionHelp.h"
#include "worksheet/formula/Parser.h"

namespace lodex::formula {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Visits values as AVERAGEA does: in areas text counts as 0 and truth values as 1 or 0.
template <typename Visit>
bool visitAll(Evaluator& ev, Arguments arguments, Operand& error, Visit visit) {
  for (const Operand& argument : arguments) {
    const bool all = ev.visitValues(argument, [&](const Operand& value, bool fromCells) {
      double number = value.number;
      if (value.isError()) {
        error = value;
        return false;
      }
      if (value.isEmpty() && fromCells) return true;
      if (fromCells && value.isText())
        number = 0;
      else if (!ev.toNumber(value, number, error))
        return false;
      visit(number);
      return true;
    });
    if (!all) return false;
  }
  return true;
}

Operand fnSum(Evaluator& ev, Arguments a) {
  double sum = 0;
  Operand error;
  if (!visitNumbers(ev, a, error, [&](double number) { sum += number; })) return error;
  return sum;
}

Operand fnProduct(Evaluator& ev, Arguments a) {
  double product = 1;
  bool any = false;
  Operand error;
  if (!visitNumbers(ev, a, error, [&](double number) {
        product *= number;
        any = true;
      })) {
    return error;
  }
  return any ? product : 0.0;
}

Operand fnSumSq(Evaluator& ev, Arguments a) {
  double sum = 0;
  Operand error;
  if (!visitNumbers(ev, a, error, [&](double number) { sum += number * number; })) return error;
  return sum;
}

Operand fnAverage(Evaluator& ev, Arguments a) {
  double sum = 0;
  double count = 0;
  Operand error;
  if (!visitNumbers(ev, a, error, [&](double number) {
        sum += number;
        ++count;
      })) {
    return error;
  }
  return count == 0 ? Operand(ErrorCode::DivisionByZero) : Operand(sum / count);
}

Operand fnAverageA(Evaluator& ev, Arguments a) {
  double sum = 0;
  double count = 0;
  Operand error;
  if (!visitAll(ev, a, error, [&](double number) {
        sum += number;
        ++count;
      })) {
    return error;
  }
  return count == 0 ? Operand(ErrorCode::DivisionByZero) : Operand(sum / count);
}

Operand extreme(Evaluator& ev, Arguments a, bool largest) {
  double result = largest ? -infinity : infinity;
  Operand error;
  if (!visitNumbers(ev, a, error, [&](double number) {
        result = largest ? std::max(result, number) : std::min(result, number);
      })) {
    return error;
  }
  return std::isinf(result) ? 0.0 : result;
}

Operand extremeA(Evaluator& ev, Arguments a, bool largest) {
  double result = largest ? -infinity : infinity;
  Operand error;
  if (!visitAll(ev, a, error, [&](double number) {
        result = largest ? std::max(result, number) : std::min(result, number);
      })) {
    return error;
  }
  return std::isinf(result) ? 0.0 : result;
}

Operand fnCount(Evaluator& ev, Arguments a) {
  double count = 0;
  for (const Operand& argument : a) {
    ev.visitValues(argument, [&](const Operand& value, bool fromCells) {
      double number = 0;
      Operand error;
      if (fromCells ? value.isNumber() : ev.toNumber(value, number, error)) ++count;
      return true;
    });
  }
  return count;
}

Operand fnCountA(Evaluator& ev, Arguments a) {
  double count = 0;
  for (const Operand& argument : a) {
    ev.visitValues(argument, [&](const Operand& value, bool fromCells) {
      if (!fromCells || !value.isEmpty()) ++count;
      return true;
    });
  }
  return count;
}

Operand fnCountBlank(Evaluator& ev, Arguments a) {
  if (!a[0].isArea()) return ErrorCode::Value;
  double filled = 0;
  const Area& area = a[0].area;
  ev.visitCells(area, [&](int, int, const Operand& value) {
    if (!(value.isText() && value.view().empty())) ++filled;
    return true;
  });
  const double sheets = area.lastSheet - area.sheet + 1;
  return sheets * area.rows() * area.columns() - filled;
}

// --- Deviations ---

// What counts: the numbers alone, or as in AVERAGEA everything.
enum class Counted { Numbers, All };

template <typename Visit>
bool visitCounted(Evaluator& ev, Arguments a, Counted counted, Operand& error, Visit visit) {
  return counted == Counted::All ? visitAll(ev, a, error, visit)
                                 : visitNumbers(ev, a, error, visit);
}

enum class Spread { Sample, Population };
enum class Measure { Variance, Deviation };

template <Spread kind, Measure measure, Counted counted>
Operand spread(Evaluator& ev, Arguments a) {
  std::vector<double> numbers;
  Operand error;
  if (!visitCounted(ev, a, counted, error, [&](double number) { numbers.push_back(number); }))
    return error;
  const double n = static_cast<double>(numbers.size());
  const double divisor = kind == Spread::Sample ? n - 1 : n;
  if (divisor <= 0) return ErrorCode::DivisionByZero;
  const double variance = squaredDeviations(numbers) / divisor;
  return measure == Measure::Deviation ? std::sqrt(variance) : variance;
}

constexpr Routine stdev = spread<Spread::Sample, Measure::Deviation, Counted::Numbers>;
constexpr Routine stdevp = spread<Spread::Population, Measure::Deviation, Counted::Numbers>;
constexpr Routine var = spread<Spread::Sample, Measure::Variance, Counted::Numbers>;
constexpr Routine varp = spread<Spread::Population, Measure::Variance, Counted::Numbers>;

// --- Products of areas ---

// What does not hold a number counts as 0.
Operand fnSumProduct(Evaluator& ev, Arguments a) {
  const int rows = Evaluator::rowsOf(a[0]);
  const int columns = Evaluator::columnsOf(a[0]);
  for (const Operand& argument : a) {
    if (argument.isError()) return argument;
    if (Evaluator::rowsOf(argument) != rows || Evaluator::columnsOf(argument) != columns) {
      return ErrorCode::Value;
    }
  }
  // Beyond the used part of one factor all products are 0.
  int lastRow = rows;
  int lastColumn = columns;
  for (const Operand& argument : a) {
    if (!argument.isArea()) continue;
    const Area part = ev.used(argument.area);
    lastRow = std::min(lastRow, std::max(0, part.rows()));
    lastColumn = std::min(lastColumn, std::max(0, part.columns()));
  }
  double sum = 0;
  const bool ofAreas = std::all_of(a.begin(), a.end(), [](const Operand& x) { return x.isArea(); });
  for (int row = 0; row < lastRow; ++row) {
    for (int column = 0; column < lastColumn; ++column) {
      double product = 1;
      if (ofAreas) {
        for (const Operand& argument : a) {
          const Area& area = argument.area;
          const Operand value = ev.cell(area.sheet, area.row1 + row, area.column1 + column);
          if (value.isError()) return value;
          product *= value.isNumber() ? value.number : 0;
        }
        sum += product;
        continue;
      }
      for (const Operand& argument : a) {
        const Operand value = ev.element(argument, row, column);
        if (value.isError()) return value;
        product *= value.isNumber() ? value.number : 0;
      }
      sum += product;
    }
  }
  return sum;
}

template <typename Term>
Operand sumOfPairs(Evaluator& ev, Arguments a, Term term) {
  std::vector<double> x;
  std::vector<double> y;
  Operand error;
  if (!pairsOf(ev, a[0], a[1], x, y, error)) return error;
  if (x.empty()) return ErrorCode::DivisionByZero;
  double sum = 0;
  for (size_t i = 0; i < x.size(); ++i) sum += term(x[i], y[i]);
  return sum;
}

// --- SUBTOTAL and AGGREGATE ---

struct SubtotalOptions {
  bool skipHidden = false;
  bool skipFiltered = false;
  bool skipErrors = false;
  bool skipNested = true;
};

bool isNested(const Cell& cell) {
  return cell.kind == ValueKind::Formula &&
         (findNoCase(cell.formula->text, "SUBTOTAL(") != std::string::npos ||
          findNoCase(cell.formula->text, "AGGREGATE(") != std::string::npos);
}

// The rows that a sheet's filter works on; none (last < first) without a filter.
struct Rows {
  int first = 1, last = 0;
  bool contain(int row) const { return row >= first && row <= last; }
};

// Files keep the filter's area under a hidden name of the sheet.
Rows rowsOfFilter(const Worksheet& book, int sheet) {
  for (const DefinedName& name : book.definedNames()) {
    if (name.sheet != sheet || !name.name.ends_with("_FilterDatabase")) continue;
    std::string problem;
    const auto node = parseFormula(name.formula, problem);
    if (node && node->kind == NodeKind::Reference)
      return {node->reference.first.row, node->reference.last.row};
  }
  return {};
}

// What counts of the arguments, cells that hold no number included.
bool subtotalValues(Evaluator& ev, Arguments areas, const SubtotalOptions& options,
                    std::vector<Operand>& values, Operand& error) {
  for (const Operand& argument : areas) {
    std::vector<Area> list;
    if (argument.isArea()) list.push_back(argument.area);
    if (argument.tag == Tag::Areas) list = *argument.areas;
    if (list.empty()) {
      bool fine = true;
      ev.visitValues(argument, [&](const Operand& value, bool) {
        if (!value.isError())
          values.push_back(value);
        else if (!options.skipErrors)
          fine = false, error = value;
        return fine;
      });
      if (!fine) return false;
    }
    for (const Area& area : list) {
      for (int sheet = area.sheet; sheet <= area.lastSheet; ++sheet) {
        const auto& hidden = ev.book().hiddenRows(sheet);
        const Rows filtered =
            options.skipFiltered && !hidden.empty() ? rowsOfFilter(ev.book(), sheet) : Rows{};
        const bool all = ev.book().cells(sheet).visit(
            area.row1, area.column1, area.row2, area.column2, [&](int row, int, const Cell& cell) {
              if (options.skipNested && isNested(cell)) return true;
              if ((options.skipHidden || filtered.contain(row)) && hidden.contains(row))
                return true;
              const Operand value = ev.fromCell(cell);
              if (value.isError() && options.skipErrors) return true;
              values.push_back(value);
              return true;
            });
        if (!all) return false;
      }
    }
  }
  return true;
}

// The functions that SUBTOTAL and AGGREGATE know by number, from 1.
constexpr std::string_view numbered[] = {
    "AVERAGE",    "COUNT",    "COUNTA",         "MAX",         "MIN",
    "PRODUCT",    "STDEV",    "STDEVP",         "SUM",         "VAR",
    "VARP",       "MEDIAN",   "MODE",           "LARGE",       "SMALL",
    "PERCENTILE", "QUARTILE", "PERCENTILE.EXC", "QUARTILE.EXC"};

Operand applyNumbered(Evaluator& ev, int number, std::vector<Operand>& values,
                      const Operand* extra) {
  Array* array = ev.newArray(1, static_cast<int>(values.size()));
  if (array == nullptr) return ErrorCode::Num;
  array->values = std::move(values);
  std::vector<Operand> arguments{Operand(static_cast<const Array*>(array))};
  if (extra != nullptr) arguments.push_back(*extra);
  const FunctionInfo* function = findFunction(numbered[number - 1]);
  return function == nullptr ? Operand(ErrorCode::Value) : function->routine(ev, arguments);
}

Operand fnSubtotal(Evaluator& ev, Arguments a) {
  int number = 0;
  if (!wholeBetween(a[0].number, 1, 111, number)) return ErrorCode::Value;
  SubtotalOptions options;
  options.skipHidden = number > 100;
  options.skipFiltered = true;
  number %= 100;
  if (number < 1 || number > 11) return ErrorCode::Value;
  std::vector<Operand> values;
  Operand error;
  if (!subtotalValues(ev, a.subspan(1), options, values, error)) return error;
  return applyNumbered(ev, number, values, nullptr);
}

Operand fnAggregate(Evaluator& ev, Arguments a) {
  int number = 0;
  int choice = 0;
  if (!wholeBetween(a[0].number, 1, 19, number) || !wholeBetween(a[1].number, 0, 7, choice)) {
    return ErrorCode::Value;
  }
  SubtotalOptions options;
  options.skipNested = choice < 4;
  options.skipHidden = choice % 2 == 1;
  options.skipErrors = choice % 4 >= 2;
  Operand extra;
  Arguments areas = a.subspan(2);
  if (number >= 14) {
    if (areas.size() < 2) return ErrorCode::Value;
    extra = ev.single(areas[1]);
    double k = 0;
    Operand error;
    if (!ev.toNumber(extra, k, error)) return error;
    extra = Operand(k);
    areas = areas.first(1);
  }
  std::vector<Operand> values;
  Operand error;
  if (!subtotalValues(ev, areas, options, values, error)) return error;
  return applyNumbered(ev, number, values, number >= 14 ? &extra : nullptr);
}

constexpr FunctionInfo table[] = {
    {"SUM", 1, anyNumber, 4, "R", fnSum},
    {"PRODUCT", 1, anyNumber, 183, "R", fnProduct},
    {"SUMSQ", 1, anyNumber, 321, "R", fnSumSq},
    {"AVERAGE", 1, anyNumber, 5, "R", fnAverage},
    {"AVERAGEA", 1, anyNumber, 361, "R", fnAverageA},
    {"MIN", 1, anyNumber, 6, "R", [](Evaluator& ev, Arguments a) { return extreme(ev, a, false); }},
    {"MAX", 1, anyNumber, 7, "R", [](Evaluator& ev, Arguments a) { return extreme(ev, a, true); }},
    {"MINA", 1, anyNumber, 363, "R",
     [](Evaluator& ev, Arguments a) { return extremeA(ev, a, false); }},
    {"MAXA", 1, anyNumber, 362, "R",
     [](Evaluator& ev, Arguments a) { return extremeA(ev, a, true); }},
    {"COUNT", 1, anyNumber, 0, "R", fnCount},
    {"COUNTA", 1, anyNumber, 169, "R", fnCountA},
    {"COUNTBLANK", 1, 1, 347, "R", fnCountBlank},
    {"STDEV", 1, anyNumber, 12, "R", stdev},
    {"STDEVP", 1, anyNumber, 193, "R", stdevp},
    {"VAR", 1, anyNumber, 46, "R", var},
    {"VARP", 1, anyNumber, 194, "R", varp},
    {"STDEV.S", 1, anyNumber, newer, "R", stdev},
    {"STDEV.P", 1, anyNumber, newer, "R", stdevp},
    {"VAR.S", 1, anyNumber, newer, "R", var},
    {"VAR.P", 1, anyNumber, newer, "R", varp},
    {"STDEVA", 1, anyNumber, 366, "R", spread<Spread::Sample, Measure::Deviation, Counted::All>},
    {"STDEVPA", 1, anyNumber, 364, "R",
     spread<Spread::Population, Measure::Deviation, Counted::All>},
    {"VARA", 1, anyNumber, 367, "R", spread<Spread::Sample, Measure::Variance, Counted::All>},
    {"VARPA", 1, anyNumber, 365, "R", spread<Spread::Population, Measure::Variance, Counted::All>},
    {"SUMPRODUCT", 1, anyNumber, 228, "A", fnSumProduct},
    {"SUMX2MY2", 2, 2, 304, "A",
     [](Evaluator& ev, Arguments a) {
       return sumOfPairs(ev, a, [](double x, double y) { return x * x - y * y; });
     }},
    {"SUMX2PY2", 2, 2, 305, "A",
     [](Evaluator& ev, Arguments a) {
       return sumOfPairs(ev, a, [](double x, double y) { return x * x + y * y; });
     }},
    {"SUMXMY2", 2, 2, 303, "A",
     [](Evaluator& ev, Arguments a) {
       return sumOfPairs(ev, a, [](double x, double y) { return (x - y) * (x - y); });
     }},
    {"SUBTOTAL", 2, anyNumber, 344, "NR", fnSubtotal},
    {"AGGREGATE", 3, anyNumber, newer, "NNA", fnAggregate},
};

}  // namespace

FunctionList aggregateFunctions() {
  return table;
}

bool numbersOf(Evaluator& ev, Arguments arguments, std::vector<double>& numbers, Operand& error) {
  return visitNumbers(ev, arguments, error, [&](double number) { numbers.push_back(number); });
}

bool pairsOf(Evaluator& ev, const Operand& a, const Operand& b, std::vector<double>& first,
             std::vector<double>& second, Operand& error) {
  for (const Operand* operand : {&a, &b}) {
    if (!operand->isError()) continue;
    error = *operand;
    return false;
  }
  // A row against a column of the same length is fine.
  const int rows = Evaluator::rowsOf(a);
  const int columns = Evaluator::columnsOf(a);
  const int otherColumns = Evaluator::columnsOf(b);
  const double count = static_cast<double>(rows) * columns;
  if (count != static_cast<double>(Evaluator::rowsOf(b)) * otherColumns) {
    error = ErrorCode::NotAvailable;
    return false;
  }
  const auto usedRows = [&](const Operand& operand) {
    return operand.isArea() ? std::max(0, ev.used(operand.area).rows())
                            : Evaluator::rowsOf(operand);
  };
  const auto usedColumns = [&](const Operand& operand) {
    return operand.isArea() ? std::max(0, ev.used(operand.area).columns())
                            : Evaluator::columnsOf(operand);
  };
  const bool sameShape = columns == otherColumns;
  const int lastRow = sameShape ? std::min(usedRows(a), usedRows(b)) : rows;
  const int lastColumn = sameShape ? std::min(usedColumns(a), usedColumns(b)) : columns;
  for (int row = 0; row < lastRow; ++row) {
    for (int column = 0; column < lastColumn; ++column) {
      const int place = row * columns + column;
      const Operand x = ev.element(a, row, column);
      const Operand y = sameShape ? ev.element(b, row, column)
                                  : ev.element(b, place / otherColumns, place % otherColumns);
      if (x.isError() || y.isError()) {
        error = x.isError() ? x : y;
        return false;
      }
      if (!x.isNumber() || !y.isNumber()) continue;
      first.push_back(x.number);
      second.push_back(y.number);
    }
  }
  return true;
}

double meanOf(const std::vector<double>& numbers) {
  return std::accumulate(numbers.begin(), numbers.end(), 0.0) / static_cast<double>(numbers.size());
}

double squaredDeviations(const std::vector<double>& numbers) {
  if (numbers.empty()) return 0;
  const double mean = meanOf(numbers);
  double sum = 0;
  for (const double number : numbers) sum += (number - mean) * (number - mean);
  return sum;
}

}  // namespace lodex::formula
