#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "chem/CompoundConverter.h"
#include "import/SystemRows.h"

namespace lodex {

/// The ELEMENT row of one sheet, read once, so that looking up every known item does not read it
/// again and again. Columns count from 1 and come in rising order.
class ElementIndex {
 public:
  ElementIndex(const Worksheet& sheet, int elementRow, const CompoundConverter& converter);

  /// Columns that hold this element in any form: "Si", "SiO2" and "SiTOT" are all columns of
  /// number 14.
  const std::vector<int>& columnsOfElement(int atomicNumber) const;
  /// Columns whose ELEMENT cell equals the text.
  const std::vector<int>& columnsOfText(const std::string& text) const;

 private:
  std::array<std::vector<int>, 107> byNumber_;
  std::unordered_map<std::string, std::vector<int>> byText_;
  std::vector<int> none_;
};

/// The atomic number that an ELEMENT cell stands for; 0 when it is no chemical formula. "TOT" at
/// its end, in any case, does not count.
int elementOfCell(std::string_view text, const CompoundConverter& converter);

/// One sheet that is searched for an item.
struct ItemSheet {
  int number = 0;  // the sheet's place in the list of data sheets
  const Worksheet* cells = nullptr;
  int elementRow = 0;
};

struct ItemColumn {
  int sheet = 0;
  int column = 0;
  double factor = 1;

  bool operator==(const ItemColumn&) const = default;
};

struct ItemRequest {
  std::string item;               // "Si", "SiO2", "MF_CATIONS"
  bool allowNonElements = false;  // look for the text itself when it names no element
  std::vector<int> wantedSheets;  // only these numbers; empty for all
};

/// The columns that hold an item, sheet by sheet. True when there is at least one.
bool ItemColumns(const ItemRequest& request, const std::vector<ItemSheet>& sheets,
                 const CompoundConverter& converter, std::vector<ItemColumn>& columns);

}  // namespace lodex
