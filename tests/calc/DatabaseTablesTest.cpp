#include "calc/DatabaseTables.h"

#include <gmock/gmock.h>

#include "basic/Error.h"
#include "calc/CalcFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;

class DatabaseTablesTest : public CalcFixture {};

TEST_F(DatabaseTablesTest, FeedACalculation) {
  createDatabase(path("samples.mdb"));
  Connection connection;
  connection.Open(ConnectionString(path("samples.mdb"), "", ""));
  connection.Execute(
      "CREATE TABLE [Rocks] ([SampleNo] TEXT (20), [SiO2 %] SINGLE, [LOI/%] SINGLE)");
  connection.Execute("CREATE TABLE [Metals] ([Cu_ICP ppm] SINGLE, [SampleNo] TEXT (20))");
  connection.Execute("INSERT INTO [Rocks] VALUES ('S1', 50, 8)");
  connection.Execute("INSERT INTO [Rocks] VALUES ('S2', NULL, NULL)");
  connection.Execute("INSERT INTO [Metals] VALUES (7, 'S1')");
  DatabaseTables tables;
  tables.add(connection, "Rocks", 1, "SampleNo", context.converter);
  tables.add(connection, "Metals", 4, "sampleno", context.converter);
  EXPECT_THROW(tables.add(connection, "Gone", 5, "SampleNo", context.converter), Error);
  connection.Close();

  writeMethod("M.xls", {.input = {"SiO2 %", "Cu %", "LOI %"},
                        .output = {"Si||=Input!C2", "Cu||=ROUND(Input!C3,6)", "LOI||=Input!C4"}});
  calculations.databaseTables = [&] { return tables.sheets(); };
  sheets.lstSrcF.add("Rocks");
  sheets.lstSrcF.add("Metals");
  sheets.lstSrcF.selectAll(true);
  loadAndRun();
  EXPECT_THAT(resultRows("M"), ElementsAre("S1|50|0.0007|8", "S2|0|0|0"));
  EXPECT_EQ(sheets.result.F1D.TextSRC(1, resultrow::field, resultIdColumn), "SampleNo");
  const SourceSheets read = tables.sheets();
  EXPECT_EQ(sourceText(read, {1, 3}), "[Rocks].[SiO2 %]");
  EXPECT_EQ(sourcesOf(sheets.F1Ref, 1, 29), std::vector<ItemSource>({{4, 2}}));
}

}  // namespace
}  // namespace lodex
