#include "modal/MineralDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "basic/Error.h"
#include "chem/ReferenceTables.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "modal/MineralData.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kMinerals =
    "\xEF\xBB\xBFMineralID\tMinSymbol\tMineral\tFormula\tDensity\tGroup\tLocation\tSolid\r\n"
    "12\tPy\tPyrite\tFeS2\t5.01\tSulphides\tideal\tyes\r\n"
    "7\tCcp\tChalcopyrite\tCuFeS2\t4.2\tSulphides\tideal\r\n"
    "\r\n"
    "20\tPl\tPlagioclase\tNaAlSi3O8\t2.62\tFeldspars\tAn0\n"
    "21\tPl\tplagioclase\tCaAl2Si2O8\t\tFeldspars\tAn100\n"
    "22\tPlF\tPlagioclase\tNa0.99Fe0.01AlSi3O8\t2.62\tFeldspars\ta little iron\n"
    "30\tObr\tO'Brien's ore\tCaCO3\t2.71\tCarbonates\tideal\n";
constexpr const char* kPhases =
    "PCID\tPhaseSymbol\tPhaseKey\tLocation\tSiO2 %\tCu %\tNote\n"
    "7\tGangue\tMix\tsome mine\t60.5\t\tmixed\n";
constexpr const char* kDissolution =
    "MineralID\tMethod\tMinSymbol\tMinPhase\tFractionExtracted\n"
    "0\tBM\t000\tM\t0.1\n"
    "0\tBM\tD00\tM\t0.2\n"
    "0\tNA\tD00\tM\t0.3\n"
    "12\tBM\tPy\tM\t0.9\n"
    "0\tBM\tGangue\tM\t0.55\n"
    "0\tNA\tGangue\tM\t0.6\n"
    "0\tNA\tGangue\tP\t0.7\n"
    "0\tNA\tCcp\tM\t\n";

class MineralDatabaseTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("lodex_minerals_" + std::to_string(::getpid()));
    fs::create_directories(folder_);
    write("minerals.txt", kMinerals);
    write("phases.txt", kPhases);
    write("dissolution.txt", kDissolution);
    const struct {
      const char *element, *field, *phaseField;
      double factor;
    } rows[] = {{"C", "CO2 %", "CO2 %", 3.6642},
                {"Na", "Na2O %", "Na2O %", 1.348},
                {"Al", "Al2O3 %", "Al2O3 %", 1.8895},
                {"Si", "SiO2 %", "SiO2 %", 2.1393},
                {"S", "S %", "S %", 1},
                {"Ca", "CaO %", "CaO %", 1.3992},
                {"us5", "", "", 0},
                {"Fe", "FeOtot %", "FeOtot %", 1.2865},
                {"Cu", "Cu %", "Cu %", 1},
                {"Au", "Au %", "", 1},
                {"O", "O %", "", 1}};
    int r = 0;
    for (const auto& row : rows) {
      F1ELoc.TextRC(++r, eloc::Element, row.element);
      F1ELoc.TextRC(r, eloc::MineralField, row.field);
      F1ELoc.TextRC(r, eloc::PhaseField, row.phaseField);
      F1ELoc.NumberRC(r, eloc::MulitEl, row.factor);
    }
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }
  MineralDatabaseReport build() {
    return buildMineralDatabase({path("minerals.txt"), path("phases.txt"), path("dissolution.txt")},
                                F1ELoc, path("Minerals.mdb"));
  }
  Connection open() const {
    Connection connection;
    connection.Open(ConnectionString(path("Minerals.mdb"), "", ""));
    return connection;
  }
  std::string buildError() {
    try {
      build();
    } catch (const Error& error) {
      return error.what();
    }
    return "(no error)";
  }

  fs::path folder_;
  Worksheet F1ELoc;
};

TEST_F(MineralDatabaseTest, ComputesCompositionsFromFormulas) {
  const auto report = build();
  EXPECT_EQ(report.species, 4);
  EXPECT_EQ(report.compositions, 6);
  EXPECT_EQ(report.phases, 1);
  EXPECT_EQ(report.dissolutionRows, 8);
  EXPECT_TRUE(report.warnings.empty());

  auto connection = open();
  auto records = connection.OpenRecordset("SELECT * FROM [<MineralChemistry]");
  const struct {
    const char *filter, *field;
    double percent;
  } rows[] = {
      // Molar masses 55.845, 32.06, 63.546, 40.078, 12.011 and 15.999 g/mol.
      {"MineralID=12", "S %", 53.45},     {"MineralID=12", "FeOtot %", 46.55 * 1.2865},
      {"MineralID=7", "Cu %", 34.63},     {"MineralID=20", "SiO2 %", 68.74},
      {"MineralID=21", "Al2O3 %", 36.65}, {"MineralID=30", "CO2 %", 43.97},
  };
  for (const auto& row : rows) {
    records->Filter(row.filter);
    EXPECT_NEAR(fieldNumber(records->Value(row.field)), row.percent, 0.02) << row.field;
  }
  records->Filter("MineralID=12");
  EXPECT_TRUE(isNull(records->Value("Cu %"))) << "absent from the formula";
  EXPECT_EQ(records->Text("Solid"), "yes");
  records->Filter("MineralID=21");
  EXPECT_TRUE(isNull(records->Value("O %"))) << "the oxides hold it";
}

TEST_F(MineralDatabaseTest, LaysOutTheTablesThatTheCalculationReads) {
  build();
  auto connection = open();
  auto species = connection.OpenRecordset(
      "SELECT * FROM [Minerals] WHERE (Elements Like '%\\Al\\%' AND Elements Like '%\\Na\\%' AND "
      "Elements Not Like '%\\Cu\\%') ORDER BY Mineral");
  EXPECT_EQ(species->RecordCount(), 1) << "one species of three compositions";
  EXPECT_EQ(species->Text("Mineral"), "Plagioclase");
  EXPECT_EQ(species->Text("Elements"), "\\Na\\Al\\Si\\O\\Ca\\");
  EXPECT_EQ(species->Text("MF"), "NaAlSi3O8");

  const struct {
    const char *source, *symbolField;
  } perSample[] = {{"<MineralChemistryQ", "MinSymbol"}, {"<PhaseChemistryQ", "PhaseSymbol"}};
  for (const auto& view : perSample) {
    auto records = connection.OpenRecordset("SELECT * FROM " + quoteName(view.source));
    EXPECT_EQ(records->RecordCount(), 0) << view.source;
    EXPECT_EQ(records->Fields()[1].name, view.symbolField);
    EXPECT_GT(records->FieldIndex("SampleNo"), 0);
  }
  auto stored = connection.OpenRecordset("SELECT * FROM [SamplePhases]");
  EXPECT_EQ(stored->Fields().size(), 4u + 60u);
  EXPECT_EQ(stored->Fields()[4].name, "Phase1");
  EXPECT_EQ(stored->Fields()[63].name, "Quantity30");
  EXPECT_EQ(stored->Fields()[63].type.code, FieldCode::Double);
  EXPECT_EQ(connection.OpenRecordset("SELECT * FROM [@Samples]")->Fields()[0].name, "SampleNo");
}

TEST_F(MineralDatabaseTest, NamesFileAndLineOfAMistakeAndKeepsTheOldDatabase) {
  build();
  const std::string head = "MineralID\tMinSymbol\tMineral\tFormula\tDensity\tGroup\tLocation\n";
  const std::string good = "1\tPy\tPyrite\tFeS2\t5\tS\tx\n";
  const struct {
    std::string file, content, reason;
  } rows[] = {
      {"minerals.txt", "", "is empty"},
      {"minerals.txt", "MineralID\tMinSymbol\n", "no column Mineral"},
      {"minerals.txt", head + good + good, "line 3: the MineralID 1 appears twice"},
      {"minerals.txt", head + "1.5\tPy\tPyrite\tFeS2\n", "line 2: MineralID must be a whole"},
      {"minerals.txt", head + "1\tPy\tPyrite\tXx9(\n", "line 2: the formula Xx9( cannot be read"},
      {"minerals.txt", head + "1\tPy\tPyrite\tFeS2\t4,9\n", "line 2: Density must be a number"},
      {"minerals.txt", head + "1\tP/y\tPyrite\tFeS2\n", "line 2: the symbol P/y"},
      {"minerals.txt", head + "1\t\tPyrite\tFeS2\n", "line 2: MinSymbol is empty"},
      {"minerals.txt", head + "1\ta\tb\tS\t1\tc\td\te\n", "line 2: there are more cells"},
      {"minerals.txt", head + "1\tPy\t\xC4\tFeS2\n", "not UTF-8"},
      {"phases.txt", "PCID\tPhaseSymbol\tPhaseKey\tLocation\tXx %\n", "Xx %"},
      {"phases.txt", "PCID\tPhaseSymbol\tPhaseKey\tLocation\tCu %\n1\ta\tb\tc\t<1\n",
       "line 2: Cu %"},
      {"dissolution.txt", std::string(kDissolution) + "99\tBM\tx\tM\t1\n", "the id 99"},
      {"dissolution.txt", std::string(kDissolution) + "12\tBM\tx\tQ\t1\n", "M or P"},
      {"dissolution.txt", std::string(kDissolution) + "12\tBM\tx\tM\t50\n", "from 0 to 1"},
  };
  for (const auto& row : rows) {
    write("minerals.txt", kMinerals);
    write("phases.txt", kPhases);
    write("dissolution.txt", kDissolution);
    write(row.file, row.content);
    EXPECT_THAT(buildError(), HasSubstr(row.reason));
  }
  EXPECT_EQ(open().OpenRecordset("SELECT * FROM [<MineralChemistry]")->RecordCount(), 6);
  for (const auto& entry : fs::directory_iterator(folder_)) {
    EXPECT_EQ(entry.path().string().find(".tmp"), std::string::npos) << entry.path();
  }
}

TEST_F(MineralDatabaseTest, WarnsOfElementsThatNoFieldHolds) {
  write("minerals.txt", std::string(kMinerals) + "40\tGn\tGalena\tPbS\t7.5\tSulphides\tideal\n");
  const auto report = build();
  ASSERT_EQ(report.warnings.size(), 1u);
  EXPECT_THAT(report.warnings[0], HasSubstr("line 9: no field holds the element Pb"));
}

TEST_F(MineralDatabaseTest, RetrievesCompositionsInTheOrderOfTheList) {
  build();
  auto connection = open();
  const ModalLists lists{{"12", "7", "7", "20"}, {"M/Py/12", "P/Gangue/7", "M/Ccp/7", "Pl/20"}, {}};
  Worksheet F1Min;
  F1Min.TextRC(10, 1, "old");
  std::vector<int> fetched;
  Findings found;
  RetrieveMineralChemistry(
      connection, lists, F1ELoc, F1Min, [&](int i) { fetched.push_back(i); }, found);
  EXPECT_EQ(fetched, (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(F1Min.ColText(3), "7");
  EXPECT_NEAR(F1Min.NumberRC(5, 1), 53.45, 0.02);
  EXPECT_EQ(F1Min.TextRC(4, 2), "60.5") << "the phase 7, not the mineral 7";
  EXPECT_EQ(F1Min.TextRC(9, 2), "") << "Null";
  EXPECT_NEAR(F1Min.NumberRC(9, 3), 34.63, 0.02);
  EXPECT_EQ(F1Min.TextRC(7, 1), "") << "an item without a field";
  EXPECT_EQ(F1Min.TextRC(10, 1), "") << "Null over an old value";

  const struct {
    std::string id, label, error;
  } missing[] = {
      {"13", "M/Py/13", "Error in retrieving mineral chemistry"},
      {"12", "P/Gangue/12", "Error in retrieving phase chemistry"},
      {"012", "M/Py/12", "Error in retrieving mineral chemistry"},
      {"1) OR (1=1", "M/Py/12", "Error in retrieving mineral chemistry"},
      {"", "", "Error in retrieving phase chemistry"},
  };
  for (const auto& row : missing) {
    try {
      RetrieveMineralChemistry(connection, {{"12", row.id}, {"M/Py/12", row.label}, {}}, F1ELoc,
                               F1Min, nullptr, found);
      ADD_FAILURE() << row.id;
    } catch (const Error& error) {
      EXPECT_EQ(error.what(), row.error) << row.id;
    }
  }
}

TEST_F(MineralDatabaseTest, CompositionsOfASampleReplaceTheGeneralOnes) {
  build();
  auto connection = open();
  connection.Execute(
      "INSERT INTO MineralChemistryQ (MineralID, MinSymbol, SampleNo, [Cu %]) VALUES "
      "(1, 'Ccp', 100, 33.1), (1, 'Ccp', 101, 32.2), (2, 'O''Brien', 100, 9)");
  connection.Execute(
      "INSERT INTO PhaseChemistryQ (PCID, PhaseSymbol, SampleNo, [SiO2 %]) VALUES "
      "(7, 'Gangue', 100, 51), (7, 'Gangue', 101, 52)");
  SampleChemistry chemistry(connection);
  const struct {
    std::string kind, symbol, id, sample;
    bool found;
    int row;
    std::string text;
  } rows[] = {
      {"M", "Ccp", "1", "101", true, 9, "32.2"},    {"M", "Ccp", "1", "102", false, 9, "old"},
      {"M", "O'Brien", "2", "100", true, 9, "9"},   {"P", "Gangue", "7", "101", true, 4, "52"},
      {"P", "Gangue", "8", "101", false, 4, "old"}, {"M", "Ccp", "1", "x'y", false, 9, "old"},
  };
  for (const auto& row : rows) {
    Worksheet F1Min;
    F1Min.TextRC(row.row, 2, "old");
    F1Min.TextRC(5, 2, "old");
    EXPECT_EQ(chemistry.overwrite(row.kind, row.symbol, row.id, row.sample, F1ELoc, F1Min, 2),
              row.found);
    EXPECT_EQ(F1Min.TextRC(row.row, 2), row.text) << row.symbol << row.sample;
    EXPECT_EQ(F1Min.TextRC(5, 2), row.found ? "" : "old") << "Null empties the cell";
  }
}

TEST_F(MineralDatabaseTest, DissolutionFollowsItsOrderOfSearch) {
  build();
  auto connection = open();
  Dissolution dissolution(connection);
  const struct {
    const char *name, *kind, *symbol, *id, *method;
    double fraction;
  } rows[] = {
      {"by id", "M", "Py", "12", "BM", 0.9},
      {"by symbol", "M", "Py", "99", "bm", 0.9},
      {"default of minerals", "M", "Ccp", "7", "BM", 0.1},
      {"minerals without 000", "M", "Py", "12", "NA", 0.3},
      {"phase by symbol and kind", "P", "Gangue", "8", "NA", 0.7},
      {"phase by the mineral's symbol", "P", "Gangue", "8", "BM", 0.55},
      {"000 is not for phases", "P", "Rest", "8", "BM", 0.2},
      {"Null counts as all", "M", "Ccp", "7", "NA", 1},
      {"unknown method", "M", "Py", "12", "XRF", 1},
      {"hostile symbol", "M", "x' OR '1'='1", "99", "NA", 0.3},
      {"hostile id", "M", "Py", "12 OR 1=1", "NA", 0.3},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(dissolution.fraction(row.kind, row.symbol, row.id, row.method), row.fraction)
        << row.name;
  }
}

}  // namespace
}  // namespace lodex
