#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "shell/MDIMain.h"

namespace lodex {

/// A small installation in a folder of its own, with the shipped tables, methods, thesaurus and
/// minerals, and a main window over it whose platform writes down what it is asked for.
class ShellFixture : public testing::Test {
 protected:
  ShellFixture() {
    const std::filesystem::path shipped = LODEX_BIN_DIR "/Geo";
    std::filesystem::create_directories(folder / "Geo" / "ini");
    for (const char* part : {"reference", "C-Groups", "System"}) {
      std::filesystem::create_directory_symlink(shipped / part, folder / "Geo" / part);
    }
    settings = "[Users]\nUserPath1=" + path("user") +
               "\n[Databases]\nLodexGeo=@System\\LODEXGeo.mdb\nMinerals=@System\\LODEXGeo.mdb\n";
  }
  ~ShellFixture() override { std::filesystem::remove_all(folder); }

  std::string path(std::string_view name) const { return (folder / name).string(); }
  std::string write(std::string_view name, std::string_view content) const {
    writeFileWhole(path(name), content);
    return path(name);
  }

  ShellServices services() {
    ShellServices made;
    made.appFolder = folder.string();
    made.version = "1.2.3";
    made.anotherInstanceRuns = [this] { return otherRuns; };
    made.activateOther = [this] { done.push_back("activate other"); };
    made.startEditor = [this](const std::string& file) { done.push_back("edit " + file); };
    made.startViewer = [this](const std::string& program, const std::string& argument) {
      done.push_back("view " + program + " " + argument);
      if (viewerFails-- > 0) throw Error("not there", 53);
    };
    made.showHelp = [this](const std::string& topic) { done.push_back("help " + topic); };
    made.arrange = [this](Arrangement how) {
      done.push_back("arrange " + std::to_string(static_cast<int>(how)));
    };
    made.bringToFront = [this](Form& form) { done.push_back("front " + form.caption()); };
    made.startTmrReady = [this](int milliseconds) { ready = milliseconds; };
    made.quit = [this] { done.push_back("quit"); };
    return made;
  }

  /// Starts the program over the installation; the group "ROCK" is there unless the settings say
  /// otherwise.
  MDIMain& start() {
    write("Geo/ini/LODEXGeo.ini", settings);
    shell = std::make_unique<MDIMain>(session, services());
    shell->Load();
    done.clear();
    return *shell;
  }

  /// Opens files through the dialogue.
  void open(const std::vector<std::string>& files) {
    dialogs.expectOpen(files);
    shell->tbOpen.click();
  }
  std::string assays(const std::string& name) {
    return write(name, "Sample\tSiO2 %\tAl2O3 %\tCu ppm\nS1\t50\t15\t100\nS2\t60\t14\t200\n");
  }
  frmDataIN& sheet(const std::string& name) {
    frmDataIN* found = shell->sheets.find(name);
    if (found == nullptr) throw Error("There is no sheet " + name);
    return *found;
  }
  static std::vector<std::string> selected(const ListBox& list) {
    std::vector<std::string> texts;
    for (const int item : list.selectedItems()) texts.push_back(list.item(item));
    return texts;
  }
  /// What a user's click on an entry with a mark does.
  static void toggle(ListBox& list, const std::string& text) {
    for (int i = 0; i < list.count(); ++i) {
      if (list.item(i) != text) continue;
      list.setSelected(i, !list.selected(i));
      list.click(i);
      return;
    }
    throw Error("The list has no entry " + text);
  }

  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("lodex-shell-" + std::to_string(::getpid()) + "-" +
                                  testing::UnitTest::GetInstance()->current_test_info()->name());
  std::string settings;
  bool otherRuns = false;
  int viewerFails = 0;
  int ready = 0;
  std::vector<std::string> done;  // what the platform was asked for
  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  std::unique_ptr<MDIMain> shell;
};

}  // namespace lodex
