#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// A value that one method takes from another. Formulas cannot look into another workbook, so the
/// reference is kept here: before the method is recalculated, the value in column 3 of the map
/// sheet of the other method is written to column 3 of its link sheet, where its formulas read it.
struct MethodLink {
  int row = 0;  // of the link sheet
  int sourceMethod = 0;
  int sourceRow = 0;      // of the other method's map sheet
  std::string reference;  // how a spreadsheet writes it: "'[CIPW]Map'!$C$5"
};

/// A method: a workbook with a sheet of inputs, formulas and a sheet of outputs. Sheet 1 places it
/// in the list, sheet 2 links it to other methods and sheet 4 offers values to them; "Input" and
/// "Output" are found by name, else they are sheets 3 and 5. A workbook that has its Input or
/// Output at one of the other places has no sheet for that role.
struct MethodBook {
  Worksheet book;  // its Title is the method's name
  std::string path;
  int listSheet = 0;
  int linkSheet = 0;
  int inputSheet = 0;
  int mapSheet = 0;
  int outputSheet = 0;
  std::vector<MethodLink> links;

  const std::string& name() const { return book.Title(); }
  /// The name of an output: column 2 of its row of the Output sheet, else column 1.
  std::string outputName(int row) const;
  /// The row of the first output with that name; 0 if there is none.
  int outputRow(std::string_view output) const;
};

/// What happens to the rest of a folder when a workbook in it cannot be read.
enum class UnreadableBook { Stop, Skip };

/// The methods of one calculation group: every workbook (.xls, .xlsx) of its folder, in the order
/// of their file names. Methods count from 1, and their names do not depend on case; of several
/// with one name the first answers to it.
class CalculationGroup {
 public:
  /// Replaces all methods by those of a folder.
  void load(std::string_view folder, UnreadableBook unreadable);
  void clear();

  int count() const { return static_cast<int>(methods_.size()); }
  MethodBook& method(int number) { return *methods_.at(static_cast<size_t>(number) - 1); }
  const MethodBook& method(int number) const {
    return *methods_.at(static_cast<size_t>(number) - 1);
  }
  const std::string& folder() const { return folder_; }
  /// What the last load noticed: files that could not be read or only in part, and those whose
  /// method name is taken.
  const Findings& found() const { return found_; }

  /// The number of the method with that name; 0 if there is none.
  int MethodIndex(std::string_view name) const;
  /// The sheet named "Input" or "Output" in any case; 0 if there is none.
  int InputSheetOf(std::string_view name) const;
  int OutputSheetOf(std::string_view name) const;

  /// The names in the order in which the user sees them, which their list sheets give.
  std::vector<std::string> MethodListOrder() const;

  /// Where a method offers a value to others; names may be in brackets. Both numbers are 0 when
  /// there is no such method or item.
  struct OutputCell {
    int method = 0;
    int row = 0;  // of the map sheet
    std::string reference;
    bool found() const { return row > 0; }
  };
  OutputCell FindOutputCell(std::string_view method, std::string_view item) const;

  /// The prerequisites of a method, in their order, not followed any further.
  std::vector<std::string> TeeLaskuJono(int method) const;
  /// The place in the order of calculation: what the link sheet says, else 100 more than the place
  /// in the list.
  double MethodPriority(int method, int listPosition) const;

  /// Takes over an edited workbook for a method and looks up its sheets and all links again.
  void replaceBook(int method, const Worksheet& book);

 private:
  void readBook(const std::string& path);
  void resolveLinks(int method);
  void resolveAllLinks();

  std::vector<std::unique_ptr<MethodBook>> methods_;
  std::string folder_;
  Findings found_;
};

/// The method name of a workbook file: its name up to the first ".".
std::string methodNameOf(std::string_view path);

/// Takes "A.B" or "[A].[B]" apart; false for a text of another form.
bool splitReference(std::string_view text, std::string& method, std::string& item);

/// The names of the groups in a folder, sorted.
std::vector<std::string> groupNames(std::string_view folder);

}  // namespace lodex
