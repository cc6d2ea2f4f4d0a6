#pragma once

#include <map>
#include <string>
#include <string_view>

#include "worksheet/CellFormat.h"
#include "worksheet/files/XmlReader.h"

namespace lodex {

/// Gathers the styles of OpenDocument's styles.xml and content.xml: fed with elements, it answers
/// with formats by style name.
class OdsStyles {
 public:
  void start(std::string_view element, const XmlAttributes& attributes);
  void end(std::string_view element);
  void text(std::string_view text);

  /// The format of a cell style; the default format for an unknown one.
  CellFormat format(const std::string& style) const;
  /// False for a style of tables that are not shown.
  bool tableShown(const std::string& style) const;

 private:
  struct Style {
    CellFormat format;
    std::string parent;
    std::string dataStyle;
    bool shown = true;
  };
  void numberPart(std::string_view element, const XmlAttributes& attributes);
  void cellPart(std::string_view element, const XmlAttributes& attributes);

  std::map<std::string, Style> styles_;
  std::map<std::string, std::string> numberFormats_;
  std::string* numberFormat_ = nullptr;  // the format that is being put together
  Style* style_ = nullptr;
  bool literal_ = false;
};

/// An OpenDocument formula ("of:=SUM([.A1:.B2];[$Sheet2.C3])") as users of other programs write it
/// ("SUM(A1:B2,Sheet2!C3)").
std::string odsFormula(std::string_view text);

/// An address such as "$Sheet1.$A$1:.$B$2" in the same way.
std::string odsReference(std::string_view text);

}  // namespace lodex
