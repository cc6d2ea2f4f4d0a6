// Damaged workbooks: what is read is the whole file, or the loss is reported.
//
// A share of the cases runs always. With LODEX_DAMAGE=N each kind of file gets N times as many.
#include <gtest/gtest.h>

#include <unistd.h>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/ZipFile.h"
#include "worksheet/files/xls/OleFile.h"
#include "worksheet/files/xlsx/XlsxWriter.h"
#include "worksheet/xlsBytes.h"

namespace lodex {
namespace {

using namespace xlstest;

// A workbook as a laboratory or a method would have it, small enough for thousands of turns.
Worksheet sampleBook() {
  Worksheet book;
  book.NumSheets(2);
  for (int row = 1; row <= 24; ++row) {
    book.TextSRC(1, row, 1, "DH-" + std::to_string(row));
    book.NumberSRC(1, row, 2, row / 3.0);
    book.NumberSRC(1, row, 3, row);
    book.TextSRC(2, row, 2, "Text with more letters " + std::to_string(row));
    book.setFormulaWithValue(1, row, 4, "SUM(B1:B" + std::to_string(row) + ",Sheet2!A1)",
                             Value(row * 1.5));
    book.setFormulaWithValue(2, row, 5, "Sheet1!A" + std::to_string(row), Value::text("t"));
  }
  book.ValueSRC(2, 1, 1, Value::boolean(true));
  book.setArrayFormula(1, 1, 6, 3, 6, "C1:C3*2");
  for (int row = 1; row <= 3; ++row) book.setCachedValue(1, row, 6, Value(row * 2.0));
  CellFormat bold;
  bold.bold = true;
  for (int column = 1; column <= 6; ++column) book.setFormat(1, 25, column, bold);
  return book;
}

std::string oldStream() {
  std::string cells;
  for (unsigned row = 0; row < 24; ++row) {
    cells += record(0x0203, head(row, 0) + f64(row + 0.5)) +
             record(0x0204, head(row, 1) + text16("sample " + std::to_string(row)));
  }
  return record(0x0409, u16(0) + u16(0x10) + u16(0)) + record(0x0042, u16(1252)) +
         record(0x0200, u16(0) + u16(24) + u16(0) + u16(2) + u16(0)) + cells + record(0x000A);
}

std::string odsBytes() {
  std::string rows;
  for (int row = 1; row <= 24; ++row) {
    rows += "<table:table-row><table:table-cell office:value-type=\"float\" office:value=\"" +
            std::to_string(row) + "\"/><table:table-cell office:value-type=\"string\"><text:p>t" +
            std::to_string(row) + "</text:p></table:table-cell></table:table-row>";
  }
  return zipOf({{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
                {"content.xml",
                 "<office:document-content><office:body><office:spreadsheet>"
                 "<table:table table:name=\"A\">" +
                     rows +
                     "</table:table></office:spreadsheet></office:body>"
                     "</office:document-content>"}});
}

class Damage : public ::testing::Test {
 protected:
  void SetUp() override {
    const Worksheet book = sampleBook();
    const std::string xls = writeXls(book);
    files_ = {{"xls", xls},
              {"xls stream", ole::readStream(xls, {"Workbook"})->bytes},
              {"xls version 4", oldStream()},
              {"xlsx", writeXlsx(book)},
              {"ods", odsBytes()}};
    folder_ =
        std::filesystem::temp_directory_path() / ("lodex_damage" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    const char* times = std::getenv("LODEX_DAMAGE");
    times_ = times != nullptr ? std::max(1, std::atoi(times)) : 1;
    for (const auto& [name, bytes] : files_) {
      Worksheet whole;
      read(bytes, whole);
      EXPECT_EQ(whole.ReadFindings().count(Severity::Error), 0u) << name;
      EXPECT_EQ(whole.ReadFindings().count(Severity::Warning), 0u) << name;
      cells_[name] = countCells(whole);
    }
  }
  void TearDown() override {
    std::filesystem::remove_all(folder_);
    std::cout << "  " << whole_ << " read as whole, " << reported_ << " reported, " << refused_
              << " refused, longest " << longest_ << " s\n";
  }

  static size_t countCells(const Worksheet& book) {
    size_t count = 0;
    for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
      book.cells(sheet).forEach([&](int, int, const Cell& cell) {
        if (cell.kind != ValueKind::Empty) ++count;
      });
    }
    return count;
  }

  FileType read(const std::string& bytes, Worksheet& into) {
    const std::string path = pathText(folder_ / "file");
    writeFileWhole(path, bytes);
    return into.Read(path);
  }

  // Reads a damaged copy: fewer cells than the whole file has, without a word, is what must not be.
  void check(const std::string& name, const std::string& damaged, const std::string& how) {
    const auto start = std::chrono::steady_clock::now();
    Worksheet book;
    try {
      // What no longer begins as a workbook may still be a text.
      if (read(damaged, book) == FileType::Text) return;
      const Findings& found = book.ReadFindings();
      if (found.count(Severity::Error) + found.count(Severity::Warning) > 0) {
        ++reported_;
      } else {
        ++whole_;
        EXPECT_GE(countCells(book), cells_[name]) << name << ", " << how;
      }
    } catch (const FileError&) {
      ++refused_;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    longest_ = std::max(longest_, took.count());
  }

  std::vector<std::pair<std::string, std::string>> files_;
  std::map<std::string, size_t> cells_;
  std::filesystem::path folder_;
  int times_ = 1;
  size_t whole_ = 0, reported_ = 0, refused_ = 0;
  double longest_ = 0;
};

TEST_F(Damage, CutFilesAreNeverTakenForWhole) {
  std::mt19937 random(5);
  for (const auto& [name, bytes] : files_) {
    for (int turn = 0; turn < 8 * times_; ++turn) {
      const size_t size = turn == 0   ? bytes.size() / 2
                          : turn == 1 ? bytes.size() * 4 / 5
                                      : random() % bytes.size();
      check(name, bytes.substr(0, size), "cut to " + std::to_string(size) + " bytes");
    }
  }
}

TEST_F(Damage, ChangedBytesLoseNoCellInSilence) {
  std::mt19937 random(7);
  for (const auto& [name, bytes] : files_) {
    for (int turn = 0; turn < 60 * times_; ++turn) {
      std::string damaged = bytes;
      const size_t at = random() % bytes.size();
      std::string how = " at " + std::to_string(at);
      switch (turn % 5) {
        case 0:
        case 1:
          damaged[at] = static_cast<char>(damaged[at] ^ (1 << random() % 8));
          how = "flipped bit" + how;
          break;
        case 2:
          damaged[at] = static_cast<char>(random());
          how = "changed byte" + how;
          break;
        case 3:
          for (size_t i = at; i < std::min(bytes.size(), at + 512); ++i) damaged[i] = 0;
          how = "zeros" + how;
          break;
        default:
          damaged.erase(at, 1 + random() % 3);
          how = "removed bytes" + how;
          break;
      }
      check(name, damaged, how);
    }
  }
}

}  // namespace
}  // namespace lodex
