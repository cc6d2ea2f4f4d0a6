#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "db/drivers/jet/AccessBytes.h"

namespace lodex {

/// True for the first bytes (20 are enough) of a file that Access wrote.
bool isAccessHeader(std::string_view start);

/// One page of the file in memory, with its number, so that it is not read twice.
struct AccessPage {
  std::uint32_t number = UINT32_MAX;
  std::vector<std::uint8_t> content;

  AccessBytes bytes() const { return {content.data(), content.size()}; }
};

/// An Access file as a row of numbered pages, opened for reading only. Jet 3 (Access 97), Jet 4
/// (2000 to 2003) and ACE (2007 on); files encoded with the simple cipher of Jet are decoded, those
/// with a real encryption throw FileError. The fields of a page are described at
/// https://github.com/mdbtools/mdbtools/blob/dev/HACKING.md.
class AccessFile {
 public:
  /// Throws FileError for a file that is missing, of another kind, damaged at its start, encrypted.
  explicit AccessFile(const std::string& path);
  ~AccessFile();
  AccessFile(const AccessFile&) = delete;
  AccessFile& operator=(const AccessFile&) = delete;

  bool isJet3() const { return isJet3_; }
  std::uint32_t pageSize() const { return isJet3_ ? 2048 : 4096; }
  std::uint32_t pageCount() const { return pageCount_; }
  /// True when the last page is not whole.
  bool endsWithinPage() const { return endsWithinPage_; }

  /// Makes `page` hold the page of that number, from 0. Throws FileError beyond the end.
  void read(std::uint32_t number, AccessPage& page) const;

  /// A row of a data page; rows count from 0. The two bits above the position mark deleted rows and
  /// rows that only point elsewhere.
  struct Row {
    bool deleted = false;
    bool pointer = false;
    AccessBytes bytes;
  };
  int rowCount(AccessBytes page) const;
  Row row(AccessBytes page, int row) const;

  /// The row that a pointer (page << 8 | row) names, read through `page`.
  AccessBytes pointedRow(std::uint32_t pointer, AccessPage& page) const;

  /// Stored text as UTF-8, replacing what `out` held: compressed or plain UTF-16, in Jet 3 the code
  /// page of the file.
  void decodeText(AccessBytes stored, std::string& out) const;

 private:
  void readRaw(std::uint32_t number, AccessPage& page) const;

  int descriptor_ = -1;
  bool isJet3_ = false;
  bool endsWithinPage_ = false;
  std::uint32_t pageCount_ = 0;
  std::uint32_t key_ = 0;
  int codePage_ = 1252;
  void* converter_ = nullptr;  // an iconv_t; null for Windows-1252
};

}  // namespace lodex
