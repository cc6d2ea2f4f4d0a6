// Files that ask for more than they hold: refused in words, within the memory and time of any other
// small file.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/ZipFile.h"
#include "worksheet/xlsBytes.h"

namespace lodex {
namespace {

std::string repeated(std::string_view piece, int times) {
  std::string all;
  all.reserve(piece.size() * static_cast<size_t>(times));
  for (int i = 0; i < times; ++i) all += piece;
  return all;
}

std::string relation(const std::string& id, const std::string& type, const std::string& target) {
  return "<Relationship Id=\"" + id + "\" Type=\"http://x/" + type + "\" Target=\"" + target +
         "\"/>";
}

// An .xlsx file of one sheet with the given rows and shared texts.
std::string xlsx(const std::string& rows, const std::string& texts = "",
                 const std::string& prolog = "") {
  return zipOf(
      {{"_rels/.rels", "<R>" + relation("r1", "officeDocument", "xl/workbook.xml") + "</R>"},
       {"xl/workbook.xml", "<workbook><sheets><sheet name=\"A\" r:id=\"r1\"/></sheets></workbook>"},
       {"xl/_rels/workbook.xml.rels", "<R>" + relation("r1", "worksheet", "sheet1.xml") +
                                          relation("r2", "sharedStrings", "texts.xml") + "</R>"},
       {"xl/texts.xml", "<sst>" + texts + "</sst>"},
       {"xl/sheet1.xml", prolog + "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"}});
}

std::string ods(const std::string& tables) {
  return zipOf(
      {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
       {"content.xml", "<office:document-content><office:body><office:spreadsheet>" + tables +
                           "</office:spreadsheet></office:body></office:document-content>"}});
}

// What is wrong with the file; "" when it was read.
std::string refusal(const std::string& bytes, Worksheet& book) {
  const std::string path = pathText(std::filesystem::temp_directory_path() /
                                    ("lodex_hostile" + std::to_string(::getpid())));
  writeFileWhole(path, bytes);
  std::string reason;
  try {
    book.Read(path);
  } catch (const FileError& error) {
    reason = error.what();
  }
  std::filesystem::remove(path);
  return reason;
}

long peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

TEST(HostileFiles, AreRefusedWithinMemoryAndTime) {
  const std::string corner = "<row r=\"1048576\">";
  std::string lastRow;
  for (int column = 1; column <= 16384; ++column) {
    lastRow += "<c r=\"" + columnLetters(column) + "1048576\"><v>1</v></c>";
  }
  const std::string longText = "<si><t>" + std::string(3'000'000, 'x') + "</t></si>";
  // Shifting a long formula thousands of times takes its time where nothing is optimised.
  const int copies = std::getenv("LODEX_DAMAGE") != nullptr ? 200'000 : 0;
  const struct {
    const char* name;
    std::string bytes;
    const char* reason;  // "" when the file can be read
  } cases[] = {
      {"array formula over the sheet",
       xlsx("<row r=\"1\"><c r=\"A1\"><f t=\"array\" ref=\"A1:XFD1048576\">1</f></c></row>"),
       "formulas need more memory"},
      {"array formula over the sheet, ods",
       ods("<table:table table:name=\"A\"><table:table-row><table:table-cell "
           "table:formula=\"of:=1\" table:number-matrix-rows-spanned=\"1048576\" "
           "table:number-matrix-columns-spanned=\"16384\"/></table:table-row></table:table>"),
       "formulas need more memory"},
      {"long text in every cell",
       xlsx("<row r=\"1\">" + repeated("<c t=\"s\"><v>0</v></c>", 5000) + "</row>", longText),
       "more text than a file of its size"},
      {"long formula in every cell",
       xlsx("<row r=\"1\"><c r=\"A1\"><f t=\"shared\" si=\"0\">" + repeated("1+", 4000) +
            "1</f></c></row>" + repeated("<row><c><f t=\"shared\" si=\"0\"/></c></row>", copies)),
       copies > 0 ? "formulas need more memory" : ""},
      {"a cell at the foot of each column", xlsx(corner + lastRow + "</row>"),
       "cells need more memory"},
      {"zip bomb", xlsx("<row/>", std::string(40'000'000, ' ')), "too large to be true"},
      {"deep nesting", xlsx(repeated("<a>", 200'000)), "nested too deeply"},
      {"entities of entities",
       xlsx("<row><c t=\"inlineStr\"><is><t>&e;</t></is></c></row>", "",
            "<!DOCTYPE worksheet [<!ENTITY a \"" + std::string(50'000, 'a') + "\"><!ENTITY b \"" +
                repeated("&a;", 50'000) + "\"><!ENTITY e \"" + repeated("&b;", 50'000) + "\">]>"),
       ""},  // they stay as they are
      {"deep formula",
       xlsx("<row><c><f>" + repeated("(", 8000) + "1" + repeated(")", 8000) + "</f></c></row>"),
       ""},
      {"cells at opposite corners",
       xlsx("<row r=\"1\"><c r=\"A1\"><v>1</v></c></row><row r=\"1048576\"><c "
            "r=\"XFD1048576\"><v>2</v></c></row>"),
       ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto start = std::chrono::steady_clock::now();
    Worksheet book;
    const std::string reason = refusal(c.bytes, book);
    if (*c.reason == '\0') {
      EXPECT_EQ(reason, "");
    } else {
      EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), 20);
    EXPECT_LT(peakMegabytes(), 1024);
  }
}

TEST(HostileFiles, CellsFarApartAreRefusedAsText) {
  Worksheet book;
  book.NumberRC(1, 1, 1);
  book.NumberRC(1048576, 16384, 2);
  const std::string path = pathText(std::filesystem::temp_directory_path() / "lodex_corners.txt");
  try {
    book.Write(path, FileType::Text);
    ADD_FAILURE();
  } catch (const FileError& error) {
    EXPECT_NE(std::string(error.what()).find("too wide apart"), std::string::npos);
  }
}

}  // namespace
}  // namespace lodex
