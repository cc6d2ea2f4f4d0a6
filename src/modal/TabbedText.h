#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// A tab-delimited UTF-8 text with a heading row. Records and columns count from 0; blanks around
/// a cell do not count, and empty lines are passed over.
class TabbedText {
 public:
  /// Throws FileError naming the file when it cannot be read, has no heading row, two headings of
  /// one name, or a line with more cells than headings.
  explicit TabbedText(std::string_view path);

  const std::vector<std::string>& headings() const { return headings_; }
  int recordCount() const { return static_cast<int>(records_.size()); }

  /// The column of a heading; -1 if absent. `required` throws FileError instead.
  int column(std::string_view heading) const;
  int required(std::string_view heading) const;

  /// A cell's text; "" after the end of a short line and for column -1.
  const std::string& cell(int record, int column) const;

  /// Throws FileError with the file, the line of a record and the text.
  [[noreturn]] void fail(int record, std::string_view text) const;
  /// The same place as words, "minerals.txt line 12: ".
  std::string place(int record) const;

 private:
  struct Record {
    int line;
    std::vector<std::string> cells;
  };
  [[noreturn]] void failAtLine(int line, std::string_view text) const;

  std::string name_;
  std::vector<std::string> headings_;
  std::vector<Record> records_;
};

}  // namespace lodex
