#include "modal/Conditions.h"

#include <optional>
#include <string>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/ReferenceTables.h"
#include "modal/MineralData.h"

namespace lodex {
namespace {

struct Comparison {
  std::string name;
  std::string operation;
  std::string value;
};

std::optional<Comparison> splitComparison(std::string_view text) {
  const size_t at = text.find_first_of("<>=");
  if (at == std::string_view::npos) return std::nullopt;
  const bool isLong =
      text.substr(at, 2) == "<>" || text.substr(at, 2) == "<=" || text.substr(at, 2) == ">=";
  const size_t length = isLong ? 2 : 1;
  Comparison comparison{std::string(trimBlanks(text.substr(0, at))),
                        std::string(text.substr(at, length)),
                        std::string(trimBlanks(text.substr(at + length)))};
  std::string& value = comparison.value;
  if (value.size() >= 2 && value.front() == '\'' && value.back() == '\'') {
    value = value.substr(1, value.size() - 2);
  }
  return comparison;
}

template <typename T>
bool holds(const T& left, const std::string& operation, const T& right) {
  if (operation == "=") return left == right;
  if (operation == "<>") return left != right;
  if (operation == "<") return left < right;
  if (operation == "<=") return left <= right;
  if (operation == ">") return left > right;
  return left >= right;
}

int elementRow(const Worksheet& F1ELoc, std::string_view element) {
  for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
    for (const int column : {eloc::Element, eloc::Oxide, eloc::Oxide2}) {
      if (F1ELoc.TextRC(row, column) == element) return row;
    }
  }
  return 0;
}

// The residual's column of "element/method"; 0 if there is none.
int residualColumn(const std::string& name, const Worksheet& F1Kirja, const Worksheet& F1ELoc) {
  const size_t slash = name.find('/');
  const int row = elementRow(F1ELoc, trimBlanks(name.substr(0, slash)));
  if (row == 0 || slash == std::string::npos) return 0;
  const std::string method(trimBlanks(name.substr(slash + 1)));
  for (int k = 1; !F1Kirja.ColText(k).empty(); ++k) {
    if (F1Kirja.ColText(k) == method) return static_cast<int>(F1Kirja.NumberRC(row, k));
  }
  return 0;
}

}  // namespace

bool Testaa(std::string_view condition, const frmResult& result, const Worksheet& F1ELoc,
            int sample) {
  const auto comparison = splitComparison(condition.size() > 2 ? condition.substr(2) : "");
  if (!comparison) return false;
  const bool isMineral = condition.starts_with("M:");
  if (!isMineral && !condition.starts_with("E:")) return false;
  const Worksheet& sheet = isMineral ? result.F1MC : result.F1R;
  const int column = isMineral ? MineralColumn(comparison->name, sheet)
                               : residualColumn(comparison->name, result.F1Kirja, F1ELoc);
  if (column == 0 || sample < 1 || sample > sheet.LastRow()) return false;
  if (const auto number = parseNumber(comparison->value)) {
    return holds(sheet.NumberRC(sample, column), comparison->operation, *number);
  }
  return holds(sheet.TextRC(sample, column), comparison->operation, comparison->value);
}

}  // namespace lodex
