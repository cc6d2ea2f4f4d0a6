// Runs the tables of tests/worksheet/formulas: one case a line, formula <tab> expected value.
//   A1 := 5        sets a cell of the first sheet as if typed (Sheet!A1 := 5 of another one)
//   {formula}      an array formula; the expected value lists rows "1,2;3,4"
//   # comment
// Numbers must agree to 1e-11 of their size, or as far as the expected value is written.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "basic/A1.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

constexpr int workRow = 500;
constexpr int workColumn = 60;

// Half a unit in the last written digit, where fewer than twelve digits are written.
double tolerance(const std::string& written, double value) {
  const size_t e = written.find_first_of("eE");
  const std::string mantissa = written.substr(0, e);
  const size_t point = mantissa.find('.');
  double tolerated = std::abs(value) * 1e-11;
  size_t digits = 0;
  for (const char c : mantissa) digits += c >= '0' && c <= '9' ? 1 : 0;
  if (point != std::string::npos && digits < 12) {
    double unit = std::pow(10.0, -static_cast<double>(mantissa.size() - point - 1));
    if (e != std::string::npos) unit *= std::pow(10.0, numberOf(written.substr(e + 1)));
    tolerated = std::max(tolerated, unit * 0.5000001);
  }
  return tolerated;
}

::testing::AssertionResult agrees(const Value& value, const std::string& expected) {
  const auto failure = [&] {
    return ::testing::AssertionFailure() << "is " << value.asText() << ", expected " << expected;
  };
  if (const auto number = parseNumber(expected)) {
    if (!value.isNumber()) return failure() << " as a number";
    if (std::abs(value.asNumber() - *number) > tolerance(expected, *number)) {
      return failure() << " (" << exactNumberText(value.asNumber()) << ")";
    }
    return ::testing::AssertionSuccess();
  }
  if (expected.size() >= 2 && expected.front() == '"') {
    const std::string text = expected.substr(1, expected.size() - 2);
    return value.isText() && value.textView() == text ? ::testing::AssertionSuccess()
                                                      : failure() << " as text";
  }
  return !value.isText() && value.asText() == expected ? ::testing::AssertionSuccess() : failure();
}

class FormulaTables : public ::testing::TestWithParam<std::string> {
 protected:
  void setCell(const std::string& target, const std::string& entry) {
    const size_t mark = target.find('!');
    int sheet = 1;
    if (mark != std::string::npos) {
      sheet = book_.SheetNumber(target.substr(0, mark));
      if (sheet == 0) {
        book_.NumSheets(book_.NumSheets() + 1);
        sheet = book_.NumSheets();
        book_.SheetName(sheet, target.substr(0, mark));
      }
    }
    int row = 0;
    int column = 0;
    ASSERT_TRUE(
        parseCellAddress(target.substr(mark == std::string::npos ? 0 : mark + 1), row, column))
        << target;
    book_.EntrySRC(sheet, row, column, entry);
  }

  void checkArray(const std::string& formula, const std::string& expected) {
    const auto rows = split(expected, ";");
    const auto columns = split(rows[0], ",").size();
    book_.setArrayFormula(1, workRow, workColumn, workRow + static_cast<int>(rows.size()) - 1,
                          workColumn + static_cast<int>(columns) - 1, formula);
    book_.Recalc();
    for (size_t row = 0; row < rows.size(); ++row) {
      const auto cells = split(rows[row], ",");
      for (size_t column = 0; column < cells.size(); ++column) {
        EXPECT_TRUE(agrees(book_.ValueSRC(1, workRow + static_cast<int>(row),
                                          workColumn + static_cast<int>(column)),
                           cells[column]))
            << "row " << row + 1 << ", column " << column + 1;
      }
    }
    book_.ClearRange(workRow, workColumn, workRow + 20, workColumn + 20);
  }

  Worksheet book_;
};

TEST_P(FormulaTables, GiveTheExpectedValues) {
  std::ifstream file(std::string(LODEX_SOURCE_DIR "/tests/worksheet/formulas/") + GetParam() +
                     ".txt");
  ASSERT_TRUE(file);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    SCOPED_TRACE(GetParam() + ".txt:" + std::to_string(number) + ": " + line);
    const size_t assign = line.find(" := ");
    const size_t tab = line.find('\t');
    if (assign != std::string::npos && tab == std::string::npos) {
      setCell(line.substr(0, assign), line.substr(assign + 4));
      continue;
    }
    ASSERT_NE(tab, std::string::npos);
    const std::string formula = line.substr(0, tab);
    const std::string expected = line.substr(line.find_first_not_of('\t', tab));
    if (formula.front() == '{' && formula.back() == '}') {
      checkArray(formula.substr(1, formula.size() - 2), expected);
      continue;
    }
    book_.FormulaSRC(1, workRow, workColumn, formula);
    book_.Recalc();
    EXPECT_TRUE(agrees(book_.ValueSRC(1, workRow, workColumn), expected));
    EXPECT_EQ(book_.formulaProblem(1, workRow, workColumn).empty(), expected != "#NAME?");
  }
}

std::vector<std::string> tableNames() {
  std::vector<std::string> names;
  for (const auto& entry :
       std::filesystem::directory_iterator(LODEX_SOURCE_DIR "/tests/worksheet/formulas")) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(All, FormulaTables, ::testing::ValuesIn(tableNames()),
                         [](const auto& table) { return table.param; });

}  // namespace
}  // namespace lodex
