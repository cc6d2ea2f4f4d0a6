#include "worksheet/formula/Compiler.h"

#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex::formula {
namespace {

// Names may stand for formulas with other names in them.
constexpr int deepestName = 16;

struct Context {
  bool wantsReference = false;  // the reader takes references as they are
  bool overArrays = false;      // areas count as arrays
  bool last = false;            // nothing is computed with the result
};

class Compiler {
 public:
  Compiler(const Place& place, const Worksheet& book, Code& code)
      : place_(place), book_(book), code_(code) {}

  void compileAll(const Node& root, bool arrayFormula) {
    // The first segment is the formula itself.
    code_.segments.emplace_back();
    Context context;
    context.overArrays = arrayFormula;
    context.last = true;
    compile(root, context);
    code_.segments[0] = {0, size()};
  }

  void compileUnknown(const std::string& reason) {
    code_.segments.emplace_back();
    unknown(reason);
    code_.segments[0] = {0, size()};
  }

 private:
  std::uint32_t size() const { return static_cast<std::uint32_t>(code_.instructions.size()); }

  Instruction& emit(Op op, int pops, int pushes = 1) {
    depth_ += pushes - pops;
    code_.stackSize = std::max(code_.stackSize, depth_ + pops);
    code_.instructions.emplace_back();
    code_.instructions.back().op = op;
    return code_.instructions.back();
  }

  std::uint32_t addText(std::string_view text) {
    code_.texts.emplace_back(text);
    return static_cast<std::uint32_t>(code_.texts.size()) - 1;
  }

  void unknown(const std::string& reason) { emit(Op::Unknown, 0).index = addText(reason); }

  void compile(const Node& node, Context context) {
    switch (node.kind) {
      case NodeKind::Number:
        emit(Op::Number, 0).number = node.number;
        return;
      case NodeKind::Text:
        emit(Op::Text, 0).index = addText(node.text);
        return;
      case NodeKind::Boolean:
        emit(Op::Boolean, 0).number = node.number;
        return;
      case NodeKind::Error:
        emit(Op::Error, 0).index = static_cast<std::uint32_t>(node.number);
        return;
      case NodeKind::Missing:
        emit(Op::Missing, 0);
        return;
      case NodeKind::Array:
        return compileArray(node);
      case NodeKind::Reference:
        return compileReference(node.reference, context);
      case NodeKind::Name:
        return compileName(node, context);
      case NodeKind::Function:
        return compileFunction(node, context);
      case NodeKind::Unary:
        return compileUnary(node, context);
      case NodeKind::Binary:
        return compileBinary(node, context);
      case NodeKind::Parentheses:
        context.last = false;
        return compile(node.children[0], context);
    }
  }

  void compileArray(const Node& node) {
    const int rows = static_cast<int>(node.children.size()) / node.columns;
    auto array = std::make_unique<Array>(rows, node.columns);
    for (size_t i = 0; i < node.children.size(); ++i) {
      const Node& child = node.children[i];
      Operand& value = array->values[i];
      if (child.kind == NodeKind::Number) value = Operand(child.number);
      if (child.kind == NodeKind::Boolean) value = Operand::boolean(child.number != 0);
      if (child.kind == NodeKind::Error)
        value = static_cast<ErrorCode>(static_cast<int>(child.number));
      if (child.kind == NodeKind::Reference) value = ErrorCode::Ref;
      if (child.kind == NodeKind::Text) {
        // The array borrows its texts from the code, which must not move them again.
        arrayTexts().push_back(std::make_unique<std::string>(child.text));
        value = Operand::text(*arrayTexts().back());
      }
    }
    code_.arrays.push_back(std::move(array));
    emit(Op::ArrayConstant, 0).index = static_cast<std::uint32_t>(code_.arrays.size()) - 1;
  }

  std::vector<std::unique_ptr<std::string>>& arrayTexts() { return code_.arrayTexts; }

  void compileReference(const Reference& reference, Context context) {
    if (reference.kind == ReferenceKind::Dead) {
      emit(Op::Error, 0).index = static_cast<std::uint32_t>(ErrorCode::Ref);
      return;
    }
    CompiledReference compiled;
    if (reference.sheets) {
      if (!reference.sheets->book.empty()) {
        return unknown("a reference to another workbook: " + referenceText(reference));
      }
      compiled.sheet = book_.SheetNumber(reference.sheets->first);
      compiled.lastSheet = reference.sheets->last.empty()
                               ? compiled.sheet
                               : book_.SheetNumber(reference.sheets->last);
      if (compiled.sheet == 0 || compiled.lastSheet == 0) {
        return unknown("a reference to a sheet that does not exist: " + referenceText(reference));
      }
      if (compiled.sheet > compiled.lastSheet) std::swap(compiled.sheet, compiled.lastSheet);
    }
    const bool wholeRows = reference.kind == ReferenceKind::Rows;
    const bool wholeColumns = reference.kind == ReferenceKind::Columns;
    compiled.isCell = reference.kind == ReferenceKind::Cell;
    compiled.row1Absolute = reference.first.rowAbsolute || wholeColumns;
    compiled.row2Absolute = reference.last.rowAbsolute || wholeColumns;
    compiled.column1Absolute = reference.first.columnAbsolute || wholeRows;
    compiled.column2Absolute = reference.last.columnAbsolute || wholeRows;
    const auto distance = [](int place, bool absolute, int from) {
      return absolute ? place : place - from;
    };
    compiled.row1 = distance(reference.first.row, compiled.row1Absolute, place_.row);
    compiled.row2 = distance(reference.last.row, compiled.row2Absolute, place_.row);
    compiled.column1 = distance(reference.first.column, compiled.column1Absolute, place_.column);
    compiled.column2 = distance(reference.last.column, compiled.column2Absolute, place_.column);
    // A name's distances may lead over the edge of the sheet; only Op::Reference minds that.
    const bool single = compiled.isCell && compiled.sheet == compiled.lastSheet && nameDepth_ == 0;
    code_.references.push_back(compiled);
    emit(single && !context.wantsReference ? Op::CellValue : Op::Reference, 0).index =
        static_cast<std::uint32_t>(code_.references.size()) - 1;
  }

  const DefinedName* findName(const Node& node) const {
    int sheet = place_.sheet;
    if (node.reference.sheets) {
      if (!node.reference.sheets->book.empty()) return nullptr;
      sheet = book_.SheetNumber(node.reference.sheets->first);
    }
    const DefinedName* global = nullptr;
    for (const DefinedName& name : book_.definedNames()) {
      if (!equalsNoCase(name.name, node.text)) continue;
      if (name.sheet == sheet) return &name;
      if (name.sheet == 0) global = &name;
    }
    return global;
  }

  void compileName(const Node& node, Context context) {
    const DefinedName* name = findName(node);
    if (name == nullptr) return unknown("an undefined name: " + formulaText(node));
    if (nameDepth_ >= deepestName) return unknown("a name defined by itself: " + name->name);
    std::string_view text = name->formula;
    if (text.starts_with('=')) text.remove_prefix(1);
    std::string problem;
    const auto root = parseFormula(text, problem);
    if (!root) return unknown("the name " + name->name + ": " + problem);
    // Relative references of a name are written as seen from cell A1.
    const Place before = place_;
    place_.row = place_.column = 1;
    ++nameDepth_;
    context.last = false;
    compile(*root, context);
    --nameDepth_;
    place_ = before;
  }

  static char letterOf(const FunctionInfo& function, size_t index) {
    return static_cast<char>(parameterLetter(function, static_cast<int>(index)) & ~0x20);
  }

  Context argumentContext(const FunctionInfo& function, size_t index, Context outer) const {
    const char letter = letterOf(function, index);
    Context context;
    context.wantsReference = letter == 'R' || letter == 'A';
    context.overArrays = outer.overArrays || letter == 'A';
    return context;
  }

  void compileFunction(const Node& node, Context context) {
    const FunctionInfo* function = findFunction(node.text);
    if (function == nullptr) return unknown("an unknown function: " + node.text);
    if (function->routine == notCalculated)
      return unknown("a function that is not calculated: " + node.text);
    const auto count = static_cast<int>(node.children.size());
    if (count < function->minArguments || count > function->maxArguments) {
      return unknown("a wrong number of arguments: " + node.text);
    }
    code_.isVolatile = code_.isVolatile || function->isVolatile;
    code_.isDynamic = code_.isDynamic || function->isDynamic;
    if (function->routine == nullptr) return compileChoice(node, *function, context);
    for (size_t i = 0; i < node.children.size(); ++i) {
      compile(node.children[i], argumentContext(*function, i, context));
    }
    Instruction& call = emit(Op::Call, count);
    call.function = function;
    call.count = static_cast<std::uint8_t>(count);
    call.overArrays = context.overArrays;
    call.index = static_cast<std::uint32_t>(code_.letters.size());
    for (int i = 0; i < count; ++i) code_.letters += parameterLetter(*function, i);
  }

  // The condition is a single value; what may be chosen counts as if it stood alone.
  void compileChoice(const Node& node, const FunctionInfo& function, Context context) {
    const auto first = static_cast<std::uint32_t>(code_.segments.size());
    code_.segments.resize(first + node.children.size());
    Instruction& choice = emit(Op::Choose, 0);
    choice.function = &function;
    choice.index = first;
    choice.count = static_cast<std::uint8_t>(node.children.size());
    choice.overArrays = context.overArrays;
    --depth_;
    for (size_t i = 0; i < node.children.size(); ++i) {
      Context inner = context;
      inner.last = false;
      if (i == 0 && letterOf(function, 1) == 'R') inner.wantsReference = false;
      if (letterOf(function, 1) != 'R') inner.wantsReference = false;
      const std::uint32_t begin = size();
      compile(node.children[i], inner);
      code_.segments[first + i] = {begin, size()};
      --depth_;
    }
    ++depth_;
  }

  void compileUnary(const Node& node, Context context) {
    Context inner;
    inner.overArrays = context.overArrays;
    const Node& child = node.children[0];
    if (child.kind == NodeKind::Number && node.op == Operator::Minus) {
      emit(Op::Number, 0).number = -child.number;
      return;
    }
    // A plus sign changes nothing, not even a reference.
    if (node.op == Operator::Plus) inner.wantsReference = context.wantsReference;
    compile(child, inner);
    if (node.op == Operator::Plus && context.wantsReference) return;
    Instruction& in = emit(Op::Unary, 1);
    in.operation = node.op;
    in.overArrays = context.overArrays;
  }

  void compileBinary(const Node& node, Context context) {
    const bool ofReferences = node.op >= Operator::Range && node.op <= Operator::Intersection;
    Context inner;
    inner.overArrays = context.overArrays;
    inner.wantsReference = ofReferences;
    compile(node.children[0], inner);
    compile(node.children[1], inner);
    if (node.op == Operator::Range) code_.isVolatile = code_.isDynamic = true;
    Instruction& in = emit(Op::Binary, 2);
    in.operation = node.op;
    in.overArrays = context.overArrays;
    // Where nothing follows, a sum or difference of nothing but rounding errors is 0.
    const bool sum = node.op == Operator::Add || node.op == Operator::Subtract;
    in.index = sum && context.last ? 1 : 0;
  }

  Place place_;
  const Worksheet& book_;
  Code& code_;
  int depth_ = 0;
  int nameDepth_ = 0;
};

template <typename T>
void appendBytes(std::string& key, const T& value) {
  key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

std::unique_ptr<Code> compileFormula(std::string_view text, const Place& place,
                                     const Worksheet& book, bool arrayFormula) {
  auto code = std::make_unique<Code>();
  Compiler compiler(place, book, *code);
  std::string problem;
  if (const auto root = parseFormula(text, problem)) {
    compiler.compileAll(*root, arrayFormula);
  } else {
    compiler.compileUnknown("not a formula: " + problem);
  }
  return code;
}

std::string codeKey(const Code& code) {
  std::string key;
  key.reserve(code.instructions.size() * 16 + code.references.size() * 32);
  for (const Instruction& in : code.instructions) {
    key += static_cast<char>(in.op);
    key += static_cast<char>(in.operation);
    key += static_cast<char>(in.count);
    key += static_cast<char>(in.overArrays);
    appendBytes(key, in.index);
    appendBytes(key, in.number);
  }
  for (const CompiledReference& ref : code.references) {
    for (const int part :
         {ref.sheet, ref.lastSheet, ref.row1, ref.column1, ref.row2, ref.column2}) {
      appendBytes(key, part);
    }
    key += static_cast<char>(ref.row1Absolute | ref.column1Absolute << 1 | ref.row2Absolute << 2 |
                             ref.column2Absolute << 3 | ref.isCell << 4);
  }
  for (const std::string& text : code.texts) {
    appendBytes(key, text.size());
    key += text;
  }
  for (const auto& array : code.arrays) {
    appendBytes(key, array->columns);
    for (const Operand& value : array->values) {
      key += static_cast<char>(value.tag);
      key += static_cast<char>(value.code);
      appendBytes(key, value.number);
      if (!value.isText()) continue;
      appendBytes(key, value.view().size());
      key += value.view();
    }
  }
  return key;
}

}  // namespace lodex::formula
