#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lodex {

/// Type codes of fields, with the numbers that callers and stored maps use.
enum class FieldCode {
  SmallInt = 2,
  Integer = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  Boolean = 11,
  Byte = 17,
  Text = 130,
  Numeric = 131,
  VarText = 202,
  Memo = 203,
  Binary = 205
};

/// A field's type. `size` is the greatest number of characters of a text, 0 for no limit and for
/// all other types; `precision` the number of digits of a Numeric and `scale` how many of them
/// are after the point, precision 0 where that is not known.
struct FieldType {
  FieldCode code = FieldCode::VarText;
  int size = 0;
  int precision = 0;
  int scale = 0;

  bool isText() const;
  bool isNumber() const;
  friend bool operator==(const FieldType&, const FieldType&) = default;
};

/// One field's content: Null, a whole number (also Booleans, true being -1), a number or a text.
using FieldValue = std::variant<std::monostate, std::int64_t, double, std::string>;

inline bool isNull(const FieldValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

/// The value as text, as numbers are shown to a user; "" for Null.
std::string fieldText(const FieldValue& value);

/// The value as a number; 0 for Null and for text that holds no number.
double fieldNumber(const FieldValue& value);

/// A field of a recordset. `declared` is the type as the table declares it, `column` the table's
/// name for the field and `table` the table itself, also behind a view; all "" for an expression,
/// and `table` where a server does not tell.
struct Field {
  std::string name;
  FieldType type;
  std::string declared;
  std::string column = {};
  std::string table = {};
};

/// The type that a declaration such as "TEXT (50)", "SINGLE" or "LONG" means, in any case. An
/// unknown word gives text of 255 characters.
FieldType parseFieldType(std::string_view declaration);

/// Whether the first word of a declaration names a type, in any case.
bool isFieldType(std::string_view declaration);

/// The type as a statement of the Jet dialect names it, such as "TEXT (50)" or "DECIMAL (10, 2)".
std::string jetTypeName(FieldType type);

/// The declaration of a column in an embedded database. It names the type by its Jet word, which
/// parseFieldType reads back, and adds a word that keeps texts texts and numbers numbers. Texts
/// compare without case.
std::string columnDeclaration(FieldType type);

}  // namespace lodex
