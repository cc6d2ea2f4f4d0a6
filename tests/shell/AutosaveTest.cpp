#include <signal.h>
#include <sys/resource.h>

#include "shell/ShellFixture.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AutosaveTest : public ShellFixture {
 protected:
  std::string copies() const { return path("user") + "/autosave"; }

  /// The files and folders below the folder of copies, without locks.
  std::vector<std::string> files() const {
    std::vector<std::string> found;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(copies(), none)) {
      if (entry.is_regular_file() && entry.path().filename() != "lock") {
        found.push_back(entry.path().filename().string());
      }
    }
    std::sort(found.begin(), found.end());
    return found;
  }
  void identify() {
    shell->sheets.lstI.selectAll(true);
    shell->tbIdentify.click();
    session.log.hide();
  }
  /// Ends the program as a crash would: nothing is closed, only its lock falls.
  void crash() { shell.reset(); }
  std::string question(const std::string& names) const {
    return "Lodex Geo did not end as it should. Copies of edited data sheets were kept:\n" + names +
           "\n\nDo you want to open them?";
  }
};

TEST_F(AutosaveTest, BringsEditedSheetsBackAfterACrash) {
  start();
  open({assays("a.txt"), assays("untouched.txt")});
  identify();
  sheet("untouched").Changed = false;
  frmDataIN& edited = sheet("a");
  edited.F1D.FormulaRC(20, 3, "SUM(C13:C14)");
  edited.F1D.Recalc();
  edited.gridF1D.edited();
  const std::string before = edited.F1D.WriteToBlob();
  const SheetStructure structure = edited.structure();
  const std::string references = edited.F1Ref.WriteToBlob();
  frmDataIN& typed = shell->NewSheet();
  typed.F1D.TextRC(1, 1, "by hand");
  typed.gridF1D.edited();
  EXPECT_TRUE(typed.Changed);
  shell->AutosaveNow();
  crash();

  dialogs.expectMessage(question("\na\nNew 3"), Answer::Yes);
  start();
  EXPECT_THAT(shell->sheets.lstI.items(), ElementsAre("a", "New 3"));
  frmDataIN& back = sheet("a");
  EXPECT_EQ(back.structure().rows, structure.rows);
  EXPECT_EQ(back.FirstDataRow(), structure.firstDataRow);
  EXPECT_EQ(back.IDColumn(), structure.idColumn);
  EXPECT_TRUE(back.bIdentified && back.Changed && back.visible());
  EXPECT_EQ(back.F1Ref.WriteToBlob(), references);
  back.F1D.SetActiveCell(1, 1);
  EXPECT_EQ(back.F1D.FormulaRC(20, 3), "SUM(C13:C14)");
  EXPECT_EQ(back.F1D.TextRC(20, 3), "110");
  EXPECT_EQ(sheet("New 3").F1D.TextRC(1, 1), "by hand");
  // They are copied anew before the old copies go.
  EXPECT_THAT(files(), ElementsAre("1.copy", "2.copy"));
  crash();
  dialogs.expectMessage(question("\na\nNew 3"), Answer::No);
  start();
  EXPECT_THAT(shell->sheets.lstI.items(), IsEmpty());
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(AutosaveTest, CopiesWhatIsEditedAndNotSaved) {
  start();
  open({assays("a.txt"), assays("b.txt")});
  shell->AutosaveNow();
  EXPECT_THAT(files(), IsEmpty());
  sheet("a").gridF1D.edited();
  sheet("b").gridF1D.edited();
  shell->AutosaveNow();
  EXPECT_THAT(files(), ElementsAre("1.copy", "2.copy"));
  const std::filesystem::path own = *std::filesystem::directory_iterator(copies());
  writeFileWhole((own / "1.copy").string(), "as it was");
  sheet("b").Changed = false;
  shell->AutosaveNow();
  EXPECT_THAT(files(), ElementsAre("1.copy")) << "saved sheets need no copy";
  EXPECT_EQ(readFile((own / "1.copy").string()), "as it was") << "written without a change";
  sheet("a").gridF1D.edited();
  shell->AutosaveNow();
  EXPECT_NE(readFile((own / "1.copy").string()), "as it was");
  dialogs.expectMessage("Do you want to save the changes in a?", Answer::No);
  shell->CloseSheet(sheet("a"));
  shell->AutosaveNow();
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(AutosaveTest, CleanExitLeavesNothing) {
  start();
  open({assays("a.txt")});
  sheet("a").gridF1D.edited();
  shell->AutosaveNow();
  EXPECT_THAT(files(), ElementsAre("1.copy"));
  dialogs.expectMessage("Are you sure to exit Lodex Geo?", Answer::Ok);
  shell->close();
  EXPECT_FALSE(pathExists(copies()));
}

TEST_F(AutosaveTest, CopiesOfALivingProcessAreItsOwn) {
  start();
  open({assays("a.txt")});
  sheet("a").gridF1D.edited();
  shell->AutosaveNow();
  Autosave other(copies());
  EXPECT_THAT(other.leftovers(), IsEmpty());
  other.removeLeftovers();
  EXPECT_THAT(files(), ElementsAre("1.copy"));
}

// While it lives no file can grow beyond a few bytes, for root as for others.
class FullDisk {
 public:
  FullDisk() : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none{16, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*handler_)(int);
  rlimit before_{};
};

TEST_F(AutosaveTest, OldCopiesStayWhileNewOnesCannotBeWritten) {
  start();
  open({assays("a.txt")});
  sheet("a").gridF1D.edited();
  shell->AutosaveNow();
  const std::filesystem::path own = *std::filesystem::directory_iterator(copies());
  const std::string before = readFile((own / "1.copy").string());
  sheet("a").gridF1D.edit("Typing", [this] { sheet("a").F1D.TextRC(9, 1, "later"); });
  {
    const FullDisk full;
    shell->AutosaveNow();
  }
  EXPECT_THAT(session.log.txtErr.text(), testing::HasSubstr("are not copied for recovery"));
  EXPECT_EQ(readFile((own / "1.copy").string()), before);
  shell->AutosaveNow();
  EXPECT_NE(readFile((own / "1.copy").string()), before) << "the edit is copied as soon as it can";
  crash();

  dialogs.expectMessage(question("\na"), Answer::Yes);
  {
    const FullDisk full;
    shell = std::make_unique<MDIMain>(session, services());
    shell->Load();
  }
  EXPECT_EQ(sheet("a").F1D.TextRC(9, 1), "later");
  crash();
  dialogs.expectMessage(question("\na"), Answer::No);
  start();
  EXPECT_TRUE(dialogs.allAsked()) << "the copy was there to be offered again";
}

TEST_F(AutosaveTest, QuestionCanWaitAndDamagedCopiesArePassedOver) {
  start();
  open({assays("a.txt"), assays("b.txt"), assays("c.txt")});
  for (const char* name : {"a", "b", "c"}) sheet(name).gridF1D.edited();
  shell->AutosaveNow();
  crash();
  const std::filesystem::path left = *std::filesystem::directory_iterator(copies());
  const std::string good = readFile((left / "1.copy").string());
  writeFileWhole((left / "1.copy").string(), good.substr(0, good.size() / 2));
  writeFileWhole((left / "4.copy").string(), "Lodex Geo copy 1\nname\n-1 x\n");
  std::string damaged = readFile((left / "3.copy").string());
  damaged[damaged.size() / 2] ^= 1;
  writeFileWhole((left / "3.copy").string(), damaged);
  dialogs.expectMessage(question("\nb\nc"), Answer::Cancel);
  start();
  EXPECT_EQ(shell->sheets.DataSheetCount(), 0);
  crash();
  dialogs.expectMessage(question("\nb\nc"), Answer::Yes);
  dialogs.expectMessage("Error 0 c cannot be opened: the workbook snapshot is damaged");
  try {
    start();
  } catch (const std::logic_error& unexpected) {
    FAIL() << unexpected.what();
  }
  EXPECT_THAT(shell->sheets.lstI.items(), ElementsAre("b"));
}

TEST_F(AutosaveTest, FolderThatCannotBeWrittenIsToldOnce) {
  start();
  open({assays("a.txt")});
  writeFileWhole(copies(), "a file in the way");
  sheet("a").gridF1D.edited();
  shell->AutosaveNow();
  shell->AutosaveNow();
  EXPECT_EQ(split(session.log.txtErr.text(), "Edited sheets are not copied").size(), 2u);
}

}  // namespace
}  // namespace lodex
