#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

/// Read-only files and folders, for tests that run as root, whom no permission binds, as well as
/// for an ordinary user's.
namespace lodex {

/// While it lives, a process of root's acts as another user; that of an ordinary user stays his.
class AsOtherUser {
 public:
  AsOtherUser() : changed_(::geteuid() == 0) {
    if (changed_ && ::seteuid(65534) != 0) std::abort();
  }
  ~AsOtherUser() {
    if (changed_ && ::seteuid(0) != 0) std::abort();
  }
  AsOtherUser(const AsOtherUser&) = delete;
  AsOtherUser& operator=(const AsOtherUser&) = delete;

 private:
  bool changed_;
};

/// While it lives, nobody but root may change a file, or a folder with all that is in it.
class ReadOnly {
 public:
  explicit ReadOnly(std::filesystem::path path) : path_(std::move(path)) {
    change(std::filesystem::perm_options::remove);
  }
  ~ReadOnly() { change(std::filesystem::perm_options::add); }
  ReadOnly(const ReadOnly&) = delete;
  ReadOnly& operator=(const ReadOnly&) = delete;

 private:
  void change(std::filesystem::perm_options how) const {
    namespace fs = std::filesystem;
    constexpr fs::perms anyWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const fs::perms bits = how == fs::perm_options::remove ? anyWrite : fs::perms::owner_write;
    fs::permissions(path_, bits, how);
    if (!fs::is_directory(path_)) return;
    for (const auto& entry : fs::recursive_directory_iterator(path_)) {
      fs::permissions(entry, bits, how);
    }
  }

  std::filesystem::path path_;
};

}  // namespace lodex
