#include "import/recognise/IdentifierColumn.h"

#include <algorithm>
#include <unordered_set>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "import/recognise/Vocabulary.h"

namespace lodex {
namespace {

constexpr int sampledRows = 200;

struct ColumnLook {
  int filled = 0;
  int different = 0;
  int withLetters = 0;
  int decimals = 0;
  int dates = 0;
  int longTexts = 0;
  bool running = true;  // 1, 2, 3 ...
};

bool hasLetter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) >= 0x80;
  });
}

// "2023-06-01", "03/05/2023", "10:15:00".
bool looksLikeDate(std::string_view text) {
  const auto count = [&](char c) { return std::count(text.begin(), text.end(), c); };
  if (hasLetter(text) || text.size() < 6 || text.size() > 19) return false;
  const bool parts = count('-') == 2 || count('/') == 2 || count(':') >= 1 || count('.') == 2;
  const auto digits =
      std::count_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  return parts && digits >= 4 && text.find("20") != std::string_view::npos;
}

ColumnLook lookAt(const Worksheet& sheet, const RecognisedTable& table, int column) {
  ColumnLook look;
  std::unordered_set<std::string> seen;
  double before = 0;
  const int last = std::min(sheet.LastRow(), table.firstDataRow + sampledRows - 1);
  for (int row = table.firstDataRow; row <= last; ++row) {
    const std::string text(trimWhite(sheet.TextRC(row, column)));
    if (text.empty()) continue;
    constexpr size_t wordy = 30;
    ++look.filled;
    if (seen.insert(text).second) ++look.different;
    if (hasLetter(text)) ++look.withLetters;
    if (looksLikeDate(text)) ++look.dates;
    if (text.size() > wordy) ++look.longTexts;
    const auto number = parseNumber(text);
    if (number && text.find('.') != std::string::npos) ++look.decimals;
    const bool follows =
        number &&
        (look.filled == 1 ? *number == 0 || *number == 1 || *number == 101 : *number == before + 1);
    look.running = look.running && follows;
    before = number.value_or(0);
  }
  look.running = look.running && look.filled > 2;
  return look;
}

// What a heading or caption says for or against identifiers in its column.
double pointsOf(Caption caption) {
  switch (caption) {
    case Caption::Sample:
      return 60;
    case Caption::WeakSample:
      return 25;
    case Caption::Analyte:
    case Caption::Method:
    case Caption::Unit:
      return 15;
    case Caption::RunningNumber:
      return -15;
    case Caption::Description:
      return -40;
    default:
      return 0;
  }
}

double points(const Worksheet& sheet, const RecognisedTable& table, int column) {
  double sum = pointsOf(captionOf(table.columns[static_cast<size_t>(column) - 1].heading));
  for (const int row : {table.sampleRow, table.methodRow, table.unitRow}) {
    const std::string caption = row > 0 ? sheet.TextRC(row, column) : std::string();
    if (!caption.empty()) sum = std::max(sum, pointsOf(captionOf(caption)));
  }
  const ColumnLook look = lookAt(sheet, table, column);
  if (look.filled == 0) return -1;
  const int rows =
      std::min(sheet.LastRow(), table.firstDataRow + sampledRows - 1) - table.firstDataRow + 1;
  const double filled = look.filled;
  sum += 30 * look.different / filled;
  sum -= 40 * (1 - filled / std::max(1, rows));
  sum += 10 * look.withLetters / filled;
  sum -= 25 * look.decimals / filled;
  sum -= 35 * look.dates / filled;
  sum -= 15 * look.longTexts / filled;
  if (look.running) sum -= 25;
  return sum - 2 * std::min(column, 10);
}

}  // namespace

int findIdentifierColumn(const Worksheet& sheet, const RecognisedTable& table) {
  int best = 0;
  double most = 0;
  for (size_t i = 0; i < table.columns.size(); ++i) {
    const ColumnRole role = table.columns[i].role;
    if (role == ColumnRole::Assay || role == ColumnRole::Uncertainty) continue;
    const int column = static_cast<int>(i) + 1;
    if (sheet.cells(sheet.Sheet()).usedInColumn(column) == 0) continue;
    const double found = points(sheet, table, column);
    if (found <= most) continue;
    best = column;
    most = found;
  }
  return best;
}

}  // namespace lodex
