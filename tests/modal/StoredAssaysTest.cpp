#include "modal/StoredAssays.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "ModalFixture.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "db/MapDatabase.h"
#include "modal/frmMinCalc.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;

// A database of its own with the fixture's element table.
struct Stored : testing::Test, ModalFixture {
  Stored() {
    const fs::path file =
        fs::path(testing::TempDir()) / ("stored" + std::to_string(::getpid()) + ".mdb");
    fs::remove(file);
    database.path = pathText(file);
    createDatabase(database.path);
    database.connection.Open(ConnectionString(database.path, "", ""));
    source.database = &database;
  }
  ~Stored() override {
    database.connection.Close();
    fs::remove(nativePath(database.path));
  }

  void sql(const std::string& text) { database.connection.Execute(text); }
  void samples() {
    sql("CREATE TABLE [Sample] ([SampleNo] LONG PRIMARY KEY, [Rock] TEXT (50))");
    sql("INSERT INTO [Sample] VALUES (3, 'gabbro')");
    sql("INSERT INTO [Sample] VALUES (1, 'norite')");
    sql("INSERT INTO [Sample] VALUES (2, 'gabbro')");
  }
  void map() { mapTables(session, database, true, MapRole::Source); }
  void retrieve() {
    map();
    Findings found;
    buildMethodMap(source, F1ELoc, F1Ref, found);
    retrieveStoredAssays(source, F1Ref, F1ELoc, lists, result, {found});
    for (const Finding& finding : found.all()) log += describe(finding) + "\n";
  }
  // The stored value of an element (row of F1ELoc) by the method's name.
  std::string assay(int sample, int element, const std::string& method) {
    for (int k = 1; !result.F1Kirja.ColText(k).empty(); ++k) {
      if (result.F1Kirja.ColText(k) != method) continue;
      const int column = static_cast<int>(result.F1Kirja.NumberRC(element, k));
      return column == 0 ? "none" : result.F1Ini.TextRC(sample, column);
    }
    return "no method";
  }

  MappedDatabase database;
  StoredSource source;
  Worksheet F1Ref;
  std::string log;
};

TEST(StoredFields, MethodsByName) {
  const struct {
    const char *text, *told, *stored;
  } rows[] = {
      {"T | Cu ppm AR", "AR", "AR"},
      {"T | Cu_ppm_XRF", "XRF", "XRF"},
      {"T | Cu_BM/ppm", "", "<<First>>"},
      {"T | SiO2/XRF/%", "%", "XRF"},  // as saving names its fields
      {"T | Cu/ppm", "", "<<First>>"},
      {"T | Cu ppm ", "", "<<First>>"},
      {"My table | Cu", "", "<<First>>"},
      {"Cu ppm AR", "AR", "AR"},
      {"", "", "<<First>>"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(MethodOfField(row.text), row.told) << row.text;
    EXPECT_EQ(methodOfStored(row.text), row.stored) << row.text;
  }
}

TEST(StoredFields, ElementsAndFactors) {
  ModalFixture fixture;
  fixture.F1ELoc.TextRC(2, eloc::Table, "SampleChemistry>");
  const struct {
    const char *table, *field;
    int row;
    double factor;
  } rows[] = {
      {"A", "Cu/ppm", 1, 1e-4},
      {"A", "Au/FA/ppb", 6, 1e-7},
      {"A", "SiO2/XRF/%", 4, 1},
      {"A", "Si/XRF/%", 4, 2.1393},
      {"A", "Fe2O3/%", 2, 0.8998},
      {"A", "Cu ppm", 1, 1e-4},
      {"A", "FeOtot %", 2, 1},
      {"A", "Au ppm", 6, 1e-4},
      {"A", "Rock", 0, 1},
      {"A", "NiXX/%", 0, 1},
      {"A", "", 0, 1},
      {"A", "a/b/c/d", 0, 1},
      {"SampleChemistry>", "FeOtot %", 2, 1},
  };
  for (const auto& row : rows) {
    const AssayColumn column = describeField(row.table, row.field, fixture.F1ELoc);
    EXPECT_EQ(column.elementRow, row.row) << row.field;
    EXPECT_NEAR(column.factor, row.factor, 1e-12) << row.field;
  }
}

TEST_F(Stored, JoinsTablesBySample) {
  samples();
  sql("CREATE TABLE [XRF] ([SampleNo] LONG PRIMARY KEY, [SiO2/XRF/%] SINGLE, [Rock] TEXT (50))");
  sql("INSERT INTO [XRF] VALUES (2, 50.5, 'x')");
  sql("INSERT INTO [XRF] VALUES (1, Null, 'x')");
  sql("CREATE TABLE [AAS] ([SampleNo] LONG PRIMARY KEY, [Cu/ppm] TEXT (9), [Ni/ppm] SINGLE)");
  sql("INSERT INTO [AAS] VALUES (3, '5000', Null)");
  sql("INSERT INTO [AAS] VALUES (1, '<10', Null)");
  // Compositions of minerals in samples are not assays.
  sql("CREATE TABLE [Grains] ([SampleNo] LONG, [Grain] LONG, [Fe/%] SINGLE, "
      "PRIMARY KEY ([SampleNo], [Grain]))");
  sql("INSERT INTO [Grains] VALUES (1, 1, 10)");
  retrieve();
  EXPECT_EQ(lists.SampleIDs, (std::vector<std::string>{"1", "2", "3"}));
  EXPECT_EQ(result.F1Ini.ValueRC(2, 1).asNumber(), 2);
  EXPECT_EQ(assay(1, 4, "XRF"), "");
  EXPECT_EQ(assay(2, 4, "XRF"), "50.5");
  EXPECT_EQ(assay(3, 4, "XRF"), "");
  EXPECT_EQ(assay(1, 1, firstMethod), "");  // not a number
  EXPECT_EQ(assay(3, 1, firstMethod), "0.5");
  EXPECT_EQ(assay(3, 5, firstMethod), "none");  // Null in all records
  EXPECT_EQ(assay(1, 2, firstMethod), "none");
}

TEST_F(Stored, TakesTheSamplesOfAFilter) {
  samples();
  sql("CREATE TABLE [A] ([SampleNo] LONG PRIMARY KEY, [Cu/ppm] SINGLE, [Ni/ppm] SINGLE)");
  sql("INSERT INTO [A] VALUES (1, 10, 7)");
  sql("INSERT INTO [A] VALUES (2, 20, Null)");
  sql("CREATE VIEW [f_Gabbro] AS SELECT [SampleNo], [Rock] FROM [Sample] WHERE [Rock]='gabbro'");
  source.filter = "Gabbro";
  retrieve();
  EXPECT_EQ(lists.SampleIDs, (std::vector<std::string>{"2", "3"}));
  EXPECT_EQ(assay(1, 1, firstMethod), "0.002");
  EXPECT_EQ(assay(1, 5, firstMethod), "none");  // only samples outside have it

  source = {&database, "-1", "f_Gabbro"};
  retrieve();
  EXPECT_EQ(lists.SampleIDs.size(), 2U);
  source = {&database, "-1", ""};
  EXPECT_THROW(retrieve(), Error);
  source = {&database, "Norite", ""};
  EXPECT_THROW(retrieve(), Error);
}

TEST_F(Stored, AssaysInTheTableOfTheSamples) {
  sql("CREATE TABLE [Few] ([ID] TEXT (9) PRIMARY KEY, [Cu/%] SINGLE)");
  sql("CREATE TABLE [Holes] ([Name] TEXT (9) PRIMARY KEY, [Cu/%] SINGLE, [Cu/AR/%] SINGLE, "
      "[CuO/AR/%] SINGLE)");
  sql("INSERT INTO [Holes] VALUES ('007', 1, 2, 3)");
  retrieve();
  EXPECT_EQ(sampleMasterTable(database), "Holes");
  EXPECT_EQ(lists.SampleIDs, std::vector<std::string>{"007"});
  EXPECT_EQ(result.F1Ini.TextRC(1, 1), "007");
  EXPECT_EQ(assay(1, 1, firstMethod), "1");
  EXPECT_EQ(assay(1, 1, "AR"), "2");  // the first of two fields
  EXPECT_NE(log.find("Holes | CuO/AR/% feeds no equation"), std::string::npos) << log;

  sql("CREATE VIEW [@Samples] AS SELECT * FROM [Few]");
  EXPECT_EQ(sampleMasterTable(database), "Few");
}

TEST_F(Stored, ATotalServesBeforeAPart) {
  sql("CREATE TABLE [Holes] ([Name] TEXT (9) PRIMARY KEY, [FeO/%] SINGLE, [Fe2O3tot/%] SINGLE, "
      "[Fe2O3/%] SINGLE)");
  sql("INSERT INTO [Holes] VALUES ('007', 6, 10, 3)");
  retrieve();
  const int iron = describeField("Holes", "FeO/%", F1ELoc).elementRow;
  EXPECT_EQ(assay(1, iron, firstMethod), "8.998");
  EXPECT_NE(log.find("FeO/% feeds no equation: a later field"), std::string::npos) << log;
}

TEST_F(Stored, NothingToCalculateFrom) {
  map();
  EXPECT_THROW(sampleMasterTable(database), Error);
  samples();
  EXPECT_THROW(retrieve(), Error);
}

TEST_F(Stored, FormOffersFields) {
  samples();
  sql("CREATE TABLE [A] ([SampleNo] LONG PRIMARY KEY, [Cu/AR/ppm] SINGLE, [Ni/ppm] SINGLE)");
  sql("INSERT INTO [A] VALUES (1, 10, Null)");
  map();
  taulukot tables;
  tables.F1ELoc.CopyAll(F1ELoc);
  frmMinCalc form(session, tables, lists, result, solver);
  form.stored = source;
  form.Alusta();
  EXPECT_EQ(form.elementColour(1), elementWithData);
  EXPECT_EQ(form.elementColour(5), elementWithoutData);
  form.E(1);
  ASSERT_EQ(form.lstMet.count(), 1);
  EXPECT_EQ(form.lstMet.item(0), "A | Cu/AR/ppm");
  form.E(1);
  EXPECT_EQ(form.lstElR.item(0), "Cu (1) / A | Cu/AR/ppm");
}

TEST_F(Stored, EquationsNameTableAndField) {
  samples();
  sql("CREATE TABLE [A] ([SampleNo] LONG PRIMARY KEY, [Cu/%] SINGLE, [Cu/AR/ppm] SINGLE)");
  sql("INSERT INTO [A] VALUES (1, 7, 34600)");
  retrieve();
  round({{"M/Ccp/1", false, false}}, {{assayItem("Cu", 1, "A | Cu/AR/ppm"), {}}});
  mineral(1, {{1, 34.6}});
  mineral(2, {{1, 34.6}});  // F1Disso has a column per mineral and method
  run();
  EXPECT_EQ(result.F1MC.ValueRC(1, 1).asNumber(), 1);
  EXPECT_EQ(result.F1MC.TextRC(1, 2), "10.000") << session.log.txtLog.text();
  EXPECT_EQ(result.F1MC.TextRC(2, 2), "0.000");
}

}  // namespace
}  // namespace lodex
