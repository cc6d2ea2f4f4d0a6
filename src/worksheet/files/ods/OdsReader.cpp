#include "worksheet/files/ods/OdsReader.h"

#include <algorithm>
#include <unordered_map>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/DateText.h"
#include "worksheet/files/ReadBudget.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/ods/OdsParts.h"

namespace lodex {
namespace {

// A file says "repeat this row a million times" in a few bytes; no real one repeats more content
// than this.
constexpr long mostRepeatedCells = 5'000'000;
// Empty cells that carry a format in longer runs than this only colour the rest of the sheet.
constexpr int longestFormatRun = 256;

// "PT12H30M15S" in days.
double daysOfDuration(std::string_view text) {
  double days = 0;
  size_t start = 0;
  for (size_t pos = 0; pos < text.size(); ++pos) {
    const char c = text[pos];
    const double amount = numberOf(text.substr(start, pos - start));
    if (c == 'H') days += amount / 24;
    if (c == 'M') days += amount / 1440;
    if (c == 'S') days += amount / 86400;
    if (c != '.' && (c < '0' || c > '9')) start = pos + 1;
  }
  return !text.empty() && text.front() == '-' ? -days : days;
}

class StylesHandler : public XmlHandler {
 public:
  explicit StylesHandler(OdsStyles& styles) : styles_(styles) {}
  void start(std::string_view element, const XmlAttributes& attributes) override {
    styles_.start(element, attributes);
  }
  void end(std::string_view element) override { styles_.end(element); }
  void text(std::string_view text) override { styles_.text(text); }

 private:
  OdsStyles& styles_;
};

class ContentHandler : public XmlHandler {
 public:
  ContentHandler(OdsStyles& styles, size_t fileBytes, Worksheet& book)
      : styles_(styles), book_(book), budget_(fileBytes) {}

  std::vector<DefinedName> names;

  void start(std::string_view element, const XmlAttributes& attributes) override {
    if (foreignDepth_ > 0 || isForeign(element)) {
      ++foreignDepth_;
    } else if (sheet_ == 0 && element != "table") {
      outsideTables(element, attributes);
    } else if (element == "table") {
      startTable(attributes);
    } else if (element == "table-column") {
      startColumns(attributes);
    } else if (element == "table-row") {
      startRow(attributes);
    } else if (element == "table-cell" || element == "covered-table-cell") {
      startCell(attributes);
    } else if (inCell_) {
      textPart(element, attributes);
    } else {
      outsideTables(element, attributes);
    }
  }

  void end(std::string_view element) override {
    if (foreignDepth_ > 0) {
      --foreignDepth_;
    } else if (element == "table") {
      sheet_ = 0;
    } else if (element == "table-row") {
      finishRow();
    } else if (element == "table-cell" || element == "covered-table-cell") {
      finishCell();
    } else if (element == "p") {
      inParagraph_ = false;
    } else if (sheet_ == 0) {
      styles_.end(element);
    }
  }

  void text(std::string_view text) override {
    if (foreignDepth_ > 0) return;
    if (inParagraph_) {
      text_ += text;
    } else if (sheet_ == 0) {
      styles_.text(text);
    }
  }

 private:
  // Notes, pictures and recorded changes hold paragraphs and tables that are not the cells'.
  static bool isForeign(std::string_view element) {
    return element == "annotation" || element == "shapes" || element == "frame" ||
           element == "custom-shape" || element == "tracked-changes" || element == "dde-link";
  }

  struct PendingCell {
    int column = 0;
    int count = 0;
    Value value;
    std::string formula;
    std::string style;
    int blockRows = 0, blockColumns = 0;  // of an array formula
  };

  void outsideTables(std::string_view element, const XmlAttributes& attributes) {
    if (element == "null-date") {
      book_.dates1904(attributes("date-value").substr(0, 4) == "1904");
    } else if (element == "named-range" || element == "named-expression") {
      DefinedName name;
      name.name = attributes("name");
      name.formula = element == "named-range" ? odsReference(attributes("cell-range-address"))
                                              : odsFormula(attributes("expression"));
      name.sheet = sheet_;
      names.push_back(std::move(name));
    } else {
      styles_.start(element, attributes);
    }
  }

  void startTable(const XmlAttributes& attributes) {
    sheet_ = ++sheets_;
    if (sheet_ > 1) book_.InsertSheets(sheet_, 1);
    book_.SheetName(sheet_, attributes.prefixed("table", "name"));
    if (!styles_.tableShown(std::string(attributes("style-name")))) {
      book_.sheetVisibility(sheet_, SheetVisibility::Hidden);
    }
    row_ = 1;
    column_ = 1;
  }

  static int repeats(const XmlAttributes& attributes, std::string_view name) {
    return std::clamp(attributes.number(name, 1), 1, maxRows);
  }

  void startColumns(const XmlAttributes& attributes) {
    const int count = repeats(attributes, "number-columns-repeated");
    const std::string_view visibility = attributes("visibility");
    const int last = std::min(maxColumns, column_ + count - 1);
    for (int column = column_; column <= last && visibility == "collapse"; ++column) {
      book_.columnHidden(sheet_, column, true);
    }
    column_ += count;
  }

  void startRow(const XmlAttributes& attributes) {
    rowCount_ = repeats(attributes, "number-rows-repeated");
    rowHidden_ = attributes("visibility") == "collapse" || attributes("visibility") == "filter";
    column_ = 1;
    pending_.clear();
  }

  void startCell(const XmlAttributes& attributes) {
    inCell_ = true;
    cell_ = PendingCell();
    cell_.column = column_;
    cell_.count = std::min(repeats(attributes, "number-columns-repeated"), maxColumns + 1);
    cell_.style = attributes("style-name");
    cell_.formula = odsFormula(attributes("formula"));
    cell_.blockRows = attributes.number("number-matrix-rows-spanned", 0);
    cell_.blockColumns = attributes.number("number-matrix-columns-spanned", 0);
    type_ = attributes.prefixed("office", "value-type");
    isError_ = attributes.prefixed("calcext", "value-type") == "error";
    // The text of an error is in its paragraph only.
    hasStringValue_ = !isError_ && attributes.has("string-value");
    text_ = hasStringValue_ ? attributes("string-value") : std::string_view();
    paragraphs_ = 0;
    if (type_ == "date") {
      const auto serial = serialOfIsoDate(attributes("date-value"), book_.dates1904());
      if (serial) cell_.value = Value(*serial);
    } else if (type_ == "time") {
      cell_.value = Value(daysOfDuration(attributes("time-value")));
    } else if (type_ == "boolean") {
      cell_.value = Value::boolean(attributes("boolean-value") == "true");
    } else if (!type_.empty() && type_ != "string") {
      cell_.value = Value(numberOf(attributes.prefixed("office", "value")));
    }
  }

  void textPart(std::string_view element, const XmlAttributes& attributes) {
    if (element == "p") {
      if (hasStringValue_) return;
      if (++paragraphs_ > 1) text_ += '\n';
      inParagraph_ = true;
    } else if (!inParagraph_) {
      return;
    } else if (element == "s") {
      text_.append(static_cast<size_t>(std::clamp(attributes.number("c", 1), 1, 32767)), ' ');
    } else if (element == "tab") {
      text_ += '\t';
    } else if (element == "line-break") {
      text_ += '\n';
    }
  }

  void finishCell() {
    inCell_ = false;
    inParagraph_ = false;
    ErrorCode code = ErrorCode::Value;
    if (isError_) {
      errorFromText(text_, code);
      cell_.value = Value::error(code);
    } else if (type_ == "string" || (type_.empty() && !text_.empty())) {
      cell_.value = errorFromText(text_, code) ? Value::error(code) : Value::text(text_);
      budget_.takeText(text_);
    }
    column_ += cell_.count;
    const bool content = !cell_.value.isEmpty() || !cell_.formula.empty();
    if (!content && (cell_.style.empty() || cell_.count > longestFormatRun)) return;
    if (column_ - 1 > maxColumns) throw FileError("a sheet has a column beyond the last one");
    pending_.push_back(std::move(cell_));
  }

  void finishRow() {
    const bool content = std::any_of(pending_.begin(), pending_.end(), [](const auto& cell) {
      return !cell.value.isEmpty() || !cell.formula.empty();
    });
    if (!content && rowCount_ > longestFormatRun) pending_.clear();
    if (!pending_.empty() && row_ + rowCount_ - 1 > maxRows) {
      throw FileError("a sheet has a row beyond the last one");
    }
    for (int row = row_; row < row_ + rowCount_ && !pending_.empty(); ++row) {
      for (const PendingCell& cell : pending_) store(cell, row);
    }
    for (int row = row_; rowHidden_ && row < row_ + rowCount_ && row <= maxRows; ++row) {
      book_.rowHidden(sheet_, row, true);
    }
    row_ = std::min(row_ + rowCount_, maxRows + 1);
  }

  void store(const PendingCell& cell, int row) {
    stored_ += cell.count;
    if (stored_ - 1 > mostRepeatedCells && (cell.count > 1 || rowCount_ > 1)) {
      throw FileError("a sheet repeats cells without end");
    }
    const std::uint32_t format = formatIndex(cell.style);
    CellStore& cells = book_.cellsForReader(sheet_);
    for (int column = cell.column; column < cell.column + cell.count; ++column) {
      if (cell.value.isText()) budget_.showText(cell.value.textView().size());
      if (cell.blockRows > 0 && cell.blockColumns > 0) {
        const int lastRow = std::min(maxRows, row + cell.blockRows - 1);
        const int lastColumn = std::min(maxColumns, column + cell.blockColumns - 1);
        budget_.takeFormulas(
            static_cast<size_t>(lastRow - row + 1) * static_cast<size_t>(lastColumn - column + 1),
            cell.formula.size());
        book_.setArrayFormula(sheet_, row, column, lastRow, lastColumn, cell.formula);
        book_.setCachedValue(sheet_, row, column, cell.value);
      } else if (cell.formula.empty() && cells.at(row, column).kind == ValueKind::Formula) {
        book_.setCachedValue(sheet_, row, column, cell.value);
      } else if (cell.formula.empty()) {
        cells.set(row, column, cell.value);
      } else {
        budget_.takeFormulas(1, cell.formula.size());
        book_.setFormulaWithValue(sheet_, row, column, cell.formula, cell.value);
      }
      cells.setFormat(row, column, format);
      budget_.follow(cells);
    }
  }

  std::uint32_t formatIndex(const std::string& style) {
    if (style.empty()) return 0;
    const auto hit = formats_.find(style);
    if (hit != formats_.end()) return hit->second;
    return formats_[style] = book_.formats().indexOf(styles_.format(style));
  }

  OdsStyles& styles_;
  Worksheet& book_;
  ReadBudget budget_;
  std::unordered_map<std::string, std::uint32_t> formats_;
  int foreignDepth_ = 0;
  int sheet_ = 0;  // the open table, 0 between tables
  int sheets_ = 0;
  int row_ = 1, rowCount_ = 1;
  int column_ = 1;
  bool rowHidden_ = false;
  bool inCell_ = false, inParagraph_ = false, isError_ = false, hasStringValue_ = false;
  int paragraphs_ = 0;
  long stored_ = 0;
  std::string type_, text_;
  PendingCell cell_;
  std::vector<PendingCell> pending_;
};

}  // namespace

bool looksLikeOds(const ZipArchive& archive) {
  if (!archive.has("content.xml")) return false;
  if (!archive.has("mimetype")) return true;
  return archive.read("mimetype").find("opendocument.spreadsheet") != std::string::npos;
}

void readOds(const ZipArchive& archive, size_t fileBytes, Worksheet& into) {
  OdsStyles styles;
  if (archive.has("styles.xml")) {
    StylesHandler handler(styles);
    readXml(archive, "styles.xml", handler);
  }
  ContentHandler content(styles, fileBytes, into);
  readXml(archive, "content.xml", content);
  into.setDefinedNames(std::move(content.names));
}

void readOdsContent(std::string_view document, Worksheet& into) {
  OdsStyles styles;
  ContentHandler content(styles, document.size(), into);
  readXml(document, content);
}

}  // namespace lodex
