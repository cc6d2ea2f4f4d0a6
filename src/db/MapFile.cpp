#include "db/MapFile.h"

#include <array>
#include <string>
#include <utility>

#include "basic/Error.h"

namespace lodex {

namespace {

constexpr int kSheets = 4;
constexpr std::array<const char*, kSheets> kNames{"F1Key2", "F1Indx", "F1Avain", "F1Linkki"};
// What the usual kind of workbook holds.
constexpr int kWorkbookRows = 65536;
constexpr int kWorkbookColumns = 256;

std::array<Worksheet*, kSheets> sheetsOf(DatabaseMap& map) {
  return {&map.F1Key2, &map.F1Indx, &map.F1Avain, &map.F1Linkki};
}

std::array<const Worksheet*, kSheets> sheetsOf(const DatabaseMap& map) {
  return {&map.F1Key2, &map.F1Indx, &map.F1Avain, &map.F1Linkki};
}

void copyCells(const Worksheet& from, int fromSheet, Worksheet& to, int toSheet) {
  for (int row = 1; row <= from.LastRow(fromSheet); ++row) {
    for (int column = 1; column <= from.LastCol(fromSheet); ++column) {
      const Value value = from.ValueSRC(fromSheet, row, column);
      if (!value.isEmpty()) to.ValueSRC(toSheet, row, column, value);
    }
  }
}

}  // namespace

void readMapFile(std::string_view path, DatabaseMap& map) {
  Worksheet F1Key;
  const FileType kind = F1Key.Read(path);
  if (kind == FileType::Text || F1Key.NumSheets() < kSheets) {
    throw FileError(std::string(path) + " is no map of a database");
  }
  const auto sheets = sheetsOf(map);
  for (int i = 0; i < kSheets; ++i) {
    Worksheet& target = *sheets[static_cast<size_t>(i)];
    target = Worksheet();
    copyCells(F1Key, i + 1, target, 1);
  }
}

void writeMapFile(std::string_view path, const DatabaseMap& map) {
  Worksheet F1Key;
  F1Key.NumSheets(kSheets);
  bool fits = true;
  const auto sheets = sheetsOf(map);
  for (int i = 0; i < kSheets; ++i) {
    const Worksheet& source = *sheets[static_cast<size_t>(i)];
    F1Key.SheetName(i + 1, kNames[static_cast<size_t>(i)]);
    copyCells(source, 1, F1Key, i + 1);
    fits = fits && source.LastRow() <= kWorkbookRows && source.LastCol() <= kWorkbookColumns;
  }
  F1Key.Write(path, fits ? FileType::Excel : FileType::Native);
}

}  // namespace lodex
