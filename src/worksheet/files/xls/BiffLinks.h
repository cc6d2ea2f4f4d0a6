#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "worksheet/files/xls/BiffText.h"

/// What formulas of an .xls file refer to by number: sheets, other workbooks and names.
namespace lodex::biff {

/// Where references to other sheets lead: this workbook, another one, or the functions of add-ins.
struct Book {
  enum class Kind { Own, AddIn, Other };
  Kind kind = Kind::Other;
  std::string name;                 // path of another workbook, "" when unknown
  std::vector<std::string> sheets;  // of another workbook
  std::vector<std::string> names;   // its names, or an add-in's functions
};

/// A range of sheets of a book, counted from 0; negative where a sheet was deleted.
struct SheetRange {
  size_t book = 0;
  int first = 0;
  int last = 0;
};

/// A defined name; `code` are its tokens and, in `extra`, what they need after them. Both borrow
/// from the file's bytes.
struct Name {
  std::string name;
  int sheet = 0;  // the tab to which it belongs, counted from 1; 0 for the workbook
  bool hidden = false;
  bool macro = false;  // a function or command of a macro
  std::string_view code;
  std::string_view extra;
};

/// The tables of one file. From version 8 on they are the workbook's; before, every sheet has books
/// of its own.
struct Links {
  int version = 8;
  std::vector<std::string> tabs;  // every tab, charts and macros included
  std::vector<Book> books;
  std::vector<SheetRange> ranges;  // version 8
  std::vector<Name> names;
  CodePage codePage;

  /// What to write before "!" for a reference, "" for one without sheet. `range` is a number of the
  /// version 8 table; false when it leads nowhere.
  bool prefixOfRange(size_t range, std::string& prefix) const;
  /// The same for version 5: a book (counted from 1, negative for this workbook) and sheets.
  bool prefixOfSheets(int book, int first, int last, std::string& prefix) const;

  /// Take up a record.
  void addSupBook(std::string_view data);
  void addExternSheet(std::string_view data);
  void addExternName(std::string_view data);
  void addName(std::string_view data);
};

/// The name of a builtin name's number such as "Print_Area"; "" for an unknown one.
std::string_view builtinName(unsigned number);
/// Its number, or -1.
int builtinNumber(std::string_view name);

}  // namespace lodex::biff
