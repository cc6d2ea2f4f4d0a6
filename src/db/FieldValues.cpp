#include "db/FieldValues.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/Errors.h"

namespace lodex {

namespace {

constexpr size_t kShownValue = 60;

[[noreturn]] void refuse(const FieldValue& value, const Field& field, std::string_view table,
                         const std::string& takes) {
  std::string shown = fieldText(value);
  if (shown.size() > kShownValue) {
    shown = encodeUtf8(decodeUtf8(shown).substr(0, kShownValue)) + "...";
  }
  throw Error("Field [" + field.name + "] of table [" + std::string(table) + "] takes " + takes +
                  ", not \"" + shown + "\"",
              dberror::Unspecified);
}

std::optional<double> numberIn(const FieldValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return parseNumber(*text);
  return fieldNumber(value);
}

FieldValue wholeValue(const FieldValue& value, const Field& field, std::string_view table,
                      double least, double most) {
  const auto number = numberIn(value);
  const double rounded = number ? roundHalfEven(*number) : 0;
  if (!number || !(rounded >= least && rounded <= most)) {
    refuse(value, field, table,
           "whole numbers between " + std::to_string(static_cast<std::int64_t>(least)) + " and " +
               std::to_string(static_cast<std::int64_t>(most)));
  }
  return static_cast<std::int64_t>(rounded);
}

FieldValue numberValue(const FieldValue& value, const Field& field, std::string_view table) {
  const auto number = numberIn(value);
  if (!number || !std::isfinite(*number)) refuse(value, field, table, "numbers");
  switch (field.type.code) {
    case FieldCode::Single:
      if (std::abs(*number) > std::numeric_limits<float>::max()) {
        refuse(value, field, table, "numbers of single precision");
      }
      return *number;
    case FieldCode::Currency:
      return std::abs(*number) < 1e11 ? roundHalfEven(*number * 1e4) / 1e4 : *number;
    default:
      return *number;
  }
}

FieldValue truthValue(const FieldValue& value, const Field& field, std::string_view table) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    for (const auto* word : {"True", "Yes", "On"}) {
      if (equalsNoCase(*text, word)) return std::int64_t{-1};
    }
    for (const auto* word : {"False", "No", "Off"}) {
      if (equalsNoCase(*text, word)) return std::int64_t{0};
    }
  }
  const auto number = numberIn(value);
  if (!number) refuse(value, field, table, "True and False");
  return std::int64_t{*number != 0 ? -1 : 0};
}

}  // namespace

FieldValue valueForField(const FieldValue& value, const Field& field, std::string_view table) {
  if (isNull(value)) return value;
  switch (field.type.code) {
    case FieldCode::SmallInt:
      return wholeValue(value, field, table, -32768, 32767);
    case FieldCode::Integer:
      return wholeValue(value, field, table, -2147483648.0, 2147483647.0);
    case FieldCode::Byte:
      return wholeValue(value, field, table, 0, 255);
    case FieldCode::Boolean:
      return truthValue(value, field, table);
    case FieldCode::Single:
    case FieldCode::Double:
    case FieldCode::Currency:
    case FieldCode::Numeric:
      return numberValue(value, field, table);
    case FieldCode::Date: {
      const auto date = parseDate(fieldText(value));
      if (!date) refuse(value, field, table, "dates such as 2020-01-31");
      return dateText(*date);
    }
    case FieldCode::Text:
    case FieldCode::VarText: {
      std::string text = fieldText(value);
      if (field.type.size > 0 && characterCount(text) > static_cast<size_t>(field.type.size)) {
        refuse(value, field, table,
               "texts of up to " + std::to_string(field.type.size) + " characters");
      }
      return text;
    }
    case FieldCode::Memo:
      return fieldText(value);
    case FieldCode::Binary:
      break;
  }
  return value;
}

double enteredSingle(double value) {
  const auto single = static_cast<float>(value);
  if (single != value || !std::isfinite(single)) return value;
  return numberOf(fmt::format("{}", single));
}

}  // namespace lodex
