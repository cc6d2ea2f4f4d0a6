#include <gtest/gtest.h>

#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/xlsBytes.h"

namespace lodex {
namespace {

using namespace xlstest;

// A formula's record in the layout of a version: place, result, flags, tokens.
std::string formulaRecord(int version, unsigned row, unsigned column, const std::string& result,
                          const std::string& code) {
  if (version == 2) {
    return record(0x0006, u16(row) + u16(column) + bytes({0, 0, 0}) + result + u8(0) +
                              u8(static_cast<unsigned>(code.size())) + code);
  }
  const unsigned id = version == 3 ? 0x0206 : version == 4 ? 0x0406 : 0x0006;
  return record(id, head(row, column) + result + u16(0) + (version >= 5 ? u32(0) : "") +
                        u16(static_cast<unsigned>(code.size())) + code);
}

const std::string textResult = bytes({0, 0, 0, 0, 0, 0, 0xFF, 0xFF});
// A1+B1*2 in versions 2 to 7: references relative in row and column.
const std::string oldSum =
    bytes({0x44, 0x00, 0xC0, 0x00, 0x44, 0x00, 0xC0, 0x01, 0x1E, 2, 0, 0x05, 0x03});

TEST(XlsVersion2, ReadsEveryKindOfCell) {
  const std::string place = bytes({0, 0, 0});
  const std::string stream = record(0x0009, u16(2) + u16(0x10)) + record(0x0042, u16(437)) +
                             record(0x0031, u16(200) + u16(1) + text8("Courier")) +
                             record(0x001E, text8("General")) + record(0x001E, text8("0.00")) +
                             record(0x0000, u16(0) + u16(1) + u16(0) + u16(1)) +
                             record(0x0024, bytes({1, 2}) + u16(20 * 256)) +
                             record(0x0002, u16(0) + u16(0) + place + u16(65535)) +
                             record(0x0003, u16(0) + u16(1) + bytes({0, 1, 0x02}) + f64(-2.5)) +
                             record(0x0004, u16(1) + u16(0) + place + text8("K\x94yh\x84")) +
                             record(0x0005, u16(1) + u16(1) + place + bytes({1, 0})) +
                             record(0x0005, u16(1) + u16(2) + place + bytes({0x07, 1})) +
                             formulaRecord(2, 2, 0, f64(65530), oldSum) +
                             formulaRecord(2, 2, 1, textResult, bytes({0x17, 2, 'o', 'k'})) +
                             record(0x0007, text8("ok")) + record(0x000A);
  ASSERT_TRUE(looksLikeXls(stream));
  const Worksheet sheet = readBytes(stream);
  EXPECT_EQ(sheet.ValueSRC(1, 1, 1), Value(65535.0));
  EXPECT_EQ(sheet.ValueSRC(1, 1, 2), Value(-2.5));
  EXPECT_EQ(sheet.TextRC(1, 2), "-2.50");
  EXPECT_TRUE(sheet.formatOf(1, 1, 2).bold);
  EXPECT_EQ(sheet.formatOf(1, 1, 2).horizontal, HorizontalAlignment::Center);
  EXPECT_EQ(sheet.TextRC(2, 1), "Köyhä");
  EXPECT_EQ(sheet.ValueSRC(1, 2, 2), Value::boolean(true));
  EXPECT_EQ(sheet.ValueSRC(1, 2, 3), Value::error(ErrorCode::DivisionByZero));
  EXPECT_EQ(sheet.FormulaRC(3, 1), "A1+B1*2");
  EXPECT_EQ(sheet.ValueSRC(1, 3, 1), Value(65530.0));
  EXPECT_EQ(sheet.FormulaRC(3, 2), "\"ok\"");
  EXPECT_EQ(sheet.TextRC(3, 2), "ok");
  EXPECT_EQ(sheet.columnWidth(1, 3), 20);
}

TEST(XlsVersions3And4, ReadCellsFormulasAndStyles) {
  for (int version : {3, 4}) {
    SCOPED_TRACE(version);
    const unsigned bof = version == 3 ? 0x0209 : 0x0409;
    const std::string style = version == 3
                                  ? record(0x0243, bytes({0, 1, 1, 0}) + u16(3) +
                                                       u16(0x0001 | 10 << 6 | 25 << 11) + u32(1))
                                  : record(0x0443, bytes({0, 1}) + u16(1) + bytes({0x13, 0}) +
                                                       u16(0x0001 | 10 << 6 | 25 << 11) + u32(1));
    const std::string format =
        version == 3
            ? record(0x001E, text8("General")) + record(0x001E, text8("0.000"))
            : record(0x041E, u16(0) + text8("General")) + record(0x041E, u16(0) + text8("0.000"));
    const std::string stream =
        record(bof, u16(0) + u16(0x10) + u16(0)) + record(0x0042, u16(1252)) +
        record(0x0231, u16(240) + u16(2) + u16(10) + text8("Arial")) + format + style +
        record(0x0018 + 0x0200, u16(0) + u8(0) + u8(4) + u16(7) + "Rate" +
                                    bytes({0x24, 0x01, 0x00, 0x00, 0x1E, 3, 0})) +
        record(0x0203, head(0, 0) + f64(1.5)) +
        record(0x027E, head(0, 1) + u32((12345u << 2) | 3)) +
        record(0x0204, head(1, 0) + text16("Kivi\xE4")) +
        formulaRecord(version, 1, 1, textResult, oldSum) + record(0x0207, text16("yes")) +
        record(0x0208, u16(4) + u16(0) + u16(1) + u16(255) + u32(0) + u32(0x20)) + record(0x000A);
    const Worksheet sheet = readBytes(stream);
    EXPECT_EQ(sheet.ValueSRC(1, 1, 1), Value(1.5));
    EXPECT_EQ(sheet.TextRC(1, 1), "1.500");
    EXPECT_EQ(sheet.ValueSRC(1, 1, 2), Value(123.45));
    EXPECT_EQ(sheet.TextRC(2, 1), "Kiviä");
    EXPECT_EQ(sheet.FormulaRC(2, 2), "A1+B1*2");
    EXPECT_EQ(sheet.TextRC(2, 2), "yes");
    EXPECT_TRUE(sheet.rowHidden(1, 5));
    const CellFormat& format1 = sheet.formatOf(1, 1, 1);
    EXPECT_TRUE(format1.italic);
    EXPECT_EQ(format1.fontSize, 12);
    EXPECT_EQ(format1.fontColor, 0xFF0000);
    EXPECT_EQ(format1.horizontal, HorizontalAlignment::Right);
    EXPECT_EQ(format1.pattern, FillPattern::Solid);
    EXPECT_EQ(format1.patternColor, 0xFF0000);
    EXPECT_EQ(format1.borderTop, 1);
  }
}

TEST(XlsVersion4, ReadsTheSheetsOfAWorkspace) {
  const auto sheet = [](double number) {
    return record(0x0409, u16(0) + u16(0x10) + u16(0)) + record(0x0203, head(0, 0) + f64(number)) +
           record(0x000A);
  };
  const std::string one = sheet(1),
                    chart = record(0x0409, u16(0) + u16(0x20) + u16(0)) + record(0x000A);
  const auto header = [](const std::string& name, const std::string& body) {
    return record(0x008F, u32(static_cast<unsigned>(body.size())) + text8(name)) + body;
  };
  const std::string stream = record(0x0409, u16(0) + u16(0x100) + u16(0)) + header("Eka", one) +
                             header("Kuva", chart) + header("Toka", sheet(2)) + record(0x000A);
  const Worksheet book = readBytes(stream);
  ASSERT_EQ(book.NumSheets(), 2);
  EXPECT_EQ(book.SheetName(1), "Eka");
  EXPECT_EQ(book.SheetName(2), "Toka");
  EXPECT_EQ(book.NumberSRC(2, 1, 1), 2);
}

TEST(XlsVersion5, ReadsSharedFormulasChartsAndReferencesBetweenSheets) {
  // Sheet3!$B$2 and Sheet1!A1:B2, by number of tab; and a tab that was deleted.
  const auto far = [](unsigned token, unsigned tab, const std::string& place) {
    return u8(token) + u16(0xFFFF) + std::string(8, '\0') + u16(tab) + u16(tab) + place;
  };
  const std::string shared =
      bytes({0x4C, 0xFF, 0xFF, 0x00, 0x1E, 1, 0, 0x03});  // the cell above + 1
  const auto sharedCell = [&](unsigned row, double value) {
    return formulaRecord(5, row, 2, f64(value), bytes({0x01, 1, 0, 2, 0}));
  };
  const std::string records =
      record(0x0203, head(0, 2) + f64(5)) + sharedCell(1, 6) +
      record(0x04BC, u16(1) + u16(2) + bytes({2, 2, 0, 2}) +
                         u16(static_cast<unsigned>(shared.size())) + shared) +
      sharedCell(2, 7) + formulaRecord(5, 4, 0, f64(8), far(0x5A, 2, bytes({1, 0, 1}))) +
      formulaRecord(5, 4, 1, f64(8),
                    far(0x3B, 0, bytes({0, 0xC0, 1, 0xC0, 0, 1})) + bytes({0x22, 1, 4, 0})) +
      formulaRecord(5, 4, 2, f64(8), far(0x5A, 0xFFFF, bytes({1, 0, 1}))) +
      record(0x00D6, head(5, 0) + text16("ri\x9Eky") + bytes({1, 0, 0})) +
      record(0x00BD,
             u16(6) + u16(0) + u16(0) + u32(7 << 2 | 2) + u16(0) + u32(9 << 2 | 2) + u16(1));
  const Worksheet book = readBytes(workbook(
      5, {{"Sheet1", records}, {"Chart", "", 2}, {"Sheet3", "", 0, 1}}, record(0x0042, u16(1250))));
  ASSERT_EQ(book.NumSheets(), 2);
  EXPECT_EQ(book.sheetVisibility(2), SheetVisibility::Hidden);
  EXPECT_EQ(book.FormulaRC(2, 3), "C1+1");
  EXPECT_EQ(book.FormulaRC(3, 3), "C2+1");
  EXPECT_EQ(book.FormulaRC(5, 1), "Sheet3!$B$2");
  EXPECT_EQ(book.FormulaRC(5, 2), "SUM(Sheet1!A1:B2)");
  EXPECT_EQ(book.FormulaRC(5, 3), "#REF!");
  EXPECT_EQ(book.NumberRC(5, 3), 8);
  EXPECT_EQ(book.TextRC(6, 1), "ri\xC5\xBEky");
  EXPECT_EQ(book.NumberRC(7, 2), 9);
}

TEST(XlsVersion8, ReadsASharedStringTableAcrossRecords) {
  // The third text changes to two bytes per character where the record ends; the first is rich, the
  // second has a phonetic part.
  const std::string first = u16(3) + u8(0x08) + u16(1) + "abc" + u32(0);
  const std::string second = u16(2) + u8(0x04) + u32(4) + "de" + u32(0x01020304);
  const std::string sst =
      record(0x00FC, u32(3) + u32(99) + first + second + u16(4) + u8(0) + "fg") +
      record(0x003C, u8(1) + bytes({0xB1, 0x03, 'h', 0})) + record(0x003C, u16(1) + u8(0) + "z");
  std::string cells;
  for (unsigned i = 0; i < 5; ++i) cells += record(0x00FD, head(i, 0) + u32(i));
  const Worksheet book = readBytes(workbook(8, {{"S", cells}}, {}, sst));
  EXPECT_EQ(book.TextRC(1, 1), "abc");
  EXPECT_EQ(book.TextRC(2, 1), "de");
  EXPECT_EQ(book.TextRC(3, 1), "fg\xCE\xB1h");
  EXPECT_EQ(book.TextRC(4, 1), "z");
  EXPECT_EQ(book.LastRow(), 4);
  EXPECT_GE(book.ReadFindings().count(Severity::Error), 1u) << "a text and its cell are missing";
}

TEST(XlsVersion8, ReadsNamesOfOtherBooksAddInsAndSheetRanges) {
  const std::string links =
      record(0x01AE, u16(2) + u16(0x0401)) + record(0x01AE, u16(1) + u16(0x3A01)) +
      record(0x0023, u16(0) + u32(0) + flagged8("EOMONTH") + u16(0)) +
      record(0x01AE, u16(1) +
                         flagged16("\x01\x01"
                                   "Cdata\x03Other.xls") +
                         flagged16("Tab 1")) +
      record(0x0017, u16(4) + u16(0) + u16(0) + u16(1) + u16(1) + u16(0xFFFE) + u16(0xFFFE) +
                         u16(2) + u16(0) + u16(0) + u16(0) + u16(0xFFFF) + u16(0xFFFF)) +
      record(0x0018, u16(0x20) + u8(0) + u8(1) + u16(11) + u16(0) + u16(1) + u32(0) + u8(0) +
                         u8(6) + bytes({0x3B, 0, 0, 0, 0, 4, 0, 0, 0, 1, 0})) +
      record(0x0018, u16(0) + u8(0) + u8(3) + u16(3) + u16(0) + u16(0) + u32(0) + u8(0) + "Two" +
                         bytes({0x1E, 2, 0}));
  const auto cell = [](unsigned row, const std::string& code) {
    return formulaRecord(8, row, 0, f64(1), code);
  };
  const std::string cells =
      cell(0, bytes({0x39, 1, 0, 1, 0, 0, 0, 0x1E, 5, 0, 0x1E, 1, 0, 0x42, 3, 0xFF, 0})) +
      cell(1, bytes({0x5A, 2, 0, 0, 0, 0, 0xC0})) +
      cell(2, bytes({0x3B, 0, 0, 0, 0, 0xFF, 0xFF, 1, 0, 1, 0, 0x42, 1, 4, 0})) +
      cell(3, bytes({0x43, 2, 0, 0, 0, 0x1E, 3, 0, 0x05})) +
      cell(4, bytes({0x5A, 3, 0, 0, 0, 0, 0})) + cell(5, bytes({0x18, 0x07, 0, 0, 0, 0}));
  const Worksheet book = readBytes(workbook(8, {{"A", cells}, {"B b", ""}}, {}, links));
  EXPECT_EQ(book.FormulaRC(1, 1), "EOMONTH(5,1)");
  EXPECT_EQ(book.FormulaRC(2, 1), "'C:\\data\\[Other.xls]Tab 1'!A1");
  EXPECT_EQ(book.FormulaRC(3, 1), "SUM('A:B b'!$B:$B)");
  EXPECT_EQ(book.FormulaRC(4, 1), "Two*3");
  EXPECT_EQ(book.FormulaRC(5, 1), "#REF!");
  EXPECT_FALSE(book.HasFormula(1, 6, 1)) << "an unknown token leaves the value";
  EXPECT_EQ(book.NumberRC(6, 1), 1);
  ASSERT_EQ(book.definedNames().size(), 2u);
  EXPECT_EQ(book.definedNames()[0].name, "Print_Area");
  EXPECT_EQ(book.definedNames()[0].sheet, 1);
  EXPECT_EQ(book.definedNames()[0].formula, "'A:B b'!$A$1:$B$5");
}

TEST(XlsReader, OpensWhatTheDefaultPasswordProtects) {
  const std::string path =
      std::string(LODEX_SOURCE_DIR) + "/tests/worksheet/data/protected-default.xls";
  const Worksheet book = readBytes(readFile(path));
  EXPECT_EQ(book.NumberRC(1, 1), 42.5);
  EXPECT_EQ(book.TextRC(2, 1), "Secret Öljy");
  EXPECT_EQ(book.FormulaRC(1, 2), "A1*2");
  EXPECT_EQ(book.NumberRC(300, 4), 299.123) << "after many changes of key";
}

// The other direction of the XOR method, with a key of our own choice.
std::string obfuscated(std::string stream, unsigned key) {
  const std::string pad = std::string("VelvetSweatshop") + "\xBB";
  size_t at = 0;
  while (at + 4 <= stream.size()) {
    const auto field = [&](size_t i) {
      return static_cast<unsigned char>(stream[at + i]) |
             static_cast<unsigned char>(stream[at + i + 1]) << 8;
    };
    const unsigned id = field(0), size = field(2);
    const size_t plain = id == 0x0809 || id == 0x002F ? size : id == 0x0085 ? 4 : 0;
    for (size_t i = at + 4 + plain; i < at + 4 + size; ++i) {
      const size_t place = (i + size) % 16;
      const unsigned part =
          static_cast<unsigned char>(pad[place]) ^ (place % 2 == 0 ? key & 0xFF : key >> 8);
      const unsigned mask = (part << 2 | part >> 6) & 0xFF;
      const unsigned mixed = static_cast<unsigned char>(stream[i]) ^ mask;
      stream[i] = static_cast<char>(mixed >> 3 | mixed << 5);
    }
    at += 4 + size;
  }
  return stream;
}

TEST(XlsReader, UndoesXorObfuscation) {
  // 0x9A0A is the 16-bit hash of the default password.
  const std::string pass = record(0x002F, u16(0x1234) + u16(0x9A0A));
  const std::string cells =
      record(0x0204, head(0, 0) + text16("plain again")) + record(0x0203, head(1, 0) + f64(2.5));
  const Worksheet book = readBytes(obfuscated(workbook(5, {{"Data", cells}}, pass), 0x1234));
  EXPECT_EQ(book.SheetName(1), "Data");
  EXPECT_EQ(book.TextRC(1, 1), "plain again");
  EXPECT_EQ(book.NumberRC(2, 1), 2.5);
}

TEST(XlsReader, ComputesWhatItsWriterLeftWithoutValues) {
  const std::string nothing = bytes({3, 0, 0, 0, 0, 0, 0xFF, 0xFF});
  const std::string sum = bytes({0x44, 0, 0, 0, 0xC0, 0x1E, 1, 0, 0x03});  // A1+1
  const std::string cells =
      record(0x0203, head(0, 0) + f64(4)) + formulaRecord(8, 0, 1, nothing, sum);
  const auto calculated = [](const std::string& records) {
    Worksheet book = readBytes(workbook(8, {{"A", records}}));
    book.calculateMissing();
    return book;
  };
  const Worksheet book = calculated(cells);
  EXPECT_EQ(book.NumberRC(1, 2), 5);
  EXPECT_EQ(book.recalcReport().withoutValue, 1u);
  EXPECT_EQ(book.ReadFindings().count(Severity::Note), 1u);
  // With one value among them the empty text is a result.
  const std::string more = cells + formulaRecord(8, 0, 2, f64(99), sum);
  EXPECT_EQ(calculated(more).TextRC(1, 2), "");
  EXPECT_EQ(calculated(more).NumberRC(1, 3), 99) << "values of the file stay";
}

TEST(XlsReader, NamesWhatIsWrong) {
  const std::string cell = record(0x0203, head(0, 0) + f64(1));
  const std::string good = workbook(8, {{"A", cell}});
  const struct {
    const char* name;
    std::string stream;
    const char* problem;
  } cases[] = {
      {"other password",
       workbook(8, {{"A", cell}}, record(0x002F, u16(1) + u16(1) + u16(1) + std::string(48, 'x'))),
       "protected by a password"},
      {"other XOR password", workbook(5, {{"A", cell}}, record(0x002F, u16(1) + u16(2))),
       "protected by a password"},
      {"unknown encryption", workbook(8, {{"A", cell}}, record(0x002F, u16(1) + u16(9) + u16(9))),
       "protected by a password"},
      {"cut in the general part", good.substr(0, 20), "general part"},
      {"no sheet left", good.substr(0, good.size() - cell.size() - 16), "none of its sheets"},
      {"container cut", std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(700, '\0'),
       "container"},
      {"text", "Sample\tFe\n", "not an Excel workbook"},
      {"nothing", "", "not an Excel workbook"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    try {
      readBytes(c.stream);
      ADD_FAILURE() << "was read";
    } catch (const FileError& error) {
      EXPECT_NE(std::string(error.what()).find(c.problem), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace lodex
