#include "worksheet/formula/Evaluator.h"

#include <cmath>
#include <ctime>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/formula/Compare.h"
#include "worksheet/formula/Dates.h"

namespace lodex::formula {
namespace {

// 16 million values: enough for any sheet a person works with, and bounded memory.
constexpr double largestArray = 1 << 24;

}  // namespace

Operand Evaluator::evaluate(const Code& code, const Place& place, std::uint32_t pass,
                            bool arrayFormula) {
  place_ = place;
  pass_ = pass;
  waitsFor_ = nullptr;
  unknown_ = nullptr;
  if (!texts_.empty()) texts_.clear();
  if (!arrays_.empty()) arrays_.clear();
  if (!areaLists_.empty()) areaLists_.clear();
  const auto size = static_cast<size_t>(code.stackSize) + 1;
  if (stack_.size() < size) stack_.resize(size);
  run(code, code.segments[0], stack_.data());
  if (arrayFormula) return stack_[0];
  return stack_[0].isScalar() ? stack_[0] : single(stack_[0]);
}

void Evaluator::newPass(const Worksheet& book) {
  book_ = &book;
  localTime_ = 0;
  stores_.resize(static_cast<size_t>(book.NumSheets()) + 1);
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    stores_[static_cast<size_t>(sheet)] = &book.cells(sheet);
  }
}

double Evaluator::localTime() {
  if (localTime_ == 0) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    localTime_ = static_cast<double>(now.tv_sec) + static_cast<double>(local.tm_gmtoff) +
                 static_cast<double>(now.tv_nsec) / 1e9;
  }
  return localTime_;
}

// --- Cells and conversions ---

Operand Evaluator::fromFormula(FormulaCell& formula) {
  if (formula.pass != pass_) {
    waitsFor_ = &formula;
    return Operand();
  }
  const Value& value = formula.cached;
  switch (value.kind()) {
    case ValueKind::Number:
      return Operand(value.asNumber());
    case ValueKind::Text:
    case ValueKind::NumericText:
      return Operand::text(value.textView());
    case ValueKind::Boolean:
      return Operand::boolean(value.asBoolean());
    case ValueKind::Error:
      return Operand(value.asError());
    default:
      return Operand();
  }
}

Operand Evaluator::fromOther(const Cell& cell) {
  switch (cell.kind) {
    case ValueKind::Boolean:
      return Operand::boolean(cell.number != 0);
    case ValueKind::Error:
      return Operand(cell.error);
    case ValueKind::NumericText: {
      Operand operand = Operand::text(SharedText::viewOf(cell.text));
      operand.tag = Tag::NumericText;
      operand.number = numberOf(operand.view());
      return operand;
    }
    default:
      return Operand::text(SharedText::viewOf(cell.text));
  }
}

Operand Evaluator::single(const Operand& operand) {
  switch (operand.tag) {
    case Tag::Area: {
      const Area& area = operand.area;
      if (area.sheet != area.lastSheet) return ErrorCode::Value;
      if (area.isCell()) return cell(area.sheet, area.row1, area.column1);
      const bool rowFits = place_.row >= area.row1 && place_.row <= area.row2;
      const bool columnFits = place_.column >= area.column1 && place_.column <= area.column2;
      if (area.columns() == 1 && rowFits) return cell(area.sheet, place_.row, area.column1);
      if (area.rows() == 1 && columnFits) return cell(area.sheet, area.row1, place_.column);
      return ErrorCode::Value;
    }
    case Tag::Areas:
      return ErrorCode::Value;
    case Tag::Array:
      return operand.array->values.empty() ? Operand() : operand.array->values[0];
    default:
      return operand;
  }
}

// Outside a single row or column its values repeat; outside any other size it is #N/A.
Operand Evaluator::element(const Operand& operand, int row, int column) {
  if (operand.isScalar()) return operand;
  if (operand.tag == Tag::Areas) return ErrorCode::Value;
  const int rows = rowsOf(operand);
  const int columns = columnsOf(operand);
  if (rows == 1) row = 0;
  if (columns == 1) column = 0;
  if (row >= rows || column >= columns) return ErrorCode::NotAvailable;
  if (operand.isArray()) return operand.array->at(row, column);
  return cell(operand.area.sheet, operand.area.row1 + row, operand.area.column1 + column);
}

int Evaluator::rowsOfOther(const Operand& operand) {
  return operand.isArray() ? operand.array->rows : operand.areas->front().rows();
}

int Evaluator::columnsOfOther(const Operand& operand) {
  return operand.isArray() ? operand.array->columns : operand.areas->front().columns();
}

const Array* Evaluator::asArray(const Operand& operand) {
  if (operand.isArray()) return operand.array;
  if (operand.tag == Tag::Areas) return asArray(Operand(operand.areas->front()));
  Array* array = newArray(rowsOf(operand), columnsOf(operand));
  if (array == nullptr) return nullptr;
  if (operand.isArea()) {
    const Area& area = operand.area;
    visitCells(area, [&](int row, int column, const Operand& value) {
      array->at(row - area.row1, column - area.column1) = value;
      return true;
    });
  } else {
    array->values[0] = operand;
  }
  return array;
}

Operand Evaluator::text(std::string text) {
  if (text.size() > 32767 * 4) return ErrorCode::Value;
  texts_.push_back(std::move(text));
  return Operand::text(texts_.back());
}

Array* Evaluator::newArray(int rows, int columns) {
  if (static_cast<double>(rows) * columns > largestArray) return nullptr;
  arrays_.push_back(std::make_unique<Array>(rows, columns));
  return arrays_.back().get();
}

Operand Evaluator::newAreas(std::vector<Area> areas) {
  areaLists_.push_back(std::make_unique<std::vector<Area>>(std::move(areas)));
  return Operand(areaLists_.back().get());
}

bool Evaluator::toNumber(const Operand& value, double& number, Operand& error) const {
  switch (value.tag) {
    case Tag::Number:
    case Tag::NumericText:
    case Tag::Boolean:
      number = value.number;
      return true;
    case Tag::Empty:
    case Tag::Missing:
      number = 0;
      return true;
    case Tag::Error:
      error = value;
      return false;
    case Tag::Text:
      if (const auto read = numberOfText(value.view(), dates1904())) {
        number = *read;
        return true;
      }
      break;
    default:
      break;
  }
  error = ErrorCode::Value;
  return false;
}

bool Evaluator::toBoolean(const Operand& value, bool& truth, Operand& error) const {
  if (value.isText()) {
    truth = equalsNoCase(value.view(), "TRUE");
    if (truth || equalsNoCase(value.view(), "FALSE")) return true;
    error = ErrorCode::Value;
    return false;
  }
  double number = 0;
  if (!toNumber(value, number, error)) return false;
  truth = number != 0;
  return true;
}

std::string Evaluator::toText(const Operand& value) const {
  switch (value.tag) {
    case Tag::Number:
      return numberText(value.number);
    case Tag::Text:
    case Tag::NumericText:
      return std::string(value.view());
    case Tag::Boolean:
      return value.number != 0 ? "TRUE" : "FALSE";
    case Tag::Error:
      return std::string(errorText(value.code));
    default:
      return {};
  }
}

std::string_view Evaluator::toView(const Operand& value) {
  if (value.tag == Tag::Text || value.tag == Tag::NumericText) return value.view();
  texts_.push_back(toText(value));
  return texts_.back();
}

Area Evaluator::used(const Area& area) const {
  int lastRow = 0;
  int lastColumn = 0;
  for (int sheet = area.sheet; sheet <= area.lastSheet; ++sheet) {
    lastRow = std::max(lastRow, store(sheet).lastRow());
    lastColumn = std::max(lastColumn, store(sheet).lastColumn());
  }
  Area cut = area;
  cut.row2 = std::min(cut.row2, lastRow);
  cut.column2 = std::min(cut.column2, lastColumn);
  return cut;
}

// --- Running ---

void Evaluator::run(const Code& code, Segment segment, Operand* stack) {
  Operand* top = stack;
  for (std::uint32_t pc = segment.begin; pc < segment.end; ++pc) {
    const Instruction& in = code.instructions[pc];
    switch (in.op) {
      case Op::Number:
        top->tag = Tag::Number;
        top->number = in.number;
        ++top;
        break;
      case Op::Text:
        *top++ = Operand::text(code.texts[in.index]);
        break;
      case Op::Boolean:
        *top++ = Operand::boolean(in.number != 0);
        break;
      case Op::Error:
        *top++ = Operand(static_cast<ErrorCode>(in.index));
        break;
      case Op::Missing:
        *top++ = Operand::missing();
        break;
      case Op::ArrayConstant:
        *top++ = Operand(static_cast<const Array*>(code.arrays[in.index].get()));
        break;
      case Op::CellValue: {
        const CompiledReference& ref = code.references[in.index];
        const int sheet = ref.sheet == 0 ? place_.sheet : ref.sheet;
        const int row = ref.row1Absolute ? ref.row1 : ref.row1 + place_.row;
        const int column = ref.column1Absolute ? ref.column1 : ref.column1 + place_.column;
        const Cell& cell = store(sheet).at(row, column);
        if (cell.kind == ValueKind::Number) {
          top->tag = Tag::Number;
          top->number = cell.number;
        } else if (cell.kind == ValueKind::Formula && cell.formula->pass == pass_ &&
                   cell.formula->cached.isNumber()) {
          top->tag = Tag::Number;
          top->number = cell.formula->cached.storedNumber();
        } else {
          *top = fromCell(cell);
        }
        ++top;
        break;
      }
      case Op::Reference:
        *top++ = Operand(code.references[in.index].at(place_.sheet, place_.row, place_.column));
        break;
      case Op::Binary: {
        --top;
        Operand& left = top[-1];
        const Operand& right = top[0];
        if (left.tag == Tag::Number && right.tag == Tag::Number) {
          const double a = left.number;
          const double b = right.number;
          if (in.operation == Operator::Multiply) {
            left.number = a * b;
          } else if (in.operation == Operator::Add && in.index == 0) {
            left.number = a + b;
          } else if (in.operation == Operator::Subtract && in.index == 0) {
            left.number = a - b;
          } else if (in.operation == Operator::Divide && b != 0) {
            left.number = a / b;
          } else {
            left = binary(in, left, right);
            break;
          }
          if (!std::isfinite(left.number)) left = ErrorCode::Num;
        } else {
          left = binary(in, left, right);
        }
        break;
      }
      case Op::Unary:
        top[-1] = unary(in, top[-1]);
        break;
      case Op::Call:
        top -= in.count;
        *top = call(code, in, top);
        ++top;
        break;
      case Op::Choose:
        *top = choose(code, in, top);
        ++top;
        pc = code.segments[in.index + in.count - 1].end - 1;
        break;
      case Op::Unknown:
        if (unknown_ == nullptr) unknown_ = &code.texts[in.index];
        *top++ = Operand(ErrorCode::Name);
        break;
    }
  }
}

Operand Evaluator::binary(const Instruction& in, const Operand& left, const Operand& right) {
  if (in.operation >= Operator::Range && in.operation <= Operator::Intersection) {
    return combineReferences(in.operation, left, right);
  }
  if (!needsElements(left, in.overArrays) && !needsElements(right, in.overArrays)) {
    const Operand a = single(left);
    const Operand b = single(right);
    Operand result = binarySingle(in.operation, a, b);
    if (in.index != 0 && result.isNumber()) {
      double x = 0;
      double y = 0;
      Operand error;
      toNumber(a, x, error);
      toNumber(b, y, error);
      result.number = differenceOrZero(x, in.operation == Operator::Add ? -y : y);
    }
    return result;
  }
  // Whole columns: outside the used part of both everything is empty.
  const Array* a = needsElements(left, true) ? asArray(left) : nullptr;
  const Array* b = needsElements(right, true) ? asArray(right) : nullptr;
  const int rows = std::max(rowsOf(left), rowsOf(right));
  const int columns = std::max(columnsOf(left), columnsOf(right));
  Array* out = newArray(rows, columns);
  if (out == nullptr || (needsElements(left, true) && a == nullptr) ||
      (needsElements(right, true) && b == nullptr)) {
    return ErrorCode::Num;
  }
  const Operand x = a == nullptr ? single(left) : Operand(a);
  const Operand y = b == nullptr ? single(right) : Operand(b);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      out->at(row, column) =
          binarySingle(in.operation, element(x, row, column), element(y, row, column));
    }
  }
  return Operand(out);
}

Operand Evaluator::binarySingle(Operator op, const Operand& left, const Operand& right) {
  const bool arithmetic = op >= Operator::Add && op <= Operator::Power;
  if (left.isError()) return left;
  // The left side comes first: what is not a number there wins over an error on the right.
  if (right.isError() && !arithmetic) return right;
  switch (op) {
    case Operator::Concatenate: {
      std::string joined = toText(left);
      joined += toView(right);
      return text(std::move(joined));
    }
    case Operator::Equal:
      return Operand::boolean(compareValues(left, right) == 0);
    case Operator::NotEqual:
      return Operand::boolean(compareValues(left, right) != 0);
    case Operator::Less:
      return Operand::boolean(compareValues(left, right) < 0);
    case Operator::LessEqual:
      return Operand::boolean(compareValues(left, right) <= 0);
    case Operator::Greater:
      return Operand::boolean(compareValues(left, right) > 0);
    case Operator::GreaterEqual:
      return Operand::boolean(compareValues(left, right) >= 0);
    default:
      break;
  }
  double a = 0;
  double b = 0;
  Operand error;
  if (!toNumber(left, a, error) || !toNumber(right, b, error)) return error;
  double result = 0;
  switch (op) {
    case Operator::Add:
      result = a + b;
      break;
    case Operator::Subtract:
      result = a - b;
      break;
    case Operator::Multiply:
      result = a * b;
      break;
    case Operator::Divide:
      if (b == 0) return ErrorCode::DivisionByZero;
      result = a / b;
      break;
    case Operator::Power:
      if (a == 0 && b == 0) return ErrorCode::Num;
      if (a == 0 && b < 0) return ErrorCode::DivisionByZero;
      result = b == 2 ? a * a : std::pow(a, b);
      break;
    default:
      return ErrorCode::Value;
  }
  return std::isfinite(result) ? Operand(result) : Operand(ErrorCode::Num);
}

Operand Evaluator::unary(const Instruction& in, const Operand& operand) {
  if (!needsElements(operand, in.overArrays)) return unarySingle(in.operation, single(operand));
  const Array* values = asArray(operand);
  if (values == nullptr) return ErrorCode::Num;
  Array* out = newArray(values->rows, values->columns);
  for (size_t i = 0; i < values->values.size(); ++i) {
    out->values[i] = unarySingle(in.operation, values->values[i]);
  }
  return Operand(out);
}

Operand Evaluator::unarySingle(Operator op, const Operand& operand) {
  if (op == Operator::Plus) return operand;
  double number = 0;
  Operand error;
  if (!toNumber(operand, number, error)) return error;
  return op == Operator::Minus ? Operand(-number) : Operand(number / 100);
}

Operand Evaluator::combineReferences(Operator op, const Operand& left, const Operand& right) {
  if (left.isError()) return left;
  if (right.isError()) return right;
  if (!left.isReference() || !right.isReference()) return ErrorCode::Value;
  const auto listOf = [](const Operand& operand) {
    return operand.isArea() ? std::vector<Area>{operand.area} : *operand.areas;
  };
  std::vector<Area> a = listOf(left);
  std::vector<Area> b = listOf(right);
  if (op == Operator::Union) {
    a.insert(a.end(), b.begin(), b.end());
    return newAreas(std::move(a));
  }
  if (op == Operator::Range) {
    Area all = a.front();
    for (const auto* list : {&a, &b}) {
      for (const Area& area : *list) {
        if (area.sheet != all.sheet || area.lastSheet != all.lastSheet) return ErrorCode::Value;
        all.row1 = std::min(all.row1, area.row1);
        all.column1 = std::min(all.column1, area.column1);
        all.row2 = std::max(all.row2, area.row2);
        all.column2 = std::max(all.column2, area.column2);
      }
    }
    return Operand(all);
  }
  std::vector<Area> common;
  for (const Area& x : a) {
    for (const Area& y : b) {
      if (x.sheet != y.sheet || x.lastSheet != y.lastSheet) return ErrorCode::Value;
      const Area both{x.sheet,
                      x.lastSheet,
                      std::max(x.row1, y.row1),
                      std::max(x.column1, y.column1),
                      std::min(x.row2, y.row2),
                      std::min(x.column2, y.column2)};
      if (both.row1 <= both.row2 && both.column1 <= both.column2) common.push_back(both);
    }
  }
  if (common.empty()) return ErrorCode::Null;
  return common.size() == 1 ? Operand(common.front()) : newAreas(std::move(common));
}

// --- Functions ---

bool Evaluator::convert(char letter, Operand& argument, Operand& error) {
  const bool optional = letter >= 'a';
  if (optional) {
    if (argument.isMissing()) return true;
    letter = static_cast<char>(letter - 'a' + 'A');
  }
  if (letter == 'R' || letter == 'A') return true;
  if (!argument.isScalar()) argument = single(argument);
  switch (letter) {
    case 'N': {
      double number = 0;
      if (argument.tag == Tag::Number) return true;
      if (!toNumber(argument, number, error)) return false;
      argument = Operand(number);
      return true;
    }
    case 'T':
      if (argument.isError()) break;
      if (argument.tag != Tag::Text) argument = Operand::text(toView(argument));
      return true;
    case 'B': {
      bool truth = false;
      if (!toBoolean(argument, truth, error)) return false;
      argument = Operand::boolean(truth);
      return true;
    }
    case 'V':
      if (argument.isError()) break;
      if (argument.isMissing()) argument = Operand();
      return true;
    default:
      return true;
  }
  error = argument;
  return false;
}

Operand Evaluator::call(const Code& code, const Instruction& in, Operand* arguments) {
  const FunctionInfo& function = *in.function;
  const char* letters = code.letters.data() + in.index;
  int rows = 0;
  int columns = 0;
  for (int i = 0; i < in.count; ++i) {
    if (arguments[i].isScalar()) continue;
    const char letter = letters[i] & ~0x20;
    if (letter == 'R' || letter == 'A' || !needsElements(arguments[i], in.overArrays)) continue;
    rows = std::max(rows, rowsOf(arguments[i]));
    columns = std::max(columns, columnsOf(arguments[i]));
  }
  if (rows > 0) return callByElement(in, letters, arguments, rows, columns);
  Operand error;
  for (int i = 0; i < in.count; ++i) {
    const char letter = letters[i];
    if (letter == 'R' || letter == 'A' || (letter == 'N' && arguments[i].tag == Tag::Number))
      continue;
    if (!convert(letter, arguments[i], error)) return error;
  }
  const Operand result = function.routine(*this, Arguments(arguments, in.count));
  return result.tag == Tag::Number && !std::isfinite(result.number) ? Operand(ErrorCode::Num)
                                                                    : result;
}

Operand Evaluator::callByElement(const Instruction& in, const char* letters, Operand* arguments,
                                 int rows, int columns) {
  const FunctionInfo& function = *in.function;
  std::vector<Operand> whole(arguments, arguments + in.count);
  std::vector<Operand> now(whole.size());
  Array* out = newArray(rows, columns);
  if (out == nullptr) return ErrorCode::Num;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      Operand error;
      bool fine = true;
      for (size_t i = 0; i < whole.size() && fine; ++i) {
        const char letter = letters[i];
        const bool asItIs = (letter & ~0x20) == 'R' || (letter & ~0x20) == 'A';
        const bool byElement = !asItIs && needsElements(whole[i], in.overArrays);
        now[i] = byElement ? element(whole[i], row, column) : whole[i];
        fine = convert(letter, now[i], error);
      }
      Operand result = fine ? function.routine(*this, Arguments(now)) : error;
      if (!result.isScalar()) result = single(result);
      if (result.tag == Tag::Number && !std::isfinite(result.number)) result = ErrorCode::Num;
      out->at(row, column) = result;
    }
  }
  return Operand(out);
}

}  // namespace lodex::formula
