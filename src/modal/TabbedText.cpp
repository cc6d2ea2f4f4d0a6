#include "modal/TabbedText.h"

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"

namespace lodex {

namespace {

constexpr size_t kMaxBytes = 64 << 20;

std::vector<std::string> cellsOf(std::string_view line) {
  std::vector<std::string> cells = split(line, "\t");
  for (auto& cell : cells) cell = trimBlanks(cell);
  while (!cells.empty() && cells.back().empty()) cells.pop_back();
  return cells;
}

}  // namespace

TabbedText::TabbedText(std::string_view path) : name_(path) {
  const std::string content = readFile(path, kMaxBytes);
  std::string_view rest = content;
  if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);
  if (!isValidUtf8(rest)) throw FileError(name_ + " is not UTF-8 text");
  for (int line = 1; !rest.empty(); ++line) {
    const size_t end = rest.find('\n');
    std::string_view text = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    std::vector<std::string> cells = cellsOf(text);
    if (cells.empty()) continue;
    if (headings_.empty()) {
      for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].empty()) failAtLine(line, "a heading is empty");
        if (column(cells[i]) >= 0) failAtLine(line, "two columns are headed " + cells[i]);
        headings_.push_back(cells[i]);
      }
      continue;
    }
    if (cells.size() > headings_.size()) failAtLine(line, "there are more cells than headings");
    records_.push_back({line, std::move(cells)});
  }
  if (headings_.empty()) throw FileError(name_ + " is empty");
}

int TabbedText::column(std::string_view heading) const {
  for (size_t i = 0; i < headings_.size(); ++i) {
    if (equalsNoCase(headings_[i], heading)) return static_cast<int>(i);
  }
  return -1;
}

int TabbedText::required(std::string_view heading) const {
  const int found = column(heading);
  if (found < 0) throw FileError(name_ + " has no column " + std::string(heading));
  return found;
}

const std::string& TabbedText::cell(int record, int column) const {
  static const std::string kEmpty;
  const auto& cells = records_.at(static_cast<size_t>(record)).cells;
  if (column < 0 || column >= static_cast<int>(cells.size())) return kEmpty;
  return cells[static_cast<size_t>(column)];
}

std::string TabbedText::place(int record) const {
  const int line = records_.at(static_cast<size_t>(record)).line;
  return name_ + " line " + std::to_string(line) + ": ";
}

void TabbedText::fail(int record, std::string_view text) const {
  throw FileError(place(record) + std::string(text));
}

void TabbedText::failAtLine(int line, std::string_view text) const {
  throw FileError(name_ + " line " + std::to_string(line) + ": " + std::string(text));
}

}  // namespace lodex
