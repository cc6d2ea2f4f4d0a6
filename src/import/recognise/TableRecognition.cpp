#include "import/recognise/TableRecognition.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "import/recognise/HeadingReader.h"
#include "import/recognise/IdentifierColumn.h"
#include "import/recognise/ResultText.h"
#include "import/recognise/TableEnd.h"
#include "import/recognise/Vocabulary.h"

namespace lodex {
namespace {

constexpr int searchedRows = 200;  // for the heading row
constexpr int looksBelow = 60;     // rows that tell what a column holds
constexpr int blockRows = 8;       // of captions above and below the heading row
constexpr int captionColumns = 4;  // in which captions of rows stand

class Recogniser {
 public:
  explicit Recogniser(const Worksheet& sheet)
      : sheet_(sheet), rows_(sheet.LastRow()), columns_(sheet.LastCol()) {
    // Cells far out cost nothing: only columns that hold something are looked at.
    for (int column = 1; column <= columns_; ++column) {
      if (sheet.cells(sheet.Sheet()).usedInColumn(column) > 0) used_.push_back(column);
    }
  }

  RecognisedTable run(int headingRow);

 private:
  const HeadingFacts& facts(const std::string& text);
  std::string text(int row, int column) const {
    return std::string(trimWhite(sheet_.TextRC(row, column)));
  }
  bool holdsValues(int row, int column) const;
  int score(int row);
  int findHeadingRow();
  bool findLong();
  bool findTransposed(int rowScore);
  void findBlock();
  Caption roleOf(int row);
  Caption captionIn(int row) const;
  bool isLimitRow(int row) const;
  bool take(Caption role, int row);
  bool namesSamples(int row) const;
  void describeColumns();
  void describeColumn(int column);
  std::string commonUnit() const;
  std::string dataHeading(int column) const;
  void dropCoordinates();

  const Worksheet& sheet_;
  int rows_;
  int columns_;
  std::vector<int> used_;  // columns with content
  std::unordered_map<std::string, HeadingFacts> read_;
  std::vector<int> analyteColumns_;
  RecognisedTable table_;
};

const HeadingFacts& Recogniser::facts(const std::string& text) {
  const auto [entry, isNew] = read_.try_emplace(text);
  if (isNew && !isNumericText(text)) entry->second = readHeading(text);
  return entry->second;
}

// Whether most of what stands below a cell are results. Rows of units, methods and limits may come
// in between.
bool Recogniser::holdsValues(int row, int column) const {
  int values = 0;
  int others = 0;
  for (int r = row + 1; r <= std::min(rows_, row + looksBelow); ++r) {
    const ResultText value = readResult(sheet_.TextRC(r, column));
    if (value.kind == ResultKind::Blank) continue;
    if (value.kind == ResultKind::Text) {
      ++others;
    } else {
      ++values;
    }
  }
  return values > 0 && values + 1 >= others;
}

// How many columns have an analyte in this row and results below. Bare analytes count a little
// more: a row of method codes such as "Au-AA23" reads as analytes, too.
int Recogniser::score(int row) {
  constexpr int perColumn = 10;
  int points = 0;
  std::set<std::string> seen;
  for (const int column : used_) {
    const std::string cell = text(row, column);
    if (cell.empty() || isNumericText(cell)) continue;
    const HeadingFacts& found = facts(cell);
    if (found.analyte.empty() || found.isUncertainty || !holdsValues(row, column)) continue;
    points += perColumn;
    if (found.method.empty()) points += 1;
    seen.insert(found.analyte);
  }
  // One element again and again is no row of headings.
  return seen.size() == 1 && points > 4 * perColumn ? 0 : points;
}

int Recogniser::findHeadingRow() {
  int best = 0;
  int points = 0;
  for (int row = 1; row <= std::min(rows_, searchedRows); ++row) {
    const int found = score(row);
    if (found <= points) continue;
    best = row;
    points = found;
  }
  return best;
}

bool Recogniser::findLong() {
  for (int row = 1; row <= std::min(rows_, 30); ++row) {
    RecognisedTable::LongColumns found;
    for (const int column : used_) {
      const auto note = [&](int& place) {
        if (place == 0) place = column;
      };
      switch (captionOf(text(row, column))) {
        case Caption::Analyte:
          note(found.analyte);
          break;
        case Caption::Value:
          note(found.value);
          break;
        case Caption::Unit:
          note(found.unit);
          break;
        case Caption::Method:
          note(found.method);
          break;
        case Caption::Qualifier:
          note(found.qualifier);
          break;
        case Caption::Sample:
          note(found.sample);
          break;
        default:
          break;
      }
    }
    if (found.analyte == 0 || found.value == 0 || found.sample == 0) continue;
    int analytes = 0;
    int filled = 0;
    for (int r = row + 1; r <= std::min(rows_, row + looksBelow); ++r) {
      const std::string cell = text(r, found.analyte);
      if (cell.empty()) continue;
      ++filled;
      if (!facts(cell).analyte.empty()) ++analytes;
    }
    if (filled < 2 || 5 * analytes < 3 * filled) continue;
    table_.layout = TableLayout::Long;
    table_.headingRow = row;
    table_.firstDataRow = row + 1;
    table_.lastDataRow = rows_;
    table_.idColumn = found.sample;
    table_.longColumns = found;
    return true;
  }
  return false;
}

// Analytes one below the other, results to their right.
bool Recogniser::findTransposed(int rowScore) {
  for (int column = 1; column <= std::min(columns_, captionColumns); ++column) {
    std::set<std::string> analytes;
    for (int row = 1; row <= std::min(rows_, searchedRows); ++row) {
      const std::string cell = text(row, column);
      if (cell.empty() || facts(cell).analyte.empty() || facts(cell).isUncertainty) continue;
      int values = 0;
      int others = 0;
      for (int c = column + 1; c <= std::min(columns_, column + looksBelow); ++c) {
        const ResultKind kind = readResult(sheet_.TextRC(row, c)).kind;
        if (kind == ResultKind::Text) ++others;
        if (kind != ResultKind::Text && kind != ResultKind::Blank) ++values;
      }
      if (values > 0 && values + 1 >= others) analytes.insert(facts(cell).analyte);
    }
    if (analytes.size() < 3 || 10 * static_cast<int>(analytes.size()) <= rowScore) continue;
    table_.layout = TableLayout::Transposed;
    table_.headingRow = column;
    return true;
  }
  return false;
}

// --- The rows around the heading row ---

Caption Recogniser::captionIn(int row) const {
  for (int column = 1; column <= std::min(columns_, captionColumns); ++column) {
    const Caption caption = captionOf(text(row, column));
    if (caption == Caption::Method || caption == Caption::Unit || caption == Caption::LowerLimit ||
        caption == Caption::UpperLimit) {
      return caption;
    }
  }
  return Caption::None;
}

// By its caption, else by what most of its cells in the columns of analytes are.
Caption Recogniser::roleOf(int row) {
  if (const Caption caption = captionIn(row); caption != Caption::None) return caption;
  int filled = 0;
  int units = 0;
  int methods = 0;
  for (const int column : analyteColumns_) {
    const std::string cell = text(row, column);
    if (cell.empty()) continue;
    ++filled;
    if (unitWord(cell).kind != UnitKind::None) ++units;
    if (isMethodText(cell)) {
      ++methods;
    } else if (const HeadingFacts& found = facts(cell);
               !found.analyte.empty() && !found.method.empty()) {
      ++methods;  // "Au-AA23"
    }
  }
  if (filled == 0) return Caption::None;
  if (5 * units >= 3 * filled) return Caption::Unit;
  if (5 * methods >= 3 * filled) return Caption::Method;
  return Caption::None;
}

// Small positive numbers over all analytes, and no name of a sample.
bool Recogniser::isLimitRow(int row) const {
  int numbers = 0;
  for (const int column : used_) {
    const std::string cell = text(row, column);
    if (cell.empty()) continue;
    const bool analyte = std::binary_search(analyteColumns_.begin(), analyteColumns_.end(), column);
    const ResultText value = readResult(cell);
    if (!analyte || !value.hasNumber || value.number <= 0) return false;
    ++numbers;
  }
  return 5 * numbers >= 3 * static_cast<int>(analyteColumns_.size());
}

bool Recogniser::take(Caption role, int row) {
  int* place = role == Caption::Method       ? &table_.methodRow
               : role == Caption::Unit       ? &table_.unitRow
               : role == Caption::LowerLimit ? &table_.lowerLimitRow
               : role == Caption::UpperLimit ? &table_.upperLimitRow
                                             : nullptr;
  if (place == nullptr || *place != 0) return false;
  *place = row;
  return true;
}

// "SAMPLE" or the like in front and no results: the row that captions the columns of samples.
bool Recogniser::namesSamples(int row) const {
  bool named = false;
  for (int column = 1; column <= std::min(columns_, captionColumns); ++column) {
    const Caption caption = captionOf(text(row, column));
    named = named || caption == Caption::Sample;
  }
  if (!named) return false;
  return std::none_of(analyteColumns_.begin(), analyteColumns_.end(), [&](int column) {
    const ResultKind kind = readResult(sheet_.TextRC(row, column)).kind;
    return kind != ResultKind::Blank && kind != ResultKind::Text;
  });
}

void Recogniser::findBlock() {
  for (int row = table_.headingRow - 1; row >= std::max(1, table_.headingRow - blockRows); --row) {
    const Caption role = roleOf(row);
    if (role == Caption::None || !take(role, row)) {
      const bool blank = std::all_of(analyteColumns_.begin(), analyteColumns_.end(),
                                     [&](int column) { return text(row, column).empty(); });
      if (!blank) break;
      continue;
    }
    if (namesSamples(row)) table_.sampleRow = row;
  }
  int row = table_.headingRow + 1;
  for (int passed = 0; row <= rows_ && passed < blockRows; ++row, ++passed) {
    bool blank = true;
    for (size_t i = 0; i < used_.size() && blank; ++i) blank = text(row, used_[i]).empty();
    if (blank) continue;
    if (take(roleOf(row), row)) {
      if (namesSamples(row) && table_.sampleRow == 0) table_.sampleRow = row;
      continue;
    }
    if (namesSamples(row)) {
      table_.sampleRow = row;
      continue;
    }
    if (captionIn(row) != Caption::None) continue;
    if (isLimitRow(row) && row < rows_ &&
        (take(Caption::LowerLimit, row) || take(Caption::UpperLimit, row))) {
      continue;
    }
    break;
  }
  table_.firstDataRow = std::min(row, rows_ + 1);
}

// --- Columns ---

// What heads a column that is no analyte: the heading row's cell, else that of the row of samples.
std::string Recogniser::dataHeading(int column) const {
  std::string heading = text(table_.headingRow, column);
  if (table_.sampleRow > 0 && (heading.empty() || captionOf(heading) == Caption::Analyte)) {
    const std::string other = text(table_.sampleRow, column);
    if (!other.empty()) heading = other;
  }
  return heading;
}

// The unit of all results, where a column of its own tells it and always the same.
std::string Recogniser::commonUnit() const {
  for (const int column : used_) {
    if (captionOf(dataHeading(column)) != Caption::Unit) continue;
    std::string unit;
    for (int row = table_.firstDataRow; row <= rows_; ++row) {
      const std::string cell = text(row, column);
      if (cell.empty()) continue;
      if (unit.empty()) unit = cell;
      if (unit != cell) return {};
    }
    return unit;
  }
  return {};
}

void Recogniser::describeColumn(int column) {
  RecognisedColumn& described = table_.columns[static_cast<size_t>(column) - 1];
  described.heading = dataHeading(column);
  const HeadingFacts& found = facts(text(table_.headingRow, column));
  const auto cell = [&](int row) { return row > 0 ? text(row, column) : std::string(); };
  const std::string unitCell = cell(table_.unitRow);
  described.unit = found.unit;
  described.unitText = found.unitText;
  described.method = found.method;
  std::vector<std::string> sources{"heading"};
  if (described.unitText.empty() && !unitCell.empty()) {
    const UnitWord word = unitWord(unitCell);
    described.unit = word.unit;
    described.unitText = unitCell;
    sources.emplace_back("row of units");
  }
  const std::string methodCell = cell(table_.methodRow);
  if (!methodCell.empty() && captionOf(methodCell) != Caption::Method) {
    if (described.method.empty()) described.method = methodCell;
    sources.emplace_back("row of methods");
  }
  if (found.analyte.empty()) {
    if (captionOf(described.heading) == Caption::Sample) described.method.clear();
    return;
  }
  described.how = join(sources, ", ");
  described.lowerLimit = cell(table_.lowerLimitRow);
  described.upperLimit = cell(table_.upperLimitRow);
  if (found.isUncertainty) {
    described.role = ColumnRole::Uncertainty;
    return;
  }
  const bool unitOfElse = !described.unitText.empty() &&
                          unitWord(described.unitText).kind == UnitKind::Other &&
                          described.unit.empty();
  int values = 0;
  int others = 0;
  for (int row = table_.firstDataRow; row <= std::min(rows_, table_.firstDataRow + looksBelow);
       ++row) {
    const ResultKind kind = readResult(sheet_.TextRC(row, column)).kind;
    if (kind == ResultKind::Text) ++others;
    if (kind != ResultKind::Text && kind != ResultKind::Blank) ++values;
  }
  if (unitOfElse || (values == 0 && others > 0) || others > values) return;
  described.role = ColumnRole::Assay;
  described.element = found.analyte;
}

// "X" and "Y", "E" and "N" are places on a map where they come in pairs.
void Recogniser::dropCoordinates() {
  std::set<std::string> headings;
  for (const RecognisedColumn& column : table_.columns) headings.insert(toUpper(column.heading));
  const bool map = headings.count("X") > 0 || headings.count("E") > 0 ||
                   headings.count("EASTING") > 0 || headings.count("EAST") > 0;
  if (!map) return;
  for (RecognisedColumn& column : table_.columns) {
    const std::string heading = toUpper(column.heading);
    if (column.unitText.empty() && (heading == "Y" || heading == "N")) {
      column.role = ColumnRole::Other;
      column.element.clear();
    }
  }
}

void Recogniser::describeColumns() {
  table_.columns.resize(static_cast<size_t>(columns_));
  for (const int column : used_) describeColumn(column);
  dropCoordinates();
  const std::string common = commonUnit();
  for (RecognisedColumn& column : table_.columns) {
    if (common.empty() || column.role != ColumnRole::Assay || !column.unitText.empty()) continue;
    column.unit = unitWord(common).unit;
    column.unitText = common;
    column.how += ", column of units";
  }
}

RecognisedTable Recogniser::run(int headingRow) {
  if (rows_ < 1 || columns_ < 1) return table_;
  const int best = headingRow > 0 ? headingRow : findHeadingRow();
  const int points = best > 0 && best <= rows_ ? score(best) : 0;
  constexpr int oneColumn = 11;
  if (headingRow == 0 && points <= oneColumn && findLong()) return table_;
  if (headingRow == 0 && findTransposed(points)) return table_;
  if (best == 0 || best > rows_ || (points == 0 && headingRow == 0)) return table_;
  table_.headingRow = best;
  for (const int column : used_) {
    const std::string cell = text(best, column);
    if (!cell.empty() && !facts(cell).analyte.empty()) analyteColumns_.push_back(column);
  }
  table_.layout = TableLayout::Rows;
  findBlock();
  describeColumns();
  table_.idColumn = findIdentifierColumn(sheet_, table_);
  if (table_.idColumn > 0) {
    RecognisedColumn& id = table_.columns[static_cast<size_t>(table_.idColumn) - 1];
    id.role = ColumnRole::Identifier;
    id.element.clear();
  }
  findTableEnd(sheet_, table_);
  return table_;
}

}  // namespace

int RecognisedTable::assayCount() const {
  return static_cast<int>(std::count_if(columns.begin(), columns.end(), [](const auto& column) {
    return column.role == ColumnRole::Assay;
  }));
}

RecognisedTable recogniseTable(const Worksheet& sheet, int headingRow) {
  return Recogniser(sheet).run(headingRow);
}

}  // namespace lodex
