#include "import/HeadingSplit.h"

#include <algorithm>
#include <map>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Headings.h"
#include "import/ItemColumns.h"

namespace lodex {
namespace {

// More pieces than this no title has; a mistyped number shall not grow the table of targets.
constexpr int mostPieces = 1000;

int listedNumber(const std::vector<std::string>& list, int index) {
  const auto place = static_cast<size_t>(index);
  return place < list.size() ? parseInteger(list[place]).value_or(0) : 0;
}

}  // namespace

void splitTitles(const DescribedSheet& sheet, const TitleParts& parts) {
  if (parts.strSep2.empty() || !sheet.has(sysrow::Header)) return;
  const std::vector<std::string> numbers = split(parts.strSepNo, ",");
  const std::vector<std::string> wanted = split(parts.bSep, ",");
  std::map<int, int> targets;  // piece -> system row
  int highest = 0;
  for (int fact = 0; fact < titleFactCount; ++fact) {
    const int systemRow = sysrow::Element + fact;
    if (listedNumber(wanted, fact) != 1 || systemRow > sysrow::Multiplier) continue;
    const int piece = std::clamp(listedNumber(numbers, fact), 0, mostPieces);
    highest = std::max(highest, piece);
    if (!sheet.has(systemRow)) {
      sheet.addSystemRow(systemRow, sheet.structure.row(sysrow::Header) + 1);
    }
    if (piece > 0) targets[piece] = systemRow;
  }
  for (int column = 1; column <= sheet.cells.LastCol(); ++column) {
    const std::string title = sheet.text(sysrow::Header, column);
    if (column == 1 && title == systemRowCaption(sysrow::Header)) continue;
    const std::vector<std::string> pieces = SplitText(title, parts.strSep2);
    if (static_cast<int>(pieces.size()) < highest) continue;
    for (const auto& [piece, systemRow] : targets) {
      sheet.setText(systemRow, column, pieces[static_cast<size_t>(piece) - 1]);
    }
  }
}

void examineHeadings(const DescribedSheet& sheet, const ThesaurusIndex& thesaurus,
                     const CompoundConverter& converter, LogLines& log) {
  if (!sheet.has(sysrow::Header)) sheet.structure.row(sysrow::Header) = 1;
  int row = sheet.structure.row(sysrow::Header);
  for (int i = sysrow::Element; i < systemRowCount; ++i) {
    if (!sheet.has(i)) sheet.addSystemRow(i, ++row);
  }
  // Column 1 belongs to the captions.
  for (int column = 2; column <= sheet.cells.LastCol(); ++column) {
    const std::string title = sheet.cells.TextRC(1, column);
    if (title.empty()) continue;
    const std::vector<int>& rules = thesaurus.rulesFor(title);
    if (!rules.empty()) {
      applyRule(thesaurus.rule(rules.front()), sheet, title, sysrow::Header, column, log);
      continue;
    }
    std::string element;
    std::string method;
    std::string unit;
    SplitHeading(title, element, method, unit, true);
    if (element.empty() && elementOfCell(title, converter) > 0) element = title;
    if (element.empty()) continue;
    sheet.setText(sysrow::Element, column, element);
    sheet.setText(sysrow::Unit, column, unit);
  }
}

}  // namespace lodex
