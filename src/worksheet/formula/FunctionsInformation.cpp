// What a value or a cell is.
#include "basic/A1.h"
#include "basic/Text.h"
#include "worksheet/NumberFormat.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

Operand fnErrorType(Evaluator&, Arguments a) {
  if (!a[0].isError()) return ErrorCode::NotAvailable;
  if (a[0].code == ErrorCode::Circular) return ErrorCode::NotAvailable;
  return static_cast<double>(a[0].code) + 1;
}

Operand fnIsBlank(Evaluator& ev, Arguments a) {
  const Operand value = ev.single(a[0]);
  return Operand::boolean(value.isEmpty());
}

Operand parity(Arguments a, bool odd) {
  const double whole = std::trunc(std::abs(a[0].number));
  return Operand::boolean((std::fmod(whole, 2) == 1) == odd);
}

Operand fnIsFormula(Evaluator& ev, Arguments a) {
  if (!a[0].isArea()) return ErrorCode::Value;
  const Area& area = a[0].area;
  return Operand::boolean(ev.book().cells(area.sheet).at(area.row1, area.column1).kind ==
                          ValueKind::Formula);
}

Operand fnN(Evaluator& ev, Arguments a) {
  const Operand value = ev.single(a[0]);
  if (value.isError()) return value;
  return value.isNumber() || value.isBoolean() ? value.number : 0.0;
}

Operand fnType(Evaluator& ev, Arguments a) {
  if (a[0].isArray() || (a[0].isArea() && !a[0].area.isCell())) return 64.0;
  const Operand value = ev.single(a[0]);
  switch (value.tag) {
    case Tag::Text:
      return 2.0;
    case Tag::Boolean:
      return 4.0;
    case Tag::Error:
      return 16.0;
    default:
      return 1.0;
  }
}

Operand fnSheet(Evaluator& ev, Arguments a) {
  if (a.empty()) return static_cast<double>(ev.place().sheet);
  if (a[0].isArea()) return static_cast<double>(a[0].area.sheet);
  if (!a[0].isText()) return ErrorCode::NotAvailable;
  const int sheet = ev.book().SheetNumber(a[0].view());
  return sheet == 0 ? Operand(ErrorCode::NotAvailable) : Operand(static_cast<double>(sheet));
}

Operand fnSheets(Evaluator& ev, Arguments a) {
  if (a.empty()) return static_cast<double>(ev.book().NumSheets());
  if (!a[0].isArea()) return ErrorCode::Value;
  return static_cast<double>(a[0].area.lastSheet - a[0].area.sheet + 1);
}

// Codes such as "F2" or ",0" for a cell's number format.
std::string formatCode(std::string_view format) {
  if (format.empty() || equalsNoCase(format, "General") || format == "@") return "G";
  if (isDateFormat(format)) {
    const std::string lower = toLower(format);
    const bool time = lower.find('h') != std::string::npos;
    const bool year = lower.find('y') != std::string::npos;
    const bool day = lower.find('d') != std::string::npos;
    if (time && !year) return lower.find('s') != std::string::npos ? "D8" : "D9";
    if (!year) return "D2";
    if (!day) return "D3";
    return lower.find("mmm") != std::string::npos ? "D1" : "D4";
  }
  const std::string_view positive = format.substr(0, format.find(';'));
  const size_t point = positive.find('.');
  size_t decimals = 0;
  if (point != std::string_view::npos) {
    while (point + 1 + decimals < positive.size() && positive[point + 1 + decimals] == '0')
      ++decimals;
  }
  char kind = 'F';
  if (positive.find('%') != std::string_view::npos)
    kind = 'P';
  else if (positive.find("E+") != std::string_view::npos)
    kind = 'S';
  else if (positive.find('$') != std::string_view::npos)
    kind = 'C';
  else if (positive.find(',') != std::string_view::npos)
    kind = ',';
  return std::string(1, kind) + std::to_string(decimals) +
         (format.find("[Red]") != std::string_view::npos ? "-" : "");
}

Operand fnCell(Evaluator& ev, Arguments a) {
  const std::string kind = toLower(a[0].view());
  Area area{ev.place().sheet,  ev.place().sheet, ev.place().row,
            ev.place().column, ev.place().row,   ev.place().column};
  if (given(a, 1)) {
    if (!a[1].isArea()) return a[1].isError() ? a[1] : Operand(ErrorCode::Value);
    area = a[1].area;
  }
  if (kind == "row") return static_cast<double>(area.row1);
  if (kind == "col") return static_cast<double>(area.column1);
  if (kind == "address") {
    std::string out = "$" + columnLetters(area.column1) + "$" + std::to_string(area.row1);
    if (area.sheet != ev.place().sheet) {
      SheetPrefix prefix;
      prefix.first = ev.book().SheetName(area.sheet);
      out = prefixText(prefix) + out;
    }
    return ev.text(std::move(out));
  }
  const CellFormat& format =
      ev.book().formats().at(ev.book().cells(area.sheet).format(area.row1, area.column1));
  if (kind == "format") return ev.text(formatCode(format.numberFormat));
  if (kind == "color") return format.numberFormat.find("[Red]") != std::string::npos ? 1.0 : 0.0;
  if (kind == "parentheses") return format.numberFormat.find("(0") != std::string::npos ? 1.0 : 0.0;
  if (kind == "protect") return format.locked ? 1.0 : 0.0;
  if (kind == "width") {
    const double width = ev.book().columnWidth(area.sheet, area.column1);
    return width == 0 ? 8.0 : std::round(width);
  }
  // Without its folder, which the workbook does not know; people cut the sheet's name off its end.
  if (kind == "filename")
    return ev.text("[" + ev.book().Title() + "]" + ev.book().SheetName(area.sheet));
  const Operand value = ev.cell(area.sheet, area.row1, area.column1);
  if (kind == "contents") return value.isEmpty() ? Operand(0.0) : value;
  if (kind == "type") return Operand::text(value.isEmpty() ? "b" : value.isText() ? "l" : "v");
  if (kind == "prefix") {
    if (!value.isText()) return Operand::text("");
    switch (format.horizontal) {
      case HorizontalAlignment::Right:
        return Operand::text("\"");
      case HorizontalAlignment::Center:
        return Operand::text("^");
      case HorizontalAlignment::Fill:
        return Operand::text("\\");
      default:
        return Operand::text("'");
    }
  }
  return ErrorCode::Value;
}

Operand fnInfo(Evaluator& ev, Arguments a) {
  const std::string kind = toLower(a[0].view());
  if (kind == "numfile") return static_cast<double>(ev.book().NumSheets());
  if (kind == "recalc") return Operand::text("Automatic");
  if (kind == "release") return Operand::text("0.1");
  if (kind == "system") return Operand::text("pcdos");
  if (kind == "origin") return Operand::text("$A:$A$1");
  if (kind == "directory" || kind == "osversion") return Operand::text("");
  return ErrorCode::Value;
}

constexpr FunctionInfo table[] = {
    {"NA", 0, 0, 10, "", [](Evaluator&, Arguments) { return Operand(ErrorCode::NotAvailable); }},
    {"ISNUMBER", 1, 1, 128, "E",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].isNumber()); }},
    {"ISTEXT", 1, 1, 127, "E",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].isText()); }},
    {"ISNONTEXT", 1, 1, 190, "E",
     [](Evaluator&, Arguments a) { return Operand::boolean(!a[0].isText()); }},
    {"ISLOGICAL", 1, 1, 198, "E",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].isBoolean()); }},
    {"ISBLANK", 1, 1, 129, "E", fnIsBlank},
    {"ISERROR", 1, 1, 3, "E",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].isError()); }},
    {"ISERR", 1, 1, 126, "E",
     [](Evaluator&, Arguments a) {
       return Operand::boolean(a[0].isError() && a[0].code != ErrorCode::NotAvailable);
     }},
    {"ISNA", 1, 1, 2, "E",
     [](Evaluator&, Arguments a) {
       return Operand::boolean(a[0].isError() && a[0].code == ErrorCode::NotAvailable);
     }},
    {"ISREF", 1, 1, 105, "R",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].isReference()); }},
    {"ISODD", 1, 1, addIn, "N", [](Evaluator&, Arguments a) { return parity(a, true); }},
    {"ISEVEN", 1, 1, addIn, "N", [](Evaluator&, Arguments a) { return parity(a, false); }},
    {"ISFORMULA", 1, 1, newer, "R", fnIsFormula},
    {"ERROR.TYPE", 1, 1, 261, "E", fnErrorType},
    {"N", 1, 1, 131, "R", fnN},
    {"TYPE", 1, 1, 86, "R", fnType},
    {"SHEET", 0, 1, newer, "R", fnSheet},
    {"SHEETS", 0, 1, newer, "R", fnSheets},
    {"CELL", 1, 2, 125, "TR", fnCell, true},
    {"INFO", 1, 1, 244, "T", fnInfo, true},
};

}  // namespace

FunctionList informationFunctions() {
  return table;
}

}  // namespace lodex::formula
