#include "modal/frmMinCalc.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "basic/Error.h"
#include "basic/Files.h"
#include "modal/MineralDatabase.h"

namespace lodex {
namespace {

const std::string data = std::string(LODEX_SOURCE_DIR) + "/data";

// A mineral database of three minerals and a phase, built once.
const std::string& databasePath() {
  static const std::string path = [] {
    taulukot tables;
    tables.load(data + "/reference");
    const std::string file = testing::TempDir() + "/modal_" + std::to_string(::getpid()) + ".mdb";
    const auto source = [](const char* name, const char* text) {
      const std::string place = testing::TempDir() + "/modal_" + name + ".txt";
      writeFileWhole(place, text);
      return place;
    };
    buildMineralDatabase(
        {source("minerals",
                "MineralID\tMinSymbol\tMineral\tFormula\tDensity\tGroup\tLocation\n"
                "170\tCcp\tChalcopyrite\tCuFeS2\t4.2\tSulphides\tideal\n"
                "150\tPy\tPyrite\tFeS2\t5\tSulphides\tideal\n"
                "301\tQz\tQuartz\tSiO2\t2.65\tSilicates\tideal\n"),
         source("phases",
                "PCID\tPhaseSymbol\tPhaseKey\tLocation\tSiO2 %\n9001\tRest\tR\tnone\t70\n"),
         source("dissolution",
                "MineralID\tMethod\tMinSymbol\tMinPhase\tFractionExtracted\n"
                "301\tBM\tQz\tM\t0\n0\tBM\t000\tM\t0.5\n")},
        tables.F1ELoc, file);
    return file;
  }();
  return path;
}

struct Bench {
  Bench() {
    tables.load(data + "/reference");
    session.record.MineralDbPath = databasePath();
  }

  // Columns: captions, identifiers, Cu by BM, S without method, Si as oxide.
  void takeAssays() {
    const char* rows[][5] = {{"HEADER", "Sample", "Cu_BM %", "S %", "SiO2 %"},
                             {"ELEMENT", "Sample", "Cu", "S", "SiO2"},
                             {"METHOD", "", "BM", "", ""},
                             {"UNIT", "", "%", "%", "%"},
                             {"", "A", "1.7313", "8.84", "40"},
                             {"", "B", "0", "", "90"}};
    for (int r = 0; r < 6; ++r) {
      for (int c = 0; c < 5; ++c) assays.TextRC(r + 1, c + 1, rows[r][c]);
    }
    form.source = {&assays, 1, 2, 3, 4, 5, 2};
    form.Alusta();
  }

  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  taulukot tables;
  ModalLists lists;
  frmResult result;
  frmSolve solver{dialogs};
  Worksheet assays;
  frmMinCalc form{session, tables, lists, result, solver};
};

constexpr int copper = 29, sulphur = 16, silicon = 14, gold = 79;

TEST(frmMinCalc, ElementsAndMethods) {
  Bench b;
  b.form.Alusta();
  EXPECT_EQ(b.form.elementColour(copper), elementWithoutData);
  b.takeAssays();
  EXPECT_EQ(b.form.elementColour(copper), elementWithData);
  EXPECT_EQ(b.form.elementColour(gold), elementWithoutData);
  b.form.E(gold);
  EXPECT_EQ(b.form.lstMet.count(), 0);
  b.form.E(copper);
  EXPECT_EQ(b.form.lstMet.items(), std::vector<std::string>{"BM"});
  b.form.E(copper);  // its only method
  b.form.E(sulphur);
  EXPECT_EQ(b.form.lstMet.items(), std::vector<std::string>{"<<First>>"});
  b.form.Command2.click();
  EXPECT_EQ(b.form.lstElR.items(),
            (std::vector<std::string>{"Cu (29) / BM", "S (16) / <<First>>"}));
}

TEST(frmMinCalc, RoundsAreKeptWhenMovingOn) {
  Bench b;
  b.form.lstMin.add("M/Ccp/170");
  b.form.lstMin.add("M/Py/150");
  b.takeAssays();
  b.form.addMineral(0);
  b.form.lstMinR.setChecked(0, true);
  b.form.E(copper);
  b.form.E(copper);
  b.form.optMalli.select(3);
  b.form.UpDown1(1);
  EXPECT_EQ(b.form.txtRound.text(), "2");
  EXPECT_EQ(b.form.labRounds.caption(), "Total number of rounds = 1");
  EXPECT_EQ(b.form.lstMinR.count(), 0);
  EXPECT_EQ(b.form.optMalli.selected(), 0);
  b.form.addMineral(1);
  b.dialogs.expectInput("Give eqation, e.g. 2.5*Py-Ccp", "2*Ccp");
  b.form.mnuAddeq.click();
  b.form.UpDown1(-1);
  EXPECT_EQ(b.form.labRounds.caption(), "Total number of rounds = 2");
  EXPECT_EQ(b.form.lstMinR.item(0), "M/Ccp/170");
  EXPECT_TRUE(b.form.lstMinR.checked(0));
  EXPECT_EQ(b.form.optMalli.selected(), 3);
  b.form.UpDown1(-1);
  EXPECT_EQ(b.form.txtRound.text(), "1");
  EXPECT_EQ(b.form.F1CalcOpt.TextRC(2, setup::Equation), "###2*Ccp");
}

TEST(frmMinCalc, XLines) {
  const std::string file = testing::TempDir() + "/modal_panel.txt";
  writeFileWhole(file, "Depth\tSampleNo\tMag\n1\tA\t3\n");
  Bench b;
  b.form.lstMin.add("M/Ccp/170");
  b.form.addMineral(0);
  b.dialogs.expectOpen({file});
  b.form.cmdOpenXFile.click();
  EXPECT_EQ(b.form.lstXCol.items(), (std::vector<std::string>{"Depth", "Mag"}));
  b.form.pickXColumn(1);
  b.form.cmdXOK.click();  // the text of the first line comes from the first mineral
  b.form.optX.select(1);
  b.form.pickXColumn(0);
  b.form.cmdXOK.click();
  b.form.StoreCurrentRound();
  const Worksheet& opt = b.form.F1CalcOpt;
  EXPECT_EQ(opt.TextRC(1, setup::Equation), "X-Mag");
  EXPECT_EQ(opt.NumberRC(1, setup::XSampleColumn), 2);
  EXPECT_EQ(opt.NumberRC(1, setup::XValueColumn), 3);
  EXPECT_EQ(opt.TextRC(1, setup::Text), "Ccp=1");
  EXPECT_EQ(opt.TextRC(2, setup::Equation), "X:M/Ccp/170");
  EXPECT_EQ(opt.NumberRC(2, setup::XKind), 1);
}

TEST(frmMinCalc, AnXFileThatCannotBeReadIsTold) {
  const std::string file = testing::TempDir() + "/modal_kept.txt";
  writeFileWhole(file, "SampleNo\tMag\nA\t3\n");
  const std::string damaged = testing::TempDir() + "/modal_damaged.xlsx";
  writeFileWhole(damaged, "PK\x03\x04 no archive");
  Bench b;
  b.dialogs.expectOpen({file});
  b.form.cmdOpenXFile.click();
  b.dialogs.expectOpen({damaged});
  std::string text;
  try {
    Worksheet().Read(damaged);
  } catch (const Error& failure) {
    text = failure.what();
  }
  ASSERT_NE(text, "");
  b.dialogs.expectMessage("Error 0 " + text);
  EXPECT_NO_THROW(b.form.cmdOpenXFile.click());
  EXPECT_EQ(b.form.scratch.F1X.TextRC(2, 2), "3");
  EXPECT_TRUE(b.dialogs.allAsked());
}

TEST(frmMinCalc, OnlyAFileWithRoundsIsWellOpened) {
  const std::string empty = testing::TempDir() + "/modal_empty.mmq";
  writeFileWhole(empty, "1\tassays\nM/Ccp/170\n");
  Bench b;
  bool ok = true;
  b.form.OpenFile("", true, ok);
  EXPECT_FALSE(ok);
  b.form.OpenFile(empty, true, ok);
  EXPECT_FALSE(ok);
}

TEST(frmMinCalc, OpensCalculatesAndReports) {
  const std::string file = testing::TempDir() + "/Ores.v2.mmq";
  writeFileWhole(file,
                 "1\tassays\nM/Ccp/170\tM/Qz/301\tM/Py/150\nM/Ccp/170\nCu (29) / BM\n2\t2\n"
                 "M/Qz/301\nSi (14) / <<First>>\n0\n");
  Bench b;
  bool ok = false;
  b.form.OpenFile(file, false, ok);
  ASSERT_TRUE(ok);
  EXPECT_EQ(b.form.txtDigits.text(), "2");
  EXPECT_TRUE(b.form.cmdOK.enabled());
  EXPECT_TRUE(b.form.retrieveData);
  EXPECT_EQ(b.lists.MinIDs, (std::vector<std::string>{"170", "301"}));
  EXPECT_EQ(b.session.log.txtLog.text(), "Mineral M/Py/150 is in no round");

  b.takeAssays();
  b.form.cmdCalc.click();
  EXPECT_FALSE(b.form.retrieveData);
  EXPECT_TRUE(b.result.visible());
  // Half of the copper minerals dissolves by default: 1.73 % Cu means 10 % chalcopyrite.
  EXPECT_EQ(b.result.F1MC.TextRC(1, 2), "10.00");
  EXPECT_EQ(b.result.F1MC.TextRC(1, 3), "40.00");
  EXPECT_EQ(b.result.F1MC.TextRC(2, 4), "90.00");
  EXPECT_EQ(b.result.F1Disso.NumberRC(1, 1), 0.5);
  EXPECT_EQ(b.result.F1Disso.ColText(1), "M/Ccp/170 BM");
  EXPECT_EQ(b.result.F1N.TextRC(1, 2), "Ores.v2");
  EXPECT_EQ(b.result.lstFract.count(), 2);

  b.form.chkAllTot.setChecked(true);
  b.form.mnuRequery.click();
  EXPECT_EQ(b.result.F1MC.TextRC(1, 2), "5.00");

  b.result.F1Ini.NumberRC(1, 2, 3.4626);  // typed over by the user
  b.form.cmdRun.click();
  EXPECT_EQ(b.result.F1MC.TextRC(1, 2), "10.00");

  b.form.OpenFile(file, true, ok);  // it may have other minerals: everything is read anew
  b.form.cmdRun.click();
  EXPECT_EQ(b.result.F1Ini.NumberRC(1, 2), 1.7313);

  const std::string report = setUpReport(b.form.F1CalcOpt, "Total number of rounds = 2");
  b.dialogs.expectMessage(report + "\r\n\r\nDo you want to copy this to clipboard?", Answer::Yes);
  b.form.cmdReport.click();
  EXPECT_EQ(b.clipboard.text(), report);
}

TEST(frmMinCalc, SampleSpecificPathGivesTheSameWithoutRecords) {
  Bench b;
  b.takeAssays();
  b.form.F1OpenSave.TextRC(3, 1, "M/Ccp/170");
  b.form.F1OpenSave.TextRC(4, 1, "Cu (29) / BM");
  b.form.F1OpenSave.TextRC(5, 1, "2");
  b.form.takeOpenSave();
  b.form.F1CalcOpt.NumberRC(1, setup::SampleSpecific, 1);
  ASSERT_TRUE(b.form.RetAndCalc(ModalMode::Retrieve));
  EXPECT_EQ(b.result.F1MC.TextRC(1, 2), "10.000");
  EXPECT_EQ(b.result.F1MinChemPerSample.LastRow(), 2);
  EXPECT_EQ(b.result.F1MinChemPerSample.TextRC(2, 1), "B");
  EXPECT_EQ(b.result.F1MinChemPerSample.TextRC(2, 2), "Ccp");
  EXPECT_NEAR(b.result.F1MinChemPerSample.NumberRC(1, copper + 2), 34.63, 0.01);

  // A composition of sample A's own: twice the copper, half the mineral.
  Connection db;
  db.Open(ConnectionString(databasePath(), "", ""));
  db.Execute(
      "INSERT INTO [MineralChemistryQ] ([MineralID], [MinSymbol], [SampleNo], [Cu %]) "
      "VALUES (170, 'Ccp', 1, 69.252)");
  db.Close();
  b.assays.TextRC(5, 2, "1");
  ASSERT_TRUE(b.form.RetAndCalc(ModalMode::Retrieve));
  EXPECT_EQ(b.result.F1MC.TextRC(1, 2), "5.000");
  EXPECT_EQ(b.result.F1MC.TextRC(2, 2), "0.000");
  EXPECT_NEAR(b.result.F1Min.NumberRC(copper, 1), 34.63, 0.01);  // restored for sample B
}

TEST(frmMinCalc, ASymbolOfAnotherMineralIsTold) {
  Bench b;
  b.form.F1OpenSave.TextRC(3, 1, "M/Py/170");
  b.form.F1OpenSave.TextRC(3, 2, "P/Rest/9001");
  b.form.F1OpenSave.TextRC(4, 1, "Cu (29) / BM");
  b.form.takeOpenSave();
  b.takeAssays();
  ASSERT_TRUE(b.form.RetAndCalc(ModalMode::Retrieve));
  const std::string log = b.session.log.txtLog.text();
  EXPECT_NE(log.find("Mineral M/Py/170 has the composition of number 170, which is Ccp"),
            std::string::npos);
  EXPECT_EQ(log.find("Mineral P/Rest/9001 has"), std::string::npos);
}

TEST(frmMinCalc, AssaysOfTextAloneAreAnError) {
  Bench b;
  b.form.F1OpenSave.TextRC(3, 1, "M/Ccp/170");
  b.form.F1OpenSave.TextRC(4, 1, "Cu (29) / BM");
  b.form.takeOpenSave();
  b.takeAssays();
  b.assays.TextRC(5, 3, "1,73");
  b.assays.TextRC(6, 3, "0,5");
  b.dialogs.expectMessage("The assays of all equations are text: there is no number among them");
  b.form.cmdCalc.click();
  EXPECT_TRUE(b.dialogs.allAsked());
  b.assays.TextRC(6, 3, "0.5");
  EXPECT_TRUE(b.form.RetAndCalc(ModalMode::Retrieve));
}

TEST(frmMinCalc, ErrorsAreTold) {
  Bench b;
  bool ok = true;
  b.form.OpenFile("/no/such.mmq", true, ok);
  EXPECT_FALSE(ok);
  b.form.F1OpenSave.TextRC(3, 1, "M/Xx/99999");
  b.form.F1OpenSave.TextRC(4, 1, "Cu (29) / BM");
  b.form.takeOpenSave();
  b.takeAssays();
  b.dialogs.expectMessage("Error in retrieving mineral chemistry");
  b.form.cmdCalc.click();
  EXPECT_TRUE(b.form.retrieveData);
  EXPECT_TRUE(b.dialogs.allAsked());
}

}  // namespace
}  // namespace lodex
