#include "calc/InputPlan.h"

#include <algorithm>

#include "basic/Text.h"

namespace lodex {
namespace {

constexpr int ironNumber = 26;
constexpr int needColumn = 4;

struct WantedItem {
  int row = 0;
  std::string text;
  ItemHeading heading;
  bool asAnalysed = false;
};

struct Candidate {
  InputSource source;
  ItemHeading heading;
};

bool planReference(const CalculationGroup& group, const std::string& text, InputRow& input) {
  std::string method;
  std::string item;
  if (!splitReference(text, method, item)) return false;
  const int number = group.MethodIndex(method);
  if (number == 0) return false;
  input.referencedMethod = number;
  input.referencedRow = group.method(number).outputRow(item);
  return true;
}

// How well a column fits one of several forms of its element: as what it was analysed, then as
// the total, since a total may be given in any form.
int fitOf(const ItemHeading& wanted, const ItemHeading& column) {
  if (wanted.form == column.form && wanted.isTotal == column.isTotal) return 5;
  if (wanted.sameForm(column)) return 4;
  if (wanted.isTotal && column.isTotal) return 3;
  if (wanted.formula == column.formula) return 2;
  return wanted.isTotal ? 1 : 0;
}

class Planner {
 public:
  Planner(const SourceSheets& sheets, const Worksheet& F1Ref, int mapSheet,
          const CompoundConverter& converter)
      : sheets_(sheets), F1Ref_(F1Ref), mapSheet_(mapSheet), converter_(converter) {}

  std::vector<WantedItem> wanted;

  std::vector<InputSource> sourcesFor(const WantedItem& item) const {
    std::vector<Candidate> candidates =
        item.heading.element > 0 ? elementColumns(item.heading.element) : namedColumns(item);
    if (candidates.empty() && item.heading.element > 0 &&
        !isDecided(F1Ref_, mapSheet_, item.heading.element)) {
      candidates = namedColumns(item);
    }
    arrange(item, candidates);
    std::vector<InputSource> sources;
    for (Candidate& candidate : candidates) {
      candidate.source.factor = conversionFactor(candidate.heading, item.heading, converter_);
      sources.push_back(candidate.source);
    }
    return sources;
  }

 private:
  Candidate candidate(size_t sheet, int column) const {
    const SourceSheet& from = sheets_[sheet];
    return {{sheet, column, 1},
            columnHeading(from.text(sysrow::Element, column), from.text(sysrow::Method, column),
                          from.text(sysrow::Unit, column), converter_)};
  }

  std::vector<Candidate> elementColumns(int element) const {
    std::vector<Candidate> found;
    for (const ItemSource& source : sourcesOf(F1Ref_, mapSheet_, element)) {
      for (size_t i = 0; i < sheets_.size(); ++i) {
        if (sheets_[i].number != source.sheet || !sheets_[i].hasColumn(source.column)) continue;
        found.push_back(candidate(i, source.column));
      }
    }
    return found;
  }

  std::vector<Candidate> namedColumns(const WantedItem& item) const {
    std::vector<Candidate> found;
    const auto isName = [&](std::string_view text) {
      text = trimBlanks(text);
      return !text.empty() &&
             (equalsNoCase(text, item.text) || equalsNoCase(text, item.heading.form));
    };
    for (size_t i = 0; i < sheets_.size(); ++i) {
      const SourceSheet& sheet = sheets_[i];
      if (!sheet.selected) continue;
      for (int column = 1; column <= sheet.cells->LastCol(); ++column) {
        if (column == sheet.structure.idColumn) continue;
        if (isName(sheet.text(sysrow::Element, column)) ||
            isName(sheet.text(sysrow::Header, column))) {
          found.push_back(candidate(i, column));
        }
      }
    }
    return found;
  }

  void arrange(const WantedItem& item, std::vector<Candidate>& candidates) const {
    const ItemHeading& heading = item.heading;
    const auto isOwnForm = [&](const Candidate& candidate) {
      return candidate.heading.sameForm(heading);
    };
    if (!heading.formula.empty()) {
      if (item.asAnalysed) {
        std::erase_if(candidates, [&](const Candidate& other) { return !isOwnForm(other); });
      }
      const std::vector<const ItemHeading*> forms = formsOf(heading.element);
      if (forms.size() > 1 && heading.element == ironNumber) {
        std::erase_if(candidates, [&](const Candidate& candidate) {
          return !ownerOf(candidate.heading, forms)->sameForm(heading);
        });
      } else if (forms.size() > 1) {
        std::stable_partition(candidates.begin(), candidates.end(), isOwnForm);
      }
    }
    if (heading.isOxide && !heading.formula.empty()) {
      std::stable_partition(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
        return !candidate.heading.isOxide || isOwnForm(candidate);
      });
    }
    if (heading.element == ironNumber && (heading.isTotal || !heading.isOxide)) {
      // FeO and Fe2O3 hold a part of the iron only.
      std::stable_partition(candidates.begin(), candidates.end(), [](const Candidate& candidate) {
        return !candidate.heading.isOxide || candidate.heading.isTotal;
      });
    }
    if (heading.method.empty()) return;
    std::stable_partition(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
      return candidate.heading.method == heading.method;
    });
  }

  // The different forms of an element that the method asks for: oxides and the element itself.
  std::vector<const ItemHeading*> formsOf(int element) const {
    std::vector<const ItemHeading*> forms;
    for (const WantedItem& item : wanted) {
      const ItemHeading& heading = item.heading;
      if (heading.element != element || heading.formula.empty()) continue;
      const bool known = std::any_of(forms.begin(), forms.end(), [&](const ItemHeading* other) {
        return other->sameForm(heading);
      });
      if (!known) forms.push_back(&heading);
    }
    return forms;
  }

  static const ItemHeading* ownerOf(const ItemHeading& column,
                                    const std::vector<const ItemHeading*>& forms) {
    return *std::max_element(forms.begin(), forms.end(),
                             [&](const ItemHeading* a, const ItemHeading* b) {
                               return fitOf(*a, column) < fitOf(*b, column);
                             });
  }

  const SourceSheets& sheets_;
  const Worksheet& F1Ref_;
  int mapSheet_;
  const CompoundConverter& converter_;
};

}  // namespace

std::vector<InputRow> planInputs(const CalculationGroup& group, int method,
                                 const SourceSheets& sheets, const Worksheet& F1Ref,
                                 const CompoundConverter& converter) {
  const MethodBook& of = group.method(method);
  const int sheet = of.inputSheet;
  Planner planner(sheets, F1Ref, mapSheetOf(F1Ref, of.name()), converter);
  std::vector<InputRow> inputs;
  for (int row = 2; row <= of.book.LastRow(sheet); ++row) {
    InputRow input;
    input.row = row;
    input.need = parseNeed(of.book.TextSRC(sheet, row, needColumn));
    const std::string second = of.book.TextSRC(sheet, row, 2);
    const std::string text = second.empty() ? of.book.TextSRC(sheet, row, 1) : second;
    input.name = text;
    inputs.push_back(input);
    if (text.empty() || planReference(group, text, inputs.back())) continue;
    const SymbolEnd end = second.empty() ? SymbolEnd::Loose : SymbolEnd::Strict;
    planner.wanted.push_back({row, text, itemHeading(text, end, converter), input.need.asAnalysed});
    inputs.back().name = planner.wanted.back().heading.form;
  }
  for (const WantedItem& item : planner.wanted) {
    inputs[static_cast<size_t>(item.row) - 2].sources = planner.sourcesFor(item);
  }
  return inputs;
}

}  // namespace lodex
