#include "worksheet/files/xls/StyleWriter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "basic/Text.h"
#include "worksheet/files/xls/BiffStyles.h"
#include "worksheet/files/xls/LinkWriter.h"

namespace lodex::biff {
namespace {

constexpr size_t maxStyles = 4000;
constexpr size_t maxFonts = 500;
constexpr unsigned firstOwnNumberFormat = 164;
constexpr std::ptrdiff_t reservedColors = 8;  // programs use them for marks of their own

unsigned horizontalNumber(HorizontalAlignment alignment) {
  switch (alignment) {
    case HorizontalAlignment::Left:
      return 1;
    case HorizontalAlignment::Center:
      return 2;
    case HorizontalAlignment::Right:
      return 3;
    case HorizontalAlignment::Fill:
      return 4;
    case HorizontalAlignment::Justify:
      return 5;
    case HorizontalAlignment::CenterAcross:
      return 6;
    default:
      return 0;
  }
}

unsigned verticalNumber(VerticalAlignment alignment) {
  switch (alignment) {
    case VerticalAlignment::Top:
      return 0;
    case VerticalAlignment::Center:
      return 1;
    case VerticalAlignment::Justify:
      return 3;
    default:
      return 2;
  }
}

int distance(Color a, Color b) {
  int sum = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const int difference = (a >> shift & 0xFF) - (b >> shift & 0xFF);
    sum += difference * difference;
  }
  return sum;
}

}  // namespace

StyleWriter::StyleWriter(const FormatTable& formats)
    : formats_(formats),
      plain_(formats.size(), 0),
      palette_(std::begin(defaultPalette), std::end(defaultPalette)),
      colorUsed_(palette_.size(), false) {
  // Number 15 is what cells without a style of their own have.
  styleOf(0);
}

// Colours that the palette lacks replace unused ones from its end; when there are none left, the
// nearest colour has to do.
unsigned StyleWriter::colorOf(Color color, unsigned automatic) {
  if (color == automaticColor) return automatic;
  auto place = std::find(palette_.begin(), palette_.end(), color) - palette_.begin();
  if (place == std::ssize(palette_)) {
    do --place;
    while (place >= reservedColors && colorUsed_[place]);
    if (place >= reservedColors) {
      palette_[place] = color;
      paletteChanged_ = true;
    } else {
      place = std::min_element(
                  palette_.begin(), palette_.end(),
                  [&](Color a, Color b) { return distance(a, color) < distance(b, color); }) -
              palette_.begin();
    }
  }
  colorUsed_[place] = true;
  return static_cast<unsigned>(place) + firstPaletteColor;
}

unsigned StyleWriter::fontOf(const CellFormat& format) {
  Font font;
  font.name = format.fontName;
  font.size = format.fontSize;
  font.bold = format.bold;
  font.italic = format.italic;
  font.underline = format.underline;
  font.strikeout = format.strikeout;
  font.color = colorOf(format.fontColor, automaticTextColor);
  // The first four are the same, and number 4 does not exist.
  if (fonts_.empty()) fonts_.assign(4, font);
  auto hit = std::find(fonts_.begin(), fonts_.end(), font);
  if (hit == fonts_.end()) {
    if (fonts_.size() >= maxFonts) return 0;
    hit = fonts_.insert(fonts_.end(), font);
  }
  const auto place = static_cast<unsigned>(hit - fonts_.begin());
  return place >= 4 ? place + 1 : place;
}

unsigned StyleWriter::numberFormatOf(const std::string& text) {
  if (text.empty()) return 0;
  const int builtin = builtinNumberFormatId(text);
  if (builtin >= 0) return static_cast<unsigned>(builtin);
  const auto known = numberFormatNumbers_.find(text);
  if (known != numberFormatNumbers_.end()) return known->second;
  if (toUtf16(text).size() > 255) return 0;
  const auto number = firstOwnNumberFormat + static_cast<unsigned>(numberFormats_.size());
  numberFormats_.push_back(text);
  return numberFormatNumbers_[text] = number;
}

unsigned StyleWriter::styleOf(std::uint32_t format, std::string_view numberFormat, bool textMark) {
  const bool isPlain = numberFormat.empty() && !textMark;
  if (isPlain && plain_[format] != 0) return plain_[format];
  const auto key = std::make_tuple(format, std::string(numberFormat), textMark);
  const auto hit = known_.find(key);
  if (hit != known_.end()) return hit->second;
  if (styles_.size() >= maxStyles) return defaultStyle;

  Style style;
  style.look = formats_.at(format);
  if (!numberFormat.empty()) style.look.numberFormat = numberFormat;
  style.textMark = textMark;
  style.font = fontOf(style.look);
  style.numberFormat = numberFormatOf(style.look.numberFormat);
  style.patternColor = colorOf(style.look.patternColor, automaticPatternColor);
  style.backgroundColor = colorOf(style.look.backgroundColor, automaticBackgroundColor);
  const auto number = defaultStyle + static_cast<unsigned>(styles_.size());
  styles_.push_back(std::move(style));
  known_[key] = number;
  if (isPlain) plain_[format] = number;
  return number;
}

void StyleWriter::writeFont(RecordWriter& out, const Font& font) const {
  out.begin(idFont);
  out.u16(static_cast<unsigned>(std::lround(std::clamp(font.size, 1.0, 409.0) * 20)));
  out.u16((font.italic ? 0x02u : 0u) | (font.strikeout ? 0x08u : 0u));
  out.u16(font.color);
  out.u16(font.bold ? 700 : 400);
  out.u16(0);
  out.u8(font.underline ? 1 : 0);
  out.u8(0);
  out.u8(0);
  out.u8(0);
  const std::u16string name = toUtf16(font.name).substr(0, 31);
  out.u8(static_cast<unsigned>(name.size()));
  writeUnicodeCharacters(out, name);
}

void StyleWriter::writeStyle(RecordWriter& out, const Style& style, bool ofCell) const {
  const CellFormat& look = style.look;
  const auto line = [](std::uint8_t kind) { return std::min<std::uint32_t>(kind, 13); };
  const auto lineColor = [&](std::uint8_t kind) { return kind != 0 ? automaticPatternColor : 0u; };
  const unsigned pattern = look.pattern == FillPattern::None    ? 0
                           : look.pattern == FillPattern::Solid ? 1
                                                                : 2;
  out.begin(idXf5);
  out.u16(style.font);
  out.u16(style.numberFormat);
  const unsigned parent = ofCell ? 0 : 0xFFF;
  out.u16((look.locked ? 1u : 0u) | (look.formulaHidden ? 2u : 0u) | (ofCell ? 0u : 4u) |
          (style.textMark ? 8u : 0u) | parent << 4);
  out.u8(horizontalNumber(look.horizontal) | (look.wrap ? 8u : 0u) |
         verticalNumber(look.vertical) << 4);
  out.u8(0);
  out.u8(0);
  out.u8(ofCell ? 0xFC : 0x00);  // which attributes are the style's own: all
  out.u32(line(look.borderLeft) | line(look.borderRight) << 4 | line(look.borderTop) << 8 |
          line(look.borderBottom) << 12 | lineColor(look.borderLeft) << 16 |
          lineColor(look.borderRight) << 23);
  out.u32(lineColor(look.borderTop) | lineColor(look.borderBottom) << 7 | pattern << 26);
  out.u16(style.patternColor | style.backgroundColor << 7);
}

void StyleWriter::write(RecordWriter& out) const {
  for (const Font& font : fonts_) writeFont(out, font);
  for (size_t i = 0; i < numberFormats_.size(); ++i) {
    const std::u16string text = toUtf16(numberFormats_[i]);
    out.begin(idFormat4);
    out.u16(firstOwnNumberFormat + static_cast<unsigned>(i));
    out.u16(static_cast<unsigned>(text.size()));
    writeUnicodeCharacters(out, text);
  }
  // Fifteen styles come first that programs expect; all of them look like the default.
  for (unsigned i = 0; i < defaultStyle; ++i) writeStyle(out, styles_.front(), false);
  for (const Style& style : styles_) writeStyle(out, style, true);
  out.begin(idStyle);
  out.u16(0x8000);  // builtin, for XF 0
  out.u8(0);        // "Normal"
  out.u8(0xFF);
  if (!paletteChanged_) return;
  out.begin(idPalette);
  out.u16(static_cast<unsigned>(palette_.size()));
  for (Color color : palette_) {
    out.u8(static_cast<unsigned>(color >> 16 & 0xFF));
    out.u8(static_cast<unsigned>(color >> 8 & 0xFF));
    out.u8(static_cast<unsigned>(color & 0xFF));
    out.u8(0);
  }
}

}  // namespace lodex::biff
