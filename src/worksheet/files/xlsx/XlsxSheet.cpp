#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/DateText.h"
#include "worksheet/files/FormulaShift.h"
#include "worksheet/files/XmlReader.h"
#include "worksheet/files/xlsx/XlsxParts.h"

namespace lodex {
namespace {

// A width in a file counts the margins of the cell: five pixels beside characters of seven.
double charactersOfWidth(double fileWidth) {
  return std::max(0.0, std::round((fileWidth - 5.0 / 7) * 100) / 100);
}

class SheetHandler : public XmlHandler {
 public:
  SheetHandler(XlsxBook& file, int sheet)
      : file_(file), book_(file.out), cells_(book_.cellsForReader(sheet)), sheet_(sheet) {}

  void start(std::string_view element, const XmlAttributes& attributes) override {
    collect_ = nullptr;
    if (!started_ && element != "worksheet") throw FileError("a sheet's part holds something else");
    started_ = true;
    if (element == "c") {
      startCell(attributes);
    } else if (element == "v") {
      collect_ = &value_;
      hasValue_ = true;
    } else if (element == "f") {
      startFormula(attributes);
    } else if (element == "t") {
      if (inCell_ && !inPhonetic_) collect_ = &inlineText_;
    } else if (element == "rPh") {
      inPhonetic_ = true;
    } else if (element == "row") {
      startRow(attributes);
    } else if (element == "col") {
      columns(attributes);
    } else if (element == "pane") {
      pane(attributes);
    } else if (element == "selection") {
      selection(attributes);
    }
  }

  void end(std::string_view element) override {
    collect_ = nullptr;
    if (element == "c") finishCell();
    if (element == "rPh") inPhonetic_ = false;
  }

  void text(std::string_view text) override {
    if (collect_ != nullptr) *collect_ += text;
  }

 private:
  struct SharedFormula {
    std::string text;
    int row = 0;
    int column = 0;
  };

  void startRow(const XmlAttributes& attributes) {
    row_ = attributes.number("r", row_ + 1);
    column_ = 0;
    if (row_ < 1 || row_ > maxRows) throw FileError("a sheet has a row beyond the last one");
    if (attributes.flag("hidden")) book_.rowHidden(sheet_, row_, true);
  }

  void startCell(const XmlAttributes& attributes) {
    ++column_;
    const std::string_view address = attributes("r");
    if (!address.empty() && !parseCellAddress(address, row_, column_)) {
      throw FileError("a sheet has a cell at " + std::string(address));
    }
    if (row_ < 1 || column_ > maxColumns) throw FileError("a sheet has a cell outside of it");
    type_ = attributes("t", "n");
    style_ = attributes.number("s", 0);
    value_.clear();
    hasValue_ = false;
    inlineText_.clear();
    formula_.clear();
    hasFormula_ = false;
    inCell_ = true;
  }

  void startFormula(const XmlAttributes& attributes) {
    formulaKind_ = attributes("t", "normal");
    sharedId_ = attributes.number("si", -1);
    block_ = formulaKind_ == "array" ? attributes("ref") : std::string_view();
    hasFormula_ = formulaKind_ != "dataTable";
    collect_ = &formula_;
  }

  void report(Severity severity, std::string_view text) {
    book_.findingsForReader().add(
        severity, text, {.sheet = book_.SheetName(sheet_), .row = row_, .column = column_});
  }

  Value sharedText() {
    const auto number = parseInteger(value_);
    if (number && *number >= 0 && static_cast<size_t>(*number) < file_.strings.size()) {
      return file_.strings[static_cast<size_t>(*number)];
    }
    report(Severity::Error, "the text of the cell is missing from the file");
    return {};
  }

  Value cachedValue() {
    if (type_ == "s") return sharedText();
    if (type_ == "inlineStr") return Value::text(xlsxText(inlineText_));
    if (type_ == "str" && hasValue_ && value_.empty()) return Value::text("");
    if (value_.empty()) return {};
    if (hasFormula_ && file_.calculateOnLoad && value_ == "0") return {};
    ErrorCode code = ErrorCode::Value;
    if (type_ == "str") {
      // Some writers give the errors of formulas as texts.
      if (errorFromText(value_, code)) return Value::error(code);
      return Value::text(xlsxText(value_));
    }
    if (type_ == "b") return Value::boolean(value_ == "1" || value_ == "true");
    if (type_ == "e") {
      errorFromText(value_, code);
      return Value::error(code);
    }
    if (type_ == "d") {
      const auto serial = serialOfIsoDate(value_, book_.dates1904());
      return serial ? Value(*serial) : Value::text(value_);
    }
    const auto number = parseNumber(value_);
    return number ? Value(*number) : Value::text(value_);
  }

  // The formula of the cell; "" when it shares one that the file does not hold.
  std::string formulaText() {
    const std::string own = xlsxFormula(formula_);
    if (formulaKind_ != "shared") return own;
    if (!own.empty()) {
      shared_[sharedId_] = {own, row_, column_};
      return own;
    }
    const auto hit = shared_.find(sharedId_);
    if (hit == shared_.end()) {
      report(Severity::Warning, "the formula is missing from the file; its last value is kept");
      return {};
    }
    return shiftedFormula(hit->second.text, row_ - hit->second.row, column_ - hit->second.column);
  }

  void finishCell() {
    if (!inCell_) return;
    inCell_ = false;
    const std::string formula = hasFormula_ ? formulaText() : std::string();
    const Value value = cachedValue();
    if (value.isText()) file_.budget.showText(value.textView().size());
    if (!formula.empty()) file_.budget.takeFormulas(1, formula.size());
    if (formula.empty() && cells_.at(row_, column_).kind == ValueKind::Formula) {
      // A cell of an array formula's block, which the block's first cell has filled.
      book_.setCachedValue(sheet_, row_, column_, value);
    } else if (formula.empty()) {
      cells_.set(row_, column_, value);
    } else if (formulaKind_ == "array") {
      setArray(formula, value);
    } else {
      book_.setFormulaWithValue(sheet_, row_, column_, formula, value);
    }
    file_.budget.follow(cells_);
    if (style_ >= 0 && static_cast<size_t>(style_) < file_.styles.size()) {
      cells_.setFormat(row_, column_, file_.styles[static_cast<size_t>(style_)]);
    }
  }

  void setArray(const std::string& formula, const Value& value) {
    const size_t colon = block_.find(':');
    int lastRow = row_;
    int lastColumn = column_;
    const bool several =
        colon != std::string::npos &&
        parseCellAddress(std::string_view(block_).substr(colon + 1), lastRow, lastColumn);
    if (several && (lastRow < row_ || lastColumn < column_)) {
      throw FileError("a sheet has an array formula over " + block_);
    }
    const auto rows = static_cast<size_t>(lastRow - row_ + 1);
    const auto columns = static_cast<size_t>(lastColumn - column_ + 1);
    file_.budget.takeFormulas(rows * columns, formula.size());
    book_.setArrayFormula(sheet_, row_, column_, lastRow, lastColumn, formula);
    book_.setCachedValue(sheet_, row_, column_, value);
  }

  void columns(const XmlAttributes& attributes) {
    const int first = std::max(1, attributes.number("min", 1));
    const int last = std::min(maxColumns, attributes.number("max", first));
    const bool ownWidth = attributes.flag("customWidth");
    const double width = charactersOfWidth(numberOf(attributes("width")));
    const bool hidden = attributes.flag("hidden");
    for (int column = first; column <= last; ++column) {
      if (ownWidth && width > 0) book_.columnWidth(sheet_, column, width);
      if (hidden) book_.columnHidden(sheet_, column, true);
    }
  }

  void pane(const XmlAttributes& attributes) {
    const std::string_view state = attributes("state");
    if (state != "frozen" && state != "frozenSplit") return;
    const int rows = attributes.number("ySplit", 0);
    if (rows < 1 || rows > maxRows) return;
    book_.Sheet(sheet_);
    book_.FixedRows(rows);
  }

  void selection(const XmlAttributes& attributes) {
    int row = 0;
    int column = 0;
    if (!parseCellAddress(attributes("activeCell"), row, column)) return;
    book_.Sheet(sheet_);
    book_.SetSelection(row, column, row, column);
  }

  XlsxBook& file_;
  Worksheet& book_;
  CellStore& cells_;
  const int sheet_;

  int row_ = 0;
  int column_ = 0;
  int style_ = 0;
  bool started_ = false;
  bool inCell_ = false;
  bool hasValue_ = false;
  bool inPhonetic_ = false;
  bool hasFormula_ = false;
  std::string type_, value_, inlineText_, formula_, formulaKind_, block_;
  int sharedId_ = -1;
  std::string* collect_ = nullptr;  // where the text of the open element goes
  std::unordered_map<int, SharedFormula> shared_;
};

}  // namespace

std::unique_ptr<XmlHandler> xlsxSheetHandler(XlsxBook& book, int sheet) {
  return std::make_unique<SheetHandler>(book, sheet);
}

}  // namespace lodex
