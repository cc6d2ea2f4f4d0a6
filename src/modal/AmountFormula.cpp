#include "modal/AmountFormula.h"

#include <algorithm>
#include <cctype>

#include "basic/A1.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "modal/MineralData.h"

namespace lodex {
namespace {

bool isWordCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || std::isalnum(byte) != 0 || c == '_';
}

// True when text[at, at + length) is not the middle of a longer word.
bool isWholeWord(std::string_view text, size_t at, size_t length) {
  const size_t end = at + length;
  if (at > 0 && isWordCharacter(text[at]) && isWordCharacter(text[at - 1])) return false;
  return end >= text.size() || !isWordCharacter(text[end - 1]) || !isWordCharacter(text[end]);
}

struct Name {
  std::string text;
  std::string reference;
};

std::string cellOf(size_t mineral, AmountFormula::Layout layout) {
  const int number = static_cast<int>(mineral) + 1;
  return layout == AmountFormula::Layout::Column ? cellAddress(number, 1)
                                                 : cellAddress(1, number + 1);
}

// All names that a formula may use, longer ones first so that none is taken for a part of another.
std::vector<Name> namesOf(const std::vector<std::string>& labels, AmountFormula::Layout layout,
                          AmountFormula::Totals totals) {
  std::vector<Name> names;
  std::vector<std::string> cells;
  for (size_t i = 0; i < labels.size(); ++i) {
    cells.push_back(cellOf(i, layout));
    names.push_back({labels[i], cells.back()});
    names.push_back({symbolOrText(labels[i]), cells.back()});
  }
  if (totals == AmountFormula::Totals::Allowed) {
    const std::string sum = cells.empty() ? "0" : "(" + join(cells, "+") + ")";
    names.push_back({"Total", sum});
    names.push_back({"@", sum});
  }
  std::stable_sort(names.begin(), names.end(),
                   [](const Name& a, const Name& b) { return a.text.size() > b.text.size(); });
  while (!names.empty() && names.back().text.empty()) names.pop_back();
  return names;
}

}  // namespace

std::string symbolOrText(std::string_view identifier) {
  std::string kind, symbol, id;
  ParseMineralID(identifier, kind, symbol, id);
  return symbol.empty() ? std::string(identifier) : symbol;
}

std::string withReferences(std::string_view text, const std::vector<std::string>& labels,
                           AmountFormula::Layout layout, AmountFormula::Totals totals) {
  const std::vector<Name> names = namesOf(labels, layout, totals);
  std::string out;
  for (size_t at = 0; at < text.size();) {
    const auto hit = std::find_if(names.begin(), names.end(), [&](const Name& name) {
      return text.substr(at, name.text.size()) == name.text &&
             isWholeWord(text, at, name.text.size());
    });
    if (hit == names.end()) {
      out += text[at++];
    } else {
      out += hit->reference;
      at += hit->text.size();
    }
  }
  return trimBlanks(out).empty() ? "0" : out;
}

AmountFormula::AmountFormula(Worksheet& scratch, std::string_view text,
                             const std::vector<std::string>& labels, Layout layout, Totals totals)
    : scratch_(&scratch), layout_(layout) {
  scratch = Worksheet();
  const std::string formula = "=" + withReferences(text, labels, layout, totals);
  scratch.EntryRC(1, layout == Layout::Column ? 2 : 1, formula);
}

double AmountFormula::evaluate(const std::vector<double>& amounts) {
  for (size_t i = 0; i < amounts.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    if (layout_ == Layout::Column) {
      scratch_->NumberRC(number, 1, amounts[i]);
    } else {
      scratch_->NumberRC(1, number + 1, amounts[i]);
    }
  }
  scratch_->Recalc();
  const Value value = scratch_->ValueRC(1, layout_ == Layout::Column ? 2 : 1);
  errorText_ = value.isError() ? value.asText() : "";
  return value.asNumber();
}

double CoefficientOf(std::string_view text, std::string_view symbol) {
  if (symbol.empty()) return 0;
  const std::string wanted = std::string(symbol) + "=";
  for (size_t at = text.find(wanted); at != std::string_view::npos;
       at = text.find(wanted, at + 1)) {
    if (!isWholeWord(text, at, symbol.size())) continue;
    const size_t start = at + wanted.size();
    const size_t end = text.find_first_of(" ,", start);
    return numberOf(text.substr(start, end == std::string_view::npos ? end : end - start));
  }
  return 0;
}

Expression splitExpression(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {std::string(text), ""};
  return {std::string(text.substr(equals + 1)), std::string(text.substr(0, equals + 1)) + "1"};
}

}  // namespace lodex
