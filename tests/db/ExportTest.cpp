#include "db/Export.h"

#include <gmock/gmock.h>

#include "DatabaseFixture.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ExportNames, FitAndDiffer) {
  EXPECT_THAT(exportNames({"a/b", "a:b", "A?B", "Erzmörtel", "..", "Erzm"}, "/:?.", 4),
              ElementsAre("a_b", "a__2", "A__3", "Erzm", "__", "Er_2"));
}

class ExportTest : public DatabaseFixture {
 protected:
  void SetUp() override {
    DatabaseFixture::SetUp();
    run("CREATE TABLE [Rock / assays] ([Sample No] TEXT(20) NOT NULL, [SiO2] DOUBLE, [Fe] SINGLE, "
        "[Taken] DATETIME, [Checked] BIT, [Notes] MEMO, [Cost] CURRENCY, [d] DECIMAL(10,2))");
    run("CREATE UNIQUE INDEX [SampleKey] ON [Rock / assays] ([Sample No]) WITH PRIMARY");
    run("CREATE TABLE [Zone;1] ([ID] COUNTER PRIMARY KEY, [b] BYTE NOT NULL, [s] SHORT, "
        "[Sample] TEXT(20) REFERENCES [Rock / assays] ([Sample No]))");
    run("CREATE INDEX [by zone] ON [Zone;1] ([s] , [b])");
    add({"A \"1\", north", 0.1 + 0.2, 12.3, {}, -1, "", 1.0001, 0.25});
    add({"Mörtel; ☃", {}, {}, "2020-01-31", 0, "two\nlines\r\n", {}, {}});
    add({"007", -1e-300, 1e38, "2020-01-31 12:30:00", 0, "=1+1", -922337203685.4775, 99999999.99});
    add({"12", {}, {}, "1850-05-01", 0, std::string(40000, 'x') + "Ä", {}, {}});
  }
  static std::vector<std::string> lines(const Findings& found) {
    std::vector<std::string> lines;
    for (const Finding& finding : found.all()) lines.push_back(describe(finding));
    return lines;
  }
  void add(const Row& values) {
    connection_.Execute("INSERT INTO [Rock / assays] VALUES (?, ?, ?, ?, ?, ?, ?, ?)", values);
  }
};

// A text of comma-separated values; Null as nothing and an empty text as "".
std::vector<std::vector<std::string>> readCsv(const std::string& text) {
  std::vector<std::vector<std::string>> rows(1);
  std::string field;
  bool quoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') quoted = !quoted;
    if (quoted || (c != ',' && c != '\r')) {
      field += c;
      continue;
    }
    rows.back().push_back(field);
    field.clear();
    if (c != '\r') continue;
    ++i;
    if (i + 1 < text.size()) rows.emplace_back();
  }
  return rows;
}

TEST_F(ExportTest, AFolderHoldsEveryValueOfEveryTable) {
  exportDatabase(connection_, path("out"));
  const auto rows = readCsv(readFile(path("out/Rock _ assays.csv")));
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_THAT(rows[0], ElementsAre("\"Sample No\"", "\"SiO2\"", "\"Fe\"", "\"Taken\"",
                                   "\"Checked\"", "\"Notes\"", "\"Cost\"", "\"d\""));
  const auto records = connection_.OpenRecordset("SELECT * FROM [Rock / assays]");
  for (size_t row = 1; row < rows.size(); ++row, records->MoveNext()) {
    ASSERT_EQ(rows[row].size(), 8U);
    for (int i = 0; i < 8; ++i) {
      const std::string& field = rows[row][static_cast<size_t>(i)];
      EXPECT_EQ(field.empty(), isNull(records->Value(i))) << row << " " << i;
      if (const auto* number = std::get_if<double>(&records->Value(i))) {
        EXPECT_EQ(std::stod(field), *number) << row << " " << i;
      } else if (field.starts_with('"')) {
        const std::string inner = replaceAll(field.substr(1, field.size() - 2), "\"\"", "\"");
        EXPECT_EQ(inner, records->Text(i));
      }
    }
  }
  EXPECT_EQ(rows[2][3] + rows[3][3], "2020-01-31 00:00:002020-01-31 12:30:00");
  EXPECT_EQ(rows[1][4] + rows[2][4], "TrueFalse");
  const std::string schema = readFile(path("out/schema.ini"));
  EXPECT_THAT(schema, HasSubstr("[Rock _ assays.csv]\r\n"));
  EXPECT_THAT(schema, HasSubstr("Col1=\"Sample No\" Text Width 20\r\n"));
  EXPECT_THAT(schema, HasSubstr("Col4=\"Taken\" DateTime\r\n"));
}

TEST_F(ExportTest, TheScriptMakesTheSameStructure) {
  exportDatabase(connection_, path("out"));
  const std::string columns = structure(SchemaKind::Columns);
  const std::string indexes = structure(SchemaKind::Indexes);
  EXPECT_THAT(columns, HasSubstr("|d|8|131||10|2|True|False|\n"));
  EXPECT_THAT(columns, HasSubstr("Zone;1|ID|1|3||||True|True|\n"));
  connection_.Close();
  createDatabase(path("again.mdb"));
  connection_.Open(ConnectionString(path("again.mdb"), "", ""));
  std::vector<std::string> others;
  for (const std::string& statement : split(readFile(path("out/database.sql")), "\r\n")) {
    if (statement.starts_with("CREATE")) {
      run(statement);
    } else if (!statement.empty()) {
      others.push_back(statement);
    }
  }
  EXPECT_EQ(structure(SchemaKind::Columns), columns);
  EXPECT_EQ(structure(SchemaKind::Indexes), indexes);
  EXPECT_THAT(others,
              ElementsAre("INSERT INTO [Rock / assays] SELECT * FROM [Text;HDR=Yes;FMT=Delimited;"
                          "CharacterSet=65001;DATABASE=.].[Rock _ assays#csv];",
                          "INSERT INTO [Zone;1] SELECT * FROM [Text;HDR=Yes;FMT=Delimited;"
                          "CharacterSet=65001;DATABASE=.].[Zone;1#csv];",
                          "ALTER TABLE [Zone;1] ADD CONSTRAINT [Rock / assaysZone;10] FOREIGN KEY "
                          "([Sample]) REFERENCES [Rock / assays] ([Sample No]);"));
}

TEST_F(ExportTest, AWorkbookHoldsASheetPerTable) {
  run("CREATE TABLE [Numbers] ([f] SINGLE)");
  connection_.Execute("INSERT INTO [Numbers] VALUES (?)", {static_cast<double>(0.15F)});
  const Findings found = exportDatabase(connection_, path("out.xlsx"));
  ASSERT_EQ(found.all().size(), 1U);
  EXPECT_THAT(describe(found.all()[0]),
              HasSubstr("sheet Rock _ assays, F5: A text is longer than a cell can be"));
  EXPECT_TRUE(found.hasErrors());
  Worksheet book;
  book.Read(path("out.xlsx"));
  ASSERT_EQ(book.NumSheets(), 3);
  EXPECT_EQ(book.SheetName(1), "Numbers");
  EXPECT_EQ(book.NumberSRC(1, 2, 1), 0.15);
  EXPECT_EQ(book.SheetName(2), "Rock _ assays");
  EXPECT_EQ(book.SheetName(3), "Zone;1");
  const auto records = connection_.OpenRecordset("SELECT * FROM [Rock / assays]");
  for (int row = 2; row <= 5; ++row, records->MoveNext()) {
    EXPECT_EQ(book.TextSRC(2, row, 1), records->Text(0));
    EXPECT_TRUE(book.ValueSRC(2, row, 1).isText()) << records->Text(0);
    for (const int column : {2, 3, 7, 8}) {
      const FieldValue& value = records->Value(column - 1);
      EXPECT_EQ(book.HasContent(2, row, column), !isNull(value)) << row << " " << column;
      EXPECT_EQ(book.NumberSRC(2, row, column), fieldNumber(value)) << row << " " << column;
    }
    const std::string note = records->Text(5);
    EXPECT_EQ(book.TextSRC(2, row, 6), note.size() < 30000 ? note : note.substr(0, 32767));
  }
  EXPECT_FALSE(book.HasFormula(2, 4, 6));
  EXPECT_EQ(book.TextSRC(2, 3, 4), "2020-01-31");
  EXPECT_EQ(book.TextSRC(2, 4, 4), "2020-01-31 12:30:00");
  EXPECT_EQ(book.TextSRC(2, 5, 4), "1850-05-01");
  EXPECT_TRUE(book.ValueSRC(2, 2, 5).isBoolean());
}

TEST_F(ExportTest, WhatCannotBeWrittenIsAnErrorAndWhatAccessCannotTakeIsTold) {
  EXPECT_THROW(exportDatabase(connection_, path()), FileError);
  EXPECT_THROW(exportDatabase(connection_, path("missing/out.xlsx")), Error);
  run("CREATE TABLE `x] (a LONG); DROP TABLE [y` ([b\nCol9=c] LONG)");
  exportDatabase(connection_, path("hostile"));
  EXPECT_THAT(readFile(path("hostile/database.sql")),
              HasSubstr("CREATE TABLE `x] (a LONG); DROP TABLE [y` ([b\nCol9=c] LONG);"));
  EXPECT_THAT(readFile(path("hostile/schema.ini")), HasSubstr("Col1=\"b Col9=c\" Long\r\n"));
  run("DROP TABLE `x] (a LONG); DROP TABLE [y`");
  run("CREATE TABLE [a.b] ([x!] LONG)");
  EXPECT_THAT(lines(exportDatabase(connection_, path("out"))),
              ElementsAre("sheet a.b: Access cannot take the name of the table",
                          "sheet a.b: Access cannot take the name of field x!"));
}

TEST_F(ExportTest, WarnsOfWhatAccessWillRefuse) {
  run("INSERT INTO [Zone;1] ([b], [Sample]) VALUES (1, '12')");
  run("INSERT INTO [Zone;1] ([b], [Sample]) VALUES (2, Null)");
  run("INSERT INTO [Zone;1] ([b], [Sample]) VALUES (3, 'gone')");
  run("INSERT INTO [Zone;1] ([b], [Sample]) VALUES (4, 'lost')");
  run("CREATE TABLE [Wide] ([f0] LONG)");
  std::string fields;
  for (int i = 1; i < 255; ++i) fields += (i > 1 ? ", [f" : "[f") + std::to_string(i) + "] LONG";
  run("ALTER TABLE [Wide] ADD COLUMN " + fields);
  const std::string orphans =
      "sheet Zone;1, record gone: A record refers to no record of table Rock / assays, so that "
      "Access will refuse the relationship Rock / assaysZone;10 (2 times)";
  EXPECT_THAT(lines(exportDatabase(connection_, path("out"))), ElementsAre(orphans));
  run("ALTER TABLE [Wide] ADD COLUMN [f255] LONG");
  const std::string wide = "sheet Wide: The table has more than 255 fields";
  EXPECT_THAT(lines(exportDatabase(connection_, path("out"))),
              testing::UnorderedElementsAre(orphans, HasSubstr(wide)));
}

TEST_F(ExportTest, AFileNameIsNoFolder) {
  for (const char* name : {"out.xls", "out.CSV", "a.accdb"}) {
    EXPECT_THAT(errorOf([&] { exportDatabase(connection_, path(name)); }),
                HasSubstr("is the name of a file"));
    EXPECT_FALSE(pathExists(path(name)));
  }
  std::filesystem::create_directory(path("a.db"));
  EXPECT_EQ(errorOf([&] { exportDatabase(connection_, path("a.db")); }), "(no error)");
  EXPECT_EQ(errorOf([&] { exportDatabase(connection_, path("out 2.5")); }), "(no error)");
}

}  // namespace
}  // namespace lodex
