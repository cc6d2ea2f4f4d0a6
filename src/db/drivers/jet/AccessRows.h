#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "db/drivers/jet/AccessTable.h"

namespace lodex {

/// One stored value. Dates are texts as databases keep them (2020-01-31 09:30:00.250), Booleans -1
/// and 0. `bytes` holds Text and Binary. `exact` marks what a column of numbers would change: a
/// Text that is a number with more digits than a double can hold, and a negative zero.
struct AccessValue {
  enum Kind { Null, Whole, Number, Text, Binary };
  Kind kind = Null;
  bool exact = false;
  std::int64_t whole = 0;
  double number = 0;
  std::string bytes;
};

/// Walks through the records of a table, one after the other. The values keep their memory from
/// record to record.
class AccessRows {
 public:
  AccessRows(const AccessFile& file, const AccessTable& table);

  /// Goes to the next record that can be read; false after the last one. Throws FileError when the
  /// file ends before it.
  bool next();

  /// The values of the current record, in the order of the table's columns. A value that cannot be
  /// read is Null, as long as another value of its record can be read.
  const std::vector<AccessValue>& values() const { return values_; }

  /// Records that were left out because nothing of them can be read.
  int damaged() const { return damaged_; }
  /// Pages that were left out, with their records: they are damaged or belong to another table.
  int damagedPages() const { return damagedPages_; }
  /// For each column, how many values are Null because they cannot be read.
  const std::vector<int>& lostValues() const { return lostValues_; }
  /// Records read so far.
  std::uint32_t count() const { return count_; }

 private:
  struct Crack;
  bool nextPage();
  bool readRow();
  void readOffsets(const Crack& crack);
  AccessBytes stored(Crack& crack, const AccessColumn& column, bool& isNull);
  bool readValue(Crack& crack, const AccessColumn& column, AccessValue& value);
  void decode(const AccessColumn& column, AccessBytes bytes, AccessValue& value);
  AccessBytes longValue(AccessBytes field, std::string& whole);

  const AccessFile& file_;
  const AccessTable& table_;
  std::vector<std::uint32_t> pages_;
  size_t nextPage_ = 0;
  AccessPage page_;
  AccessPage overflow_;  // of records that moved to another page
  AccessPage longPage_;  // of memos
  int row_ = 0;
  int rowCount_ = 0;
  int damaged_ = 0;
  int damagedPages_ = 0;
  std::uint32_t count_ = 0;
  std::vector<int> lostValues_;
  std::vector<size_t> lostHere_;  // places of the values of the current record that are lost
  std::string longBytes_;
  std::vector<int> varOffsets_;
  std::vector<AccessValue> values_;
};

/// A date of Access (days since 1899-12-30, the time always counted forward from the day) as text,
/// to the millisecond; "" outside of the years 100 to 9999.
std::string accessDateText(double days);

/// A currency value, stored as its ten-thousandfold.
void readCurrency(std::int64_t stored, AccessValue& value);

/// A Numeric: a byte for the sign and four 32-bit words, the highest first; it has `scale`
/// decimals.
void readNumeric(AccessBytes bytes, int scale, AccessValue& value);

/// A Numeric that Access calculated: its size in bytes (16 bits), its decimals, its sign, and up to
/// four words.
void readCalculatedNumeric(AccessBytes bytes, AccessValue& value);

/// An extended date, stored as digits: days since 0001-01-01, ":", ten-millionths of a second of
/// that day. The result is a text such as 2020-06-17 12:30:45.1234567; "" for anything else.
std::string extendedDateText(std::string_view stored);

}  // namespace lodex
