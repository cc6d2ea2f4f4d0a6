#include "import/frmDataIN.h"

#include <algorithm>
#include <cstdint>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "import/frmSplitDialog.h"
#include "session/Ini.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

// More raw cells than this are refused: they would take gigabytes.
constexpr std::int64_t mostRawCells = 30'000'000;

constexpr const char* settingsSection = "Import";
constexpr const char* allRowsKey = "LoadAllRows";

struct TextSize {
  int rows = 0;
  int columns = 0;
};

TextSize sizeOf(std::string_view text, const TextSplit& split) {
  TextSize size;
  forEachField(text, split, [&](int row, int column, std::string_view) {
    size.rows = row;
    size.columns = std::max(size.columns, column);
  });
  return size;
}

bool isStream(std::string_view path) {
  std::error_code ignored;
  const auto kind = std::filesystem::status(nativePath(path), ignored).type();
  return kind == std::filesystem::file_type::fifo || kind == std::filesystem::file_type::character;
}

// Whether a text that was read cell by cell between tabs is better taken by the text reader.
bool needsTextReader(const std::string& text) {
  const auto lines = textLines(text);
  if (lines.empty()) return false;
  return lines.front().find('\t') == std::string_view::npos ||
         lines.size() > static_cast<size_t>(frmDataIN::gridRows);
}

}  // namespace

frmDataIN::frmDataIN(ImportContext& context, std::string_view caption)
    : DataSheetForm(context, "frmDataIN", caption) {
  session().setCommand(mnuRenameWindow, [this] { RenameWindow(); });
  mnuLoadAllRows.setEnabled(false);
  session().setCommand(mnuLoadAllRows, [this] { LoadAllRows(); });
  const std::string& ini = session().record.UserIni;
  mnuAlwaysLoadAllRows.setChecked(GetIni(ini, settingsSection, allRowsKey) == "1");
  mnuAlwaysLoadAllRows.setEnabled(!ini.empty());
  session().setCommand(mnuAlwaysLoadAllRows, [this] {
    const bool always = !mnuAlwaysLoadAllRows.checked();
    PutIni(session().record.UserIni, settingsSection, allRowsKey, always ? "1" : "0");
    mnuAlwaysLoadAllRows.setChecked(always);
  });
}

void frmDataIN::OpenFile(std::string_view path, std::string_view kind, std::string_view separator,
                         bool identify) {
  if (path.empty()) return;
  gridF1D.replace([&] {
    readCells(path, kind, separator);
    F1D.Sheet(1);
    SourceSheet = F1D.SheetName(1);
    setCaption(windowNameOf(path));
    if (identify) AutoIdentify(true);
  });
  Changed = false;
}

void frmDataIN::forgetSource() {
  AD.Size(0, 0);
  setLoadedRows(0);
  TextSeparator.clear();
  SourceFile.clear();
  SourceSheet.clear();
  NotReadable.clear();
}

void frmDataIN::readCells(std::string_view path, std::string_view kind,
                          std::string_view separator) {
  FileType type = FileType::Text;
  std::string unread;  // why the file was not read as a workbook
  if (isStream(path)) {
    unread = "a stream can only be read as text";
  } else if (kind != "ASCII") {
    try {
      type = F1D.Read(path);
      session().notice(F1D.ReadFindings());
    } catch (const Error& failure) {
      unread = failure.what();
    }
  }
  SourceFile = path;
  bool readAsText = false;
  NotReadable.clear();
  if (type == FileType::Text) {
    const std::string bytes = readFile(path);
    if (!unread.empty() && (bytes.empty() || !looksLikeText(bytes))) NotReadable = unread;
    readAsText = kind == "ASCII" || !separator.empty() || !unread.empty() ||
                 needsTextReader(decodeText(bytes));
    if (readAsText) {
      readText(bytes, separator);
    } else {
      notice(unevenLines(decodeText(bytes), {"\t", false, true}));
    }
  }
  if (!readAsText) AD.Size(0, 0);
  if (!unread.empty()) {
    Findings found;
    found.warn("The file is taken as lines of text: " + unread);
    notice(std::move(found));
  }
}

void frmDataIN::notice(Findings found) {
  found.nameFile(SourceFile);
  session().notice(found);
}

TextSplit frmDataIN::askedSplit(std::string_view text, std::string_view separator) {
  if (!separator.empty()) return {std::string(separator), false, false};
  const auto lines = textLines(text);
  if (lines.empty()) return {};
  if (lines.front().find('\t') != std::string_view::npos) return {"\t", false, false};
  const TextSplit proposal = proposedSplit(lines);
  if (splitsEvenly(lines, proposal)) return proposal;
  frmSplitDialog dialog(lines.front(), proposal);
  session().dialogs().showModal(dialog);
  return dialog.split();
}

void frmDataIN::readText(std::string_view bytes, std::string_view separator) {
  const std::string text = decodeText(bytes);
  const TextSplit split = askedSplit(text, separator);
  TextSeparator = split.separator;
  fillFrom(text, split);
  notice(unevenLines(text, split));
  if (RowsNotLoaded() > 0) offerAllRows();
}

void frmDataIN::offerAllRows() {
  const std::string all = std::to_string(AD.RowCount());
  const std::string shown = std::to_string(loadedRows_);
  const bool always = context().loadAllRows || mnuAlwaysLoadAllRows.checked();
  const bool load =
      always || session().dialogs().messageBox(
                    fileNameOf(SourceFile) + " has " + all + " rows; the grid shows the first " +
                        shown + ".\nLoad all rows?",
                    MessageButtons::YesNo, MessageIcon::Question) == Answer::Yes;
  Findings found;
  if (!load) found.warn("The grid shows the first " + shown + " of " + all + " rows");
  if (load && loadedRows_ < maxRows) fillGrid(AD.RowCount());
  if (load && RowsNotLoaded() > 0) {
    found.add(Severity::Error, "A row beyond those that a sheet can hold was left out",
              {.row = maxRows + 1}, static_cast<size_t>(RowsNotLoaded()));
  }
  notice(std::move(found));
}

void frmDataIN::fillFrom(std::string_view text, const TextSplit& split) {
  const TextSize size = sizeOf(text, split);
  if (size.columns > maxColumns) {
    throw FileError("A line of the file has " + std::to_string(size.columns) +
                    " fields; a sheet has " + std::to_string(maxColumns) + " columns");
  }
  if (static_cast<std::int64_t>(size.rows) * size.columns > mostRawCells) {
    throw FileError("The file is too large: " + std::to_string(size.rows) + " lines of up to " +
                    std::to_string(size.columns) + " fields");
  }
  // As wide as the longest line, so that no field of any line is lost.
  AD.Size(size.rows, std::max(1, size.columns));
  const int rows = std::min(size.rows, context().loadAllRows ? maxRows : gridRows);
  F1D = Worksheet();
  forEachField(text, split, [this, rows](int row, int column, std::string_view field) {
    AD.Cell(column, row, field);
    if (row <= rows) F1D.TextRC(row, column, field);
  });
  setLoadedRows(rows);
}

void frmDataIN::fillGrid(int rows) {
  rows = std::min(rows, maxRows);
  F1D = Worksheet();
  for (int row = 1; row <= rows; ++row) {
    for (int column = 1; column <= AD.ColCount(); ++column) {
      const auto& field = AD.Cell(column, row);
      if (!field.empty()) F1D.TextRC(row, column, field);
    }
  }
  setLoadedRows(rows);
}

void frmDataIN::setLoadedRows(int rows) {
  loadedRows_ = rows;
  mnuLoadAllRows.setEnabled(RowsNotLoaded() > 0);
}

int frmDataIN::RowsNotLoaded() const {
  return std::max(0, AD.RowCount() - loadedRows_);
}

void frmDataIN::LoadAllRows() {
  if (RowsNotLoaded() == 0) return;
  if ((Changed || structure().highestRow() > 0) &&
      session().dialogs().messageBox("The sheet is filled again from its file; what was identified "
                                     "or edited in it is lost.\nLoad all rows?",
                                     MessageButtons::YesNo, MessageIcon::Question) != Answer::Yes) {
    return;
  }
  edit("Load all rows", [this](const DescribedSheet& sheet) {
    fillGrid(AD.RowCount());
    sheet.structure = {};
  });
  bIdentified = false;
}

void frmDataIN::takeSheet(const Worksheet& source, int sheet) {
  gridF1D.replace([&] {
    F1D = Worksheet();
    source.cells(sheet).forEach([&](int row, int column, const Cell& cell) {
      // Values, as pasting gives them: formulas would point into sheets of another workbook.
      F1D.ValueSRC(1, row, column, CellStore::valueOf(cell));
      if (cell.format != 0) F1D.setFormat(1, row, column, source.formats().at(cell.format));
    });
    F1D.dates1904(source.dates1904());
  });
}

void frmDataIN::RenameWindow() {
  const auto name =
      session().dialogs().inputBox("Give new name for window", "Window name", caption());
  if (name && !name->empty()) setCaption(*name);
}

void frmDataIN::Parse() {
  if (AD.RowCount() == 0) {
    DataSheetForm::Parse();
    return;
  }
  const std::string sample = F1D.TextRC(1, 1);
  frmSplitDialog dialog(sample, proposedSplit({sample}));
  session().dialogs().showModal(dialog);
  if (dialog.split().separator.empty()) return;
  gridF1D.edit("Parse", [&] {
    const WideLimits wide(F1D);
    for (int row = 1; row <= std::min(AD.RowCount(), loadedRows_); ++row) {
      int column = 0;
      for (int cell = 1; cell <= AD.ColCount(); ++cell) {
        for (const std::string& piece : splitLine(AD.Cell(cell, row), dialog.split())) {
          if (++column <= maxColumns) F1D.TextRC(row, column, piece);
        }
      }
    }
  });
}

void frmDataIN::close() {
  Form::close();
  if (onClosed) onClosed(*this);
}

}  // namespace lodex
