#include <algorithm>
#include <cmath>
#include <cstdio>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/PlainDecimal.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/files/xlsx/XlsxWriterParts.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

// The format's own limit, in UTF-16 units; nothing with fewer bytes can exceed it.
constexpr size_t longestText = 32767;

class SheetText {
 public:
  SheetText(const Worksheet& book, int sheet, XlsxTextTable& texts, XlsxStyleTable& styles)
      : book_(book), sheet_(sheet), texts_(texts), styles_(styles) {}

  std::string document(bool inFront) {
    out_ = "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
    view(inFront);
    out_ += "<sheetFormatPr defaultRowHeight=\"15\"/>";
    columns();
    out_ += "<sheetData>";
    rows();
    out_ += "</sheetData></worksheet>";
    return std::move(out_);
  }

 private:
  void view(bool inFront) {
    out_ += "<sheetViews><sheetView";
    if (inFront) out_ += " tabSelected=\"1\"";
    out_ += " workbookViewId=\"0\">";
    const int frozen = book_.frozenRows(sheet_);
    if (frozen > 0) {
      out_ += "<pane ySplit=\"" + std::to_string(frozen) + "\" topLeftCell=\"" +
              cellAddress(frozen + 1, 1) + "\" activePane=\"bottomLeft\" state=\"frozen\"/>";
    }
    out_ += "</sheetView></sheetViews>";
  }

  void columns() {
    std::map<int, double> widths = book_.columnWidths(sheet_);
    for (const auto& [column, isHidden] : book_.hiddenColumns(sheet_)) {
      if (isHidden) widths.try_emplace(column, 0);
    }
    if (widths.empty()) return;
    out_ += "<cols>";
    for (const auto& [column, width] : widths) {
      // A width in the file counts the margins of the cell: five pixels beside characters of seven.
      const std::string number = std::to_string(column);
      out_ += "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" +
              numberText((width > 0 ? width : 8.43) + 5.0 / 7) + "\"";
      if (width > 0) out_ += " customWidth=\"1\"";
      if (book_.columnHidden(sheet_, column)) out_ += " hidden=\"1\"";
      out_ += "/>";
    }
    out_ += "</cols>";
  }

  void rows() {
    const auto& hidden = book_.hiddenRows(sheet_);
    auto nextHidden = hidden.begin();
    int open = 0;  // the row being written, 0 before the first
    const auto startRow = [&](int row) {
      if (open > 0) out_ += "</row>";
      open = row;
      const bool isHidden = book_.rowHidden(sheet_, row);
      out_ += "<row r=\"" + std::to_string(row) + (isHidden ? "\" hidden=\"1\">" : "\">");
    };
    const auto hiddenBefore = [&](int row) {
      for (; nextHidden != hidden.end() && nextHidden->first < row; ++nextHidden) {
        if (nextHidden->first > open) startRow(nextHidden->first);
      }
    };
    book_.cells(sheet_).forEachByRow([&](int row, int column, const Cell& cell) {
      if (row != open) {
        hiddenBefore(row);
        startRow(row);
      }
      writeCell(row, column, cell);
    });
    hiddenBefore(maxRows + 1);
    if (open > 0) out_ += "</row>";
  }

  void startCell(int row, int column, size_t style) {
    out_ += "<c r=\"";
    out_ += cellAddress(row, column);
    if (style != 0) out_ += "\" s=\"" + std::to_string(style);
    out_ += '"';
  }

  void writeCell(int row, int column, const Cell& cell) {
    const bool isFormula = cell.kind == ValueKind::Formula;
    const Value value = CellStore::valueOf(cell);
    if (cell.kind == ValueKind::NumericText) {
      const std::string decimals = plainDecimalFormat(value.textView());
      if (!decimals.empty()) {
        const bool own = book_.formats().at(cell.format).numberFormat != "General";
        startCell(row, column, styles_.idOf(cell.format, own ? std::string() : decimals));
        out_ += "><v>" + exactNumberText(value.asNumber()) + "</v></c>";
        return;
      }
    }
    startCell(row, column, styles_.idOf(cell.format));
    checkLength(row, column, value);
    const bool sharedText = value.isText() && !isFormula;
    if (value.isBoolean()) out_ += " t=\"b\"";
    if (isError(value)) out_ += " t=\"e\"";
    if (value.isText()) out_ += sharedText ? " t=\"s\"" : " t=\"str\"";
    out_ += '>';
    if (isFormula) writeFormula(row, column, *cell.formula);
    if (!value.isEmpty()) {
      out_ += "<v>";
      out_ += sharedText ? std::to_string(texts_.idOf(value.textView())) : valueText(value);
      out_ += "</v>";
    }
    out_ += "</c>";
  }

  // Of an array formula the first cell carries the text, the others only their values.
  void writeFormula(int row, int column, const FormulaCell& formula) {
    const std::string text = xmlEscaped(xlsxFileFormula(formula.text));
    if (!formula.array) {
      out_ += "<f>" + text + "</f>";
      return;
    }
    const ArrayBlock& block = *formula.array;
    if (row != block.row || column != block.column) return;
    out_ += "<f t=\"array\" ref=\"" + cellAddress(block.row, block.column) + ":" +
            cellAddress(block.row + block.rows - 1, block.column + block.columns - 1) + "\">" +
            text + "</f>";
  }

  // The format knows no infinite numbers; they are errors there.
  static bool isError(const Value& value) {
    return value.isError() || (value.isNumber() && !std::isfinite(value.asNumber()));
  }

  static std::string valueText(const Value& value) {
    if (value.isBoolean()) return value.asBoolean() ? "1" : "0";
    if (value.isText()) return xmlEscaped(value.textView());
    // Nor does it know circular references as a value.
    const bool special = !value.isError() || value.asError() == ErrorCode::Circular;
    if (isError(value)) return std::string(errorText(special ? ErrorCode::Num : value.asError()));
    return exactNumberText(value.asNumber());
  }

  void checkLength(int row, int column, const Value& value) const {
    if (!value.isText() || value.textView().size() <= longestText) return;
    if (toUtf16(value.textView()).size() <= longestText) return;
    throw FileError("Cell " + cellAddress(row, column) + " of sheet " + book_.SheetName(sheet_) +
                    " holds a longer text than an .xlsx file can");
  }

  const Worksheet& book_;
  const int sheet_;
  XlsxTextTable& texts_;
  XlsxStyleTable& styles_;
  std::string out_;
};

// Whether "_xHHHH_" is here, which readers would take for one character.
bool looksEscaped(std::string_view text) {
  return text.size() >= 7 && text[1] == 'x' && text[6] == '_' &&
         text.substr(2, 4).find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

}  // namespace

std::string xmlEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else if (c == '_' && looksEscaped(text.substr(i))) {
      out += "_x005F_";
    } else if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') {
      char buffer[16];
      std::snprintf(buffer, sizeof buffer, "_x%04X_", static_cast<unsigned>(c));
      out += buffer;
    } else {
      out += c;
    }
  }
  return out;
}

std::string xlsxSheetDocument(const Worksheet& book, int sheet, bool inFront, XlsxTextTable& texts,
                              XlsxStyleTable& styles) {
  return SheetText(book, sheet, texts, styles).document(inFront);
}

}  // namespace lodex
