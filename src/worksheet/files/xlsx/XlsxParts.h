#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "worksheet/Value.h"
#include "worksheet/files/ReadBudget.h"

/// The parts of an Office Open XML workbook, each read from its own document.
namespace lodex {

class Worksheet;
class XmlHandler;
class ZipArchive;

/// What the parts of a workbook share while it is read.
struct XlsxBook {
  Worksheet& out;
  ReadBudget budget;
  std::vector<Value> strings;         // the texts that cells refer to by number, from 0
  std::vector<std::uint32_t> styles;  // by style number: the index of its format
  /// The file asks for its formulas to be calculated: a value of 0 is only a placeholder.
  bool calculateOnLoad = false;
};

/// A reference from one part of the package to another.
struct XlsxRelation {
  std::string type;    // the last piece of its type, such as "worksheet"
  std::string target;  // full path inside the package
};

/// The relations of a part by their ids. `folder` is the part's folder, such as "xl".
std::map<std::string, XlsxRelation> readXlsxRelations(std::string_view document,
                                                      std::string_view folder);

/// Fills `book.strings` from the part of that path.
void readXlsxStrings(const ZipArchive& archive, const std::string& path, XlsxBook& book);

/// The twelve colours of a theme in the order in which styles number them, from 0.
std::vector<std::int32_t> readXlsxTheme(std::string_view document);

/// The formats of the workbook's cell styles as indices into its format table, by style number.
/// Cells in the workbook's default style get format 0.
std::vector<std::uint32_t> readXlsxStyles(std::string_view document,
                                          const std::vector<std::int32_t>& theme, Worksheet& into);

/// Fills one sheet with what it is handed of the sheet's document. `book` must outlive it.
std::unique_ptr<XmlHandler> xlsxSheetHandler(XlsxBook& book, int sheet);

/// Text with the escapes "_x000D_" of spreadsheet documents replaced.
std::string xlsxText(std::string_view text);

/// A formula as users write it: without the prefixes that files put before newer functions. Those
/// of functions that are not known here stay.
std::string xlsxFormula(std::string_view text);

/// The reverse: a formula with the prefix that files put before functions newer than the format.
std::string xlsxFileFormula(std::string_view formula);

}  // namespace lodex
