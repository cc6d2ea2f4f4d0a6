#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "worksheet/files/xls/BiffStream.h"

namespace lodex::biff {

/// The longest text of a cell in UTF-16 units; programs call files with longer ones damaged.
inline constexpr size_t maxCellText = 32767;

/// Collects the texts of a workbook to be written, each once.
class TextTable {
 public:
  /// The place of a text in the table, from 0. The bytes must live until `write`.
  std::uint32_t indexOf(std::string_view text);
  /// Writes the SST record with its continuations.
  void write(RecordWriter& out) const;

 private:
  std::unordered_map<std::string_view, std::uint32_t> places_;
  std::deque<std::string_view> texts_;
  std::uint32_t uses_ = 0;
};

/// Writes a text of up to maxCellText units with its length in front, running on into CONTINUE
/// records where the current record is full.
void writeContinuedText(RecordWriter& out, std::string_view text);

}  // namespace lodex::biff
