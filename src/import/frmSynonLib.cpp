#include "import/frmSynonLib.h"

#include <algorithm>
#include <vector>

#include "basic/Error.h"
#include "basic/Files.h"
#include "import/SystemRows.h"
#include "import/ThesaurusStep.h"
#include "session/Ini.h"
#include "session/UserCopies.h"

namespace lodex {
namespace {

constexpr int titledColumns = static_cast<int>(thesaurusHeadings.size());
constexpr std::string_view textFilter = "Text files (*.txt)|*.txt|All files (*.*)|*.*";

}  // namespace

frmSynonLib::frmSynonLib(Session& session) : Form("frmSynonLib", "Thesaurus"), session_(session) {
  for (int column = 1; column <= titledColumns; ++column) {
    const std::string heading(thesaurusHeadings[static_cast<size_t>(column) - 1]);
    F1Lib.ColText(column, heading);
    mnuSort_.emplace_back(*this, "mnuSort" + std::to_string(column), "By " + heading);
    session_.setCommand(mnuSort_.back(), [this, column] { SortBy(column); });
  }
  F1Lib.MaxCol(titledColumns);
  session_.setCommand(mnuOpen, [this] { Open(); });
  session_.setCommand(mnuSave, [this] { Save(); });
  session_.setCommand(mnuSaveDefault, [this] { SaveAsDefault(); });
  session_.setCommand(mnuDeleteRow, [this] { DeleteRow(); });
  session_.setCommand(gridF1Lib, [this](int row, int column) { clickGrid(row, column); });
  keep(gridF1Lib.onEdit([this] { changed_ = true; }));
}

void frmSynonLib::Aukaise(std::string_view path) {
  Worksheet loaded;
  loaded.Read(path);
  session_.notice(loaded.ReadFindings());
  loaded.Sheet(1);
  for (int column = 1; column <= loaded.LastCol(); ++column) {
    loaded.ColText(column, loaded.TextRC(1, column));
  }
  // Older files have a column for minerals, which is not used any more.
  for (int column = loaded.LastCol(); column >= 1; --column) {
    if (loaded.ColText(column) == "Mineral") {
      loaded.DeleteRange(1, column, 1, column, Shift::Columns);
    }
  }
  if (loaded.LastRow() > 0) loaded.DeleteRange(1, 1, 1, 1, Shift::Rows);
  gridF1Lib.replace([&] {
    F1Lib = std::move(loaded);
    SortBy(thesaurus::valueColumn);
    F1Lib.MaxCol(titledColumns);
  });
  foundRow_ = 0;
  changed_ = false;
}

void frmSynonLib::SortBy(int column) {
  const int rows = F1Lib.LastRow();
  if (rows == 0 || column < 1) return;
  gridF1Lib.edit("Sort", [&] {
    const WideLimits wide(F1Lib);
    F1Lib.Sort(1, 1, rows, std::max(column, F1Lib.LastCol()), true, {{column, false}});
  });
}

void frmSynonLib::SaveAs(std::string_view path) {
  constexpr int headedColumns = 12;
  Worksheet file;
  file.CopyAll(F1Lib);
  file.MaxRow(maxRows);
  file.MaxCol(maxColumns);
  file.InsertRange(1, 1, 1, 1, Shift::Rows);
  for (int column = 1; column <= headedColumns; ++column) {
    file.TextRC(1, column, F1Lib.ColText(column));
  }
  file.Write(path, FileType::Text);
  changed_ = false;
}

void frmSynonLib::Open() {
  const auto files = session_.dialogs().openFiles(
      {"Open", std::string(textFilter), session_.record.UserPath + "\\data",
       session_.record.UserPath + "\\ini\\SynonLib.txt", false});
  if (!files.empty()) Aukaise(files.front());
}

void frmSynonLib::Save() {
  const auto path = session_.dialogs().saveFile(
      {"Save", std::string(textFilter), session_.record.UserPath + "\\data",
       session_.record.UserPath + "\\ini\\SynonLib.txt", false});
  if (path) SaveAs(*path);
}

void frmSynonLib::SaveAsDefault() {
  std::string& path = session_.record.ThesaurusFile;
  if (path.empty()) {
    const std::string standard = session_.record.GeoPath + "\\ini\\DefSynonLib.txt";
    const std::string& userIni = session_.record.UserIni;
    PutIni(userIni.empty() ? session_.record.MainIni : userIni, "Thesaurus", "File", standard);
    path = standard;
  }
  // The installation's own file may not be this user's to write.
  const std::string& userIni = session_.record.UserIni;
  if (pathExists(path) && !canWrite(path) && !userIni.empty()) {
    path = session_.record.UserPath + "\\ini\\SynonLib.txt";
    PutIni(userIni, "Thesaurus", "File", "+ini\\SynonLib.txt");
  }
  SaveAs(path);
}

void frmSynonLib::AddRule(std::string_view header) {
  if (header.empty()) {
    session_.dialogs().messageBox("Header is empty");
    return;
  }
  std::vector<int> rows;
  for (int row = 1; row <= F1Lib.LastRow(); ++row) {
    if (F1Lib.TextRC(row, thesaurus::valueColumn) == header) rows.push_back(row);
  }
  foundRow_ = rows.empty() ? 0 : rows.back();
  if (rows.empty()) {
    const int row = F1Lib.LastRow() + 1;
    gridF1Lib.edit("Insert rows", [&] {
      const WideLimits wide(F1Lib);
      F1Lib.TextRC(row, thesaurus::valueColumn, header);
    });
    showCurrent(row);
    return;
  }
  if (rows.size() > 1) {
    gridF1Lib.edit("Delete rows", [&] {
      for (auto row = rows.rbegin() + 1; row != rows.rend(); ++row) {
        F1Lib.DeleteRange(*row, 1, *row, 1, Shift::Rows);
        --foundRow_;
      }
    });
  }
  showCurrent(foundRow_);
}

void frmSynonLib::DeleteRow() {
  const int row = F1Lib.Row();
  if (row < 1 || row > F1Lib.LastRow()) {
    session_.dialogs().messageBox("Select row");
    return;
  }
  gridF1Lib.edit("Delete rows", [&] { F1Lib.DeleteRange(row, 1, row, 1, Shift::Rows); });
  showCurrent(row);
}

void frmSynonLib::clickGrid(int row, int column) {
  if (row < 1 || column < 1 || row > F1Lib.MaxRow() || column > F1Lib.MaxCol()) return;
  if (F1Lib.Row() != row || F1Lib.Col() != column) F1Lib.SetActiveCell(row, column);
  showValue(row);
}

void frmSynonLib::showCurrent(int row) {
  F1Lib.SetSelection(row, F1Lib.Col(), row, F1Lib.Col());
  showValue(row);
  gridF1Lib.refresh();
}

void frmSynonLib::showValue(int row) {
  lblValue.setCaption("Value: '" + F1Lib.TextRC(row, thesaurus::valueColumn) + "'");
}

}  // namespace lodex
