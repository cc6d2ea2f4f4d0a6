#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "basic/Findings.h"
#include "form/Dialogs.h"
#include "form/EventPump.h"
#include "session/Log.h"
#include "worksheet/Clipboard.h"

namespace lodex {

/// What start-up finds out and every part of the program reads. Paths are written as in the
/// ini files.
struct SessionRecord {
  std::string GeoPath;   // base of the prefix "@"
  std::string BasePath;  // base of the prefix "!"
  std::string UserPath;  // base of the prefix "+"
  std::string UserName;
  std::string OwnerName;
  std::string MainIni;
  std::string UserIni;
  std::string CalcIni;
  std::string HelpPath;
  std::string DefPath;
  std::string DdeServer, DdeTopic, DdeItem;
  int LinkType = 0;
  std::string SampleDbPath;
  std::string MineralDbPath;
  std::string SessionDbPath;
  std::string ConnectionKind;
  std::string ConnectionKindLast;
  std::string CGroupsFolder;
  std::string DefaultCGroup;
  std::string CurrentCGroup;
  std::string ThesaurusFile;
  bool ExitConfirmed = false;
  bool SourcesBuilt = false;
  bool FileLoadInProgress = false;
  bool CalcFolderExists = false;
  std::vector<std::string> MineralList;
  std::vector<std::string> MineralAliases;
};

/// The splash window of start-up.
class frmLoad : public Form {
 public:
  frmLoad() : Form("frmLoad") {}
  Label labText{*this, "labText"};    // what start-up is doing
  Label labOwner{*this, "labOwner"};  // who owns and who runs the installation
  Label LabExe{*this, "LabExe"};      // the version
};

/// The services of the platform that logic may use.
struct Services {
  Dialogs& dialogs;
  EventPump& events;
  Clipboard& clipboard;
};

/// One session per process: the record, the log, the progress line and the services. Forms get it
/// by reference.
class Session {
 public:
  explicit Session(Services services) : services_(services) {}

  SessionRecord record;
  frmLog log{*this};
  Progress progress;
  frmLoad splash;
  /// What the commands of this session noticed, for the report and the exit status.
  Findings found;

  /// Runs a command of the user. An exception of any kind ends it: the progress line is reset, and
  /// the message "Error <number> <text>" is shown. Returns true when the command completed. A
  /// command may run others as parts of it. `name` is what the report calls it.
  bool run(const std::function<void()>& command, std::string_view name = {});
  /// Sets the command of a button, list or grid; it is run as above.
  template <typename Target, typename Act>
  void setCommand(Target& target, Act act) {
    target.setCommand([this, &target, act = std::move(act)](auto... arguments) {
      run([&] { act(arguments...); }, target.caption());
    });
  }

  /// Adds to `found` and to the log: errors to both panes, the rest to the log alone.
  void notice(const Findings& noticed);
  /// The same for findings that the log has already.
  void noticeLogged(const Findings& noticed);
  /// Whether notice() wrote this line of the log, so that it need not be shown a second time.
  bool wroteAsFinding(std::string_view logLine) const { return findingLines_.contains(logLine); }
  /// Called after a command, named by its caption, with all that it noticed, if anything; at once
  /// for what is noticed outside of commands. The report listens here.
  Subscription onNotice(std::function<void(std::string_view command, const Findings&)> observer) {
    return observers_.add(std::move(observer));
  }

  Dialogs& dialogs() { return services_.dialogs; }
  Clipboard& clipboard() { return services_.clipboard; }
  void pumpEvents() { services_.events.pump(); }

  /// The prefixes "@", "!" and "+" stand for GeoPath, BasePath and UserPath; an empty path becomes
  /// the default.
  std::string ExpandPath(std::string_view path, std::string_view otherwise) const;

  /// Reads the ini files into the record. GeoPath is `appFolder` + "\Geo" and MainIni a file below
  /// it; both are set here.
  void ReadSession(std::string_view appFolder, bool readStartDatabase, bool readUserName);

 private:
  void fail(int number, std::string_view text);
  void endCommand(std::string_view name);
  void readUserFolder();
  void readDatabases(std::string_view app);

  Services services_;
  std::set<std::string, std::less<>> findingLines_;
  Findings noticed_;  // of the command that runs
  int running_ = 0;   // commands, one inside the other
  Observers<std::string_view, const Findings&> observers_;
};

/// Up to ten last files of a kind, newest first, in lastfiles.ini of the user's ini folder.
std::vector<std::string> LastFiles(const SessionRecord& record, std::string_view section);
void PushLastFile(const SessionRecord& record, std::string_view path, std::string_view section);

/// True for an existing file or folder.
bool FileExists(std::string_view path);

/// Goes through a path piece by piece and, if asked, creates what is missing. `exists` is true if
/// the whole path is there in the end; an error yields false.
void EnsureFolder(std::string_view path, bool create, bool& exists);

}  // namespace lodex
