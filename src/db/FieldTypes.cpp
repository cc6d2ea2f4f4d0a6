#include "db/FieldTypes.h"

#include <algorithm>
#include <array>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

namespace {

struct TypeWord {
  std::string_view word;
  FieldCode code;
};

// Longer words come before those that they begin with.
constexpr std::array kTypeWords{
    TypeWord{"SINGLE", FieldCode::Single},     TypeWord{"REAL", FieldCode::Single},
    TypeWord{"DOUBLE", FieldCode::Double},     TypeWord{"FLOAT", FieldCode::Double},
    TypeWord{"LONGTEXT", FieldCode::Memo},     TypeWord{"LONGCHAR", FieldCode::Memo},
    TypeWord{"LONGBINARY", FieldCode::Binary}, TypeWord{"LONG", FieldCode::Integer},
    TypeWord{"SHORT", FieldCode::SmallInt},    TypeWord{"SMALLINT", FieldCode::SmallInt},
    TypeWord{"INTEGER2", FieldCode::SmallInt}, TypeWord{"INT", FieldCode::Integer},
    TypeWord{"COUNTER", FieldCode::Integer},   TypeWord{"AUTOINCREMENT", FieldCode::Integer},
    TypeWord{"BYTE", FieldCode::Byte},         TypeWord{"CURRENCY", FieldCode::Currency},
    TypeWord{"MONEY", FieldCode::Currency},    TypeWord{"DECIMAL", FieldCode::Numeric},
    TypeWord{"NUMERIC", FieldCode::Numeric},   TypeWord{"DATE", FieldCode::Date},
    TypeWord{"TIME", FieldCode::Date},         TypeWord{"BOOL", FieldCode::Boolean},
    TypeWord{"BIT", FieldCode::Boolean},       TypeWord{"YESNO", FieldCode::Boolean},
    TypeWord{"LOGICAL", FieldCode::Boolean},   TypeWord{"MEMO", FieldCode::Memo},
    TypeWord{"CLOB", FieldCode::Memo},         TypeWord{"BLOB", FieldCode::Binary},
    TypeWord{"BINARY", FieldCode::Binary},     TypeWord{"OLEOBJECT", FieldCode::Binary},
    TypeWord{"CHAR", FieldCode::VarText},      TypeWord{"VARCHAR", FieldCode::VarText},
    TypeWord{"NVARCHAR", FieldCode::VarText},  TypeWord{"TEXT", FieldCode::VarText},
};

// The numbers in "TEXT (50)" or "DECIMAL (10, 2)"; 0 for one that is not there.
std::array<int, 2> sizesInBrackets(std::string_view declaration) {
  std::array<int, 2> sizes{};
  const size_t open = declaration.find('(');
  const size_t close = declaration.find(')', open == std::string_view::npos ? 0 : open);
  if (open == std::string_view::npos || close == std::string_view::npos) return sizes;
  const auto pieces = split(declaration.substr(open + 1, close - open - 1), ",");
  for (size_t i = 0; i < std::min(pieces.size(), sizes.size()); ++i) {
    sizes[i] = std::clamp(parseInteger(pieces[i]).value_or(0), 0, 65535);
  }
  return sizes;
}

constexpr int kMaxPrecision = 28;  // of a decimal field

// Words that parseFieldType knows by their beginning.
constexpr std::array<std::string_view, 7> kLongerWords{
    "INTEGER", "INTEGER4", "DATETIME", "TIMESTAMP", "BOOLEAN", "VARCHAR2", "CHARACTER"};

}  // namespace

bool FieldType::isText() const {
  return code == FieldCode::Text || code == FieldCode::VarText || code == FieldCode::Memo;
}

bool FieldType::isNumber() const {
  switch (code) {
    case FieldCode::SmallInt:
    case FieldCode::Integer:
    case FieldCode::Single:
    case FieldCode::Double:
    case FieldCode::Currency:
    case FieldCode::Byte:
    case FieldCode::Numeric:
      return true;
    default:
      return false;
  }
}

std::string fieldText(const FieldValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* number = std::get_if<double>(&value)) return numberText(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return {};
}

double fieldNumber(const FieldValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* text = std::get_if<std::string>(&value)) return numberOf(*text);
  return 0;
}

FieldType parseFieldType(std::string_view declaration) {
  const std::string upper = toUpper(trimWhite(declaration));
  for (const TypeWord& known : kTypeWords) {
    if (!upper.starts_with(known.word)) continue;
    FieldType type{known.code, 0};
    const auto [size, scale] = sizesInBrackets(upper);
    if (known.code == FieldCode::VarText) type.size = size > 0 ? size : 255;
    if (known.code == FieldCode::Numeric && size > 0) {
      type.precision = std::min(size, kMaxPrecision);
      type.scale = std::min(scale, type.precision);
    }
    return type;
  }
  return {FieldCode::VarText, 255};
}

bool isFieldType(std::string_view declaration) {
  const std::string upper = toUpper(trimWhite(declaration));
  const size_t end = upper.find_first_of(" (");
  const std::string_view word = std::string_view(upper).substr(0, end);
  const auto names = [word](const TypeWord& known) { return known.word == word; };
  return std::any_of(kTypeWords.begin(), kTypeWords.end(), names) ||
         std::find(kLongerWords.begin(), kLongerWords.end(), word) != kLongerWords.end();
}

std::string jetTypeName(FieldType type) {
  switch (type.code) {
    case FieldCode::SmallInt:
      return "SHORT";
    case FieldCode::Integer:
      return "LONG";
    case FieldCode::Single:
      return "SINGLE";
    case FieldCode::Double:
      return "DOUBLE";
    case FieldCode::Numeric:
      if (type.precision == 0) return "DECIMAL";
      return "DECIMAL (" + std::to_string(type.precision) + ", " + std::to_string(type.scale) + ")";
    case FieldCode::Currency:
      return "CURRENCY";
    case FieldCode::Date:
      return "DATE";
    case FieldCode::Boolean:
      return "BOOLEAN";
    case FieldCode::Byte:
      return "BYTE";
    case FieldCode::Memo:
      return "MEMO";
    case FieldCode::Binary:
      return "LONGBINARY";
    case FieldCode::Text:
    case FieldCode::VarText:
      break;
  }
  return "TEXT (" + std::to_string(type.size > 0 ? type.size : 255) + ")";
}

std::string columnDeclaration(FieldType type) {
  // SQLite derives a column's affinity from the words of its declaration: INT keeps whole numbers,
  // REAL and DOUB numbers, TEXT texts; MEMO or DATE alone would turn "007" into 7.
  switch (type.code) {
    case FieldCode::SmallInt:
      return "SHORT INT";
    case FieldCode::Integer:
      return "LONG INT";
    case FieldCode::Byte:
      return "BYTE INT";
    case FieldCode::Boolean:
      return "BOOLEAN INT";
    case FieldCode::Single:
      return "SINGLE REAL";
    case FieldCode::Double:
      return "DOUBLE";
    case FieldCode::Currency:
      return "CURRENCY REAL";
    case FieldCode::Numeric:
      if (type.precision == 0) return "DECIMAL REAL";
      return "DECIMAL REAL(" + std::to_string(type.precision) + "," + std::to_string(type.scale) +
             ")";
    case FieldCode::Date:
      return "DATE TEXT";
    case FieldCode::Memo:
      return "MEMO TEXT COLLATE NOCASE";
    case FieldCode::Binary:
      return "BLOB";
    case FieldCode::Text:
    case FieldCode::VarText:
      break;
  }
  return "TEXT(" + std::to_string(type.size > 0 ? type.size : 255) + ") COLLATE NOCASE";
}

}  // namespace lodex
