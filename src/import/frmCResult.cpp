#include "import/frmCResult.h"

#include "basic/Text.h"
#include "chem/Headings.h"

namespace lodex {
namespace {

std::string methodKey(std::string_view method) {
  const std::string key = toUpper(trimBlanks(method));
  return key == "TOT" ? std::string() : key;
}

}  // namespace

bool frmCResult::FindColumnC(std::string_view request, std::vector<ItemColumn>& columns) const {
  std::string element;
  std::string method;
  std::string unit;
  SplitHeading(request, element, method, unit, false);
  if (element.empty()) element = request;
  ItemColumns({element, true, {}}, {itemSheet()}, context().converter, columns);
  SheetStructure numbers = structure();
  const auto cell = [&](int systemRow, int column) {
    const int row = numbers.row(systemRow);
    const bool inside = row > 0 && row <= F1D.MaxRow() && column <= F1D.MaxCol();
    return inside ? F1D.TextRC(row, column) : std::string();
  };
  std::erase_if(columns, [&](const ItemColumn& hit) {
    const bool otherUnit = !unit.empty() && !equalsNoCase(cell(sysrow::Unit, hit.column), unit);
    return otherUnit || methodKey(cell(sysrow::Method, hit.column)) != methodKey(method);
  });
  return !columns.empty();
}

IdentifyRules frmCResult::rules() const {
  IdentifyRules rules = DataSheetForm::rules();
  rules.defaultTables = false;
  rules.alwaysSingle = true;
  return rules;
}

}  // namespace lodex
