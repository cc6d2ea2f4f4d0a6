#include "import/recognise/TableEnd.h"

#include <algorithm>

#include "basic/Text.h"
#include "import/recognise/HeadingReader.h"
#include "import/recognise/ResultText.h"
#include "import/recognise/Vocabulary.h"

namespace lodex {
namespace {

class TableEnd {
 public:
  TableEnd(const Worksheet& sheet, RecognisedTable& table) : sheet_(sheet), table_(table) {
    for (size_t i = 0; i < table.columns.size(); ++i) {
      if (table.columns[i].role == ColumnRole::Assay) assays_.push_back(static_cast<int>(i) + 1);
    }
  }
  void run();

 private:
  enum class Row { Blank, Sample, Values, Control, Heading, Statistic, Note };

  std::string text(int row, int column) const {
    return column > 0 ? std::string(trimWhite(sheet_.TextRC(row, column))) : std::string();
  }
  Row kindOf(int row) const;
  bool isBlank(int row) const;
  bool hasResults(int row) const;
  bool repeatsHeading(int row) const;
  Caption captionIn(int row) const;
  void addSections(int firstRow);
  SectionKind kindOfSection(Row first) const;

  const Worksheet& sheet_;
  RecognisedTable& table_;
  std::vector<int> assays_;
};

bool TableEnd::isBlank(int row) const {
  if (sheet_.cells(sheet_.Sheet()).usedInRow(row) == 0) return true;
  for (int column = 1; column <= static_cast<int>(table_.columns.size()); ++column) {
    if (sheet_.HasContent(row, column) && !text(row, column).empty()) return false;
  }
  return true;
}

// A number, a value beyond a limit, or a word such as "NSS" in some column of results.
bool TableEnd::hasResults(int row) const {
  return std::any_of(assays_.begin(), assays_.end(), [&](int column) {
    if (!sheet_.HasContent(row, column)) return false;
    const ResultKind kind = readResult(sheet_.TextRC(row, column)).kind;
    return kind != ResultKind::Blank && kind != ResultKind::Text;
  });
}

bool TableEnd::repeatsHeading(int row) const {
  int analytes = 0;
  int filled = 0;
  for (const int column : assays_) {
    const std::string cell = text(row, column);
    if (cell.empty()) continue;
    ++filled;
    if (readResult(cell).kind == ResultKind::Text && !readHeading(cell).analyte.empty()) ++analytes;
  }
  return analytes > 0 && 5 * analytes >= 3 * filled;
}

Caption TableEnd::captionIn(int row) const {
  constexpr int captionColumns = 4;
  const int last = std::min(captionColumns, static_cast<int>(table_.columns.size()));
  Caption found = captionOf(text(row, table_.idColumn));
  for (int column = 1; column <= last && found == Caption::None; ++column) {
    found = captionOf(text(row, column));
  }
  return found;
}

TableEnd::Row TableEnd::kindOf(int row) const {
  if (sheet_.cells(sheet_.Sheet()).usedInRow(row) == 0) return Row::Blank;
  const std::string id = text(row, table_.idColumn);
  const bool results = hasResults(row);
  if (!results && isBlank(row)) return Row::Blank;
  const Caption caption = captionIn(row);
  if (results && (caption == Caption::LowerLimit || caption == Caption::UpperLimit))
    return Row::Note;
  if (results && !id.empty()) return caption == Caption::Statistic ? Row::Statistic : Row::Sample;
  if (results) return caption == Caption::Statistic ? Row::Statistic : Row::Values;
  if (caption == Caption::QualityControl) return Row::Control;
  if (repeatsHeading(row)) return Row::Heading;
  if (caption == Caption::Analyte || caption == Caption::Method || caption == Caption::Unit ||
      caption == Caption::LowerLimit || caption == Caption::UpperLimit ||
      caption == Caption::Sample) {
    return Row::Note;
  }
  // A sample that has no results at all: it has a short name and something beside it.
  constexpr size_t longName = 24;
  int filled = 0;
  for (int column = 1; column <= static_cast<int>(table_.columns.size()); ++column) {
    if (sheet_.HasContent(row, column)) ++filled;
  }
  const bool named = !id.empty() && id.size() <= longName && filled > 1;
  return named ? Row::Sample : Row::Note;
}

SectionKind TableEnd::kindOfSection(Row first) const {
  switch (first) {
    case Row::Control:
      return SectionKind::QualityControl;
    case Row::Heading:
      return SectionKind::SecondTable;
    case Row::Statistic:
      return SectionKind::Statistics;
    default:
      return SectionKind::Notes;
  }
}

void TableEnd::addSections(int firstRow) {
  for (int row = firstRow; row <= sheet_.LastRow(); ++row) {
    const Row kind = kindOf(row);
    if (kind == Row::Blank) continue;
    const bool starts =
        kind == Row::Control || kind == Row::Heading || kind == Row::Statistic || kind == Row::Note;
    const bool control =
        !table_.sections.empty() && table_.sections.back().kind == SectionKind::QualityControl;
    // Headings, captions and titles within quality control belong to it.
    const bool opens = table_.sections.empty() ||
                       (starts && !control && kindOfSection(kind) != table_.sections.back().kind);
    if (opens) table_.sections.push_back({kindOfSection(kind), row, row, {}});
    TableSection& section = table_.sections.back();
    section.lastRow = row;
    if (kind == Row::Sample || kind == Row::Statistic) {
      const std::string id = text(row, table_.idColumn);
      section.names.push_back(id.empty() ? text(row, 1) : id);
    }
  }
  // A repeated heading over nothing but standards and repeats is quality control without caption.
  for (TableSection& section : table_.sections) {
    if (section.kind != SectionKind::SecondTable || section.names.empty()) continue;
    const auto controls =
        std::count_if(section.names.begin(), section.names.end(),
                      [](const std::string& name) { return isControlName(name); });
    if (2 * controls > static_cast<std::ptrdiff_t>(section.names.size())) {
      section.kind = SectionKind::QualityControl;
    }
  }
}

void TableEnd::run() {
  int last = table_.firstDataRow - 1;
  for (int row = table_.firstDataRow; row <= sheet_.LastRow(); ++row) {
    const Row kind = kindOf(row);
    if (kind == Row::Control || kind == Row::Heading) break;
    if (kind == Row::Values) last = row;
    if (kind != Row::Sample) continue;
    last = row;
    ++table_.samples;
    if (isControlName(text(row, table_.idColumn))) table_.controlRows.push_back(row);
  }
  table_.lastDataRow = last;
  addSections(last + 1);
}

}  // namespace

void findTableEnd(const Worksheet& sheet, RecognisedTable& table) {
  if (table.firstDataRow == 0) return;
  TableEnd(sheet, table).run();
}

}  // namespace lodex
