#include "modal/SetUp.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr const char* lineBreak = "\r\n";

bool startsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

int wholeNumber(const Worksheet& sheet, int row, int column) {
  return parseInteger(sheet.TextRC(row, column)).value_or(0);
}

std::string afterLastSlash(std::string_view text) {
  const size_t slash = text.rfind('/');
  return std::string(slash == std::string_view::npos ? text : text.substr(slash + 1));
}

void clearRow(Worksheet& sheet, int row) {
  for (int column = setup::Round; column <= setup::Text; ++column) sheet.TextRC(row, column, "");
}

void storeMineral(Worksheet& sheet, int row, const RoundMineral& mineral) {
  const size_t slash = mineral.identifier.rfind('/');
  sheet.TextRC(row, setup::MineralId, afterLastSlash(mineral.identifier));
  sheet.TextRC(row, setup::MineralHead,
               slash == std::string::npos ? "" : mineral.identifier.substr(0, slash));
  sheet.TextRC(row, setup::Mineral, mineral.identifier);
  sheet.NumberRC(row, setup::SampleSpecific, mineral.sampleSpecific ? 1 : 0);
  sheet.NumberRC(row, setup::Special, mineral.special ? 1 : 0);
}

void storeEquation(Worksheet& sheet, int row, const RoundEquation& equation) {
  sheet.TextRC(row, setup::Equation, equation.item);
  switch (equationKind(equation.item)) {
    case EquationKind::Formula:
      break;
    case EquationKind::XFile:
      sheet.NumberRC(row, setup::XKind, equation.x.kind);
      sheet.TextRC(row, setup::XFile, equation.x.file);
      sheet.NumberRC(row, setup::XSampleColumn, equation.x.sampleColumn);
      sheet.NumberRC(row, setup::XValueColumn, equation.x.valueColumn);
      sheet.TextRC(row, setup::Text, equation.x.text);
      break;
    case EquationKind::XCalculated:
      sheet.NumberRC(row, setup::XKind, equation.x.kind);
      sheet.TextRC(row, setup::Text, equation.x.text);
      break;
    case EquationKind::Assay: {
      const size_t open = equation.item.find('(');
      const size_t close = equation.item.find(')', open == std::string::npos ? 0 : open);
      if (open != std::string::npos && close != std::string::npos) {
        sheet.TextRC(row, setup::ElementRow, equation.item.substr(open + 1, close - open - 1));
      }
      sheet.TextRC(row, setup::Method, trimBlanks(afterLastSlash(equation.item)));
    }
  }
}

// Whether the file image has a round in row `row` and the next one.
bool isRoundAt(const Worksheet& F1OpenSave, int row) {
  if (row + 2 > maxRows) return false;
  return F1OpenSave.HasContent(row, 1) || F1OpenSave.HasContent(row + 1, 1);
}

// The numbers that the file image leaves to be read from the items themselves.
void identifyMineral(Worksheet& sheet, int row, const std::string& identifier) {
  const auto pieces = split(identifier, "/");
  if (pieces.size() > 2) sheet.NumberRC(row, setup::MineralId, numberOf(pieces[2]));
  sheet.TextRC(row, setup::MineralHead,
               pieces.size() > 1 ? pieces[0] + "/" + pieces[1] : pieces[0]);
  sheet.TextRC(row, setup::Mineral, identifier);
  sheet.NumberRC(row, setup::SampleSpecific, 0);
  sheet.NumberRC(row, setup::Special, 0);
}

// The method of an item that a user typed without blanks: "BM" of "Cu (29)/BM".
std::string afterBracket(std::string_view item) {
  const size_t close = item.find(')');
  if (close == std::string_view::npos) return "";
  const std::string_view rest = trimBlanks(item.substr(close + 1));
  return startsWith(rest, "/") ? std::string(trimBlanks(rest.substr(1))) : "";
}

void identifyEquation(Worksheet& sheet, int row, const std::string& item) {
  const auto pieces = split(item, " / ");
  const auto bracket = split(pieces[0], "(");
  if (bracket.size() == 2) {
    const std::string inside = bracket[1].substr(0, bracket[1].find(')'));
    sheet.NumberRC(row, setup::ElementRow, numberOf(inside));
  }
  const std::string method = pieces.size() > 1 ? pieces[1] : afterBracket(item);
  if (!method.empty()) sheet.TextRC(row, setup::Method, trimBlanksRight(method));
  sheet.TextRC(row, setup::Equation, item);
}

}  // namespace

EquationKind equationKind(std::string_view item) {
  if (startsWith(item, "###")) return EquationKind::Formula;
  if (startsWith(item, "X-")) return EquationKind::XFile;
  if (startsWith(item, "X:")) return EquationKind::XCalculated;
  return EquationKind::Assay;
}

std::string assayItem(std::string_view element, int elementRow, std::string_view method) {
  return std::string(element) + " (" + std::to_string(elementRow) + ") / " + std::string(method);
}

RoundRows findRound(const Worksheet& F1CalcOpt, int round) {
  RoundRows rows;
  const int last = F1CalcOpt.LastRow();
  for (int row = 1; row <= last; ++row) {
    if (wholeNumber(F1CalcOpt, row, setup::Round) != round) {
      if (rows.count > 0) break;
      continue;
    }
    if (rows.count == 0) rows.first = row;
    ++rows.count;
  }
  return rows;
}

int roundCount(const Worksheet& F1CalcOpt) {
  const int last = F1CalcOpt.LastRow();
  return last == 0 ? 0 : wholeNumber(F1CalcOpt, last, setup::Round);
}

std::vector<int> roundNumbers(const Worksheet& F1CalcOpt) {
  std::vector<int> numbers;
  for (int row = 1; row <= F1CalcOpt.LastRow(); ++row) {
    const int number = wholeNumber(F1CalcOpt, row, setup::Round);
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) {
      numbers.push_back(number);
    }
  }
  return numbers;
}

void storeRound(Worksheet& F1CalcOpt, int round, const SetUpRound& content,
                std::string_view digits) {
  const int size = static_cast<int>(std::max(content.minerals.size(), content.equations.size()));
  RoundRows rows = findRound(F1CalcOpt, round);
  if (rows.count == 0) {
    rows.first = 1;
    while (rows.first <= F1CalcOpt.LastRow() &&
           wholeNumber(F1CalcOpt, rows.first, setup::Round) < round) {
      ++rows.first;
    }
  }
  if (size > rows.count && rows.first + rows.count <= F1CalcOpt.LastRow()) {
    F1CalcOpt.InsertRange(rows.first + rows.count, 1, rows.first + size - 1, 1, Shift::Rows);
  } else if (size < rows.count) {
    F1CalcOpt.DeleteRange(rows.first + size, 1, rows.first + rows.count - 1, 1, Shift::Rows);
  }

  for (int k = 0; k < size; ++k) {
    const int row = rows.first + k;
    const auto place = static_cast<size_t>(k);
    clearRow(F1CalcOpt, row);
    F1CalcOpt.NumberRC(row, setup::Round, round);
    if (place < content.minerals.size()) storeMineral(F1CalcOpt, row, content.minerals[place]);
    if (place < content.equations.size()) storeEquation(F1CalcOpt, row, content.equations[place]);
  }
  if (size > 0) F1CalcOpt.NumberRC(rows.first, setup::Model, content.model);
  if (F1CalcOpt.LastRow() == 0) return;
  const EquationKind first = equationKind(F1CalcOpt.TextRC(1, setup::Equation));
  const bool holdsXText = first == EquationKind::XFile || first == EquationKind::XCalculated;
  if (!digits.empty() || !holdsXText) F1CalcOpt.TextRC(1, setup::Text, digits);
}

std::optional<SetUpRound> readRound(const Worksheet& F1CalcOpt, int round) {
  const RoundRows rows = findRound(F1CalcOpt, round);
  if (rows.count == 0) return std::nullopt;
  SetUpRound content;
  content.model = wholeNumber(F1CalcOpt, rows.first, setup::Model);
  for (int row = rows.first; row < rows.first + rows.count; ++row) {
    if (F1CalcOpt.HasContent(row, setup::Mineral)) {
      content.minerals.push_back({F1CalcOpt.TextRC(row, setup::Mineral),
                                  F1CalcOpt.NumberRC(row, setup::SampleSpecific) == 1,
                                  F1CalcOpt.NumberRC(row, setup::Special) == 1});
    }
    if (F1CalcOpt.HasContent(row, setup::Equation)) {
      content.equations.push_back(
          {F1CalcOpt.TextRC(row, setup::Equation),
           {wholeNumber(F1CalcOpt, row, setup::XKind), F1CalcOpt.TextRC(row, setup::XFile),
            wholeNumber(F1CalcOpt, row, setup::XSampleColumn),
            wholeNumber(F1CalcOpt, row, setup::XValueColumn), F1CalcOpt.TextRC(row, setup::Text)}});
    }
  }
  return content;
}

void ValmistaF1CalcOpt(const Worksheet& F1OpenSave, Worksheet& F1CalcOpt) {
  F1CalcOpt = Worksheet();
  const int lastRow = F1OpenSave.LastRow();
  const int lastColumn = F1OpenSave.LastCol();
  int row = 0;
  for (int r = 3; r <= lastRow && isRoundAt(F1OpenSave, r); r += 3) {
    for (int c = 1; c <= lastColumn; ++c) {
      const std::string mineral = F1OpenSave.TextRC(r, c);
      const std::string equation = F1OpenSave.TextRC(r + 1, c);
      if (mineral.empty() && equation.empty()) continue;
      ++row;
      F1CalcOpt.NumberRC(row, setup::Round, r / 3);
      if (!mineral.empty()) identifyMineral(F1CalcOpt, row, mineral);
      if (equation.empty()) continue;
      identifyEquation(F1CalcOpt, row, equation);
      F1CalcOpt.TextRC(row, setup::Model, F1OpenSave.TextRC(r + 2, 1));
      F1CalcOpt.TextRC(row, setup::Text, F1OpenSave.TextRC(r + 2, 2));
    }
  }
}

void ValmistaF1OpenSave(const Worksheet& F1CalcOpt, const std::vector<std::string>& labels,
                        Worksheet& F1OpenSave) {
  Worksheet image;
  for (int row = 1; row <= 2; ++row) {
    for (int column = 1; column <= F1OpenSave.LastCol(); ++column) {
      image.TextRC(row, column, F1OpenSave.TextRC(row, column));
    }
  }
  if (!image.HasContent(2, 1)) {
    for (size_t i = 0; i < labels.size(); ++i) {
      image.TextRC(2, static_cast<int>(i) + 1, labels[i]);
    }
  }
  // Reading ends at a round without content, so that numbers left out must not leave a gap.
  int round = 0;
  for (const int number : roundNumbers(F1CalcOpt)) {
    ++round;
    const RoundRows rows = findRound(F1CalcOpt, number);
    for (int k = 1; k <= rows.count; ++k) {
      const int row = rows.first + k - 1;
      image.TextRC(3 * round, k, F1CalcOpt.TextRC(row, setup::Mineral));
      image.TextRC(3 * round + 1, k, F1CalcOpt.TextRC(row, setup::Equation));
    }
    image.TextRC(3 * round + 2, 1, F1CalcOpt.TextRC(rows.first, setup::Model));
    image.TextRC(3 * round + 2, 2, F1CalcOpt.TextRC(rows.first, setup::Text));
  }
  F1OpenSave = std::move(image);
}

std::vector<std::string> loadingRemarks(const Worksheet& F1OpenSave, const Worksheet& F1CalcOpt) {
  std::vector<std::string> remarks;
  int end = 3;
  while (isRoundAt(F1OpenSave, end)) end += 3;
  if (F1OpenSave.LastRow() >= end) {
    remarks.push_back("Rows " + std::to_string(end) + " and on are not read: the round in rows " +
                      std::to_string(end) + " and " + std::to_string(end + 1) + " is empty");
  }
  const std::string digits = F1CalcOpt.TextRC(1, setup::Text);
  const EquationKind first = equationKind(F1CalcOpt.TextRC(1, setup::Equation));
  const bool isXText = first == EquationKind::XFile || first == EquationKind::XCalculated;
  if (!digits.empty() && !isXText && parseInteger(digits).value_or(-1) < 0) {
    remarks.push_back("Decimals " + digits +
                      " of the set-up are not a number of decimals and are not used");
  }
  return remarks;
}

void collectMinerals(const Worksheet& F1CalcOpt, ModalLists& lists) {
  lists.MinIDs.clear();
  lists.MinLabels.clear();
  for (int row = 1; row <= F1CalcOpt.LastRow(); ++row) {
    const std::string identifier = F1CalcOpt.TextRC(row, setup::Mineral);
    if (!identifier.empty()) addToLists(identifier, lists);
  }
}

std::vector<std::string> mineralsInNoRound(const Worksheet& F1OpenSave, const ModalLists& lists) {
  std::vector<std::string> idle;
  for (int column = 1; column <= F1OpenSave.LastCol(); ++column) {
    const std::string label = F1OpenSave.TextRC(2, column);
    if (label.empty()) break;
    const auto& used = lists.MinLabels;
    if (std::find(used.begin(), used.end(), label) == used.end()) idle.push_back(label);
  }
  return idle;
}

void addToLists(const std::string& identifier, ModalLists& lists) {
  std::string kind, symbol, id;
  ParseMineralID(identifier, kind, symbol, id);
  lists.MinIDs.push_back(id);
  lists.MinLabels.push_back(identifier);
}

const std::vector<std::string>& modelCaptions() {
  static const std::vector<std::string> captions = {
      "Least Square (LS)", "Weighed Least Square (WLS)", "Non-negative Least Square (NNLS)",
      "Weighed Non-negative Least Square (WNNLS)"};
  return captions;
}

std::string setUpReport(const Worksheet& F1CalcOpt, std::string_view samples) {
  const std::vector<std::string>& models = modelCaptions();
  std::string report = std::string("**** Mineral quantification setup: ****") + lineBreak +
                       "Samples to be quantified:" + lineBreak + "  " + std::string(samples) +
                       lineBreak + "Round\tMinerals\tElements\tEstimation method" + lineBreak;
  for (const int number : roundNumbers(F1CalcOpt)) {
    const auto round = readRound(F1CalcOpt, number);
    std::vector<std::string> minerals, equations;
    for (const RoundMineral& mineral : round->minerals) minerals.push_back(mineral.identifier);
    for (const RoundEquation& equation : round->equations) equations.push_back(equation.item);
    const auto model = static_cast<size_t>(round->model);
    report += std::to_string(number) + "\t" + join(minerals, ", ") + "\t" + join(equations, ", ") +
              "\t" + (model < models.size() ? models[model] : "") + lineBreak;
  }
  return report;
}

}  // namespace lodex
