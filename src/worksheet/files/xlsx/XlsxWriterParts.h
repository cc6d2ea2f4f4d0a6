#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "worksheet/CellFormat.h"

/// What the parts of a written workbook share.
namespace lodex {

class Worksheet;

/// Text as the content or a quoted attribute of an element.
std::string xmlEscaped(std::string_view text);

/// The texts that cells refer to by number.
class XlsxTextTable {
 public:
  size_t idOf(std::string_view text);
  std::string document() const;

 private:
  std::unordered_map<std::string, size_t> ids_;
  std::vector<const std::string*> texts_;  // keys of ids_, by number
};

/// The cell styles of a written workbook; style 0 is the plain one.
class XlsxStyleTable {
 public:
  explicit XlsxStyleTable(const FormatTable& formats) : formats_(formats) { idOf(0); }
  /// The style of a format, with another number format if one is given.
  size_t idOf(std::uint32_t format, const std::string& numberFormat = {});
  std::string document() const;

 private:
  using List = std::vector<std::string>;  // distinct elements of one kind
  static size_t placeIn(List& list, const std::string& element);
  std::string styleOf(const CellFormat& format);

  const FormatTable& formats_;
  std::map<std::pair<std::uint32_t, std::string>, size_t> ids_;
  List numberFormats_, fonts_, styles_;
  List fills_{"<fill><patternFill patternType=\"none\"/></fill>",
              "<fill><patternFill patternType=\"gray125\"/></fill>"};
  List borders_;
};

/// The document of one sheet.
std::string xlsxSheetDocument(const Worksheet& book, int sheet, bool inFront, XlsxTextTable& texts,
                              XlsxStyleTable& styles);

}  // namespace lodex
