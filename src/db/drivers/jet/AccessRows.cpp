#include "db/drivers/jet/AccessRows.h"

#include <fmt/format.h>

#include <algorithm>
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
// What calculated columns put before their value: its length is at 16.
constexpr size_t kCalculatedLength = 16;
constexpr size_t kCalculatedValue = 20;
// A memo's field: its length with flags, a pointer, and four bytes without use.
constexpr size_t kLongHeader = 12;
// An extended date: 19 digits of days, a colon, 19 digits of ticks, a colon, a digit.
constexpr size_t kExtendedDigits = 19;
constexpr int kMostPointers = 16;

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

// SQLite keeps a negative zero only where numbers are stored as they come.
void setNumber(double number, AccessValue& value) {
  value.kind = AccessValue::Number;
  value.number = number;
  value.exact = number == 0 && std::signbit(number);
}

// The words of a whole number, the highest first, as decimal digits.
std::string decimalDigits(std::array<std::uint32_t, 4> words) {
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
  return digits;
}

std::string dayText(std::chrono::year_month_day date) {
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string timeText(std::int64_t seconds) {
  return fmt::format(" {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
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
  setDecimal(bytes.u8(0) != 0, decimalDigits(words), static_cast<size_t>(scale), value);
}

void readCalculatedNumeric(AccessBytes bytes, AccessValue& value) {
  const size_t size = bytes.u16(0) > 2 ? bytes.u16(0) - 2u : bytes.size() - 4;
  const size_t count = std::min<size_t>(size / 4, 4);
  const int scale = bytes.u8(2);
  // Pairs of words lie with the lower one first; a word without a partner leads.
  std::array<std::uint32_t, 4> words{};
  for (size_t i = 0; i < count; ++i) {
    const bool paired = count % 2 == 0 || i > 0;
    const bool isFirstOfPair = (i + count) % 2 == 0;
    const size_t from = !paired ? i : isFirstOfPair ? i + 1 : i - 1;
    words[4 - count + i] = bytes.u32(4 + 4 * from);
  }
  setDecimal(bytes.u8(3) != 0, decimalDigits(words), static_cast<size_t>(scale), value);
}

std::string extendedDateText(std::string_view stored) {
  namespace chrono = std::chrono;
  constexpr std::int64_t kTicksOfSecond = 10'000'000;
  constexpr chrono::sys_days kDayZero = chrono::year(1) / 1 / 1;
  if (stored.size() < 2 * kExtendedDigits + 1) return {};
  const auto digits = [&](size_t at) -> std::int64_t {
    std::int64_t number = 0;
    for (const char digit : stored.substr(at, kExtendedDigits)) {
      if (digit < '0' || digit > '9' || number > INT64_MAX / 10 - 1) return -1;
      number = number * 10 + (digit - '0');
    }
    return number;
  };
  const std::int64_t days = digits(0);
  const std::int64_t ticks = digits(kExtendedDigits + 1);
  if (days < 0 || days > 3'652'058 || ticks < 0 || ticks >= 86'400 * kTicksOfSecond) return {};
  std::string text = dayText(kDayZero + chrono::days(static_cast<int>(days)));
  if (ticks == 0) return text;
  text += timeText(ticks / kTicksOfSecond);
  if (ticks % kTicksOfSecond == 0) return text;
  text += fmt::format(".{:07}", ticks % kTicksOfSecond);
  return text.substr(0, text.find_last_not_of('0') + 1);
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
  std::string text = dayText(date);
  if (rest == 0) return text;
  text += timeText(rest / 1000);
  if (rest % 1000) text += fmt::format(".{:03}", rest % 1000);
  return text;
}

// A record taken apart: how many columns it knows, its null mask, where its variable part ends.
struct AccessRows::Crack {
  AccessBytes record;
  int columnCount = 0;
  AccessBytes mask;
  bool hasOffsets = false;
};

AccessRows::AccessRows(const AccessFile& file, const AccessTable& table)
    : file_(file),
      table_(table),
      pages_(pagesOf(file, table)),
      lostValues_(table.columns.size()),
      values_(table.columns.size()) {}

// A page that cannot be read ends the copy, since the file is cut short; one with something else on
// it is counted and left out.
bool AccessRows::nextPage() {
  while (nextPage_ < pages_.size()) {
    file_.read(pages_[nextPage_++], page_);
    const AccessBytes bytes = page_.bytes();
    row_ = rowCount_ = 0;
    if (bytes.u8(0) != 0x01 || bytes.u32(4) != table_.definitionPage) {
      ++damagedPages_;
      continue;
    }
    try {
      rowCount_ = file_.rowCount(bytes);
    } catch (const FileError&) {
      ++damagedPages_;
    }
    if (rowCount_ > 0) return true;
  }
  return false;
}

bool AccessRows::next() {
  while (true) {
    if (row_ >= rowCount_ && !nextPage()) return false;
    try {
      if (!readRow()) continue;
      ++count_;
      return true;
    } catch (const FileError&) {
      ++damaged_;
    }
  }
}

bool AccessRows::readRow() {
  AccessFile::Row row = file_.row(page_.bytes(), row_++);
  if (row.deleted || row.bytes.empty()) return false;
  for (int steps = 0; row.pointer; ++steps) {
    if (steps == kMostPointers) throw FileError("a record points in a circle");
    const std::uint32_t pointer = row.bytes.u32(0);
    file_.read(pointer >> 8, overflow_);
    row = file_.row(overflow_.bytes(), static_cast<int>(pointer & 0xFF));
  }

  const AccessBytes record = row.bytes;
  const size_t size = record.size();
  Crack crack;
  crack.record = record;
  crack.columnCount = file_.isJet3() ? record.u8(0) : record.u16(0);
  const size_t maskSize = static_cast<size_t>(crack.columnCount + 7) / 8;
  if (maskSize > size) throw FileError("a record is too short");
  crack.mask = record.from(size - maskSize);

  bool anyRead = false;
  lostHere_.clear();
  for (size_t i = 0; i < table_.columns.size(); ++i) {
    try {
      anyRead = readValue(crack, table_.columns[i], values_[i]) || anyRead;
    } catch (const FileError&) {
      values_[i].kind = AccessValue::Null;
      lostHere_.push_back(i);
    }
  }
  if (!anyRead && !lostHere_.empty()) throw FileError("no value of a record can be read");
  for (const size_t place : lostHere_) ++lostValues_[place];
  return true;
}

// False for Null, and for a Boolean, which is stored in the null mask alone.
bool AccessRows::readValue(Crack& crack, const AccessColumn& column, AccessValue& value) {
  value.kind = AccessValue::Null;
  value.exact = false;
  bool isNull = false;
  AccessBytes bytes = stored(crack, column, isNull);
  if (column.type == AccessType::Boolean && !column.calculated) {
    setWhole(isNull ? 0 : -1, value);
    return false;
  }
  if (isNull) return false;
  const bool isLong = column.type == AccessType::Memo || column.type == AccessType::Ole;
  if (isLong && !bytes.empty()) bytes = longValue(bytes, longBytes_);
  decode(column, bytes, value);
  return value.kind != AccessValue::Null;
}

// The offsets of the variable columns precede the mask, the first one last. A record that is older
// than the first of these columns has none.
void AccessRows::readOffsets(const Crack& crack) {
  const AccessBytes record = crack.record;
  const size_t size = record.size();
  varOffsets_.clear();
  if (!file_.isJet3()) {
    const size_t countAt = size - crack.mask.size() - 2;
    const int count = record.u16(countAt);
    for (int i = 0; i <= count; ++i) {
      varOffsets_.push_back(record.u16(countAt - 2 - 2 * static_cast<size_t>(i)));
    }
    return;
  }
  const size_t countAt = size - crack.mask.size() - 1;
  const int count = record.u8(countAt);
  // Offsets of one byte: "jumps" give the column from which on another 256 are added.
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
}

AccessBytes AccessRows::stored(Crack& crack, const AccessColumn& column, bool& isNull) {
  isNull = column.number >= crack.columnCount ||
           !(crack.mask.u8(static_cast<size_t>(column.number) / 8) & 1 << column.number % 8);
  if (isNull || (column.type == AccessType::Boolean && !column.calculated)) return {};
  if (column.fixed) {
    const size_t start = static_cast<size_t>(column.fixedOffset) + (file_.isJet3() ? 1 : 2);
    return crack.record.part(start, static_cast<size_t>(column.size));
  }
  if (!crack.hasOffsets) readOffsets(crack);
  crack.hasOffsets = true;
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
  if (column.calculated) {
    if (!bytes.empty()) bytes = bytes.part(kCalculatedValue, bytes.u32(kCalculatedLength));
    const bool isText = column.type == AccessType::Text || column.type == AccessType::Memo;
    if (bytes.empty() && !isText) return;  // what was calculated is Null
    if (column.type == AccessType::Boolean) return setWhole(bytes.u8(0) ? -1 : 0, value);
    if (column.type == AccessType::Numeric) return readCalculatedNumeric(bytes, value);
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
    case AccessType::ExtendedDate: {
      const std::string_view chars = bytes.chars().substr(0, bytes.chars().find('\0'));
      const std::string text = extendedDateText(chars);
      return setText(text.empty() ? chars : text, value);
    }
    case AccessType::Binary:
    case AccessType::Ole:
      break;
  }
  setBinary(bytes, value);
}

// A memo is in its field, in a row of another page, or in a chain of such rows.
AccessBytes AccessRows::longValue(AccessBytes field, std::string& whole) {
  const std::uint32_t header = field.u32(0);
  const size_t length = header & kLengthBits;
  if (header & kInline) {
    return field.part(kLongHeader, length);
  }
  if (length == 0) return {};
  std::uint32_t pointer = field.u32(4);
  if (header & kOnePage) {
    return file_.pointedRow(pointer, longPage_).part(0, length);
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
