// Builds workbooks from folders of tab-separated sheets: every folder below SOURCE that holds
// "1-Name.tsv", "2-Name.tsv" ... becomes a .xls of its name at the same place below TARGET.

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;

using SheetFiles = std::map<int, fs::path>;  // by place in the workbook

SheetFiles sheetFilesIn(const fs::path& folder) {
  SheetFiles files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".tsv") continue;
    const std::string name = entry.path().stem().string();
    const auto place = parseInteger(std::string_view(name).substr(0, name.find('-')));
    const bool named = name.find('-') != std::string::npos && name.back() != '-';
    if (!place || !named || !files.emplace(*place, entry.path()).second) {
      throw FileError("No sheet, or a second one at its place: " + pathText(entry.path()));
    }
  }
  int expected = 1;
  for (const auto& [place, file] : files) {
    if (place != expected++) throw FileError("A sheet is missing before " + pathText(file));
  }
  return files;
}

// Columns as wide as what they show, within reason.
void setWidths(Worksheet& book, int sheet) {
  for (int column = 1; column <= book.LastCol(sheet); ++column) {
    size_t widest = 8;
    for (int row = 1; row <= book.LastRow(sheet); ++row) {
      if (book.HasFormula(sheet, row, column)) continue;
      widest = std::max(widest, characterCount(book.TextSRC(sheet, row, column)) + 2);
    }
    book.columnWidth(sheet, column, static_cast<double>(std::min<size_t>(widest, 60)));
  }
}

void readSheet(Worksheet& book, int sheet, const fs::path& file) {
  const std::string name = file.stem().string();
  book.SheetName(sheet, name.substr(name.find('-') + 1));
  splitCells(decodeText(readFile(pathText(file))), '\t',
             [&](int row, int column, std::string_view text) {
               if (!text.empty()) book.EntrySRC(sheet, row, column, text);
             });
  setWidths(book, sheet);
}

// Formulas of a shipped workbook must all be understood; the first that is not is named.
void checkFormulas(const Worksheet& book) {
  if (book.recalcReport().notComputed == 0) return;
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    for (int row = 1; row <= book.LastRow(sheet); ++row) {
      for (int column = 1; column <= book.LastCol(sheet); ++column) {
        const std::string problem = book.formulaProblem(sheet, row, column);
        if (problem.empty()) continue;
        throw Error(book.SheetName(sheet) + "!" + cellAddress(row, column) + ": " + problem);
      }
    }
  }
}

void buildBook(const SheetFiles& files, const fs::path& target) {
  Worksheet book;
  book.NumSheets(static_cast<int>(files.size()));
  for (const auto& [place, file] : files) readSheet(book, place, file);
  book.Recalc();
  checkFormulas(book);
  fs::create_directories(target.parent_path());
  book.Write(pathText(target), FileType::Excel);
}

int buildAll(const fs::path& source, const fs::path& target) {
  int books = 0;
  for (const auto& entry : fs::recursive_directory_iterator(source)) {
    if (!entry.is_directory()) continue;
    const SheetFiles files = sheetFilesIn(entry.path());
    if (files.empty()) continue;
    fs::path book = target / fs::relative(entry.path(), source);
    book += ".xls";
    try {
      buildBook(files, book);
    } catch (const Error& failure) {
      throw Error(pathText(entry.path()) + ": " + failure.what());
    }
    ++books;
  }
  return books;
}

}  // namespace
}  // namespace lodex

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: lodex-buildmethods SOURCE-FOLDER TARGET-FOLDER\n";
    return 2;
  }
  try {
    std::cout << lodex::buildAll(argv[1], argv[2]) << " workbooks\n";
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "lodex-buildmethods: " << failure.what() << '\n';
    return 1;
  }
}
