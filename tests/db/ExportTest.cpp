#include "db/Export.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "db/Connection.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ExportNames, FitAndDiffer) {
  EXPECT_THAT(exportNames({"a/b", "a:b", "A?B", "Erzmörtel", "..", "Erzm"}, "/:?.", 4),
              ElementsAre("a_b", "a__2", "A__3", "Erzm", "__", "Er_2"));
}

class ExportTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("lodex_export_" + std::to_string(::getpid()));
    fs::create_directories(folder_);
    createDatabase(path("source.mdb"));
    connection_.Open(ConnectionString(path("source.mdb"), "", ""));
    connection_.Execute(
        "CREATE TABLE [Rock / assays] ([Sample No] TEXT(20) NOT NULL, [SiO2] DOUBLE, [Fe] SINGLE, "
        "[Taken] DATETIME, [Checked] BIT, [Notes] MEMO)");
    connection_.Execute(
        "CREATE UNIQUE INDEX [SampleKey] ON [Rock / assays] ([Sample No]) WITH PRIMARY");
    const std::string insertion = "INSERT INTO [Rock / assays] VALUES (?, ?, ?, ?, ?, ?)";
    connection_.Execute(insertion, {std::string("A \"1\", north"), 0.1 + 0.2, 12.3, {}, -1, ""});
    connection_.Execute(
        insertion,
        {std::string("Mörtel"), {}, {}, std::string("2020-01-31"), 0, std::string("two\nlines")});
  }
  void TearDown() override {
    connection_.Close();
    fs::remove_all(folder_);
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  fs::path folder_;
  Connection connection_;
};

TEST_F(ExportTest, AFolderHoldsEveryValueItsTypesAndAScript) {
  exportDatabase(connection_, path("out"));
  EXPECT_EQ(readFile(path("out/Rock _ assays.csv")),
            "\"Sample No\",\"SiO2\",\"Fe\",\"Taken\",\"Checked\",\"Notes\"\r\n"
            "\"A \"\"1\"\", north\",0.30000000000000004,12.3,,True,\"\"\r\n"
            "\"Mörtel\",,,2020-01-31 00:00:00,False,\"two\nlines\"\r\n");
  const std::string schema = readFile(path("out/schema.ini"));
  EXPECT_THAT(schema, HasSubstr("[Rock _ assays.csv]\r\n"));
  EXPECT_THAT(schema, HasSubstr("Col1=\"Sample No\" Text Width 20\r\n"));
  EXPECT_THAT(schema, HasSubstr("Col4=\"Taken\" DateTime\r\n"));
  const std::string script = readFile(path("out/database.sql"));
  EXPECT_THAT(script,
              HasSubstr("CREATE TABLE [Rock / assays] ([Sample No] TEXT(20), [SiO2] DOUBLE"));
  EXPECT_THAT(script, HasSubstr("ON [Rock / assays] ([Sample No]) WITH PRIMARY;"));
  EXPECT_THAT(script, HasSubstr("].[Rock _ assays#csv];"));
}

TEST_F(ExportTest, AWorkbookHoldsASheetPerTable) {
  connection_.Execute("CREATE TABLE [Minerals] ([Name] TEXT(50))");
  exportDatabase(connection_, path("out.xlsx"));
  Worksheet book;
  book.Read(path("out.xlsx"));
  ASSERT_EQ(book.NumSheets(), 2);
  EXPECT_EQ(book.SheetName(1), "Minerals");
  EXPECT_EQ(book.SheetName(2), "Rock _ assays");
  EXPECT_EQ(book.TextSRC(2, 2, 1), "A \"1\", north");
  EXPECT_EQ(book.NumberSRC(2, 2, 2), 0.1 + 0.2);
  EXPECT_FALSE(book.HasContent(2, 3, 2));
}

TEST_F(ExportTest, WhatCannotBeWrittenIsAnError) {
  EXPECT_THROW(exportDatabase(connection_, path("source.mdb")), FileError);
  EXPECT_THROW(exportDatabase(connection_, path("missing/out.xlsx")), Error);
}

}  // namespace
}  // namespace lodex
