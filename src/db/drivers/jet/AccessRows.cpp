#include "db/drivers/jet/AccessRows.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cmath>

#include "basic/Error.h"
#include "basic/Numbers.h"

namespace lodex {

namespace {

constexpr std::uint32_t kInline = 0x80000000;
constexpr std::uint32_t kOnePage = 0x40000000;
constexpr std::uint32_t kLengthBits = 0x3FFFFFFF;
// A double holds every decimal number of so many digits.
constexpr size_t kDoubleDigits = 15;
// What calculated columns put before their value: a length stands at 16.
constexpr size_t kCalculatedLength = 16;
constexpr size_t kCalculatedValue = 20;

// A whole number written with `scale` decimals; as a double where that is exact, else as text.
void setDecimal(bool negative, std::string digits, size_t scale, AccessValue& value) {
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
  if (scale > 0) {
    digits.insert(digits.size() - scale, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  value.bytes = (negative && digits != "0" ? "-" : "") + digits;
  const size_t significant = digits.size() - (digits.find('.') == std::string::npos ? 0 : 1);
  if (significant <= kDoubleDigits) {
    value.kind = AccessValue::Number;
    value.number = numberOf(value.bytes);
  } else {
    value.kind = AccessValue::Text;
    value.exact = true;
  }
}

std::string guidText(AccessBytes bytes) {
  std::string text =
      fmt::format("{{{:08X}-{:04X}-{:04X}-", bytes.u32(0), bytes.u16(4), bytes.u16(6));
  for (size_t i = 8; i < 16; ++i) {
    text += fmt::format("{:02X}", bytes.u8(i));
    if (i == 9) text += '-';
  }
  return text + "}";
}

void setText(std::string_view text, AccessValue& value) {
  value.kind = AccessValue::Text;
  value.bytes = text;
}

void setBinary(AccessBytes bytes, AccessValue& value) {
  value.kind = AccessValue::Binary;
  value.bytes = bytes.chars();
}

void setWhole(std::int64_t whole, AccessValue& value) {
  value.kind = AccessValue::Whole;
  value.whole = whole;
}

void setNumber(double number, AccessValue& value) {
  value.kind = AccessValue::Number;
  value.number = number;
}

}  // namespace

void readCurrency(std::int64_t stored, AccessValue& value) {
  constexpr std::int64_t kExact = 1'000'000'000'000'000;
  if (stored > -kExact && stored < kExact) {
    value.kind = AccessValue::Number;
    value.number = static_cast<double>(stored) / 10000.0;
    return;
  }
  const bool negative = stored < 0;
  const auto amount =
      negative ? 0 - static_cast<std::uint64_t>(stored) : static_cast<std::uint64_t>(stored);
  setDecimal(negative, std::to_string(amount), 4, value);
}

void readNumeric(AccessBytes bytes, int scale, AccessValue& value) {
  std::array<std::uint32_t, 4> words{};
  for (size_t i = 0; i < 4; ++i) words[i] = bytes.u32(1 + 4 * i);
  std::string digits;
  bool isZero = false;
  while (!isZero) {
    std::uint64_t rest = 0;
    isZero = true;
    for (std::uint32_t& word : words) {
      const std::uint64_t dividend = rest << 32 | word;
      word = static_cast<std::uint32_t>(dividend / 10);
      rest = dividend % 10;
      isZero = isZero && word == 0;
    }
    digits.insert(digits.begin(), static_cast<char>('0' + rest));
  }
  setDecimal(bytes.u8(0) != 0, digits, static_cast<size_t>(scale), value);
}

std::string accessDateText(double days) {
  namespace chrono = std::chrono;
  constexpr double kMillisecondsOfDay = 86'400'000;
  constexpr chrono::sys_days kDayZero = chrono::year(1899) / 12 / 30;
  if (!(std::abs(days) < 4'000'000)) return {};
  double day = std::trunc(days);
  auto rest = static_cast<std::int64_t>(std::llround(std::abs(days - day) * kMillisecondsOfDay));
  if (rest >= 86'400'000) {
    rest = 0;
    ++day;
  }
  const chrono::year_month_day date(kDayZero + chrono::days(static_cast<int>(day)));
  const int year = static_cast<int>(date.year());
  if (year < 100 || year > 9999) return {};
  std::string text = fmt::format("{:04}-{:02}-{:02}", year, static_cast<unsigned>(date.month()),
                                 static_cast<unsigned>(date.day()));
  if (rest == 0) return text;
  const std::int64_t seconds = rest / 1000;
  text += fmt::format(" {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
  if (rest % 1000) text += fmt::format(".{:03}", rest % 1000);
  return text;
}

// A record taken apart: how many columns it knows, its null mask, where its variable part begins.
struct AccessRows::Crack {
  AccessBytes record;
  int columnCount = 0;
  AccessBytes mask;
};

AccessRows::AccessRows(const AccessFile& file, const AccessTable& table)
    : file_(file), table_(table), pages_(pagesOf(file, table)), values_(table.columns.size()) {
  for (const AccessColumn& column : table.columns) hasVariable_ = hasVariable_ || !column.fixed;
}

bool AccessRows::nextPage() {
  while (nextPage_ < pages_.size()) {
    file_.read(pages_[nextPage_++], page_);
    const AccessBytes bytes = page_.bytes();
    if (bytes.u8(0) != 0x01 || bytes.u32(4) != table_.definitionPage) continue;
    row_ = 0;
    rowCount_ = file_.rowCount(bytes);
    if (rowCount_ > 0) return true;
  }
  return false;
}

bool AccessRows::next() {
  while (true) {
    if (row_ >= rowCount_ && !nextPage()) return false;
    try {
      if (readRow()) return true;
    } catch (const FileError&) {
      ++damaged_;
    }
  }
}

bool AccessRows::readRow() {
  AccessFile::Row row = file_.row(page_.bytes(), row_++);
  if (row.deleted || row.bytes.empty()) return false;
  if (row.pointer) {
    row.bytes = file_.pointedRow(row.bytes.u32(0), overflow_);
    if (row.bytes.size() == 4) throw FileError("a record points in a circle");
  }

  const AccessBytes record = row.bytes;
  const size_t size = record.size();
  const bool old = file_.isJet3();
  Crack crack;
  crack.record = record;
  crack.columnCount = old ? record.u8(0) : record.u16(0);
  const size_t maskSize = static_cast<size_t>(crack.columnCount + 7) / 8;
  if (maskSize > size) throw FileError("a record is too short");
  crack.mask = record.from(size - maskSize);

  // Offsets of the variable columns stand before the mask, the first one last.
  varOffsets_.clear();
  if (hasVariable_ && old) {
    const size_t countAt = size - maskSize - 1;
    const int count = record.u8(countAt);
    // Offsets of one byte: "jumps" tell from which column on another 256 are to be added.
    const size_t stored = (size - 1) / 256;
    size_t jumps = stored;
    const size_t firstAt = countAt - stored - 1;
    if ((firstAt - static_cast<size_t>(count)) / 256 < jumps) --jumps;
    size_t used = 0;
    for (int i = 0; i <= count; ++i) {
      while (used < jumps && record.u8(countAt - used - 1) == i) ++used;
      varOffsets_.push_back(record.u8(firstAt - static_cast<size_t>(i)) +
                            static_cast<int>(used) * 256);
    }
  } else if (hasVariable_) {
    const size_t countAt = size - maskSize - 2;
    const int count = record.u16(countAt);
    for (int i = 0; i <= count; ++i) {
      varOffsets_.push_back(record.u16(countAt - 2 - 2 * static_cast<size_t>(i)));
    }
  }

  for (size_t i = 0; i < table_.columns.size(); ++i) {
    const AccessColumn& column = table_.columns[i];
    AccessValue& value = values_[i];
    value.kind = AccessValue::Null;
    value.exact = false;
    bool isNull = false;
    const AccessBytes bytes = stored(crack, column, isNull);
    if (column.type == AccessType::Boolean && !column.calculated) {
      setWhole(isNull ? 0 : -1, value);
    } else if (!isNull) {
      decode(column, bytes, value);
    }
  }
  return true;
}

AccessBytes AccessRows::stored(const Crack& crack, const AccessColumn& column, bool& isNull) const {
  isNull = column.number >= crack.columnCount ||
           !(crack.mask.u8(static_cast<size_t>(column.number) / 8) & 1 << column.number % 8);
  if (isNull || (column.type == AccessType::Boolean && !column.calculated)) return {};
  if (column.fixed) {
    const size_t start = static_cast<size_t>(column.fixedOffset) + (file_.isJet3() ? 1 : 2);
    return crack.record.part(start, static_cast<size_t>(column.size));
  }
  const auto at = static_cast<size_t>(column.varIndex);
  if (at + 1 >= varOffsets_.size()) {
    isNull = true;
    return {};
  }
  const int start = varOffsets_[at];
  const int end = varOffsets_[at + 1];
  if (start > end) throw FileError("a field ends before its start");
  return crack.record.part(static_cast<size_t>(start), static_cast<size_t>(end - start));
}

void AccessRows::decode(const AccessColumn& column, AccessBytes bytes, AccessValue& value) {
  if (column.type == AccessType::Memo || column.type == AccessType::Ole) {
    bytes = longValue(bytes, longBytes_);
  }
  if (column.calculated) {
    if (bytes.size() < kCalculatedValue) return;
    bytes = bytes.part(kCalculatedValue, bytes.u32(kCalculatedLength));
    if (column.type == AccessType::Boolean) return setWhole(bytes.u8(0) ? -1 : 0, value);
  }
  switch (column.type) {
    case AccessType::Boolean:
      break;
    case AccessType::Byte:
      return setWhole(bytes.u8(0), value);
    case AccessType::Integer:
      return setWhole(bytes.i16(0), value);
    case AccessType::LongInteger:
    case AccessType::Complex:
      return setWhole(bytes.i32(0), value);
    case AccessType::BigInteger:
      return setWhole(bytes.i64(0), value);
    case AccessType::Currency:
      return readCurrency(bytes.i64(0), value);
    case AccessType::Single:
      return setNumber(bytes.single(0), value);
    case AccessType::Double:
      return setNumber(bytes.number(0), value);
    case AccessType::Date: {
      const std::string text = accessDateText(bytes.number(0));
      return setText(text.empty() ? exactNumberText(bytes.number(0)) : text, value);
    }
    case AccessType::Guid:
      return setText(guidText(bytes), value);
    case AccessType::Numeric:
      return readNumeric(bytes, column.scale, value);
    case AccessType::Text:
    case AccessType::Memo:
      value.kind = AccessValue::Text;
      return file_.decodeText(bytes, value.bytes);
    case AccessType::ExtendedDate:
      return setText(bytes.chars().substr(0, bytes.chars().find('\0')), value);
    case AccessType::Binary:
    case AccessType::Ole:
      break;
  }
  setBinary(bytes, value);
}

// A memo stands in its field, in a row of another page, or in a chain of such rows.
AccessBytes AccessRows::longValue(AccessBytes field, std::string& whole) {
  const std::uint32_t header = field.u32(0);
  const size_t length = header & kLengthBits;
  if (header & kInline) return field.from(12);
  std::uint32_t pointer = field.u32(4);
  if (header & kOnePage) {
    const AccessBytes row = file_.pointedRow(pointer, longPage_);
    return row.size() > length ? row.part(0, length) : row;
  }
  if (length > std::uint64_t{file_.pageCount()} * file_.pageSize()) {
    throw FileError("a memo is longer than the file");
  }
  whole.clear();
  // Every link brings at least a byte, or the chain ends.
  while (pointer != 0 && whole.size() < length) {
    const AccessBytes row = file_.pointedRow(pointer, longPage_);
    pointer = row.u32(0);
    if (row.size() == 4) break;
    whole += row.from(4).chars();
  }
  if (whole.size() < length) throw FileError("a memo is cut short");
  whole.resize(length);
  return {reinterpret_cast<const std::uint8_t*>(whole.data()), whole.size()};
}

}  // namespace lodex
