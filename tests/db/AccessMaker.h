#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/drivers/jet/AccessTable.h"

namespace lodex {

/// A field's content as an Access file stores it; nothing for Null. Of a Boolean, anything is true.
using StoredCell = std::optional<std::string>;

template <typename T>
std::string storedAs(T value) {
  std::string bytes(sizeof(T), '\0');
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

/// ASCII as the plain UTF-16 of Jet 4, and as its compressed form.
std::string storedWide(std::string_view ascii);
std::string storedNarrow(std::string_view latin1);

/// A Numeric of four words, of which the lower two are given.
std::string storedNumeric(bool negative, std::uint64_t low);
/// The value of a calculated field, with its header.
std::string storedCalculated(const std::string& value);
/// Properties as the catalogue stores them: for each field ("" is the table itself) names and
/// values. "Required" is a Boolean, "ResultType" a Byte, the others are texts.
std::string storedProperties(
    const std::vector<std::pair<std::string, std::vector<std::array<std::string, 2>>>>& fields);

/// Writes small Access files page by page, so that tests and benchmarks need none made by Access.
/// Tables are added one after the other, each with all of its records. The layout of the pages is
/// described at https://github.com/mdbtools/mdbtools/blob/dev/HACKING.md.
class AccessMaker {
 public:
  struct Column {
    std::string name;  ///< ASCII
    AccessType type;
    int size = 0;  ///< bytes; of types of one size it may be left out
    int scale = 0;
    bool counter = false;
    bool calculated = false;
  };
  struct Index {
    std::string name;
    std::vector<int> places;  ///< of columns, from 0
    bool unique = false;
    bool primary = false;
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;
    std::vector<Index> indexes = {};
    std::string properties = {};  ///< as the catalogue stores them
    std::uint32_t flags = 0;
    int firstNumber = 0;  ///< of the first column; above 0 when columns before it were deleted
  };
  enum class Long { Inline, OnePage, Chain };
  enum class Place { Here, Deleted, Moved };

  explicit AccessMaker(bool isJet3 = false, int codePage = 1252);

  /// Begins a table and returns the number that the catalogue has for it.
  std::uint32_t addTable(Table table);
  /// Adds a record to the table begun last. With `known` columns only, it is one from before the
  /// others were added; -1 for all.
  void addRecord(const std::vector<StoredCell>& cells, Place place = Place::Here, int known = -1);
  /// Adds any bytes as a record.
  void addRaw(const std::string& record, std::uint16_t flags = 0);

  /// Adds a table that lies in another file.
  void addLink(const std::string& name, const std::string& file);

  /// Adds a saved query and returns the number under which MSysQueries holds its parts.
  std::int32_t addQuery(const std::string& name);

  /// The field of a memo or OLE object; `where` says on which pages the content goes.
  std::string longField(const std::string& content, Long where);
  /// The pointer to the row of a page of memos with this content.
  std::uint32_t addLongRow(const std::string& row);

  /// Encodes all pages but the first with the simple cipher of Jet.
  void encodeWith(std::uint32_t key) { key_ = key; }
  /// Makes a file of Access 2010 instead of Jet 4.
  void makeAce() { isAce_ = true; }

  /// Writes the file; nothing can be added afterwards.
  void write(const std::string& path);

 private:
  struct Open {
    Table table;
    std::uint32_t definitionPage = 0;
    std::uint32_t filling = 0;  // the page that takes records; 0 before the first
    std::vector<std::uint32_t> pages = {};
    std::uint32_t records = 0;
  };
  size_t pageSize() const { return isJet3_ ? 2048 : 4096; }
  std::uint32_t newPage(std::string_view start);
  std::uint32_t addRow(std::uint32_t& page, std::string_view row, std::uint16_t flags,
                       std::string_view owner);
  std::string definition(const Open& open, std::uint32_t map) const;
  std::uint32_t usageMap(const std::vector<std::uint32_t>& pages);
  std::string recordOf(const std::vector<StoredCell>& cells, int known) const;
  void closeTable();
  std::string text(const std::string& ascii) const;
  std::string nameBytes(const std::string& name) const;

  bool isJet3_;
  bool isAce_ = false;
  int codePage_;
  std::uint32_t key_ = 0;
  std::uint32_t longPage_ = 0;
  std::uint32_t mapPage_ = 0;
  std::vector<std::string> pages_;
  std::optional<Open> open_;
  std::vector<std::vector<StoredCell>> catalog_;
};

}  // namespace lodex
