#include "db/drivers/odbc/OdbcStatement.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/Errors.h"
#include "db/sql/JetTokens.h"

namespace lodex {

namespace {

constexpr size_t kMaxValueBytes = size_t{256} << 20;

SQLWCHAR* wide(std::u16string& text) {
  return reinterpret_cast<SQLWCHAR*>(text.data());
}

SQLWCHAR* wideOrNull(std::u16string& text) {
  return text.empty() ? nullptr : wide(text);
}

bool isDateType(SQLSMALLINT type) {
  return type == SQL_TYPE_DATE || type == SQL_TYPE_TIMESTAMP || type == SQL_TYPE_TIME ||
         type == SQL_DATETIME;
}

// A whole number of more digits than a double holds for sure.
std::optional<std::int64_t> longWhole(const std::string& text) {
  constexpr size_t kSureDigits = 15;
  std::int64_t whole = 0;
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), whole);
  const bool isWhole = failed == std::errc() && end == text.data() + text.size();
  if (text.size() <= kSureDigits || !isWhole) return std::nullopt;
  return whole;
}

}  // namespace

OdbcLink::~OdbcLink() {
  if (connected) SQLDisconnect(handle);
  if (handle) SQLFreeHandle(SQL_HANDLE_DBC, handle);
  if (environment) SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

std::string odbcReason(SQLSMALLINT kind, SQLHANDLE handle) {
  std::array<SQLWCHAR, 6> state{};
  std::array<SQLWCHAR, 1024> text{};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  const SQLRETURN code = SQLGetDiagRecW(kind, handle, 1, state.data(), &native, text.data(),
                                        static_cast<SQLSMALLINT>(text.size()), &length);
  if (!SQL_SUCCEEDED(code)) return "no reason was given";
  const size_t size =
      std::min<size_t>(static_cast<size_t>(std::max<SQLSMALLINT>(length, 0)), text.size() - 1);
  const std::string reason =
      fromUtf16(std::u16string(reinterpret_cast<const char16_t*>(text.data()), size));
  return replaceAll(std::string(trimWhite(reason)), "\n", " ");
}

OdbcStatement::OdbcStatement(std::shared_ptr<OdbcLink> link) : link_(std::move(link)) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, link_->handle, &handle_))) {
    throw Error("Server " + link_->service + ": " + odbcReason(SQL_HANDLE_DBC, link_->handle),
                dberror::Unspecified);
  }
}

OdbcStatement::~OdbcStatement() {
  SQLFreeHandle(SQL_HANDLE_STMT, handle_);
}

void OdbcStatement::check(SQLRETURN code, std::string_view shown) {
  if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return;
  std::string text = "Server " + link_->service + ": " + odbcReason(SQL_HANDLE_STMT, handle_);
  if (!shown.empty()) text += " in: " + shownStatement(shown);
  throw Error(text, isUnsupported() ? dberror::NotSupported : dberror::BadStatement);
}

// "Driver does not support this function" and "optional feature not implemented".
bool OdbcStatement::isUnsupported() const {
  std::array<SQLWCHAR, 6> state{};
  SQLINTEGER native = 0;
  if (!SQL_SUCCEEDED(SQLGetDiagRecW(SQL_HANDLE_STMT, handle_, 1, state.data(), &native, nullptr, 0,
                                    nullptr))) {
    return false;
  }
  const std::u16string code(reinterpret_cast<const char16_t*>(state.data()), 5);
  return code == u"IM001" || code == u"HYC00";
}

void OdbcStatement::execute(std::string_view sql, const Row& parameters, std::string_view shown) {
  std::u16string statement = toUtf16(sql);
  check(SQLPrepareW(handle_, wide(statement), static_cast<SQLINTEGER>(statement.size())), shown);
  bind(parameters);
  check(SQLExecute(handle_), shown);
}

void OdbcStatement::bind(const Row& parameters) {
  SQLSMALLINT expected = 0;
  if (SQL_SUCCEEDED(SQLNumParams(handle_, &expected)) &&
      expected != static_cast<SQLSMALLINT>(parameters.size())) {
    throw Error("The statement takes " + std::to_string(expected) + " parameters, not " +
                    std::to_string(parameters.size()),
                dberror::BadArgument);
  }
  const size_t count = parameters.size();
  texts_.resize(count);
  wholes_.resize(count);
  numbers_.resize(count);
  lengths_.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const auto place = static_cast<SQLUSMALLINT>(i + 1);
    SQLSMALLINT type = SQL_WVARCHAR;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    const bool described =
        SQL_SUCCEEDED(SQLDescribeParam(handle_, place, &type, &size, &digits, &nullable));
    lengths_[i] = 0;
    SQLRETURN code = SQL_SUCCESS;
    if (const auto* whole = std::get_if<std::int64_t>(&parameters[i])) {
      wholes_[i] = *whole;
      code = SQLBindParameter(handle_, place, SQL_PARAM_INPUT, SQL_C_SBIGINT,
                              described ? type : SQL_BIGINT, size, digits, &wholes_[i], 0,
                              &lengths_[i]);
    } else if (const auto* number = std::get_if<double>(&parameters[i])) {
      numbers_[i] = *number;
      code = SQLBindParameter(handle_, place, SQL_PARAM_INPUT, SQL_C_DOUBLE,
                              described ? type : SQL_DOUBLE, size, digits, &numbers_[i], 0,
                              &lengths_[i]);
    } else {
      const auto* text = std::get_if<std::string>(&parameters[i]);
      texts_[i] = text ? toUtf16(*text) : std::u16string();
      const auto bytes = static_cast<SQLLEN>(texts_[i].size() * sizeof(char16_t));
      lengths_[i] = text ? bytes : SQL_NULL_DATA;
      const bool asDate = described && isDateType(type);
      if (!asDate) size = std::max<size_t>(texts_[i].size(), 1);
      code = SQLBindParameter(handle_, place, SQL_PARAM_INPUT, SQL_C_WCHAR,
                              described ? type : SQL_WVARCHAR, size, digits, wide(texts_[i]), bytes,
                              &lengths_[i]);
    }
    check(code);
  }
}

std::int64_t OdbcStatement::changed() {
  SQLLEN count = 0;
  check(SQLRowCount(handle_, &count));
  return std::max<std::int64_t>(count, 0);
}

void OdbcStatement::askTables() {
  std::u16string any = u"%";
  std::u16string kinds = u"TABLE,VIEW";
  check(SQLTablesW(handle_, nullptr, 0, nullptr, 0, wide(any), SQL_NTS, wide(kinds), SQL_NTS));
}

void OdbcStatement::askColumns() {
  std::u16string any = u"%";
  check(SQLColumnsW(handle_, nullptr, 0, nullptr, 0, wide(any), SQL_NTS, wide(any), SQL_NTS));
}

void OdbcStatement::askPrimaryKey(const std::string& schema, const std::string& table) {
  std::u16string owner = toUtf16(schema);
  std::u16string name = toUtf16(table);
  check(SQLPrimaryKeysW(handle_, nullptr, 0, wideOrNull(owner), SQL_NTS, wide(name), SQL_NTS));
}

void OdbcStatement::askIndexes(const std::string& schema, const std::string& table) {
  std::u16string owner = toUtf16(schema);
  std::u16string name = toUtf16(table);
  check(SQLStatisticsW(handle_, nullptr, 0, wideOrNull(owner), SQL_NTS, wide(name), SQL_NTS,
                       SQL_INDEX_ALL, SQL_QUICK));
}

void OdbcStatement::askForeignKeys(const std::string& schema, const std::string& table) {
  std::u16string owner = toUtf16(schema);
  std::u16string name = toUtf16(table);
  check(SQLForeignKeysW(handle_, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, wideOrNull(owner),
                        SQL_NTS, wide(name), SQL_NTS));
}

std::vector<Field> OdbcStatement::fields() {
  SQLSMALLINT count = 0;
  check(SQLNumResultCols(handle_, &count));
  std::vector<Field> list;
  for (SQLUSMALLINT column = 1; column <= static_cast<SQLUSMALLINT>(count); ++column) {
    std::array<SQLWCHAR, 256> name{};
    SQLSMALLINT length = 0;
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    check(SQLDescribeColW(handle_, column, name.data(), static_cast<SQLSMALLINT>(name.size()),
                          &length, &type, &size, &digits, &nullable));
    const auto attribute = [&](SQLUSMALLINT which) {
      std::array<SQLWCHAR, 256> text{};
      SQLSMALLINT bytes = 0;
      if (!SQL_SUCCEEDED(SQLColAttributeW(handle_, column, which, text.data(),
                                          static_cast<SQLSMALLINT>(sizeof text), &bytes,
                                          nullptr))) {
        return std::string();
      }
      const std::u16string wideText(reinterpret_cast<const char16_t*>(text.data()), text.size());
      return fromUtf16(wideText.substr(0, wideText.find(u'\0')));
    };
    const size_t shown = std::min<size_t>(static_cast<size_t>(length), name.size() - 1);
    const std::string typeName = attribute(SQL_DESC_TYPE_NAME);
    list.push_back(
        {fromUtf16(std::u16string(reinterpret_cast<const char16_t*>(name.data()), shown)),
         odbcFieldType(type, typeName, size), typeName, attribute(SQL_DESC_BASE_COLUMN_NAME)});
  }
  return list;
}

bool OdbcStatement::next() {
  const SQLRETURN code = SQLFetch(handle_);
  check(code);
  return code != SQL_NO_DATA;
}

std::u16string OdbcStatement::wideText(int column, bool& isNull) {
  std::u16string text;
  std::array<char16_t, 2048> piece{};
  while (true) {
    SQLLEN length = 0;
    const SQLRETURN code = SQLGetData(handle_, static_cast<SQLUSMALLINT>(column + 1), SQL_C_WCHAR,
                                      piece.data(), sizeof piece, &length);
    if (code == SQL_NO_DATA) return text;
    check(code);
    isNull = length == SQL_NULL_DATA;
    if (isNull) return text;
    const size_t room = piece.size() - 1;
    const bool more = length == SQL_NO_TOTAL || static_cast<size_t>(length) > room * 2;
    text.append(piece.data(), more ? room : static_cast<size_t>(length) / 2);
    if (!more) return text;
    if (text.size() > kMaxValueBytes / 2) throw Error("A value of the server is too long");
  }
}

std::string OdbcStatement::bytes(int column, bool& isNull) {
  std::string content;
  std::array<char, 4096> piece{};
  while (true) {
    SQLLEN length = 0;
    const SQLRETURN code = SQLGetData(handle_, static_cast<SQLUSMALLINT>(column + 1), SQL_C_BINARY,
                                      piece.data(), piece.size(), &length);
    if (code == SQL_NO_DATA) return content;
    check(code);
    isNull = length == SQL_NULL_DATA;
    if (isNull) return content;
    const bool more = length == SQL_NO_TOTAL || static_cast<size_t>(length) > piece.size();
    content.append(piece.data(), more ? piece.size() : static_cast<size_t>(length));
    if (!more) return content;
    if (content.size() > kMaxValueBytes) throw Error("A value of the server is too long");
  }
}

FieldValue OdbcStatement::value(int column, FieldType type) {
  bool isNull = false;
  if (type.code == FieldCode::Binary) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "0x";
    for (const char c : bytes(column, isNull)) {
      text += kDigits[static_cast<unsigned char>(c) >> 4];
      text += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return isNull ? FieldValue() : FieldValue(text);
  }
  if (type.code == FieldCode::Single || type.code == FieldCode::Double) {
    double number = 0;
    SQLLEN length = 0;
    check(SQLGetData(handle_, static_cast<SQLUSMALLINT>(column + 1), SQL_C_DOUBLE, &number, 0,
                     &length));
    return length == SQL_NULL_DATA ? FieldValue() : FieldValue(number);
  }
  const std::string text = fromUtf16(wideText(column, isNull));
  if (isNull) return {};
  switch (type.code) {
    case FieldCode::Boolean:
      return std::int64_t{text == "1" || text == "t" || equalsNoCase(text, "true") ? -1 : 0};
    case FieldCode::SmallInt:
    case FieldCode::Integer:
    case FieldCode::Byte:
      return static_cast<std::int64_t>(numberOf(text));
    case FieldCode::Numeric:
    case FieldCode::Currency: {
      if (const auto whole = longWhole(text)) return *whole;
      const auto number = parseNumber(text);
      return number ? FieldValue(*number) : FieldValue(text);
    }
    case FieldCode::Date: {
      const auto date = parseDate(text);
      return date ? dateText(*date) : text;
    }
    default:
      return text;
  }
}

std::string OdbcStatement::text(int column) {
  bool isNull = false;
  return fromUtf16(wideText(column, isNull));
}

int OdbcStatement::number(int column) {
  return static_cast<int>(numberOf(text(column)));
}

FieldType odbcFieldType(int sqlType, std::string_view typeName, SQLULEN size) {
  constexpr SQLULEN kLongestText = 32767;
  if (startsWithNoCase(typeName, "bool")) return {FieldCode::Boolean, 0};
  switch (sqlType) {
    case SQL_BIT:
      return {FieldCode::Boolean, 0};
    case SQL_TINYINT:
      return {FieldCode::Byte, 0};
    case SQL_SMALLINT:
      return {FieldCode::SmallInt, 0};
    case SQL_INTEGER:
      return {FieldCode::Integer, 0};
    case SQL_REAL:
      return {FieldCode::Single, 0};
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return {FieldCode::Double, 0};
    case SQL_BIGINT:
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      return {FieldCode::Numeric, 0};
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIME:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATETIME:
      return {FieldCode::Date, 0};
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return {FieldCode::Binary, 0};
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
      return {FieldCode::Memo, 0};
    default:
      if (equalsNoCase(typeName, "text") || size == 0 || size > kLongestText) {
        return {FieldCode::Memo, 0};
      }
      return {FieldCode::VarText, static_cast<int>(size)};
  }
}

}  // namespace lodex
