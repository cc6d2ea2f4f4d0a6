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

bool startsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

struct Extent {
  size_t first, end;  // character positions from 0, end exclusive
};

// The stretches of character positions at which at least one line has no blank.
std::vector<Extent> filledStretches(const std::vector<std::string_view>& lines) {
  std::vector<bool> filled;
  for (const std::string_view line : lines) {
    size_t next = 0;
    for (const char c : line) {
      if (!startsCharacter(c)) continue;
      if (next >= filled.size()) filled.resize(next + 1);
      if (c != ' ') filled[next] = true;
      ++next;
    }
  }
  std::vector<Extent> stretches;
  for (size_t i = 0; i < filled.size(); ++i) {
    if (!filled[i]) continue;
    if (stretches.empty() || stretches.back().end != i) stretches.push_back({i, i});
    stretches.back().end = i + 1;
  }
  return stretches;
}

std::vector<Extent> headingExtents(std::string_view heading, std::string_view separator) {
  std::vector<Extent> extents;
  size_t position = 0;
  size_t blanks = separator.size();
  for (const char c : heading) {
    if (!startsCharacter(c)) continue;
    if (c != ' ') {
      if (extents.empty() || blanks >= separator.size()) extents.push_back({position, position});
      extents.back().end = position + 1;
    }
    blanks = c == ' ' ? blanks + 1 : 0;
    ++position;
  }
  return extents;
}

// Character positions where the columns of aligned lines start, one for each heading; none when
// the stretches do not belong to one heading each.
std::vector<size_t> alignedStarts(const std::vector<std::string_view>& lines,
                                  std::string_view separator) {
  if (lines.empty()) return {};
  const std::vector<Extent> headings = headingExtents(lines.front(), separator);
  std::vector<size_t> starts;
  size_t heading = 0;
  for (const Extent& stretch : filledStretches(lines)) {
    while (heading < headings.size() && headings[heading].end <= stretch.first) ++heading;
    if (heading == headings.size() || headings[heading].first >= stretch.end) return {};
    if (heading + 1 < headings.size() && headings[heading + 1].first < stretch.end) return {};
    // Several stretches under one heading are words of that column.
    if (starts.size() == heading) starts.push_back(stretch.first);
  }
  return starts;
}

std::vector<std::string> cutAt(std::string_view line, const std::vector<size_t>& starts) {
  std::vector<std::string> fields(starts.size());
  size_t field = 0;
  size_t position = 0;
  for (const char c : line) {
    if (startsCharacter(c)) {
      while (field + 1 < starts.size() && position >= starts[field + 1]) ++field;
      ++position;
    }
    fields[field] += c;
  }
  for (std::string& text : fields) text = std::string(trimBlanks(text));
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
  // Of those that do equally well, the first one wins.
  const std::array<TextSplit, 6> candidates = {{{"\t", false, false},
                                                {";", false, true},
                                                {",", false, true},
                                                {"|", false, false},
                                                {"  ", true, false},
                                                {" ", true, false}}};
  TextSplit best;
  size_t bestLines = 0;
  for (const TextSplit& candidate : candidates) {
    // Blanks part words, too; they are looked at where nothing better parts the lines.
    if (candidate.collapseRuns && splitsEvenly(lines, best)) break;
    const size_t even = evenLines(lines, candidate);
    if (even > bestLines) {
      best = candidate;
      bestLines = even;
    }
  }
  return best;
}

bool splitsEvenly(const std::vector<std::string_view>& lines, const TextSplit& split) {
  if (split.separator.empty()) return false;
  constexpr size_t fewestColumns = 3;
  std::map<size_t, size_t> linesByCount;
  size_t filled = 0;
  size_t inColumns = 0;
  for (size_t i = 0; i < std::min(lines.size(), sampleLines); ++i) {
    if (trimWhite(lines[i]).empty()) continue;
    const size_t count = splitLine(lines[i], split).size();
    ++filled;
    ++linesByCount[count];
    if (count >= fewestColumns) ++inColumns;
  }
  // Lines of a certificate may end at their last value; nearly all have columns all the same.
  if (filled > 1 && 5 * inColumns >= 4 * filled) return true;
  return std::any_of(linesByCount.begin(), linesByCount.end(), [&](const auto& entry) {
    return entry.first >= fewestColumns && 5 * entry.second >= 3 * filled;
  });
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
  const std::vector<std::string_view> lines = textLines(text);
  std::vector<size_t> starts;
  if (split.collapseRuns) starts = alignedStarts(lines, split.separator);
  int row = 0;
  for (const std::string_view line : lines) {
    ++row;
    int column = 0;
    const auto fields = starts.size() > 1 ? cutAt(line, starts) : splitLine(line, split);
    for (const std::string& piece : fields) field(row, ++column, piece);
  }
}

Findings unevenLines(std::string_view text, const TextSplit& split) {
  Findings found;
  int first = 0, row = 0, fields = 0;
  bool blank = true;
  const auto endLine = [&] {
    if (row == 1) first = fields;
    if (row <= 1 || fields == first || blank) return;
    found.warn(
        "The line has more or fewer fields than the first line, which has " + std::to_string(first),
        {.row = row});
  };
  forEachField(text, split, [&](int r, int column, std::string_view content) {
    if (r != row) {
      endLine();
      row = r;
      blank = true;
    }
    fields = column;
    if (!content.empty()) blank = false;
  });
  endLine();
  return found;
}

std::string windowNameOf(std::string_view path) {
  const std::string file = fileNameOf(path);
  const std::string name = file.substr(0, file.find('.'));
  return name.empty() ? file : name;
}

}  // namespace lodex
