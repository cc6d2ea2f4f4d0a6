#include "session/frmReport.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "basic/Files.h"
#include "basic/Text.h"

namespace lodex {
namespace {

enum Column { SeverityColumn = 1, CountColumn, TextColumn, PlaceColumn };

constexpr const char* nothingYet = "Nothing was noticed so far";
constexpr const char* howToGo = "Click a line to go to its place";
constexpr size_t commandsKept = 20;
constexpr size_t placesListed = 20;  // of one finding
constexpr int rowsListed = 5000;     // the log has the rest

struct Look {
  const char* word;
  Color color;
};

const Look& lookOf(Severity severity) {
  static constexpr std::array<Look, 3> looks{
      {{"Note", automaticColor}, {"Warning", 0xB06000}, {"Error", 0xC00000}}};
  return looks[static_cast<size_t>(severity)];
}

std::string counted(size_t count, const std::string& word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

std::string summaryOf(const Findings& found) {
  std::string summary;
  for (const auto& [severity, word] :
       {std::pair(Severity::Error, "error"), std::pair(Severity::Warning, "warning")}) {
    const size_t count = found.count(severity);
    if (count == 0) continue;
    summary += (summary.empty() ? "" : ", ") + counted(count, word);
  }
  return summary;
}

// Without the mark of the letter for Alt and the dots of a question that follows.
std::string plainCaption(std::string_view caption) {
  std::string plain = replaceAll(std::string(caption), "&", "");
  return plain.ends_with("...") ? plain.substr(0, plain.size() - 3) : plain;
}

std::string timeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  std::array<char, 16> text{};
  const size_t length =
      std::strftime(text.data(), text.size(), "%H:%M:%S", ::localtime_r(&now, &local));
  return {text.data(), length};
}

}  // namespace

frmReport::frmReport(Session& session) : Form("frmReport", "Report"), session_(session) {
  notices_ = session_.onNotice(
      [this](std::string_view command, const Findings& found) { take(command, found); });
  chkNotes.setChecked(true);
  keep(chkNotes.onChange([this] { fill(); }));
  session_.setCommand(gridF1Report, [this](int row, int) { visit(row); });
  cmdCopy.setCommand([this] { session_.clipboard().setText(text()); });
  session_.setCommand(cmdSave, [this] { save(); });
  cmdClear.setCommand([this] { clear(); });
  cmdClose.setCommand([this] { hide(); });
  chkNotes.setToolTip("List notes as well: how something was understood");
  cmdCopy.setToolTip("Copy the report as text");
  cmdSave.setToolTip("Save the report as a text file");
  cmdClear.setToolTip("Empty the report; the log keeps everything");
  fill();
}

void frmReport::take(std::string_view command, const Findings& found) {
  const std::string name = plainCaption(command);
  commands_.push_front({timeOfDay() + (name.empty() ? "" : " ") + name, found});
  if (commands_.size() > commandsKept) commands_.pop_back();
  fill();
  if (onSummary) onSummary(summaryOf(found));
  if (found.hasErrors()) show();
}

void frmReport::clear() {
  commands_.clear();
  if (onSummary) onSummary("");
  fill();
}

// --- The table ---

void frmReport::fill() {
  gridF1Report.replace([this] { fillCells(); });
  lblPlace.setCaption(commands_.empty() ? nothingYet : howToGo);
  cmdCopy.setEnabled(!commands_.empty());
  cmdSave.setEnabled(!commands_.empty());
  cmdClear.setEnabled(!commands_.empty());
}

void frmReport::fillCells() {
  F1Report = Worksheet();
  places_.clear();
  F1Report.permissions().AllowInCellEditing = false;
  const int header = addRow({"Severity", "Count", "What", "Where"});
  F1Report.changeFormat(header, SeverityColumn, header, PlaceColumn,
                        [](CellFormat& format) { format.bold = true; });
  F1Report.FixedRows(header);
  F1Report.columnWidth(1, SeverityColumn, 12);
  F1Report.columnWidth(1, CountColumn, 7);
  F1Report.columnWidth(1, TextColumn, 70);
  F1Report.columnWidth(1, PlaceColumn, 40);
  for (const Noticed& command : commands_) {
    if (F1Report.LastRow() >= rowsListed) break;
    addCommand(command);
  }
  if (F1Report.LastRow() >= rowsListed) addRow({"", "", "The log has the findings before these"});
  F1Report.MaxRow(F1Report.LastRow());
  F1Report.MaxCol(PlaceColumn);
  F1Report.SetActiveCell(std::min(F1Report.LastRow(), header + 1), SeverityColumn);
}

void frmReport::addCommand(const Noticed& command) {
  const Findings& found = command.found;
  const std::string summary = summaryOf(found);
  const bool notesOnly = summary.empty();
  if (notesOnly && !chkNotes.checked()) return;
  const int title = addRow({"", "", command.title + ": " + (notesOnly ? "notes only" : summary)});
  F1Report.changeFormat(title, SeverityColumn, title, PlaceColumn,
                        [](CellFormat& format) { format.bold = true; });
  for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
    if (severity == Severity::Note && !chkNotes.checked()) continue;
    for (const Finding& finding : found.all()) {
      if (finding.severity == severity && F1Report.LastRow() < rowsListed) addFinding(finding);
    }
  }
}

void frmReport::addFinding(const Finding& finding) {
  const Place& first = finding.places.front();
  const int row = addRow(
      {lookOf(finding.severity).word, std::to_string(finding.count), finding.text, describe(first)},
      first);
  paint(row, finding.severity);
  const size_t listed = std::min(finding.places.size(), placesListed);
  for (size_t i = 1; i < listed; ++i) {
    addRow({"", "", "", describe(finding.places[i])}, finding.places[i]);
  }
  if (finding.count > listed && describe(first) != "") {
    addRow({"", "", "", "and " + std::to_string(finding.count - listed) + " more"});
  }
}

int frmReport::addRow(const std::vector<std::string>& cells, const Place& place) {
  places_.push_back(place);
  const int row = static_cast<int>(places_.size());
  for (size_t i = 0; i < cells.size(); ++i) {
    if (!cells[i].empty()) F1Report.TextRC(row, static_cast<int>(i) + 1, cells[i]);
  }
  return row;
}

void frmReport::paint(int row, Severity severity) {
  const Color color = lookOf(severity).color;
  if (color == automaticColor) return;
  F1Report.changeFormat(row, SeverityColumn, row, SeverityColumn, [color](CellFormat& format) {
    format.bold = true;
    format.fontColor = color;
  });
}

void frmReport::visit(int row) {
  lblPlace.setCaption(howToGo);
  if (row < 1 || row > static_cast<int>(places_.size())) return;
  const Place place = places_[static_cast<size_t>(row) - 1];
  if (place == Place{} || !goTo || goTo(place)) return;
  lblPlace.setCaption("This is not an open data sheet: " + describe(place));
}

// --- As text ---

std::string frmReport::text() const {
  std::string lines;
  for (int row = 1; row <= F1Report.LastRow(); ++row) {
    for (int column = SeverityColumn; column <= PlaceColumn; ++column) {
      if (column > SeverityColumn) lines += '\t';
      lines += F1Report.TextRC(row, column);
    }
    lines += "\r\n";
  }
  return lines;
}

void frmReport::save() {
  const auto path = session_.dialogs().saveFile(
      {"Save", "Text files (*.txt)|*.txt", session_.record.BasePath + "/data", "", false});
  if (path) writeFileWhole(*path, text());
}

}  // namespace lodex
