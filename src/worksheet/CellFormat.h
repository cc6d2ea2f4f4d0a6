#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace lodex {

/// 0xRRGGBB; `automaticColor` leaves the choice to the display.
using Color = std::int32_t;
inline constexpr Color automaticColor = -1;

/// One of the sixteen basic colours: 0 black, 1 blue, 2 green, 3 cyan, 4 red, 5 magenta, 6 brown,
/// 7 light grey, 8 dark grey, 9 to 14 their light forms (12 light red, 14 yellow), 15 white.
Color paletteColor(int index);

enum class FillPattern : std::uint8_t { None, Solid, Other };
enum class HorizontalAlignment : std::uint8_t {
  General,
  Left,
  Center,
  Right,
  Fill,
  Justify,
  CenterAcross
};
enum class VerticalAlignment : std::uint8_t { Bottom, Center, Top, Justify };

/// How a cell looks. Equal formats are stored once per workbook.
struct CellFormat {
  std::string numberFormat = "General";
  std::string fontName = "Arial";
  double fontSize = 10;  // points
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikeout = false;
  Color fontColor = automaticColor;
  FillPattern pattern = FillPattern::None;
  Color patternColor = automaticColor;  // the fill's colour when Solid
  Color backgroundColor = automaticColor;
  HorizontalAlignment horizontal = HorizontalAlignment::General;
  VerticalAlignment vertical = VerticalAlignment::Bottom;
  bool wrap = false;
  bool locked = true;
  bool formulaHidden = false;
  // Line styles of the four edges as spreadsheet files number them: 0 none, 1 thin, 2 medium ...
  std::uint8_t borderLeft = 0, borderRight = 0, borderTop = 0, borderBottom = 0;

  bool operator==(const CellFormat&) const = default;
};

/// The distinct formats of a workbook. Index 0 is the default format.
class FormatTable {
 public:
  FormatTable();
  const CellFormat& at(std::uint32_t index) const { return formats_[index]; }
  std::uint32_t indexOf(const CellFormat& format);
  std::uint32_t size() const { return static_cast<std::uint32_t>(formats_.size()); }

 private:
  std::vector<CellFormat> formats_;
  std::unordered_map<std::string, std::vector<std::uint32_t>> byNumberFormat_;
};

}  // namespace lodex
