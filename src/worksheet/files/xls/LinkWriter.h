#pragma once

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
  /// more ranges than the format holds. An empty `last` stands for the first.
  int range(std::string_view first, std::string_view last);
  /// The number, from 1, of the defined name that a formula of `sheet` means; one that is not
  /// defined is added without content. 0 when there are too many.
  int name(std::string_view text, int sheet);
  /// The same for a name that belongs to a sheet; 0 when that sheet has none of it.
  int nameOfSheet(std::string_view text, int sheet) const;
  /// The number, from 1, of a name that stands for a function of later programs.
  int laterFunction(std::string_view function);
  /// Range and number, from 1, of an add-in's function.
  std::pair<int, int> addInFunction(std::string_view function);

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

  void writeName(RecordWriter& out, const Name& name) const;
  int addName(std::string_view text, bool function);

  const Worksheet& worksheet_;
  std::vector<Name> names_;
  std::map<std::pair<std::string, int>, int> nameNumbers_;  // upper case and sheet -> from 1
  std::vector<std::pair<int, int>> ranges_;                 // of sheets, from 0; own workbook
  std::map<std::pair<int, int>, int> rangeNumbers_;
  std::vector<std::string> addIns_;
  int addInRange_ = -1;
};

/// Writes the characters of a text with the flag byte for their width in front.
void writeUnicodeCharacters(RecordWriter& out, std::u16string_view text);

}  // namespace lodex::biff
