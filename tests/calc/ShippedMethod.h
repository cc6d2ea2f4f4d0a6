#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "chem/Elements.h"
#include "worksheet/Worksheet.h"

namespace lodex {

inline std::string shippedPath(const std::string& book) {
  return std::string(LODEX_BIN_DIR) + "/Geo/C-Groups/" + book + ".xls";
}

/// Values by item, such as {"SiO2 %", 50.1}.
using Analysis = std::map<std::string, double>;

/// Of a formula without brackets.
inline double molarMass(const std::string& formula) {
  double mass = 0;
  for (size_t i = 0; i < formula.size();) {
    size_t end = i + 1;
    while (end < formula.size() && formula[end] >= 'a' && formula[end] <= 'z') ++end;
    const double weight = AtomicWeight(formula.substr(i, end - i));
    int count = 0;
    for (i = end; i < formula.size() && formula[i] >= '0' && formula[i] <= '9'; ++i) {
      count = count * 10 + (formula[i] - '0');
    }
    mass += weight * std::max(count, 1);
  }
  return mass;
}

/// A shipped method workbook, fed and read by the names of its rows.
class ShippedMethod {
 public:
  explicit ShippedMethod(const std::string& name) {
    book.Read(shippedPath(name));
    input_ = book.SheetNumber("Input");
    output_ = book.SheetNumber("Output");
    for (int row = 2; row <= book.LastRow(input_); ++row) {
      inputRows_[book.TextSRC(input_, row, 1)] = row;
    }
    for (int row = 1; row <= book.LastRow(output_); ++row) {
      outputRows_[book.TextSRC(output_, row, 2)] = row;
    }
  }

  /// Replaces all inputs. "SiO2" alone stands for "SiO2 %".
  void calculate(const Analysis& analysis) {
    for (const auto& [item, row] : inputRows_) book.ValueSRC(input_, row, 3, Value());
    for (const auto& [item, value] : analysis) enter(item, value);
    book.Recalc();
  }
  void enter(const std::string& item, const Value& value) {
    auto found = inputRows_.find(item);
    if (found == inputRows_.end()) found = inputRows_.find(item + " %");
    ASSERT_NE(found, inputRows_.end()) << "no input " << item;
    book.ValueSRC(input_, found->second, 3, value);
  }

  Value output(const std::string& name) const {
    const auto found = outputRows_.find(name);
    if (found == outputRows_.end()) {
      ADD_FAILURE() << "no output " << name;
      return {};
    }
    return book.ValueSRC(output_, found->second, 3);
  }
  double number(const std::string& name) const {
    const Value value = output(name);
    EXPECT_TRUE(value.isNumber()) << name << " is \"" << value.asText() << '"';
    return value.asNumber();
  }
  std::string text(const std::string& name) const { return output(name).asText(); }

  /// Changes a choice in column `column` of the row that begins with `label`.
  void choose(const std::string& sheet, const std::string& label, int column, double value) {
    const int number = book.SheetNumber(sheet);
    const FindResult found = book.Find(label, number, 1, 1, book.LastRow(number), 1);
    ASSERT_GT(found.found, 0) << label;
    book.NumberSRC(number, found.row, column, value);
  }

  Worksheet book;

 private:
  int input_ = 0;
  int output_ = 0;
  std::map<std::string, int> inputRows_;
  std::map<std::string, int> outputRows_;
};

}  // namespace lodex
