#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "basic/Files.h"
#include "basic/Text.h"
#include "import/DataSheets.h"

namespace lodex {

/// A session without a screen, the shipped tables, an empty thesaurus and an empty list of sheets.
class ImportFixture : public testing::Test {
 protected:
  ImportFixture() {
    std::filesystem::create_directories(folder);
    session.record.UserPath = folder.string();
    session.record.GeoPath = folder.string();
    session.record.MineralDbPath = "minerals.mdb";
  }
  ~ImportFixture() override { std::filesystem::remove_all(folder); }

  static const taulukot& shippedTables() {
    static const taulukot tables = [] {
      taulukot loaded;
      loaded.load(LODEX_SOURCE_DIR "/data/reference");
      return loaded;
    }();
    return tables;
  }

  std::string path(std::string_view name) const { return (folder / name).string(); }
  std::string write(std::string_view name, std::string_view content) const {
    writeFileWhole(path(name), content);
    return path(name);
  }
  void addRule(const std::vector<std::string>& cells) {
    Worksheet& lib = thesaurus.F1Lib;
    lib.MaxCol(maxColumns);
    const int row = lib.LastRow() + 1;
    for (size_t i = 0; i < cells.size(); ++i) lib.TextRC(row, static_cast<int>(i) + 1, cells[i]);
    lib.MaxCol(11);
  }
  std::string logText() const { return session.log.txtLog.text(); }
  bool logHas(std::string_view line) const { return logText().find(line) != std::string::npos; }

  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("lodex-import-" + std::to_string(::getpid()) + "-" +
                                  testing::UnitTest::GetInstance()->current_test_info()->name());
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  frmSynonLib thesaurus{session};
  ImportContext context{session, shippedTables(), thesaurus};
  Form shell{"MDIMain"};
  DataSheets sheets{shell, context};
};

/// Fills the current sheet from rows of texts separated by "|".
inline void fill(Worksheet& sheet, const std::vector<std::string>& rows) {
  for (size_t row = 0; row < rows.size(); ++row) {
    const auto cells = split(rows[row], "|");
    for (size_t column = 0; column < cells.size(); ++column) {
      sheet.TextRC(static_cast<int>(row) + 1, static_cast<int>(column) + 1, cells[column]);
    }
  }
}

/// A row of the current sheet as one text, cells between "|".
inline std::string rowText(const Worksheet& sheet, int row) {
  std::vector<std::string> cells;
  for (int column = 1; column <= sheet.LastCol(); ++column) {
    cells.push_back(sheet.TextRC(row, column));
  }
  return join(cells, "|");
}

inline std::string columnText(const Worksheet& sheet, int column, int lastRow) {
  std::vector<std::string> cells;
  for (int row = 1; row <= lastRow; ++row) cells.push_back(sheet.TextRC(row, column));
  return join(cells, "|");
}

}  // namespace lodex
