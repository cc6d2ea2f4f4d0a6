// The second half of identification: what each column is.
#include "import/Identification.h"

#include <unordered_map>

#include "basic/Text.h"
#include "chem/Headings.h"
#include "import/ColumnTypes.h"
#include "import/ItemColumns.h"

namespace lodex {
namespace {

// Mineral formula items are found from here on: the formula as a whole has no column of its own.
constexpr int firstColumnItem = 121;

void setSafeName(const DescribedSheet& sheet, int systemRow, int column, std::string_view kind,
                 bool replaceSlash, LogLines& log) {
  const std::string name = sheet.text(systemRow, column);
  std::string clean;
  if (name.empty() || !SafeFieldName(name, clean, replaceSlash) || clean == name) return;
  sheet.setText(systemRow, column, clean);
  log.push_back("Replacing " + std::string(kind) + " name " + name + " by " + clean +
                " due to illegal characters!");
}

constexpr std::string_view unidentifiedType = "TEXT (255)";

// True for what an earlier run wrote for an unidentified column with that heading.
bool isPlacedAsUnidentified(const DescribedSheet& sheet, int column, const std::string& heading) {
  std::string field;
  SafeFieldName(heading, field, false);
  return sheet.text(sysrow::Type, column) == unidentifiedType &&
         sheet.text(sysrow::Field, column) == field;
}

std::string withoutIndexMarks(std::string_view type) {
  return replaceAll(replaceAll(type, "(I,U)", ""), "(U,I)", "");
}

}  // namespace

std::vector<KnownItem> knownItems(const Worksheet& F1Data, int first, int last) {
  std::vector<KnownItem> items;
  for (int number = first; number <= last && number < F1Data.LastRow(); ++number) {
    std::string symbol = F1Data.TextRC(number + 1, 2);
    if (!symbol.empty()) items.push_back({number, std::move(symbol)});
  }
  return items;
}

std::string defaultTable(const DescribedSheet& sheet, const IdentifyRules& rules) {
  if (!rules.defaultTables) return {};
  return sheet.structure.mineralColumn > 0 ? "MINERAL" : "ANALYSES";
}

ColumnIdentification::ColumnIdentification(const DescribedSheet& sheet, Worksheet& F1Ref,
                                           const Worksheet& F1Data,
                                           const CompoundConverter& converter,
                                           const IdentifyRules& rules, LogLines& log)
    : sheet_(sheet),
      F1Ref_(F1Ref),
      F1Data_(F1Data),
      converter_(converter),
      rules_(rules),
      log_(log) {
  if (F1Ref_.LastRow() > 0) F1Ref_.ClearRange(1, 1, F1Ref_.LastRow(), F1Ref_.LastCol());
}

void ColumnIdentification::markHit(const KnownItem& item, size_t hit, size_t hits, int column,
                                   std::string_view type) const {
  sheet_.setText(sysrow::Identified, column,
                 "X(" + item.symbol + ")" + std::to_string(hit) + "/" + std::to_string(hits));
  if (sheet_.has(sysrow::Identified)) {
    log_.push_back("-Column identified [" + item.symbol + " (Column=" + std::to_string(column) +
                   ") = Element " + std::to_string(item.number));
  }
  if (rules_.descriptions == Descriptions::Keep && sheet_.isDescribed(column)) return;
  if (sheet_.text(sysrow::Table, column).empty()) {
    sheet_.setText(sysrow::Table, column, defaultTable(sheet_, rules_));
  }
  std::string field = sheet_.text(sysrow::Element, column);
  for (const int part : {sysrow::Method, sysrow::Unit}) {
    const std::string text = sheet_.text(part, column);
    if (!text.empty()) field += "/" + text;
  }
  sheet_.setText(sysrow::Field, column, field);
  sheet_.setText(sysrow::Type, column, type);
}

void ColumnIdentification::identifyElements(int sheetNumber, bool onlyNonX) {
  const ElementIndex index(sheet_.cells, sheet_.structure.row(sysrow::Element), converter_);
  for (const KnownItem& item : knownItems(F1Data_, 1, lastElementItem)) {
    std::vector<int> columns = index.columnsOfElement(item.number);
    // An identifier headed "NO" is not nitrogen oxide.
    if (sheet_.structure.idColumn > 0) std::erase(columns, sheet_.structure.idColumn);
    for (size_t hit = 1; hit <= columns.size(); ++hit) {
      const int column = columns[hit - 1];
      if (onlyNonX && !sheet_.text(sysrow::Identified, column).empty()) continue;
      // Columns beyond the room that the cross-reference has are marked all the same.
      if (2 * hit + 1 <= maxColumns) {
        F1Ref_.NumberRC(item.number, 1, static_cast<double>(columns.size()));
        F1Ref_.NumberRC(item.number, static_cast<int>(2 * hit), sheetNumber);
        F1Ref_.NumberRC(item.number, static_cast<int>(2 * hit + 1), column);
      }
      markHit(item, hit, columns.size(), column, "SINGLE");
    }
  }
}

void ColumnIdentification::identifyFormulaItems(bool onlyNonX) {
  const ElementIndex index(sheet_.cells, sheet_.structure.row(sysrow::Element), converter_);
  for (const KnownItem& item : knownItems(F1Data_, firstFormulaItem, F1Data_.LastRow())) {
    const std::vector<int>& columns = index.columnsOfText(item.symbol);
    for (size_t hit = 1; hit <= columns.size(); ++hit) {
      const int column = columns[hit - 1];
      // Noted even when the column is left alone: a formula item that has a column gets no second.
      F1Ref_.NumberRC(item.number, static_cast<int>(hit), column);
      if (onlyNonX && !sheet_.text(sysrow::Identified, column).empty()) continue;
      const int firstRow = std::max(1, sheet_.structure.firstDataRow);
      markHit(item, hit, columns.size(), column,
              rules_.alwaysSingle
                  ? "SINGLE"
                  : columnType(sheet_.cells, column, firstRow, sheet_.cells.LastRow()));
    }
  }
}

int ColumnIdentification::columnOfItem(const KnownItem& item) const {
  const int known = static_cast<int>(F1Ref_.NumberRC(item.number, 1));
  if (known > 0) return known;
  const int column = sheet_.cells.LastCol() + 1;
  F1Ref_.NumberRC(item.number, 1, column);
  sheet_.setText(sysrow::Element, column, item.symbol);
  sheet_.setText(sysrow::Header, column, item.symbol);
  return column;
}

void ColumnIdentification::addMineralFormulas(const FormulaLookup& lookup) {
  const int mineralColumn = sheet_.structure.mineralColumn;
  if (mineralColumn == 0 || !sheet_.has(sysrow::Element)) return;
  std::unordered_map<std::string, KnownItem> itemsByName;
  for (const KnownItem& item : knownItems(F1Data_, firstColumnItem, F1Data_.LastRow())) {
    itemsByName.emplace(item.symbol, item);
  }
  std::unordered_map<std::string, std::vector<std::pair<std::string, std::string>>> formulas;
  for (int row = std::max(1, sheet_.structure.firstDataRow); row <= sheet_.cells.LastRow(); ++row) {
    const std::string mineral = sheet_.cells.TextRC(row, mineralColumn);
    if (mineral.empty()) continue;
    const auto [formula, isNew] = formulas.try_emplace(mineral);
    if (isNew) formula->second = lookup(mineral);
    for (const auto& [name, value] : formula->second) {
      const auto item = itemsByName.find(name);
      if (item == itemsByName.end()) continue;
      const int column = columnOfItem(item->second);
      if (sheet_.inside(row, column)) sheet_.cells.TextRC(row, column, value);
    }
  }
}

std::string unitOfWord(std::string_view word) {
  std::string unit = toLower(trimWhite(word));
  if (unit.size() > 2 && (unit.front() == '(' || unit.front() == '[')) {
    unit = unit.substr(1, unit.size() - 2);
  }
  for (const char* name : {"%", "wt%", "wt.%", "wt. %", "wt %", "pct", "wt pct", "mass%", "m-%"}) {
    if (unit == name) return "%";
  }
  for (const char* name :
       {"ppm", "g/t", "mg/kg", "mg/l", "ug/g", "\xC2\xB5g/g", "\xCE\xBCg/g", "g/tonne"}) {
    if (unit == name) return "ppm";
  }
  for (const char* name : {"ppb", "mg/t", "ug/kg", "\xC2\xB5g/kg", "\xCE\xBCg/kg", "ng/g"}) {
    if (unit == name) return "ppb";
  }
  return {};
}

bool looksLikeUnits(const Worksheet& sheet, int row, int idColumn) {
  if (row > sheet.LastRow() || !trimWhite(sheet.TextRC(row, idColumn)).empty()) return false;
  int filled = 0;
  int units = 0;
  for (int column = idColumn + 1; column <= sheet.LastCol(); ++column) {
    const std::string text = sheet.TextRC(row, column);
    if (trimWhite(text).empty()) continue;
    ++filled;
    if (!unitOfWord(text).empty()) ++units;
  }
  return 2 * units > filled;
}

void reportUnknownHeadings(const DescribedSheet& sheet, LogLines& log) {
  const int header = sheet.structure.row(sysrow::Header);
  if (header == 0 || !sheet.has(sysrow::Identified)) return;
  const int last = sheet.cells.LastCol();
  if (last <= sheet.structure.idColumn || sheet.cells.LastRow() < 1) return;
  for (int column = sheet.structure.idColumn + 1; column <= last; ++column) {
    if (sheet.text(sysrow::Identified, column).starts_with("X")) return;
  }
  log.found.error("No column was understood: is row " + std::to_string(header) + " the heading?");
}

void placeUnidentified(const DescribedSheet& sheet, const IdentifyRules& rules, LogLines& log) {
  if (!sheet.has(sysrow::Identified)) return;
  const std::string table = sheet.structure.mineralColumn > 0 ? "MINERAL" : rules.unidentifiedTable;
  for (int column = sheet.structure.idColumn + 1; column <= sheet.cells.LastCol(); ++column) {
    if (!sheet.text(sysrow::Identified, column).empty()) continue;
    const std::string header = sheet.text(sysrow::Header, column);
    const std::string element = sheet.text(sysrow::Element, column);
    const std::string& heading = header.empty() ? element : header;
    if (heading.empty()) continue;
    const bool keep =
        rules.descriptions == Descriptions::Keep || !isPlacedAsUnidentified(sheet, column, heading);
    if (sheet.isDescribed(column) && keep) continue;
    sheet.setText(sysrow::Table, column, table);
    sheet.setText(sysrow::Field, column, heading);
    sheet.setText(sysrow::Type, column, unidentifiedType);
    log.push_back("-Column " + std::to_string(column) + "=(" + header + "/" + element +
                  ") not identified -> to the " + table + " table");
  }
}

void nameIdField(const DescribedSheet& sheet) {
  const int column = sheet.structure.idColumn;
  if (column == 0 || !sheet.text(sysrow::Field, column).empty()) return;
  const std::string header = sheet.text(sysrow::Header, column);
  sheet.setText(sysrow::Field, column, header.empty() ? "SampleNo" : header);
}

void CheckIDCOL(const DescribedSheet& sheet, int newColumn, int oldColumn, std::string_view window,
                LogLines& log) {
  const int firstRow = sheet.structure.firstDataRow;
  if (firstRow < 1 || !sheet.inside(1, newColumn) || !sheet.has(sysrow::Type)) return;
  if (oldColumn > 0) {
    sheet.setText(sysrow::Type, oldColumn, withoutIndexMarks(sheet.text(sysrow::Type, oldColumn)));
    sheet.setText(sysrow::Indexed, oldColumn, "");
    sheet.setText(sysrow::Identified, oldColumn, "");
  }
  const auto emptyRow = [&](int row) {
    log.push_back("ID empty on row " + std::to_string(row) + " (file " + std::string(window) + ")");
  };
  const std::string type =
      idColumnType(sheet.cells, newColumn, firstRow, sheet.cells.LastRow(), emptyRow);
  sheet.setText(sysrow::Type, newColumn, type);
  sheet.setText(sysrow::Indexed, newColumn, "YES");
  sheet.setText(sysrow::Identified, newColumn, "ID");
}

void cleanNames(const DescribedSheet& sheet, LogLines& log) {
  const int first = std::max(1, sheet.structure.idColumn);
  for (int column = first; column <= sheet.cells.LastCol(); ++column) {
    if (sheet.text(sysrow::Table, column) == noTable) continue;
    setSafeName(sheet, sysrow::Table, column, "Table", true, log);
  }
  for (int column = first; column <= sheet.cells.LastCol(); ++column) {
    if (sheet.text(sysrow::Field, column).empty()) {
      sheet.setText(sysrow::Field, column, sheet.text(sysrow::Element, column));
    }
    setSafeName(sheet, sysrow::Field, column, "Field", false, log);
  }
}

}  // namespace lodex
