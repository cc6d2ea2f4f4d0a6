// Filling cells from their neighbours in a SheetEditor.
#include <cctype>
#include <cmath>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "form/SheetEditor.h"
#include "worksheet/NumberFormat.h"

namespace lodex {
namespace {

// Quotient and remainder with a remainder that is never negative, for fills that go backwards.
int floorDivide(int a, int b) {
  return a >= 0 ? a / b : -((-a + b - 1) / b);
}

int floorRemainder(int a, int b) {
  return a - floorDivide(a, b) * b;
}

// Sums such as 0.1 + 2 * 0.1 show the digits that a user would write.
double asWritten(double number) {
  return numberOf(numberText(number));
}

// A text that ends in digits: "S-007" is "S-" and 7 in three digits.
struct CountedText {
  std::string start;
  long long number = 0;
  size_t digits = 0;  // 0: the text does not end in a number

  static CountedText of(std::string_view text) {
    size_t begin = text.size();
    while (begin > 0 && std::isdigit(static_cast<unsigned char>(text[begin - 1])) != 0) --begin;
    CountedText counted;
    counted.digits = text.size() - begin;
    if (counted.digits == 0 || counted.digits > 15) return {std::string(text)};
    counted.start = text.substr(0, begin);
    counted.number = std::stoll(std::string(text.substr(begin)));
    return counted;
  }
  std::string plus(long long by) const {
    std::string number_ = std::to_string(std::llabs(number + by));
    if (number_.size() < digits) number_.insert(0, digits - number_.size(), '0');
    return start + number_;
  }
};

// How one row or column of cells goes on. Positions count from 0 at its first source cell and may
// be negative.
class Series {
 public:
  Series(std::vector<Value> cells, bool isDate, bool turned) : cells_(std::move(cells)) {
    const auto all = [this](auto is) { return std::all_of(cells_.begin(), cells_.end(), is); };
    if (all([](const Value& cell) { return cell.isNumber(); })) {
      linear_ = cells_.size() > 1 ? !turned : isDate != turned;
      if (linear_) fitLine();
    } else if (!turned && all([](const Value& cell) { return cell.kind() == ValueKind::Text; })) {
      countOn();
    }
  }

  /// The value at a position; nothing where the source cell is repeated.
  std::optional<Value> at(int position) const {
    if (linear_) return Value(asWritten(first_ + step_ * position));
    if (texts_.empty()) return std::nullopt;
    if (oneCount_) return Value::text(texts_.front().plus(countStep_ * position));
    const int count = static_cast<int>(cells_.size());
    const CountedText& text = texts_[static_cast<size_t>(floorRemainder(position, count))];
    if (text.digits == 0) return std::nullopt;
    return Value::text(text.plus(floorDivide(position, count)));
  }

 private:
  // Equal steps go on exactly; others as the line that fits them best.
  void fitLine() {
    const auto n = static_cast<double>(cells_.size());
    first_ = cells_.front().asNumber();
    if (cells_.size() == 1) {
      step_ = 1;
      return;
    }
    step_ = cells_[1].asNumber() - first_;
    bool equal = true;
    double sum = 0;
    double product = 0;
    for (size_t i = 0; i < cells_.size(); ++i) {
      const double number = cells_[i].asNumber();
      equal = equal && std::abs(first_ + step_ * static_cast<double>(i) - number) <=
                           1e-12 * std::max(std::abs(number), std::abs(first_));
      sum += number;
      product += number * static_cast<double>(i);
    }
    if (equal) return;
    const double middle = (n - 1) / 2;
    step_ = (product - middle * sum) / (n * (n * n - 1) / 12);
    first_ = sum / n - step_ * middle;
  }

  void countOn() {
    for (const Value& cell : cells_) texts_.push_back(CountedText::of(cell.textView()));
    oneCount_ = texts_.front().digits > 0;
    countStep_ = texts_.size() == 1 ? 1 : texts_[1].number - texts_[0].number;
    for (size_t i = 0; i < texts_.size(); ++i) {
      oneCount_ = oneCount_ && texts_[i].digits > 0 && texts_[i].start == texts_[0].start &&
                  texts_[i].number == texts_[0].number + static_cast<long long>(i) * countStep_;
    }
  }

  std::vector<Value> cells_;
  bool linear_ = false;
  double first_ = 0;
  double step_ = 0;
  std::vector<CountedText> texts_;
  bool oneCount_ = false;  // all texts count along one line
  long long countStep_ = 1;
};

}  // namespace

void SheetEditor::fillDown(const CellBlock& block) {
  require(EditRight::Fill);
  if (block.rows() == 1) {
    if (block.row1 > 1) fillDown({block.row1 - 1, block.column1, block.row2, block.column2});
    return;
  }
  requireFillable(block);
  editCells("Fill down", {block}, [&] {
    sheet_.CopyRange(block.row1, block.column1, block.row2, block.column2, sheet_, block.row1,
                     block.column1, block.row1, block.column2);
  });
}

void SheetEditor::fillRight(const CellBlock& block) {
  require(EditRight::Fill);
  if (block.columns() == 1) {
    if (block.column1 > 1) fillRight({block.row1, block.column1 - 1, block.row2, block.column2});
    return;
  }
  requireFillable(block);
  editCells("Fill right", {block}, [&] {
    sheet_.CopyRange(block.row1, block.column1, block.row2, block.column2, sheet_, block.row1,
                     block.column1, block.row2, block.column1);
  });
}

void SheetEditor::fillSeries(const CellBlock& source, const CellBlock& target, bool turned) {
  require(EditRight::Fill);
  requireInside(target);
  const bool down = source.column1 == target.column1 && source.column2 == target.column2;
  const bool across = source.row1 == target.row1 && source.row2 == target.row2;
  if (!target.contains(source) || !(down || across)) {
    throw Error("Cells are filled in one direction at a time.");
  }
  if (target == source) return;
  requireFillable(target);

  const int count = down ? source.rows() : source.columns();
  const int firstSource = down ? source.row1 : source.column1;
  const auto place = [&](int line, int step) {
    return down ? CellPlace{step, line} : CellPlace{line, step};
  };
  const auto fillLine = [&](int line) {
    std::vector<Value> values;
    bool isDate = false;
    for (int step = firstSource; step < firstSource + count; ++step) {
      const CellPlace cell = place(line, step);
      const bool formula = sheet_.HasFormula(sheet_.Sheet(), cell.row, cell.column);
      values.push_back(formula ? Value() : sheet_.ValueRC(cell.row, cell.column));
      isDate = isDate || isDateFormat(formatAt(cell.row, cell.column).numberFormat);
    }
    const Series series(std::move(values), isDate, turned);
    const int from = down ? target.row1 : target.column1;
    const int to = down ? target.row2 : target.column2;
    for (int step = from; step <= to; ++step) {
      const int position = step - firstSource;
      if (position >= 0 && position < count) continue;
      const CellPlace cell = place(line, step);
      const CellPlace pattern = place(line, firstSource + floorRemainder(position, count));
      sheet_.CopyRange(cell.row, cell.column, cell.row, cell.column, sheet_, pattern.row,
                       pattern.column, pattern.row, pattern.column);
      if (const auto value = series.at(position)) {
        sheet_.ValueSRC(sheet_.Sheet(), cell.row, cell.column, *value);
      }
    }
  };
  editCells("Fill", {target}, [&] {
    const int first = down ? target.column1 : target.row1;
    const int last = down ? target.column2 : target.row2;
    for (int line = first; line <= last; ++line) fillLine(line);
  });
  sheet_.SetSelection(target.row1, target.column1, target.row2, target.column2);
}

}  // namespace lodex
