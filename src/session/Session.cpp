#include "session/Session.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <utility>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "session/Ini.h"
#include "session/UserCopies.h"

namespace lodex {
namespace fs = std::filesystem;
namespace {

constexpr int lastFileCount = 10;

bool isSlash(char c) {
  return c == '\\' || c == '/';
}
bool endsInSlash(const std::string& text) {
  return !text.empty() && isSlash(text.back());
}
bool startsWithSlash(const std::string& text) {
  return !text.empty() && isSlash(text.front());
}

std::string loginName() {
  if (const passwd* entry = ::getpwuid(::geteuid())) {
    if (entry->pw_name != nullptr && *entry->pw_name != '\0') return entry->pw_name;
  }
  const char* fromEnvironment = std::getenv("USER");
  return fromEnvironment != nullptr && *fromEnvironment != '\0' ? fromEnvironment : "TarnUser";
}

std::string userFolder(std::string path1, std::string path2, int namePosition,
                       const std::string& login) {
  if (!path1.empty() && !path2.empty()) {
    if (!endsInSlash(path1) && !startsWithSlash(path2)) path1 += '\\';
  } else if (!path1.empty()) {
    if (namePosition != 0 && !endsInSlash(path1)) path1 += '\\';
  } else if (!path2.empty()) {
    if (namePosition == 2 && !endsInSlash(path2)) path2 += '\\';
    if (namePosition == 1) namePosition = 0;
  }
  if (namePosition == 1) return path1 + login + path2;
  if (namePosition == 2) return path1 + path2 + login;
  return path1 + path2;
}

std::string lastFilesIni(const SessionRecord& record) {
  return record.UserPath + "\\ini\\lastfiles.ini";
}

}  // namespace

bool Session::run(const std::function<void()>& command, std::string_view name) {
  struct Running {
    Session& session;
    const std::string name;  // the command may change its own caption
    ~Running() {
      if (--session.running_ == 0) session.endCommand(name);
    }
  };
  const Running running{*this, std::string(name)};
  ++running_;
  try {
    command();
    return true;
  } catch (const Error& failure) {
    fail(failure.number(), failure.what());
  } catch (const std::bad_alloc&) {
    fail(0, "There is not enough memory for this.");
  } catch (const std::exception& failure) {
    fail(0, failure.what());
  }
  return false;
}

void Session::fail(int number, std::string_view text) {
  record.FileLoadInProgress = false;
  progress.reset();
  dialogs().messageBox("Error " + std::to_string(number) + " " + std::string(text),
                       MessageButtons::Ok, MessageIcon::Stop);
}

void Session::notice(const Findings& noticed) {
  for (const Finding& finding : noticed.all()) {
    const bool isError = finding.severity == Severity::Error;
    const std::string line = describe(finding);
    log.LisaaLog(line, isError ? LogKind::Both : LogKind::Log);
    findingLines_.insert(line);
  }
  noticeLogged(noticed);
}

void Session::noticeLogged(const Findings& noticed) {
  found.append(noticed);
  noticed_.append(noticed);
  if (running_ == 0) endCommand("");
}

void Session::endCommand(std::string_view name) {
  const Findings noticed = std::exchange(noticed_, {});
  if (!noticed.empty()) observers_.notify(name, noticed);
}

std::string Session::ExpandPath(std::string_view path, std::string_view otherwise) const {
  std::string expanded(path);
  const auto prefixed = [&](const std::string& base) {
    std::string rest = expanded.substr(1);
    if (!startsWithSlash(rest)) rest.insert(0, 1, '\\');
    return base + rest;
  };
  if (expanded.starts_with('@')) {
    expanded = prefixed(record.GeoPath);
  } else if (expanded.starts_with('!')) {
    expanded = prefixed(record.BasePath);
  } else if (expanded.starts_with('+')) {
    expanded = prefixed(record.UserPath);
  }
  return expanded.empty() ? std::string(otherwise) : expanded;
}

void Session::readUserFolder() {
  SessionRecord& r = record;
  const std::string path1 = ExpandPath(GetIni(r.MainIni, "Users", "UserPath1"), r.GeoPath);
  const std::string path2 = ExpandPath(GetIni(r.MainIni, "Users", "UserPath2"), "");
  const int position = parseInteger(GetIni(r.MainIni, "Users", "UserNamePosition")).value_or(0);
  r.UserPath = userFolder(path1, path2, position, r.UserName);
}

void Session::readDatabases(std::string_view app) {
  SessionRecord& r = record;
  const std::string standard = std::string(app) + "\\Geo\\System\\LODEXGeo.mdb";
  r.SampleDbPath = ExpandPath(GetIni2(r.UserIni, r.MainIni, "Databases", "LodexGeo", ""), standard);
  if (!FileExists(r.SampleDbPath)) {
    const std::string mixedCase = std::string(app) + "\\Geo\\System\\LodexGeo.mdb";
    if (FileExists(mixedCase)) {
      r.SampleDbPath = mixedCase;
    } else {
      dialogs().messageBox("File  " + r.SampleDbPath + " can not be found");
    }
  }
  // Expanded before the test, so that a prefixed path is found too.
  r.MineralDbPath = ExpandPath(GetIni2(r.UserIni, r.MainIni, "Databases", "Minerals", ""), "");
  if (!FileExists(r.MineralDbPath) && FileExists(r.SampleDbPath)) r.MineralDbPath = r.SampleDbPath;
  if (r.MineralDbPath.empty()) r.MineralDbPath = standard;
}

void Session::ReadSession(std::string_view appFolder, bool readStartDatabase, bool readUserName) {
  SessionRecord& r = record;
  const std::string app(appFolder);
  r.GeoPath = app + "\\Geo";
  r.MainIni = r.GeoPath + "\\ini\\LODEXGeo.ini";
  const auto pathKey = [&](std::string_view section, std::string_view key,
                           const std::string& otherwise) {
    const std::string value = GetIni2(r.UserIni, r.MainIni, section, key, otherwise);
    const std::string ofUser = GetIni(r.UserIni, section, key);
    return ExpandPath(ofUser.empty() ? value : ofUser, otherwise);
  };

  if (readUserName) r.UserName = loginName();
  r.BasePath = r.GeoPath;
  r.BasePath = ExpandPath(GetIni(r.MainIni, "General", "LodexGeoPath"), r.GeoPath);
  readUserFolder();
  r.OwnerName = GetIni(r.MainIni, "General", "Owner");
  splash.labOwner.setCaption("Owner:" + r.OwnerName + "; Run by:" + r.UserName);

  splash.labText.setCaption("Checking folders...");
  bool exists = false;
  EnsureFolder(r.UserPath, true, exists);
  const bool userFolderStands = exists;
  EnsureFolder(r.UserPath + "\\ini", userFolderStands, exists);
  EnsureFolder(r.UserPath + "\\data", userFolderStands, exists);
  r.UserIni = ExpandPath(GetIni(r.MainIni, "Users", "UserIniFile"), "");

  r.CalcIni =
      GetIni2(r.UserIni, r.MainIni, "LodexGeo", "CalcIniFile", r.BasePath + "\\ini\\LodexGeo.ini");
  r.CalcIni = ExpandPath(r.CalcIni, r.MainIni);
  if (!FileExists(r.CalcIni)) r.CalcIni = r.MainIni;

  splash.labText.setCaption("Reading initials (2)...");
  if (readStartDatabase) r.SessionDbPath = pathKey("General", "StartSessionDatabase", "");
  r.HelpPath = pathKey("General", "HelpPath", r.BasePath + "\\Help");
  r.DefPath = pathKey("General", "DefPath", r.BasePath + "\\ini");

  const auto plainKey = [&](std::string_view section, std::string_view key) {
    return GetIni2(r.UserIni, r.MainIni, section, key, "");
  };
  r.DdeServer = plainKey("DDE-Link", "DDE-Server");
  r.DdeTopic = plainKey("DDE-Link", "DDE-Topic");
  r.DdeItem = plainKey("DDE-Link", "DDE-Item");
  if (const auto type = parseInteger(plainKey("DDE-Link", "LinkType"))) r.LinkType = *type;

  readDatabases(app);
  r.CGroupsFolder = ExpandPath(plainKey("C-Groups", "Folder"), app + "\\Geo\\C-Groups");
  r.DefaultCGroup = GetIni2(r.UserIni, r.MainIni, "C-Groups", "Default", "ROCK");
  r.ThesaurusFile = ExpandPath(plainKey("Thesaurus", "File"), "");
  useUserCopies(r);
}

std::vector<std::string> LastFiles(const SessionRecord& record, std::string_view section) {
  std::vector<std::string> files;
  for (int i = 1; i <= lastFileCount; ++i) {
    std::string path = GetIni(lastFilesIni(record), section, std::to_string(i));
    if (!path.empty()) files.push_back(std::move(path));
  }
  return files;
}

void PushLastFile(const SessionRecord& record, std::string_view path, std::string_view section) {
  std::vector<std::string> files = LastFiles(record, section);
  std::erase(files, path);
  files.insert(files.begin(), std::string(path));
  const int count = std::min<int>(lastFileCount, static_cast<int>(files.size()));
  for (int i = 0; i < count; ++i) {
    PutIni(lastFilesIni(record), section, std::to_string(i + 1), files[static_cast<size_t>(i)]);
  }
}

bool FileExists(std::string_view path) {
  return pathExists(path);
}

void EnsureFolder(std::string_view path, bool create, bool& exists) {
  exists = false;
  if (path.empty()) return;
  std::error_code failed;
  fs::path walked;
  for (const fs::path& piece : nativePath(path)) {
    walked /= piece;
    if (fs::is_directory(walked, failed)) continue;
    if (!create || !fs::create_directory(walked, failed) || failed) return;
  }
  exists = true;
}

}  // namespace lodex
