// Files as laboratories deliver them, with what a person reads in them: tests/import/laboratory/
// holds a table and beside it its expectations, "name.expect":
//
//     samples<TAB>12                      rows of samples
//     first<TAB>K1001                     the first identifier
//     control<TAB>7                       rows of quality control, marked or left out
//     column<TAB>3<TAB>Au<TAB>ppm<TAB>Au-AA23   an assay: column of the file, element, unit ("?"
//                                         for unknown), method ("-" for none)
//
// Columns that are not named are no assays.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "basic/Numbers.h"
#include "import/ImportFixture.h"
#include "import/recognise/TableRecognition.h"

namespace lodex {
namespace {
namespace fs = std::filesystem;

struct ExpectedColumn {
  std::string element, unit, method;
};

struct Expectation {
  int samples = 0;
  int control = 0;
  std::string first;
  std::map<int, ExpectedColumn> columns;
  std::vector<ExpectedColumn> analytes;  // of tables that are turned or pivoted
};

Expectation readExpectation(const fs::path& path) {
  Expectation expected;
  for (const std::string& line : split(readFile(path.string()), "\n")) {
    const auto cells = split(line, "\t");
    if (cells[0] == "samples") expected.samples = *parseInteger(cells[1]);
    if (cells[0] == "control") expected.control = *parseInteger(cells[1]);
    if (cells[0] == "first") expected.first = cells[1];
    if (cells[0] == "column") {
      expected.columns[*parseInteger(cells[1])] = {cells[2], cells[3], cells[4]};
    }
    if (cells[0] == "analyte") expected.analytes.push_back({cells[1], cells[2], cells[3]});
  }
  return expected;
}

std::vector<fs::path> laboratoryFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(LODEX_SOURCE_DIR "/tests/import/laboratory")) {
    if (entry.path().extension() != ".expect") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class LaboratoryFiles : public ImportFixture, public testing::WithParamInterface<fs::path> {};

TEST_P(LaboratoryFiles, AreReadAsAPersonReadsThem) {
  const Expectation expected = readExpectation(fs::path(GetParam()).replace_extension(".expect"));
  sheets.openSources({GetParam().string()});
  ASSERT_GE(sheets.DataSheetCount(), 1);
  const Worksheet& cells = sheets.sheet(1).F1D;
  const RecognisedTable table = recogniseTable(cells);
  if (!expected.analytes.empty()) {
    EXPECT_NE(table.layout, TableLayout::Rows);
    EXPECT_NE(table.layout, TableLayout::Unknown);
    return;
  }
  ASSERT_EQ(table.layout, TableLayout::Rows);
  EXPECT_EQ(table.samples, expected.samples);
  EXPECT_EQ(cells.TextRC(table.firstDataRow, table.idColumn), expected.first);
  for (int column = 1; column <= static_cast<int>(table.columns.size()); ++column) {
    const RecognisedColumn& found = table.columns[static_cast<size_t>(column) - 1];
    const auto wanted = expected.columns.find(column);
    const std::string place = "column " + std::to_string(column) + " \"" + found.heading + "\"";
    if (wanted == expected.columns.end()) {
      EXPECT_NE(found.role, ColumnRole::Assay) << place;
      continue;
    }
    EXPECT_EQ(found.role, ColumnRole::Assay) << place;
    EXPECT_EQ(found.element, wanted->second.element) << place;
    EXPECT_EQ(found.unit.empty() ? "?" : found.unit,
              wanted->second.unit == "g/t" ? "ppm" : wanted->second.unit)
        << place;
    EXPECT_EQ(found.method.empty() ? "-" : found.method, wanted->second.method) << place;
  }
  size_t control = table.controlRows.size();
  for (const TableSection& section : table.sections) {
    if (section.kind == SectionKind::QualityControl) control += section.names.size();
  }
  EXPECT_EQ(static_cast<int>(control), expected.control);
}

INSTANTIATE_TEST_SUITE_P(All, LaboratoryFiles, testing::ValuesIn(laboratoryFiles()),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace lodex
