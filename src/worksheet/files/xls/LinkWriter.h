#pragma once

#include <compare>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/BiffStream.h"

namespace lodex::biff {

/// The numbers under which formulas of a file to be written refer to sheets, names and functions of
/// add-ins. They are given as formulas ask for them, and written at the end.
class LinkWriter {
 public:
  explicit LinkWriter(const Worksheet& worksheet);

  /// The number of a range of sheets, counted from 1; -1 when a sheet does not exist or there are
  /// more ranges than the format holds. An empty `last` means the first.
  int range(std::string_view first, std::string_view last);
  /// The number, from 1, of the defined name that a formula of `sheet` means; one that is not
  /// defined is added without content. 0 when there are too many.
  int name(std::string_view text, int sheet);
  /// The same for a name that belongs to a sheet; 0 when that sheet has none of it.
  int nameOfSheet(std::string_view text, int sheet) const;
  /// The number, from 1, of a name that means a function of later programs.
  int laterFunction(std::string_view function);
  /// Range and number, from 1, of an add-in's function.
  std::pair<int, int> addInFunction(std::string_view function);

  /// The number of a range of sheets of another workbook, under its path; -1 when there are too
  /// many. Without a `first` the workbook as a whole.
  int foreignRange(const std::string& path, const std::string& first, const std::string& last);
  /// Range and number, from 1, of a name of another workbook, or of one of its sheets; a range of
  /// -1 when there are too many.
  std::pair<int, int> foreignName(const std::string& path, const std::string& sheet,
                                  const std::string& name);

  /// The sheet of that name, from 1; 0 if there is none.
  int sheetNumber(std::string_view sheet) const { return worksheet_.SheetNumber(sheet); }

  /// Writes SUPBOOK, EXTERNNAME, EXTERNSHEET and NAME records.
  void write(RecordWriter& out);

 private:
  struct Name {
    std::string text;
    int sheet = 0;
    bool hidden = false;
    bool function = false;
    std::string code, extra;
  };

  // Another workbook, with those of its sheets and names that formulas mention.
  struct ForeignBook {
    std::string path;
    std::vector<std::string> sheets;
    std::vector<std::pair<std::string, int>> names;  // and their sheet, from 1; 0 for the workbook
  };

  // Sheets from 0 of a book: 0 is the own one, 1 the add-ins', then come the others.
  struct Range {
    int book = 0;
    int first = 0;
    int last = 0;
    auto operator<=>(const Range&) const = default;
  };

  void writeName(RecordWriter& out, const Name& name) const;
  static void writeForeignBook(RecordWriter& out, const ForeignBook& book);
  int addName(std::string_view text, bool function);
  int addRange(const Range& range);
  int foreignBook(const std::string& path);
  int foreignSheet(ForeignBook& book, const std::string& sheet);

  const Worksheet& worksheet_;
  std::vector<Name> names_;
  std::map<std::pair<std::string, int>, int> nameNumbers_;  // upper case and sheet -> from 1
  std::vector<Range> ranges_;
  std::map<Range, int> rangeNumbers_;
  std::vector<ForeignBook> foreign_;
  std::vector<std::string> addIns_;
};

/// Writes the characters of a text with the flag byte for their width in front.
void writeUnicodeCharacters(RecordWriter& out, std::u16string_view text);

}  // namespace lodex::biff
