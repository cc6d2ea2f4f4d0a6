#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "worksheet/CellFormat.h"
#include "worksheet/files/xls/BiffStream.h"

namespace lodex::biff {

/// Gives the formats of a workbook to be written their numbers, as cells ask for them, and writes
/// fonts, number formats, styles and colours at the end.
class StyleWriter {
 public:
  explicit StyleWriter(const FormatTable& formats);

  /// The number of the style for a format. `numberFormat` replaces the format's own unless it is
  /// empty; a text mark is what a leading apostrophe leaves. The default style stands for what goes
  /// beyond the number of styles that a file can hold.
  unsigned styleOf(std::uint32_t format, std::string_view numberFormat = {}, bool textMark = false);

  /// The default style.
  static constexpr unsigned defaultStyle = 15;

  /// Writes FONT, FORMAT, XF, STYLE and PALETTE records.
  void write(RecordWriter& out) const;

 private:
  struct Style {
    unsigned font = 0;
    unsigned numberFormat = 0;
    bool textMark = false;
    CellFormat look;
    unsigned patternColor = 0, backgroundColor = 0;
  };
  struct Font {
    std::string name;
    double size = 10;
    bool bold = false, italic = false, underline = false, strikeout = false;
    unsigned color = 0;
    bool operator==(const Font&) const = default;
  };

  unsigned fontOf(const CellFormat& format);
  unsigned numberFormatOf(const std::string& text);
  unsigned colorOf(Color color, unsigned automatic);
  void writeFont(RecordWriter& out, const Font& font) const;
  void writeStyle(RecordWriter& out, const Style& style, bool ofCell) const;

  const FormatTable& formats_;
  std::vector<Font> fonts_;
  std::vector<Style> styles_;  // from number 15 on
  std::vector<std::string> numberFormats_;
  std::map<std::string, unsigned> numberFormatNumbers_;
  std::map<std::tuple<std::uint32_t, std::string, bool>, unsigned> known_;
  std::vector<std::uint32_t> plain_;  // by format: number of its style without extras, 0 unknown
  std::vector<Color> palette_;
  std::vector<bool> colorUsed_;
  bool paletteChanged_ = false;
};

}  // namespace lodex::biff
