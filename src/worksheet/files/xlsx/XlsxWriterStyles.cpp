#include <algorithm>
#include <array>
#include <cstdio>

#include "basic/Numbers.h"
#include "worksheet/files/BuiltinFormats.h"
#include "worksheet/files/xlsx/XlsxWriterParts.h"

namespace lodex {
namespace {

// Numbers below this one belong to the built-in formats.
constexpr size_t firstNumberFormat = 164;

std::string colorElement(const char* name, Color color) {
  if (color == automaticColor) return {};
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "<%s rgb=\"FF%06X\"/>", name,
                static_cast<unsigned>(color) & 0xFFFFFFu);
  return buffer;
}

std::string fontElement(const CellFormat& format) {
  static const CellFormat plain;
  // Our plain font is whatever the file calls plain.
  const bool isPlain = format.fontName == plain.fontName && format.fontSize == plain.fontSize;
  std::string out = "<font>";
  if (format.bold) out += "<b/>";
  if (format.italic) out += "<i/>";
  if (format.strikeout) out += "<strike/>";
  if (format.underline) out += "<u/>";
  out += "<sz val=\"" + numberText(isPlain ? 11.0 : format.fontSize) + "\"/>";
  out += colorElement("color", format.fontColor);
  out += "<name val=\"" + xmlEscaped(isPlain ? "Calibri" : format.fontName) + "\"/>";
  return out + "</font>";
}

std::string fillElement(const CellFormat& format) {
  const char* pattern = format.pattern == FillPattern::None    ? "none"
                        : format.pattern == FillPattern::Solid ? "solid"
                                                               : "mediumGray";
  return std::string("<fill><patternFill patternType=\"") + pattern + "\">" +
         colorElement("fgColor", format.patternColor) +
         colorElement("bgColor", format.backgroundColor) + "</patternFill></fill>";
}

std::string edgeElement(const char* name, std::uint8_t line) {
  if (line == 0 || line >= borderLineNames.size()) return std::string("<") + name + "/>";
  return std::string("<") + name + " style=\"" + std::string(borderLineNames[line]) + "\"/>";
}

std::string borderElement(const CellFormat& format) {
  return "<border>" + edgeElement("left", format.borderLeft) +
         edgeElement("right", format.borderRight) + edgeElement("top", format.borderTop) +
         edgeElement("bottom", format.borderBottom) + "<diagonal/></border>";
}

std::string alignmentElement(const CellFormat& format) {
  constexpr std::array<const char*, 7> horizontal{"",     "left",    "center",          "right",
                                                  "fill", "justify", "centerContinuous"};
  constexpr std::array<const char*, 4> vertical{"", "center", "top", "justify"};
  std::string out;
  const std::string across = horizontal[static_cast<size_t>(format.horizontal)];
  const std::string up = vertical[static_cast<size_t>(format.vertical)];
  if (!across.empty()) out += " horizontal=\"" + across + "\"";
  if (!up.empty()) out += " vertical=\"" + up + "\"";
  if (format.wrap) out += " wrapText=\"1\"";
  return out.empty() ? out : "<alignment" + out + "/>";
}

std::string protectionElement(const CellFormat& format) {
  if (format.locked && !format.formulaHidden) return {};
  return std::string("<protection locked=\"") + (format.locked ? "1" : "0") + "\" hidden=\"" +
         (format.formulaHidden ? "1" : "0") + "\"/>";
}

std::string listElement(const char* name, const std::vector<std::string>& list) {
  std::string out = std::string("<") + name + " count=\"" + std::to_string(list.size()) + "\">";
  for (const std::string& element : list) out += element;
  return out + "</" + name + ">";
}

}  // namespace

size_t XlsxStyleTable::placeIn(List& list, const std::string& element) {
  const auto hit = std::find(list.begin(), list.end(), element);
  if (hit != list.end()) return static_cast<size_t>(hit - list.begin());
  list.push_back(element);
  return list.size() - 1;
}

std::string XlsxStyleTable::styleOf(const CellFormat& format) {
  const size_t number = format.numberFormat == "General" || format.numberFormat.empty()
                            ? 0
                            : firstNumberFormat + placeIn(numberFormats_, format.numberFormat);
  const size_t font = placeIn(fonts_, fontElement(format));
  const size_t fill =
      format.pattern == FillPattern::None ? 0 : placeIn(fills_, fillElement(format));
  const size_t border = placeIn(borders_, borderElement(format));
  return "<xf numFmtId=\"" + std::to_string(number) + "\" fontId=\"" + std::to_string(font) +
         "\" fillId=\"" + std::to_string(fill) + "\" borderId=\"" + std::to_string(border) +
         "\" xfId=\"0\" applyNumberFormat=\"1\" applyFont=\"1\" applyFill=\"1\" applyBorder=\"1\" "
         "applyAlignment=\"1\" applyProtection=\"1\">" +
         alignmentElement(format) + protectionElement(format) + "</xf>";
}

size_t XlsxStyleTable::idOf(std::uint32_t format, const std::string& numberFormat) {
  const auto [place, isNew] = ids_.try_emplace({format, numberFormat}, styles_.size());
  if (isNew) {
    CellFormat whole = formats_.at(format);
    if (!numberFormat.empty()) whole.numberFormat = numberFormat;
    styles_.push_back(styleOf(whole));
  }
  return place->second;
}

std::string XlsxStyleTable::document() const {
  List numberFormats;
  for (size_t i = 0; i < numberFormats_.size(); ++i) {
    numberFormats.push_back("<numFmt numFmtId=\"" + std::to_string(firstNumberFormat + i) +
                            "\" formatCode=\"" + xmlEscaped(numberFormats_[i]) + "\"/>");
  }
  return "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">" +
         (numberFormats.empty() ? "" : listElement("numFmts", numberFormats)) +
         listElement("fonts", fonts_) + listElement("fills", fills_) +
         listElement("borders", borders_) +
         "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/>"
         "</cellStyleXfs>" +
         listElement("cellXfs", styles_) +
         "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" "
         "builtinId=\"0\"/></cellStyles>"
         "</styleSheet>";
}

}  // namespace lodex
