#include "worksheet/files/xls/BiffStyles.h"

#include <algorithm>
#include <iterator>

namespace lodex::biff {
namespace {

// The colours before BIFF 8 ("The Microsoft Excel File Format" by Daniel Rentz, PALETTE record).
constexpr Color defaultPalette5[56] = {
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x8080FF, 0x802060, 0xFFFFC0, 0xA0E0E0, 0x600080, 0xFF8080, 0x0080C0, 0xC0C0FF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CFFF, 0x69FFFF, 0xE0FFE0, 0xFFFF80, 0xA6CAF0, 0xDD9CB3, 0xB38FEE, 0xE3E3E3,
    0x2A6FF9, 0x3FB8CD, 0x488436, 0x958C41, 0x8E5E42, 0xA0627A, 0x624FAC, 0x969696,
    0x1D2FBE, 0x286676, 0x004500, 0x453E01, 0x6A2813, 0x85396A, 0x4A3285, 0x424242};

constexpr size_t maxEntries = 8192;  // programs stop at half of that

constexpr Color basicColors[8] = {0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00,
                                  0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF};

HorizontalAlignment horizontalOf(unsigned number) {
  switch (number) {
    case 1:
      return HorizontalAlignment::Left;
    case 2:
      return HorizontalAlignment::Center;
    case 3:
      return HorizontalAlignment::Right;
    case 4:
      return HorizontalAlignment::Fill;
    case 5:
    case 7:
      return HorizontalAlignment::Justify;
    case 6:
      return HorizontalAlignment::CenterAcross;
    default:
      return HorizontalAlignment::General;
  }
}

VerticalAlignment verticalOf(unsigned number) {
  switch (number) {
    case 0:
      return VerticalAlignment::Top;
    case 1:
      return VerticalAlignment::Center;
    case 3:
    case 4:
      return VerticalAlignment::Justify;
    default:
      return VerticalAlignment::Bottom;
  }
}

}  // namespace

void Styles::version(int version) {
  version_ = version;
  const Color* colors = version >= 8 ? defaultPalette : defaultPalette5;
  palette_.assign(colors, colors + 56);
}

void Styles::addFormat(std::string_view data) {
  ByteReader in(data);
  size_t index = numberFormats_.size();  // before version 5 formats count from 0 in their order
  if (version_ >= 5) {
    index = in.u16();
  } else if (version_ == 4) {
    in.skip(2);
  }
  if (index >= maxEntries) return;
  std::string text = version_ >= 8 ? readUnicodeText(in, LengthBytes::Two)
                                   : readByteText(in, LengthBytes::One, codePage_);
  if (index >= numberFormats_.size()) numberFormats_.resize(index + 1);
  numberFormats_[index] = std::move(text);
}

void Styles::addFont(std::string_view data) {
  if (fonts_.size() >= maxEntries) return;
  ByteReader in(data);
  Font font;
  font.size = in.u16() / 20.0;
  const unsigned flags = in.u16();
  font.italic = (flags & 0x02) != 0;
  font.strikeout = (flags & 0x08) != 0;
  if (version_ >= 3) font.color = in.u16();
  if (version_ >= 5) {
    font.bold = in.u16() >= 600;
    in.skip(2);
    font.underline = in.u8() != 0;
    in.skip(3);
  } else {
    font.bold = (flags & 0x01) != 0;
    font.underline = (flags & 0x04) != 0;
  }
  font.name = version_ >= 8 ? readUnicodeText(in, LengthBytes::One)
                            : readByteText(in, LengthBytes::One, codePage_);
  fonts_.push_back(std::move(font));
}

void Styles::setFontColor(std::string_view data) {
  if (!fonts_.empty()) fonts_.back().color = ByteReader(data).u16();
}

void Styles::setPalette(std::string_view data) {
  ByteReader in(data);
  const unsigned count = in.u16();
  for (size_t i = 0; i < std::min<size_t>(count, palette_.size()) && in.left() >= 4; ++i) {
    const Color red = in.u8(), green = in.u8(), blue = in.u8();
    in.skip(1);
    palette_[i] = red << 16 | green << 8 | blue;
  }
}

// Versions 3 and 4: pattern and two colours in 16 bits.
void Styles::readOldFill(Xf& xf, unsigned fill) const {
  const auto patternColor = [](unsigned number) {
    return number == 24 ? automaticPatternColor : number == 25 ? automaticBackgroundColor : number;
  };
  xf.pattern = fill & 0x3F;
  xf.patternColor = patternColor(fill >> 6 & 0x1F);
  xf.backgroundColor = patternColor(fill >> 11 & 0x1F);
}

void Styles::addXf(std::string_view data) {
  if (xfs_.size() >= maxEntries) return;
  ByteReader in(data);
  Xf xf;
  unsigned protection = 0;
  if (version_ == 2) {
    xf.font = in.u8();
    in.skip(1);
    const unsigned format = in.u8();
    const unsigned style = in.u8();
    xf.numberFormat = format & 0x3F;
    protection = format >> 6;
    xf.horizontal = style & 0x07;
    xf.left = style >> 3 & 1;
    xf.right = style >> 4 & 1;
    xf.top = style >> 5 & 1;
    xf.bottom = style >> 6 & 1;
    xf.pattern = (style & 0x80) != 0 ? 17 : 0;
  } else if (version_ <= 4) {
    xf.font = in.u8();
    xf.numberFormat = in.u8();
    if (version_ == 3) {
      protection = in.u8();
      in.skip(1);
      const unsigned alignment = in.u16();
      xf.horizontal = alignment & 0x07;
      xf.wrap = (alignment & 0x08) != 0;
    } else {
      protection = in.u16();
      const unsigned alignment = in.u8();
      xf.horizontal = alignment & 0x07;
      xf.wrap = (alignment & 0x08) != 0;
      xf.vertical = alignment >> 4 & 0x03;
      in.skip(1);
    }
    readOldFill(xf, in.u16());
    const std::uint32_t lines = in.u32();
    xf.top = lines & 0x07;
    xf.left = lines >> 8 & 0x07;
    xf.bottom = lines >> 16 & 0x07;
    xf.right = lines >> 24 & 0x07;
  } else {
    xf.font = in.u16();
    xf.numberFormat = in.u16();
    protection = in.u16();
    const unsigned alignment = in.u8();
    xf.horizontal = alignment & 0x07;
    xf.wrap = (alignment & 0x08) != 0;
    xf.vertical = alignment >> 4 & 0x07;
    if (version_ == 5) {
      in.skip(1);
      const std::uint32_t fill = in.u32();
      const std::uint32_t lines = in.u32();
      xf.patternColor = fill & 0x7F;
      xf.backgroundColor = fill >> 7 & 0x7F;
      xf.pattern = fill >> 16 & 0x3F;
      xf.bottom = fill >> 22 & 0x07;
      xf.top = lines & 0x07;
      xf.left = lines >> 3 & 0x07;
      xf.right = lines >> 6 & 0x07;
    } else {
      in.skip(3);
      const std::uint32_t lines = in.u32();
      const std::uint32_t fill = in.u32();
      const unsigned colors = in.u16();
      xf.left = lines & 0x0F;
      xf.right = lines >> 4 & 0x0F;
      xf.top = lines >> 8 & 0x0F;
      xf.bottom = lines >> 12 & 0x0F;
      xf.pattern = fill >> 26;
      xf.patternColor = colors & 0x7F;
      xf.backgroundColor = colors >> 7 & 0x7F;
    }
    xf.textMark = (protection & 0x08) != 0;
  }
  xf.locked = (protection & 0x01) != 0;
  xf.hidden = (protection & 0x02) != 0;
  xfs_.push_back(xf);
}

Color Styles::color(unsigned number) const {
  if (number < firstPaletteColor) return basicColors[number];
  const size_t place = number - firstPaletteColor;
  return place < palette_.size() ? palette_[place] : automaticColor;
}

CellFormat Styles::cellFormat(const Xf& xf) const {
  CellFormat format;
  const bool own =
      xf.numberFormat < numberFormats_.size() && !numberFormats_[xf.numberFormat].empty();
  const std::string_view text = own ? std::string_view(numberFormats_[xf.numberFormat])
                                    : builtinNumberFormat(static_cast<int>(xf.numberFormat));
  if (!text.empty()) format.numberFormat = text;
  // Font number 4 was never given.
  const size_t font = xf.font > 4 ? xf.font - 1 : xf.font;
  if (font < fonts_.size()) {
    const Font& chosen = fonts_[font];
    format.fontName = chosen.name;
    format.fontSize = chosen.size;
    format.bold = chosen.bold;
    format.italic = chosen.italic;
    format.underline = chosen.underline;
    format.strikeout = chosen.strikeout;
    format.fontColor = color(chosen.color);
  }
  format.pattern = xf.pattern == 0   ? FillPattern::None
                   : xf.pattern == 1 ? FillPattern::Solid
                                     : FillPattern::Other;
  if (xf.pattern != 0) {
    format.patternColor = color(xf.patternColor);
    format.backgroundColor = color(xf.backgroundColor);
  }
  format.horizontal = horizontalOf(xf.horizontal);
  format.vertical = verticalOf(xf.vertical);
  format.wrap = xf.wrap;
  format.locked = xf.locked;
  format.formulaHidden = xf.hidden;
  format.borderLeft = static_cast<std::uint8_t>(xf.left);
  format.borderRight = static_cast<std::uint8_t>(xf.right);
  format.borderTop = static_cast<std::uint8_t>(xf.top);
  format.borderBottom = static_cast<std::uint8_t>(xf.bottom);
  return format;
}

std::uint32_t Styles::formatOf(unsigned xf) {
  if (xf >= xfs_.size()) return 0;
  Xf& chosen = xfs_[xf];
  if (!chosen.resolved) {
    chosen.place = formats_.indexOf(cellFormat(chosen));
    chosen.resolved = true;
  }
  return chosen.place;
}

std::uint32_t Styles::formatOfAttributes(std::string_view bytes, unsigned extended) {
  ByteReader in(bytes);
  const unsigned first = in.u8();
  const unsigned second = in.u8();
  const unsigned style = in.u8();
  if (!xfs_.empty()) return formatOf((first & 0x3F) == 0x3F ? extended : first & 0x3F);
  Xf xf;
  xf.locked = (first & 0x40) != 0;
  xf.hidden = (first & 0x80) != 0;
  xf.numberFormat = second & 0x3F;
  xf.font = second >> 6;
  xf.horizontal = style & 0x07;
  xf.left = style >> 3 & 1;
  xf.right = style >> 4 & 1;
  xf.top = style >> 5 & 1;
  xf.bottom = style >> 6 & 1;
  xf.pattern = (style & 0x80) != 0 ? 17 : 0;
  return formats_.indexOf(cellFormat(xf));
}

}  // namespace lodex::biff
