#include "worksheet/files/xlsx/XlsxWriter.h"

#include <xlsxwriter.h>

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/A1.h"
#include "worksheet/NumberFormat.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/PlainDecimal.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

// Days between 1 January 1904 and the day that the usual counting calls 0.
constexpr double days1904 = 1462;

// The library takes 0 for "no colour", so black has a number of its own.
lxw_color_t libraryColor(Color color) {
  return static_cast<lxw_color_t>(color == 0 ? LXW_COLOR_BLACK : color);
}

std::uint8_t horizontalOf(HorizontalAlignment alignment) {
  constexpr std::array<std::uint8_t, 7> names{
      LXW_ALIGN_NONE, LXW_ALIGN_LEFT,    LXW_ALIGN_CENTER,       LXW_ALIGN_RIGHT,
      LXW_ALIGN_FILL, LXW_ALIGN_JUSTIFY, LXW_ALIGN_CENTER_ACROSS};
  return names[static_cast<size_t>(alignment)];
}

std::uint8_t verticalOf(VerticalAlignment alignment) {
  constexpr std::array<std::uint8_t, 4> names{LXW_ALIGN_NONE, LXW_ALIGN_VERTICAL_CENTER,
                                              LXW_ALIGN_VERTICAL_TOP, LXW_ALIGN_VERTICAL_JUSTIFY};
  return names[static_cast<size_t>(alignment)];
}

void fillFormat(lxw_format* out, const CellFormat& format) {
  static const CellFormat plain;
  if (format.numberFormat != plain.numberFormat &&
      format.numberFormat.size() < LXW_FORMAT_FIELD_LEN) {
    format_set_num_format(out, format.numberFormat.c_str());
  }
  if (format.fontName != plain.fontName) format_set_font_name(out, format.fontName.c_str());
  if (format.fontSize != plain.fontSize) format_set_font_size(out, format.fontSize);
  if (format.bold) format_set_bold(out);
  if (format.italic) format_set_italic(out);
  if (format.underline) format_set_underline(out, LXW_UNDERLINE_SINGLE);
  if (format.strikeout) format_set_font_strikeout(out);
  if (format.fontColor != automaticColor) {
    format_set_font_color(out, libraryColor(format.fontColor));
  }
  if (format.pattern != FillPattern::None) {
    format_set_pattern(
        out, format.pattern == FillPattern::Solid ? LXW_PATTERN_SOLID : LXW_PATTERN_GRAY_125);
    if (format.patternColor != automaticColor) {
      format_set_fg_color(out, libraryColor(format.patternColor));
    }
    if (format.pattern == FillPattern::Other && format.backgroundColor != automaticColor) {
      format_set_bg_color(out, libraryColor(format.backgroundColor));
    }
  }
  if (format.horizontal != plain.horizontal) format_set_align(out, horizontalOf(format.horizontal));
  if (format.vertical != plain.vertical) format_set_align(out, verticalOf(format.vertical));
  if (format.wrap) format_set_text_wrap(out);
  if (!format.locked) format_set_unlocked(out);
  if (format.formulaHidden) format_set_hidden(out);
  format_set_left(out, format.borderLeft);
  format_set_right(out, format.borderRight);
  format_set_top(out, format.borderTop);
  format_set_bottom(out, format.borderBottom);
}

class Writer {
 public:
  Writer(const Worksheet& book, const std::filesystem::path& path)
      : book_(book), workbook_(workbook_new(path.c_str())), path_(path) {
    if (workbook_ == nullptr) throw FileError("Cannot write " + path_.string());
  }

  // Closing is what writes the file, so it happens in finish, where it may fail.
  ~Writer() {
    if (workbook_ != nullptr) lxw_workbook_free(workbook_);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  void finish() {
    for (int sheet = 1; sheet <= book_.NumSheets(); ++sheet) addSheet(sheet);
    for (int sheet = 1; sheet <= book_.NumSheets(); ++sheet) writeSheet(sheet);
    writeNames();
    const lxw_error failed = workbook_close(std::exchange(workbook_, nullptr));
    if (failed != LXW_NO_ERROR) {
      throw FileError("Cannot write " + path_.string() + ": " + lxw_strerror(failed));
    }
  }

 private:
  void addSheet(int sheet) {
    const std::string name = book_.SheetName(sheet);
    if (workbook_validate_sheet_name(workbook_, name.c_str()) != LXW_NO_ERROR) {
      throw FileError("The sheet name " + name + " cannot stand in an .xlsx file");
    }
    sheets_.push_back(workbook_add_worksheet(workbook_, name.c_str()));
    if (sheets_.back() == nullptr) throw FileError("Cannot write the sheet " + name);
  }

  bool hidden(int sheet) const { return book_.sheetVisibility(sheet) != SheetVisibility::Visible; }

  // The sheet in front when the file opens: the current one, or the first that can be seen.
  int frontSheet() const {
    if (!hidden(book_.Sheet())) return book_.Sheet();
    for (int sheet = 1; sheet <= book_.NumSheets(); ++sheet) {
      if (!hidden(sheet)) return sheet;
    }
    return 1;
  }

  void writeSheet(int sheet) {
    lxw_worksheet* out = sheets_[static_cast<size_t>(sheet) - 1];
    writeColumns(out, sheet);
    for (const auto& [row, isHidden] : book_.hiddenRows(sheet)) {
      lxw_row_col_options options{};
      options.hidden = isHidden ? LXW_TRUE : LXW_FALSE;
      worksheet_set_row_opt(out, static_cast<lxw_row_t>(row - 1), LXW_DEF_ROW_HEIGHT, nullptr,
                            &options);
    }
    book_.cells(sheet).forEach(
        [&](int row, int column, const Cell& cell) { writeCell(out, sheet, row, column, cell); });
    if (book_.frozenRows(sheet) > 0) {
      worksheet_freeze_panes(out, static_cast<lxw_row_t>(book_.frozenRows(sheet)), 0);
    }
    const int front = frontSheet();
    if (sheet == front) {
      worksheet_activate(out);
      if (front > 1) worksheet_set_first_sheet(sheets_.front());
    } else if (hidden(sheet)) {
      worksheet_hide(out);
    }
  }

  void writeColumns(lxw_worksheet* out, int sheet) {
    std::map<int, double> widths = book_.columnWidths(sheet);
    for (const auto& [column, isHidden] : book_.hiddenColumns(sheet)) {
      if (isHidden) widths.try_emplace(column, LXW_DEF_COL_WIDTH);
    }
    for (const auto& [column, width] : widths) {
      lxw_row_col_options options{};
      options.hidden = book_.columnHidden(sheet, column) ? LXW_TRUE : LXW_FALSE;
      const auto place = static_cast<lxw_col_t>(column - 1);
      worksheet_set_column_opt(out, place, place, width, nullptr, &options);
    }
  }

  lxw_format* formatFor(std::uint32_t index, const std::string& numberFormat = {}) {
    if (index == 0 && numberFormat.empty()) return nullptr;
    lxw_format*& known = formats_[{index, numberFormat}];
    if (known == nullptr) {
      CellFormat format = book_.formats().at(index);
      if (!numberFormat.empty()) format.numberFormat = numberFormat;
      known = workbook_add_format(workbook_);
      fillFormat(known, format);
    }
    return known;
  }

  // A date counted from 1904, as the file counts it.
  double fileNumber(double number, std::uint32_t format) const {
    const bool shift = book_.dates1904() && isDateFormat(book_.formats().at(format).numberFormat);
    return shift ? number + days1904 : number;
  }

  void writeCell(lxw_worksheet* out, int sheet, int row, int column, const Cell& cell) {
    const auto r = static_cast<lxw_row_t>(row - 1);
    const auto c = static_cast<lxw_col_t>(column - 1);
    lxw_format* format = formatFor(cell.format);
    lxw_error failed = LXW_NO_ERROR;
    switch (cell.kind) {
      case ValueKind::Empty:
        failed = worksheet_write_blank(out, r, c, format);
        break;
      case ValueKind::Number:
        failed =
            std::isfinite(cell.number)
                ? worksheet_write_number(out, r, c, fileNumber(cell.number, cell.format), format)
                : writeError(out, r, c, ErrorCode::Num, format);
        break;
      case ValueKind::Boolean:
        failed = worksheet_write_boolean(out, r, c, cell.number != 0, format);
        break;
      case ValueKind::Error:
        failed = writeError(out, r, c, cell.error, format);
        break;
      case ValueKind::Formula:
        failed = cell.formula->array ? writeArrayCell(out, row, column, cell, format)
                                     : writeFormula(out, r, c, cell, format);
        break;
      default:
        failed = writeTextCell(out, r, c, cell);
        break;
    }
    if (failed != LXW_NO_ERROR) {
      throw FileError("Cell " + cellAddress(row, column) + " of sheet " + book_.SheetName(sheet) +
                      " cannot be written: " + lxw_strerror(failed));
    }
  }

  // The format has error values only as results of formulas; a formula that is just the error
  // calculates to it. Circular references have no error of their own there.
  static lxw_error writeError(lxw_worksheet* out, lxw_row_t r, lxw_col_t c, ErrorCode code,
                              lxw_format* format) {
    const std::string text(errorText(code == ErrorCode::Circular ? ErrorCode::Num : code));
    return worksheet_write_formula_str(out, r, c, ("=" + text).c_str(), format, text.c_str());
  }

  lxw_error writeFormula(lxw_worksheet* out, lxw_row_t r, lxw_col_t c, const Cell& cell,
                         lxw_format* format) {
    const std::string formula = "=" + xlsxFileFormula(cell.formula->text);
    const Value& cached = cell.formula->cached;
    if (cached.isNumber() && std::isfinite(cached.asNumber())) {
      return worksheet_write_formula_num(out, r, c, formula.c_str(), format,
                                         fileNumber(cached.asNumber(), cell.format));
    }
    return worksheet_write_formula_str(out, r, c, formula.c_str(), format, cached.asText().c_str());
  }

  // The first cell of a block carries the formula, the others only their values.
  lxw_error writeArrayCell(lxw_worksheet* out, int row, int column, const Cell& cell,
                           lxw_format* format) {
    const ArrayBlock& block = *cell.formula->array;
    const auto r = static_cast<lxw_row_t>(row - 1);
    const auto c = static_cast<lxw_col_t>(column - 1);
    const Value& cached = cell.formula->cached;
    if (row != block.row || column != block.column) {
      if (cached.isNumber()) return worksheet_write_number(out, r, c, cached.asNumber(), format);
      if (cached.isBoolean()) return worksheet_write_boolean(out, r, c, cached.asBoolean(), format);
      return worksheet_write_string(out, r, c, cached.asText().c_str(), format);
    }
    const std::string formula = "{=" + xlsxFileFormula(cell.formula->text) + "}";
    return worksheet_write_array_formula_num(
        out, r, c, static_cast<lxw_row_t>(row + block.rows - 2),
        static_cast<lxw_col_t>(column + block.columns - 2), formula.c_str(), format,
        cached.isNumber() ? cached.asNumber() : 0);
  }

  lxw_error writeTextCell(lxw_worksheet* out, lxw_row_t r, lxw_col_t c, const Cell& cell) {
    const std::string text(SharedText::viewOf(cell.text));
    if (cell.kind == ValueKind::NumericText) {
      const std::string decimals = plainDecimalFormat(text);
      if (!decimals.empty()) {
        const bool ownFormat = book_.formats().at(cell.format).numberFormat != "General";
        lxw_format* format = formatFor(cell.format, ownFormat ? std::string() : decimals);
        return worksheet_write_number(out, r, c, numberOf(text), format);
      }
    }
    return worksheet_write_string(out, r, c, text.c_str(), formatFor(cell.format));
  }

  void writeNames() {
    for (const DefinedName& name : book_.definedNames()) {
      std::string text = name.name;
      if (name.sheet > 0 && name.sheet <= book_.NumSheets()) {
        text = "'" + replaceAll(book_.SheetName(name.sheet), "'", "''") + "'!" + text;
      }
      // A name that the format does not take is of no use there, and no reason to lose the rest.
      workbook_define_name(workbook_, text.c_str(), ("=" + name.formula).c_str());
    }
  }

  const Worksheet& book_;
  lxw_workbook* workbook_;
  std::filesystem::path path_;
  std::vector<lxw_worksheet*> sheets_;
  std::map<std::pair<std::uint32_t, std::string>, lxw_format*> formats_;
};

}  // namespace

void writeXlsx(const Worksheet& book, const std::filesystem::path& path) {
  Writer(book, path).finish();
}

}  // namespace lodex
