#include "calc/ItemSources.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "chem/Elements.h"
#include "import/ItemColumns.h"

namespace lodex {
namespace {

// The sheet of the map that is named after the item, made if need be, and empty.
int emptyMapSheet(Worksheet& F1Ref, std::string_view item) {
  int sheet = F1Ref.SheetNumber(item);
  if (sheet == 0 && item == allItems) {
    sheet = 1;
    F1Ref.SheetName(1, item);
  } else if (sheet == 0) {
    F1Ref.InsertSheets(F1Ref.NumSheets() + 1, 1);
    sheet = F1Ref.NumSheets();
    F1Ref.SheetName(sheet, item);
  }
  F1Ref.Sheet(sheet);
  if (F1Ref.LastRow() > 0) F1Ref.ClearRange(1, 1, F1Ref.LastRow() + 1, F1Ref.LastCol() + 1);
  return sheet;
}

void ask(const SourceRequest& request, const std::string& symbol, const SourceSheets& sheets,
         std::vector<ItemSource>& sources) {
  std::vector<std::string> offers;
  for (const ItemSource& source : sources) offers.push_back(sourceText(sheets, source));
  const auto answer = request.ask("Source for " + symbol, offers);
  if (answer) sources = chosenSources(sources, *answer);
}

}  // namespace

int mapSheetOf(const Worksheet& F1Ref, std::string_view item) {
  const int own = F1Ref.SheetNumber(item);
  if (own > 0) return own;
  return std::max(1, F1Ref.SheetNumber(allItems));
}

std::vector<ItemSource> sourcesOf(const Worksheet& F1Ref, int mapSheet, int element) {
  std::vector<ItemSource> sources;
  if (element < 1 || element > sourceRows) return sources;
  const int count = parseInteger(F1Ref.TextSRC(mapSheet, element, 1)).value_or(0);
  for (int k = 1; k <= count && 2 * k + 1 <= F1Ref.LastCol(mapSheet); ++k) {
    const auto sheet = parseInteger(F1Ref.TextSRC(mapSheet, element, 2 * k));
    const auto column = parseInteger(F1Ref.TextSRC(mapSheet, element, 2 * k + 1));
    if (sheet && column && *sheet != 0) sources.push_back({*sheet, *column});
  }
  return sources;
}

bool isDecided(const Worksheet& F1Ref, int mapSheet, int element) {
  return element >= 1 && element <= sourceRows && F1Ref.HasContent(mapSheet, element, 1);
}

void setSources(Worksheet& F1Ref, int mapSheet, int element,
                const std::vector<ItemSource>& sources) {
  for (int column = 1; column <= F1Ref.LastCol(mapSheet); ++column) {
    F1Ref.TextSRC(mapSheet, element, column, "");
  }
  F1Ref.TextSRC(mapSheet, element, 1, std::to_string(sources.size()));
  int column = 2;
  for (const ItemSource& source : sources) {
    F1Ref.TextSRC(mapSheet, element, column++, std::to_string(source.sheet));
    F1Ref.TextSRC(mapSheet, element, column++, std::to_string(source.column));
  }
}

std::string sourceText(const SourceSheets& sheets, const ItemSource& source) {
  const SourceSheet* sheet = findSheet(sheets, source.sheet);
  const std::string column = "Column " + std::to_string(source.column);
  if (sheet == nullptr) return column;
  const std::string heading = sheet->heading(source.column);
  if (sheet->isTable) return "[" + sheet->caption + "].[" + heading + "]";
  return sheet->caption + " , " + column + " , " + heading;
}

std::vector<ItemSource> chosenSources(const std::vector<ItemSource>& offered,
                                      const std::vector<int>& positions) {
  std::vector<ItemSource> chosen;
  for (const int position : positions) {
    if (position < 1 || position > static_cast<int>(offered.size())) continue;
    const ItemSource& source = offered[static_cast<size_t>(position) - 1];
    if (std::find(chosen.begin(), chosen.end(), source) == chosen.end()) chosen.push_back(source);
  }
  return chosen;
}

void buildSources(Worksheet& F1Ref, const SourceSheets& sheets, const CompoundConverter& converter,
                  const SourceRequest& request) {
  const int mapSheet = emptyMapSheet(F1Ref, request.item);
  std::vector<std::pair<int, ElementIndex>> indexes;
  for (const SourceSheet& sheet : sheets) {
    if (!sheet.selected) continue;
    const int elementRow = sheet.structure.row(sysrow::Element);
    indexes.emplace_back(sheet.number, ElementIndex(*sheet.cells, elementRow, converter));
  }
  const std::vector<std::string>& symbols = ElementSymbols();
  for (int element = 1; element < static_cast<int>(symbols.size()); ++element) {
    const std::string& symbol = symbols[static_cast<size_t>(element)];
    std::vector<ItemSource> sources;
    for (const auto& [number, index] : indexes) {
      for (const int column : index.columnsOfElement(element)) sources.push_back({number, column});
    }
    if (sources.empty()) {
      if (request.missing) request.missing(symbol);
      continue;
    }
    if (sources.size() > 1 && request.ask) ask(request, symbol, sheets, sources);
    setSources(F1Ref, mapSheet, element, sources);
  }
}

}  // namespace lodex
