#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "db/drivers/jet/AccessFile.h"

namespace lodex {

/// Column types, with the numbers of the file.
enum class AccessType : std::uint8_t {
  Boolean = 1,
  Byte = 2,
  Integer = 3,
  LongInteger = 4,
  Currency = 5,
  Single = 6,
  Double = 7,
  Date = 8,
  Binary = 9,
  Text = 10,
  Ole = 11,
  Memo = 12,
  Guid = 15,
  Numeric = 16,
  Complex = 18,
  BigInteger = 19,
  ExtendedDate = 20
};

/// True for the number of a type that is known.
bool isAccessType(int number);

struct AccessColumn {
  std::string name;
  AccessType type = AccessType::Text;
  int number = 0;       ///< bit in the null mask
  int varIndex = 0;     ///< place among the columns of variable length
  int fixedOffset = 0;  ///< bytes after the column count of a record
  int size = 0;         ///< bytes; 0 for memos and the like
  int precision = 0;    ///< digits of a Numeric
  int scale = 0;        ///< how many of them are decimals
  bool fixed = false;
  bool counter = false;
  bool calculated = false;  ///< of variable length whatever its type, with a header
};

struct AccessIndex {
  std::string name;
  struct Column {
    int place;  ///< in AccessTable::columns, from 0
    bool descending;
  };
  std::vector<Column> columns;
  bool unique = false;
  bool primary = false;
};

/// A table's definition, with its columns in the order of their numbers.
struct AccessTable {
  std::string name;
  std::uint32_t definitionPage = 0;
  std::uint32_t usedPages = 0;  ///< pointer to the map of its pages
  /// How many records it has, as Access keeps count; in some sound files the count is not up to
  /// date.
  std::uint32_t recordCount = 0;
  std::vector<AccessColumn> columns;
  std::vector<AccessIndex> indexes;

  /// The place of a column without regard to case; -1 if there is none.
  int find(std::string_view column) const;
};

/// Reads the definition that starts at a page. Throws FileError when it is damaged.
AccessTable readAccessTable(const AccessFile& file, std::uint32_t page, const std::string& name);

/// The pages that hold the table's records, in their order.
std::vector<std::uint32_t> pagesOf(const AccessFile& file, const AccessTable& table);

}  // namespace lodex
