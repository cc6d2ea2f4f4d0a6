#pragma once

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "basic/Findings.h"
#include "import/SystemRows.h"

namespace lodex {

/// Lines for the log, in the order in which they came up, and what the user must see even without
/// opening the log; places name no sheet yet.
struct LogLines : std::vector<std::string> {
  using std::vector<std::string>::vector;
  Findings found;
};

/// Columns of a thesaurus: the text looked for, the caption of the system row where it counts, and
/// from the third on the new text for system rows 0 to 10.
namespace thesaurus {
inline constexpr int valueColumn = 1;
inline constexpr int inColumn = 2;
inline constexpr int firstTextColumn = 3;
inline constexpr int textCount = 11;
}  // namespace thesaurus

struct ThesaurusRule {
  std::string in;
  /// New text by system row; empty for no change, "-" to empty the cell.
  std::array<std::string, thesaurus::textCount> texts;
};

/// The rules of a thesaurus, found by their text without searching. A rule's number is its row.
class ThesaurusIndex {
 public:
  /// Reads sheet 1 of the library, whose rows are rules from row 1 on.
  explicit ThesaurusIndex(const Worksheet& F1Lib);

  bool empty() const { return rules_.empty(); }
  bool anyIn(std::string_view caption) const { return captions_.count(std::string(caption)) > 0; }
  /// Rules for a text (whole cell, exact case), in the order of the rows.
  const std::vector<int>& rulesFor(const std::string& text) const;
  const ThesaurusRule& rule(int number) const { return rules_[static_cast<size_t>(number)]; }

 private:
  std::vector<ThesaurusRule> rules_;
  std::unordered_map<std::string, std::vector<int>> byText_;
  std::set<std::string> captions_;
  std::vector<int> none_;
};

/// Puts the texts of a rule into the system rows of a column. `found` is the text that the rule
/// is for, and `foundIn` the system row where it was.
void applyRule(const ThesaurusRule& rule, const DescribedSheet& sheet, const std::string& found,
               int foundIn, int column, LogLines& log,
               Descriptions descriptions = Descriptions::Rewrite);

/// Applies the thesaurus to every column after the ID column. Columns that a rule fits are marked
/// "X". Of several rules for one text the topmost has the last word.
void applyThesaurus(const ThesaurusIndex& thesaurus, const DescribedSheet& sheet, LogLines& log,
                    Descriptions descriptions = Descriptions::Rewrite);

}  // namespace lodex
