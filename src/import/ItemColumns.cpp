#include "import/ItemColumns.h"

#include <algorithm>

#include "chem/Elements.h"
#include "chem/Headings.h"

namespace lodex {

int elementOfCell(std::string_view text, const CompoundConverter& converter) {
  text = withoutTotal(text);
  if (text.empty() || !converter.IsCompound(text)) return 0;
  std::string symbol(text);
  return ElementNumber(symbol);
}

ElementIndex::ElementIndex(const Worksheet& sheet, int elementRow,
                           const CompoundConverter& converter) {
  if (elementRow < 1 || elementRow > sheet.LastRow() || elementRow > sheet.MaxRow()) return;
  const int last = std::min(sheet.LastCol(), sheet.MaxCol());
  for (int column = 1; column <= last; ++column) {
    const std::string text = sheet.TextRC(elementRow, column);
    if (text.empty()) continue;
    const auto number = static_cast<size_t>(elementOfCell(text, converter));
    if (number > 0 && number < byNumber_.size()) byNumber_[number].push_back(column);
    byText_[text].push_back(column);
  }
}

const std::vector<int>& ElementIndex::columnsOfElement(int atomicNumber) const {
  const auto number = static_cast<size_t>(atomicNumber);
  return atomicNumber > 0 && number < byNumber_.size() ? byNumber_[number] : none_;
}

const std::vector<int>& ElementIndex::columnsOfText(const std::string& text) const {
  const auto found = byText_.find(text);
  return found == byText_.end() ? none_ : found->second;
}

bool ItemColumns(const ItemRequest& request, const std::vector<ItemSheet>& sheets,
                 const CompoundConverter& converter, std::vector<ItemColumn>& columns) {
  columns.clear();
  std::string symbol = request.item;
  const int number = ElementNumber(symbol);
  for (const ItemSheet& sheet : sheets) {
    const auto& wanted = request.wantedSheets;
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), sheet.number) == wanted.end()) {
      continue;
    }
    const ElementIndex index(*sheet.cells, sheet.elementRow, converter);
    static const std::vector<int> none;
    const std::vector<int>& hits = number > 0                 ? index.columnsOfElement(number)
                                   : request.allowNonElements ? index.columnsOfText(request.item)
                                                              : none;
    for (const int column : hits) {
      const ItemColumn hit{sheet.number, column, 1};
      if (std::find(columns.begin(), columns.end(), hit) == columns.end()) columns.push_back(hit);
    }
  }
  return !columns.empty();
}

}  // namespace lodex
