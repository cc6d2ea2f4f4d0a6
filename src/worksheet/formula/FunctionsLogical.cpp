// Truth values, and the functions that evaluate only the arguments they choose.
#include <functional>

#include "basic/Text.h"
#include "worksheet/formula/Compare.h"
#include "worksheet/formula/Evaluator.h"

namespace lodex::formula {

Operand Evaluator::segment(const Code& code, const Instruction& in, int index, Operand* stack) {
  run(code, code.segments[in.index + static_cast<std::uint32_t>(index)], stack);
  return *stack;
}

Operand Evaluator::choose(const Code& code, const Instruction& in, Operand* stack) {
  constexpr int numberOfIf = 1;
  if (in.function->stored == numberOfIf) return chooseIf(code, in, stack);
  const std::string_view name = in.function->name;
  if (name == "CHOOSE") return chooseIndex(code, in, stack);
  if (name == "IFS") return chooseIfs(code, in, stack);
  if (name == "SWITCH") return chooseSwitch(code, in, stack);
  return chooseIfError(code, in, stack);
}

// Where the condition is an array, every element of it chooses for itself.
template <typename Choose>
Operand Evaluator::chooseByElement(const Operand& condition, Choose elementFor) {
  const Array* conditions = asArray(condition);
  if (conditions == nullptr) return ErrorCode::Num;
  Array* out = newArray(conditions->rows, conditions->columns);
  for (int row = 0; row < out->rows; ++row) {
    for (int column = 0; column < out->columns; ++column) {
      out->at(row, column) = elementFor(conditions->at(row, column), row, column);
    }
  }
  return Operand(out);
}

Operand Evaluator::chooseIf(const Code& code, const Instruction& in, Operand* stack) {
  Operand condition = segment(code, in, 0, stack);
  if (needsElements(condition, in.overArrays)) {
    const Operand yes = in.count > 1 ? segment(code, in, 1, stack) : Operand::boolean(true);
    const Operand no = in.count > 2 ? segment(code, in, 2, stack) : Operand::boolean(false);
    // A condition of one row or column spreads over the choices.
    const int rows = std::max({rowsOf(condition), rowsOf(yes), rowsOf(no)});
    const int columns = std::max({columnsOf(condition), columnsOf(yes), columnsOf(no)});
    Array* out = newArray(rows, columns);
    if (out == nullptr) return ErrorCode::Num;
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        bool truth = false;
        Operand result;
        if (toBoolean(element(condition, row, column), truth, result)) {
          result = element(truth ? yes : no, row, column);
        }
        out->at(row, column) = result.isMissing() ? Operand(0.0) : result;
      }
    }
    return Operand(out);
  }
  if (!condition.isScalar()) condition = single(condition);
  bool truth = false;
  if (condition.tag == Tag::Boolean || condition.tag == Tag::Number) {
    truth = condition.number != 0;
  } else {
    Operand error;
    if (!toBoolean(condition, truth, error)) return error;
  }
  const int chosen = truth ? 1 : 2;
  if (chosen >= in.count) return Operand::boolean(truth);
  const Operand result = segment(code, in, chosen, stack);
  return result.isMissing() ? Operand(0.0) : result;
}

Operand Evaluator::chooseIndex(const Code& code, const Instruction& in, Operand* stack) {
  const Operand index = segment(code, in, 0, stack);
  const auto pick = [&](const Operand& value) -> Operand {
    double number = 0;
    Operand error;
    if (!toNumber(value, number, error)) return error;
    if (!(number >= 1 && number < in.count)) return ErrorCode::Value;
    const Operand result = segment(code, in, static_cast<int>(number), stack);
    return result.isMissing() ? Operand(0.0) : result;
  };
  if (!needsElements(index, in.overArrays)) return pick(single(index));
  // CHOOSE({1,2},A1:A9,C1:C9) sets columns side by side.
  const Array* indexes = asArray(index);
  if (indexes == nullptr) return ErrorCode::Num;
  std::vector<Operand> choices;
  int rows = indexes->rows;
  int columns = indexes->columns;
  for (const Operand& value : indexes->values) {
    choices.push_back(pick(value));
    rows = std::max(rows, rowsOf(choices.back()));
    columns = std::max(columns, columnsOf(choices.back()));
  }
  Array* out = newArray(rows, columns);
  if (out == nullptr) return ErrorCode::Num;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const int r = indexes->rows == 1 ? 0 : row;
      const int c = indexes->columns == 1 ? 0 : column;
      const bool inside = r < indexes->rows && c < indexes->columns;
      out->at(row, column) = inside ? element(choices[r * indexes->columns + c], row, column)
                                    : Operand(ErrorCode::NotAvailable);
    }
  }
  return Operand(out);
}

Operand Evaluator::chooseIfError(const Code& code, const Instruction& in, Operand* stack) {
  const bool onlyNotAvailable = in.function->name == "IFNA";
  const auto caught = [&](const Operand& value) {
    return value.isError() && (!onlyNotAvailable || value.code == ErrorCode::NotAvailable);
  };
  const Operand value = segment(code, in, 0, stack);
  const auto other = [&] {
    const Operand result = segment(code, in, 1, stack);
    return result.isMissing() ? Operand(0.0) : result;
  };
  if (needsElements(value, in.overArrays)) {
    const Operand instead = other();
    return chooseByElement(value, [&](const Operand& one, int row, int column) {
      return caught(one) ? element(instead, row, column) : one;
    });
  }
  const Operand one = single(value);
  if (!caught(one)) return one;
  // The error itself may have been something that cannot be computed; what replaces it can.
  return other();
}

Operand Evaluator::chooseIfs(const Code& code, const Instruction& in, Operand* stack) {
  for (int i = 0; i + 1 < in.count; i += 2) {
    bool truth = false;
    Operand error;
    if (!toBoolean(single(segment(code, in, i, stack)), truth, error)) return error;
    if (truth) return segment(code, in, i + 1, stack);
  }
  return ErrorCode::NotAvailable;
}

Operand Evaluator::chooseSwitch(const Code& code, const Instruction& in, Operand* stack) {
  const Operand wanted = single(segment(code, in, 0, stack));
  if (wanted.isError()) return wanted;
  int i = 1;
  for (; i + 1 < in.count; i += 2) {
    const Operand candidate = single(segment(code, in, i, stack));
    if (candidate.isError()) return candidate;
    if (compareValues(wanted, candidate) == 0) return segment(code, in, i + 1, stack);
  }
  return i < in.count ? segment(code, in, i, stack) : Operand(ErrorCode::NotAvailable);
}

namespace {

// Runs through all truth values of the arguments; text and empty cells in areas do not count.
// Returns false with `error` set when there is an error, or nothing that counts.
bool visitTruths(Evaluator& ev, Arguments arguments, Operand& error,
                 const std::function<void(bool)>& visit) {
  bool any = false;
  for (const Operand& argument : arguments) {
    const bool all = ev.visitValues(argument, [&](const Operand& value, bool fromCells) {
      if (fromCells && (value.isText() || value.isEmpty())) return true;
      bool truth = false;
      if (!ev.toBoolean(value, truth, error)) return false;
      any = true;
      visit(truth);
      return true;
    });
    if (!all) return false;
  }
  if (!any) error = ErrorCode::Value;
  return any;
}

Operand fnAnd(Evaluator& ev, Arguments a) {
  bool result = true;
  Operand error;
  const bool fine = visitTruths(ev, a, error, [&](bool truth) { result = result && truth; });
  return fine ? Operand::boolean(result) : error;
}

Operand fnOr(Evaluator& ev, Arguments a) {
  bool result = false;
  Operand error;
  const bool fine = visitTruths(ev, a, error, [&](bool truth) { result = result || truth; });
  return fine ? Operand::boolean(result) : error;
}

Operand fnXor(Evaluator& ev, Arguments a) {
  bool result = false;
  Operand error;
  const bool fine = visitTruths(ev, a, error, [&](bool truth) { result = result != truth; });
  return fine ? Operand::boolean(result) : error;
}

Operand fnNot(Evaluator&, Arguments a) {
  return Operand::boolean(a[0].number == 0);
}
Operand fnTrue(Evaluator&, Arguments) {
  return Operand::boolean(true);
}
Operand fnFalse(Evaluator&, Arguments) {
  return Operand::boolean(false);
}

constexpr FunctionInfo table[] = {
    {"IF", 1, 3, 1, "VR", nullptr},
    {"CHOOSE", 2, anyNumber, 100, "VR", nullptr},
    {"IFERROR", 2, 2, since2007, "V", nullptr},
    {"IFNA", 2, 2, newer, "V", nullptr},
    {"IFS", 2, anyNumber, newer, "V", nullptr},
    {"SWITCH", 3, anyNumber, newer, "V", nullptr},
    {"AND", 1, anyNumber, 36, "R", fnAnd},
    {"OR", 1, anyNumber, 37, "R", fnOr},
    {"XOR", 1, anyNumber, newer, "R", fnXor},
    {"NOT", 1, 1, 38, "B", fnNot},
    {"TRUE", 0, 0, 34, "", fnTrue},
    {"FALSE", 0, 0, 35, "", fnFalse},
};

}  // namespace

FunctionList logicalFunctions() {
  return table;
}

}  // namespace lodex::formula
