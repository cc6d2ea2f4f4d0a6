#include "gui/grid/GridClipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <cstdio>

#include "gui/QtText.h"

namespace lodex {
namespace {

constexpr long long mostHtmlCells = 50000;

std::string styleOf(const CellFormat& format, bool number) {
  std::string style;
  const auto color = [&style](const char* name, Color value) {
    char text[64];
    std::snprintf(text, sizeof text, "%s:#%06X;", name, static_cast<unsigned>(value));
    style += text;
  };
  if (format.bold) style += "font-weight:bold;";
  if (format.italic) style += "font-style:italic;";
  if (format.fontColor != automaticColor) color("color", format.fontColor);
  if (format.pattern == FillPattern::Solid && format.patternColor != automaticColor) {
    color("background-color", format.patternColor);
  }
  const bool right = format.horizontal == HorizontalAlignment::Right ||
                     (number && format.horizontal == HorizontalAlignment::General);
  if (right) style += "text-align:right;";
  if (format.horizontal == HorizontalAlignment::Center) style += "text-align:center;";
  return style;
}

}  // namespace

std::string htmlTable(const Worksheet& sheet, const CellBlock& block) {
  std::string html = "<table>";
  for (int row = block.row1; row <= block.row2; ++row) {
    html += "<tr>";
    for (int column = block.column1; column <= block.column2; ++column) {
      const bool number = sheet.ValueRC(row, column).isNumber();
      const std::string style = styleOf(sheet.formatOf(sheet.Sheet(), row, column), number);
      html += style.empty() ? "<td>" : "<td style=\"" + style + "\">";
      html += fromQt(toQt(sheet.TextRC(row, column)).toHtmlEscaped());
      html += "</td>";
    }
    html += "</tr>\n";
  }
  return html + "</table>";
}

std::string GridClipboard::text() {
  return fromQt(QApplication::clipboard()->text());
}

void GridClipboard::setText(std::string_view text) {
  auto* data = new QMimeData;
  data->setText(toQt(text));
  const bool small = sheet_ != nullptr && !block_.empty() &&
                     1LL * block_.rows() * block_.columns() <= mostHtmlCells;
  if (small) data->setHtml(toQt(htmlTable(*sheet_, block_)));
  QApplication::clipboard()->setMimeData(data);
}

}  // namespace lodex
