#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "worksheet/CellFormat.h"
#include "worksheet/files/BuiltinFormats.h"
#include "worksheet/files/xls/BiffText.h"

/// Fonts, number formats, colours and cell styles of an .xls file.
namespace lodex::biff {

inline constexpr unsigned firstPaletteColor = 8;
/// Colour numbers that leave the choice to the display.
inline constexpr unsigned automaticTextColor = 0x7FFF;
inline constexpr unsigned automaticPatternColor = 64;
inline constexpr unsigned automaticBackgroundColor = 65;

/// Collects the records of a file and gives the formats of its cells.
class Styles {
 public:
  Styles(FormatTable& formats, const CodePage& codePage) : formats_(formats), codePage_(codePage) {}

  void version(int version);
  void addFormat(std::string_view data);
  void addFont(std::string_view data);
  void setFontColor(std::string_view data);
  void addXf(std::string_view data);
  void setPalette(std::string_view data);

  /// Place in the workbook's FormatTable of the style with that number.
  std::uint32_t formatOf(unsigned xf);
  /// For cells of version 2, which carry three bytes of style themselves; `extended` is the number
  /// of a preceding IXFE record.
  std::uint32_t formatOfAttributes(std::string_view bytes, unsigned extended);
  /// True when the style marks text that begins with an apostrophe.
  bool hasTextMark(unsigned xf) const { return xf < xfs_.size() && xfs_[xf].textMark; }

 private:
  struct Font {
    std::string name = "Arial";
    double size = 10;
    bool bold = false, italic = false, underline = false, strikeout = false;
    unsigned color = automaticTextColor;
  };
  struct Xf {
    unsigned font = 0;
    unsigned numberFormat = 0;
    bool locked = true, hidden = false, wrap = false, textMark = false;
    unsigned horizontal = 0;
    unsigned vertical = 2;
    unsigned left = 0, right = 0, top = 0, bottom = 0;
    unsigned pattern = 0, patternColor = automaticPatternColor,
             backgroundColor = automaticBackgroundColor;
    bool resolved = false;
    std::uint32_t place = 0;
  };

  void readOldFill(Xf& xf, unsigned fill) const;
  CellFormat cellFormat(const Xf& xf) const;
  Color color(unsigned number) const;

  FormatTable& formats_;
  const CodePage& codePage_;
  int version_ = 8;
  std::vector<std::string> numberFormats_;  // by number
  std::vector<Font> fonts_;
  std::vector<Xf> xfs_;
  std::vector<Color> palette_;  // from colour number 8 on
};

}  // namespace lodex::biff
