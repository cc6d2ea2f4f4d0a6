#include "import/TextLines.h"

#include <algorithm>
#include <array>
#include <map>

#include "basic/Files.h"
#include "basic/Text.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

constexpr size_t sampleLines = 50;

std::vector<std::string> splitAligned(std::string_view line, std::string_view separator) {
  line = trimBlanks(line);
  std::vector<std::string> fields;
  size_t start = 0;
  while (true) {
    const size_t end = std::min(line.find(separator, start), line.size());
    fields.emplace_back(line.substr(start, end - start));
    if (end == line.size()) return fields;
    start = std::min(line.find_first_not_of(' ', end), line.size());
  }
}

std::vector<std::string> splitQuoted(std::string_view line, char separator) {
  std::vector<std::string> fields;
  splitCells(line, separator, [&](int row, int, std::string_view text) {
    if (row == 1) fields.emplace_back(text);
  });
  if (fields.empty()) fields.emplace_back();
  return fields;
}

// How many of the lines share the most frequent number of fields above one.
size_t evenLines(const std::vector<std::string_view>& lines, const TextSplit& split) {
  std::map<size_t, size_t> linesByCount;
  size_t best = 0;
  for (size_t i = 0; i < std::min(lines.size(), sampleLines); ++i) {
    const size_t count = splitLine(lines[i], split).size();
    if (count > 1) best = std::max(best, ++linesByCount[count]);
  }
  return best;
}

}  // namespace

std::vector<std::string> SplitRivi(std::string_view line, std::string_view separator) {
  if (separator.empty()) return {std::string(line)};
  return split(line, separator);
}

TextSplit proposedSplit(const std::vector<std::string_view>& lines) {
  // In the order in which they are believed where several do equally well.
  const std::array<TextSplit, 6> candidates = {{{"\t", false, false},
                                                {";", false, true},
                                                {",", false, true},
                                                {"|", false, false},
                                                {"  ", true, false},
                                                {" ", true, false}}};
  TextSplit best;
  size_t bestLines = 0;
  for (const TextSplit& candidate : candidates) {
    const size_t even = evenLines(lines, candidate);
    if (even > bestLines) {
      best = candidate;
      bestLines = even;
    }
  }
  return best;
}

std::vector<std::string> splitLine(std::string_view line, const TextSplit& split) {
  if (split.collapseRuns && !split.separator.empty()) return splitAligned(line, split.separator);
  if (split.quotes && split.separator.size() == 1) return splitQuoted(line, split.separator[0]);
  return SplitRivi(line, split.separator);
}

void forEachField(std::string_view text, const TextSplit& split,
                  const std::function<void(int, int, std::string_view)>& field) {
  if (split.quotes && split.separator.size() == 1) {
    splitCells(text, split.separator[0], field);
    return;
  }
  int row = 0;
  for (const std::string_view line : textLines(text)) {
    ++row;
    int column = 0;
    for (const std::string& piece : splitLine(line, split)) field(row, ++column, piece);
  }
}

std::string windowNameOf(std::string_view path) {
  const std::string file = fileNameOf(path);
  const std::string name = file.substr(0, file.find('.'));
  return name.empty() ? file : name;
}

}  // namespace lodex
