#include "import/ThesaurusStep.h"

#include "basic/Text.h"

namespace lodex {

ThesaurusIndex::ThesaurusIndex(const Worksheet& F1Lib) {
  // Straight from the store: the library's columns are narrowed for its editor, but rules with
  // texts after the last titled column count as well.
  const CellStore& cells = F1Lib.cells(1);
  for (int row = 1; row <= F1Lib.LastRow(1); ++row) {
    ThesaurusRule rule;
    rule.in = cells.value(row, thesaurus::inColumn).asText();
    for (int i = 0; i < thesaurus::textCount; ++i) {
      rule.texts[static_cast<size_t>(i)] =
          cells.value(row, thesaurus::firstTextColumn + i).asText();
    }
    captions_.insert(rule.in);
    const std::string text = cells.value(row, thesaurus::valueColumn).asText();
    if (!text.empty()) byText_[text].push_back(static_cast<int>(rules_.size()));
    rules_.push_back(std::move(rule));
  }
}

const std::vector<int>& ThesaurusIndex::rulesFor(const std::string& text) const {
  const auto found = byText_.find(text);
  return found == byText_.end() ? none_ : found->second;
}

void applyRule(const ThesaurusRule& rule, const DescribedSheet& sheet, const std::string& found,
               int foundIn, int column, LogLines& log, Descriptions descriptions) {
  const auto place = [column](int row) {
    return "(R,C)=(" + std::to_string(row) + "," + std::to_string(column) + ")";
  };
  const bool keepPlace = descriptions == Descriptions::Keep && sheet.isDescribed(column);
  for (int target = 0; target < thesaurus::textCount; ++target) {
    const bool isPlace =
        target == sysrow::Table || target == sysrow::Field || target == sysrow::Type;
    if (keepPlace && isPlace) continue;
    const std::string& text = rule.texts[static_cast<size_t>(target)];
    if (text.empty() || !sheet.has(target)) continue;
    const std::string replacement = text == "-" ? std::string() : text;
    log.push_back("-Thesaurus replacement [" + found + " found on " +
                  place(sheet.structure.row(foundIn)) + " -> " +
                  place(sheet.structure.row(target)) + "] : " + sheet.text(target, column) + "=" +
                  replacement);
    sheet.setText(target, column, replacement);
  }
}

void applyThesaurus(const ThesaurusIndex& thesaurus, const DescribedSheet& sheet, LogLines& log,
                    Descriptions descriptions) {
  for (int row = 0; row < systemRowCount; ++row) {
    const std::string_view caption = systemRowCaption(row);
    if (!sheet.has(row) || !thesaurus.anyIn(caption)) continue;
    for (int column = sheet.structure.idColumn + 1; column <= sheet.cells.LastCol(); ++column) {
      std::string text = sheet.text(row, column);
      if (text.empty()) continue;
      // Nobody sees blanks around a heading, so they make no difference.
      if (thesaurus.rulesFor(text).empty()) text = trimWhite(text);
      const std::vector<int>& rules = thesaurus.rulesFor(text);
      // From the bottom up, so that a topmost rule overrules those below it.
      for (auto number = rules.rbegin(); number != rules.rend(); ++number) {
        const ThesaurusRule& rule = thesaurus.rule(*number);
        if (rule.in != caption) continue;
        applyRule(rule, sheet, text, row, column, log, descriptions);
        sheet.setText(sysrow::Identified, column, "X");
      }
    }
  }
}

}  // namespace lodex
