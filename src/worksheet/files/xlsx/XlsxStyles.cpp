#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "basic/Numbers.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/BuiltinFormats.h"
#include "worksheet/files/XmlReader.h"
#include "worksheet/files/xlsx/XlsxParts.h"

namespace lodex {
namespace {

// The part of a tint (-1 black to 1 white) that is mixed into a colour.
Color tinted(Color color, double tint) {
  if (color == automaticColor || tint == 0) return color;
  Color out = 0;
  for (int shift : {16, 8, 0}) {
    const int channel = (color >> shift) & 0xFF;
    const double mixed = tint < 0 ? channel * (1 + tint) : channel + (255 - channel) * tint;
    out |= std::clamp(static_cast<int>(std::lround(mixed)), 0, 255) << shift;
  }
  return out;
}

HorizontalAlignment horizontalOf(std::string_view name) {
  if (name == "left") return HorizontalAlignment::Left;
  if (name == "center") return HorizontalAlignment::Center;
  if (name == "right") return HorizontalAlignment::Right;
  if (name == "fill") return HorizontalAlignment::Fill;
  if (name == "justify" || name == "distributed") return HorizontalAlignment::Justify;
  if (name == "centerContinuous") return HorizontalAlignment::CenterAcross;
  return HorizontalAlignment::General;
}

VerticalAlignment verticalOf(std::string_view name) {
  if (name == "center") return VerticalAlignment::Center;
  if (name == "top") return VerticalAlignment::Top;
  if (name == "justify" || name == "distributed") return VerticalAlignment::Justify;
  return VerticalAlignment::Bottom;
}

std::uint8_t lineStyle(std::string_view name) {
  const auto hit = std::find(borderLineNames.begin(), borderLineNames.end(), name);
  return hit == borderLineNames.end() ? 0
                                      : static_cast<std::uint8_t>(hit - borderLineNames.begin());
}

struct Borders {
  std::uint8_t left = 0, right = 0, top = 0, bottom = 0;
};

struct Fill {
  FillPattern pattern = FillPattern::None;
  Color foreground = automaticColor;
  Color background = automaticColor;
};

// A row of the style table: the places of its parts in their lists, and what it says itself.
struct Style {
  int numberFormat = 0;
  size_t font = 0, fill = 0, border = 0;
  CellFormat own;
};

class StylesHandler : public XmlHandler {
 public:
  explicit StylesHandler(const std::vector<Color>& theme) : theme_(theme) {}

  std::map<int, std::string> numberFormats;
  std::vector<CellFormat> fonts;
  std::vector<Fill> fills;
  std::vector<Borders> borders;
  std::vector<Style> styles;

  void start(std::string_view element, const XmlAttributes& attributes) override {
    open_.push_back(std::string(element));
    const std::string_view parent =
        open_.size() > 1 ? std::string_view(open_[open_.size() - 2]) : std::string_view();
    if (element == "numFmt" && parent == "numFmts") {
      numberFormats[attributes.number("numFmtId", 0)] = attributes("formatCode");
    } else if (element == "font" && parent == "fonts") {
      fonts.emplace_back();
    } else if (element == "fill" && parent == "fills") {
      fills.emplace_back();
    } else if (element == "border" && parent == "borders") {
      borders.emplace_back();
    } else if (element == "xf" && parent == "cellXfs") {
      addStyle(attributes);
    } else if (parent == "font" && inList("fonts")) {
      fontPart(element, attributes);
    } else if (inList("fills")) {
      fillPart(element, attributes);
    } else if (parent == "border" && inList("borders")) {
      borderPart(element, attributes);
    } else if (parent == "xf" && inList("cellXfs")) {
      stylePart(element, attributes);
    }
  }
  void end(std::string_view) override { open_.pop_back(); }
  void text(std::string_view) override {}

 private:
  bool inList(std::string_view list) const { return open_.size() > 1 && open_[1] == list; }

  Color color(const XmlAttributes& attributes) const {
    const double tint = numberOf(attributes("tint"));
    if (attributes.has("rgb")) {
      std::uint32_t rgb = 0;
      const std::string_view text = attributes("rgb");
      std::from_chars(text.data(), text.data() + text.size(), rgb, 16);
      return tinted(static_cast<Color>(rgb & 0xFFFFFF), tint);
    }
    const int place = attributes.number("theme", -1);
    if (place >= 0 && static_cast<size_t>(place) < theme_.size()) {
      return tinted(theme_[place], tint);
    }
    return tinted(indexedColor(attributes.number("indexed", -1)), tint);
  }

  void addStyle(const XmlAttributes& attributes) {
    Style& style = styles.emplace_back();
    style.numberFormat = attributes.number("numFmtId", 0);
    style.font = static_cast<size_t>(attributes.number("fontId", 0));
    style.fill = static_cast<size_t>(attributes.number("fillId", 0));
    style.border = static_cast<size_t>(attributes.number("borderId", 0));
  }

  void stylePart(std::string_view element, const XmlAttributes& attributes) {
    if (styles.empty()) return;
    CellFormat& own = styles.back().own;
    if (element == "alignment") {
      own.horizontal = horizontalOf(attributes("horizontal"));
      own.vertical = verticalOf(attributes("vertical"));
      own.wrap = attributes.flag("wrapText");
    } else if (element == "protection") {
      own.locked = attributes.flag("locked", true);
      own.formulaHidden = attributes.flag("hidden");
    }
  }

  void fontPart(std::string_view element, const XmlAttributes& attributes) {
    if (fonts.empty()) return;
    CellFormat& font = fonts.back();
    if (element == "name") font.fontName = attributes("val");
    if (element == "sz") font.fontSize = numberOf(attributes("val"));
    if (element == "b") font.bold = attributes.flag("val", true);
    if (element == "i") font.italic = attributes.flag("val", true);
    if (element == "u") font.underline = attributes("val") != "none";
    if (element == "strike") font.strikeout = attributes.flag("val", true);
    // Theme colour 1 is the display's own text colour.
    const bool plain = attributes.number("theme", -1) == 1 && !attributes.has("tint");
    if (element == "color" && !plain) font.fontColor = color(attributes);
  }

  void fillPart(std::string_view element, const XmlAttributes& attributes) {
    if (fills.empty()) return;
    Fill& fill = fills.back();
    if (element == "patternFill") {
      const std::string_view type = attributes("patternType", "none");
      fill.pattern = type == "none"    ? FillPattern::None
                     : type == "solid" ? FillPattern::Solid
                                       : FillPattern::Other;
    }
    if (element == "fgColor") fill.foreground = color(attributes);
    if (element == "bgColor") fill.background = color(attributes);
  }

  void borderPart(std::string_view element, const XmlAttributes& attributes) {
    if (borders.empty()) return;
    const std::uint8_t line = lineStyle(attributes("style", "none"));
    Borders& border = borders.back();
    if (element == "left" || element == "start") border.left = line;
    if (element == "right" || element == "end") border.right = line;
    if (element == "top") border.top = line;
    if (element == "bottom") border.bottom = line;
  }

  const std::vector<Color>& theme_;
  std::vector<std::string> open_;
};

// The workbook's default font is what its user calls plain, so it counts as ours.
bool isDefaultFont(const CellFormat& font, const CellFormat& standard) {
  return font.fontName == standard.fontName && font.fontSize == standard.fontSize;
}

CellFormat formatOfStyle(const StylesHandler& parts, const Style& style) {
  CellFormat format = style.own;
  const auto custom = parts.numberFormats.find(style.numberFormat);
  if (custom != parts.numberFormats.end()) {
    format.numberFormat = custom->second;
  } else if (!builtinNumberFormat(style.numberFormat).empty()) {
    format.numberFormat = builtinNumberFormat(style.numberFormat);
  }
  if (style.font < parts.fonts.size()) {
    const CellFormat& font = parts.fonts[style.font];
    if (!isDefaultFont(font, parts.fonts.front())) {
      format.fontName = font.fontName;
      format.fontSize = font.fontSize;
    }
    format.bold = font.bold;
    format.italic = font.italic;
    format.underline = font.underline;
    format.strikeout = font.strikeout;
    format.fontColor = font.fontColor;
  }
  if (style.fill < parts.fills.size()) {
    format.pattern = parts.fills[style.fill].pattern;
    if (format.pattern != FillPattern::None) {
      format.patternColor = parts.fills[style.fill].foreground;
      format.backgroundColor = parts.fills[style.fill].background;
    }
  }
  if (style.border < parts.borders.size()) {
    const Borders& borders = parts.borders[style.border];
    format.borderLeft = borders.left;
    format.borderRight = borders.right;
    format.borderTop = borders.top;
    format.borderBottom = borders.bottom;
  }
  return format;
}

}  // namespace

std::vector<std::uint32_t> readXlsxStyles(std::string_view document,
                                          const std::vector<Color>& theme, Worksheet& into) {
  StylesHandler parts(theme);
  if (!document.empty()) readXml(document, parts);
  std::vector<std::uint32_t> indices;
  for (const Style& style : parts.styles) {
    indices.push_back(into.formats().indexOf(formatOfStyle(parts, style)));
  }
  return indices;
}

}  // namespace lodex
