#include "shell/ShellFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class StartTest : public ShellFixture {};
class EndTest : public ShellFixture {};

TEST_F(StartTest, LoadsWhileTheSplashTells) {
  std::vector<std::string> told;
  Label& text = session.splash.labText;
  keep(text.onChange([&] { told.push_back(text.caption()); }));
  settings += "[General]\nOwner=Mine\n[Thesaurus]\nFile=+rules.txt\n";
  std::filesystem::create_directories(folder / "user");
  write("user/rules.txt", "Value\tIn\tHeader\tElement\nKupari\tHEADER\t\tCu\n");
  MDIMain& main = start();
  EXPECT_THAT(told, ElementsAre("Reading initials...", "Checking folders...",
                                "Reading initials (2)...", "Loading..."));
  EXPECT_THAT(session.splash.labOwner.caption(), HasSubstr("Owner:Mine; Run by:"));
  EXPECT_EQ(session.splash.LabExe.caption(), "1.2.3");
  EXPECT_TRUE(session.splash.closed());
  EXPECT_TRUE(main.visible() && main.loaded());
  EXPECT_EQ(main.caption(), "LodexGeo");
  EXPECT_EQ(main.calculations.cmdGroup.caption(), "ROCK");
  EXPECT_EQ(main.cmbSets.text(), "ROCK");
  EXPECT_GT(main.calculations.lstCalc.count(), 2);
  EXPECT_EQ(selected(main.calculations.lstCalc), main.calculations.lstCalc.items());
  EXPECT_EQ(main.thesaurus.F1Lib.TextRC(1, 1), "Kupari");
  EXPECT_EQ(main.tbLodexGeoDB.caption(), path("Geo/System/LODEXGeo.mdb"));
  EXPECT_TRUE(main.MineralConnection.IsOpen());
  EXPECT_FALSE(session.record.FileLoadInProgress);
  EXPECT_TRUE(std::filesystem::is_directory(folder / "user" / "ini"));
  EXPECT_TRUE(dialogs.allAsked());
}

TEST_F(StartTest, GoesOnWithoutWhatIsMissing) {
  settings = "[Users]\nUserPath1=" + path("user") +
             "\n[Databases]\nLodexGeo=@gone.mdb\nMinerals=@gone.mdb\n[C-Groups]\nDefault=NONE\n["
             "Thesaurus]\nFile=@gone.txt\n";
  std::filesystem::remove(folder / "Geo" / "reference");
  const std::string geo = folder.string() + "\\Geo\\";
  const auto missing = [&](const std::string& file) {
    return "Error 0 Cannot open " + geo + file + ": there is no such file";
  };
  dialogs.expectMessage("File  " + geo + "gone.mdb can not be found");
  dialogs.expectMessage(missing("reference/F1Data.txt"));
  dialogs.expectMessage(missing("gone.txt"));
  dialogs.expectMessage("Folders \n" + geo + "C-Groups\nNONE\n not found!");
  try {
    start();
  } catch (const std::logic_error& unexpected) {
    ADD_FAILURE() << unexpected.what();
    return;
  }
  EXPECT_TRUE(shell->loaded());
  EXPECT_THAT(session.log.txtErr.text(), HasSubstr("The mineral database cannot be opened"));
  EXPECT_EQ(shell->calculations.lstCalc.count(), 0);
}

struct OtherInstance {
  const char* name;
  Answer answer;
  bool loads;
};
class OtherInstanceTest : public ShellFixture, public testing::WithParamInterface<OtherInstance> {};

TEST_P(OtherInstanceTest, IsUsedUnlessTheUserWantsSeveral) {
  otherRuns = true;
  dialogs.expectMessage(
      "LodexGeo is already running. Do you want to have several instances of the Tarn running on "
      "your machine?",
      GetParam().answer);
  write("Geo/ini/LODEXGeo.ini", settings);
  shell = std::make_unique<MDIMain>(session, services());
  EXPECT_EQ(shell->Load(), GetParam().loads);
  EXPECT_EQ(shell->visible(), GetParam().loads);
  EXPECT_EQ(done, GetParam().loads ? std::vector<std::string>()
                                   : std::vector<std::string>({"activate other"}));
}

INSTANTIATE_TEST_SUITE_P(Answers, OtherInstanceTest,
                         testing::Values(OtherInstance{"Yes", Answer::Yes, true},
                                         OtherInstance{"No", Answer::No, false},
                                         OtherInstance{"Cancel", Answer::Cancel, false}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(EndTest, AsksOnceAndClosesEverything) {
  start();
  open({assays("a.txt"), assays("b.txt")});
  sheet("a").Changed = true;
  shell->thesaurus.show();
  shell->singleSample().show();
  dialogs.expectMessage("Are you sure to exit Lodex Geo?", Answer::Cancel);
  shell->close();
  EXPECT_TRUE(shell->visible());
  EXPECT_EQ(shell->sheets.DataSheetCount(), 2);
  EXPECT_THAT(done, IsEmpty());

  dialogs.expectMessage("Are you sure to exit Lodex Geo?", Answer::Ok);
  shell->close();
  EXPECT_TRUE(session.record.ExitConfirmed && shell->closed() && shell->thesaurus.closed());
  EXPECT_EQ(shell->sheets.DataSheetCount(), 0);
  EXPECT_THAT(done, ElementsAre("quit"));
  shell->close();
  EXPECT_THAT(done, ElementsAre("quit"));
}

TEST_F(EndTest, MenuAsksInItsOwnWords) {
  start();
  dialogs.expectMessage("Are you sure to exit LodexGeo?", Answer::Cancel);
  shell->mnuExit.click();
  EXPECT_FALSE(shell->closed());
  dialogs.expectMessage("Are you sure to exit LodexGeo?", Answer::Ok);
  shell->mnuExit.click();
  EXPECT_THAT(done, ElementsAre("quit"));
}

struct Closing {
  const char* name;
  bool changed;
  Answer answer;
  const char* savedAs;
  bool closes;
};
class CloseSheetTest : public ShellFixture, public testing::WithParamInterface<Closing> {};

TEST_P(CloseSheetTest, AsksForEditedSheets) {
  start();
  open({assays("a.txt")});
  frmDataIN& edited = sheet("a");
  edited.Changed = GetParam().changed;
  if (edited.Changed) {
    dialogs.expectMessage("Do you want to save the changes in a?", GetParam().answer);
  }
  if (GetParam().answer == Answer::Yes) {
    dialogs.expectSave(*GetParam().savedAs ? std::optional(path(GetParam().savedAs))
                                           : std::nullopt);
  }
  EXPECT_EQ(shell->CloseSheet(edited), GetParam().closes);
  EXPECT_EQ(shell->sheets.DataSheetCount(), GetParam().closes ? 0 : 1);
  EXPECT_TRUE(dialogs.allAsked());
  EXPECT_TRUE(pathExists(path(GetParam().savedAs)));
}

INSTANTIATE_TEST_SUITE_P(Answers, CloseSheetTest,
                         testing::Values(Closing{"Unchanged", false, Answer::No, "", true},
                                         Closing{"Discarded", true, Answer::No, "", true},
                                         Closing{"Kept", true, Answer::Cancel, "", false},
                                         Closing{"Saved", true, Answer::Yes, "saved.xls", true},
                                         Closing{"SavingCancelled", true, Answer::Yes, "", false}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(EndTest, WordReadyGoesAfterAWhile) {
  start();
  session.progress.ShowProgress("Working", 5);
  EXPECT_EQ(ready, 0);
  session.progress.ShowProgress("", 0);
  EXPECT_EQ(ready, 5000);
  EXPECT_EQ(session.progress.txtInfo.caption(), "Ready!");
  session.progress.ShowProgress("Next job", 1);
  shell->tmrReady();
  EXPECT_EQ(session.progress.txtInfo.caption(), "Next job");
  session.progress.ShowProgress("", 0);
  shell->tmrReady();
  EXPECT_EQ(session.progress.txtInfo.caption(), "");
}

}  // namespace
}  // namespace lodex
