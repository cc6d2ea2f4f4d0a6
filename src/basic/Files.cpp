#include "basic/Files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {
namespace fs = std::filesystem;
namespace {

// More than this is not read from a pipe.
constexpr size_t longestStream = size_t{1} << 30;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void failOn(std::string_view path, const std::string& reason) {
  throw FileError("Cannot open " + std::string(path) + ": " + reason);
}

[[noreturn]] void failToWrite(std::string_view path, const std::string& reason) {
  throw FileError("Cannot write " + std::string(path) + ": " + reason);
}

// A folder beside the target that only this user can enter and whose name nobody can guess: in a
// folder that others may write to, nobody can plant a link where the temporary file will be.
class PrivateFolder {
 public:
  PrivateFolder(std::string_view asked, const fs::path& target) {
    std::string name = pathText(target) + ".XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) failToWrite(asked, std::strerror(errno));
    path_ = name;
  }
  ~PrivateFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

}  // namespace

fs::path nativePath(std::string_view text) {
  std::string native(text);
  std::replace(native.begin(), native.end(), '\\', '/');
  return fs::path(native);
}

std::string pathText(const fs::path& path) {
  return path.string();
}

std::string fileNameOf(std::string_view path) {
  const size_t cut = path.find_last_of("\\/");
  return std::string(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

std::string folderOf(std::string_view path) {
  const size_t cut = path.find_last_of("\\/");
  return std::string(cut == std::string_view::npos ? std::string_view() : path.substr(0, cut));
}

std::string extensionOf(std::string_view path) {
  const std::string name = fileNameOf(path);
  const size_t dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : toLower(std::string_view(name).substr(dot + 1));
}

bool pathExists(std::string_view path) {
  std::error_code ignored;
  return !path.empty() && fs::exists(nativePath(path), ignored);
}

std::string readFile(std::string_view path, size_t maxBytes) {
  const fs::path native = nativePath(path);
  std::error_code status;
  if (fs::is_directory(native, status)) failOn(path, "it is a folder, not a file");
  const fs::file_type kind = fs::status(native, status).type();
  if (kind == fs::file_type::block ||
      (kind == fs::file_type::character && !fs::equivalent(native, "/dev/stdin", status))) {
    failOn(path, "it is a device, not a file");
  }
  // Without a size that can be asked for, only a limit ends a stream that never does.
  if (maxBytes == 0 && kind != fs::file_type::regular) maxBytes = longestStream;
  FileHandle file(std::fopen(native.c_str(), "rb"));
  if (!file) failOn(path, errno == ENOENT ? "there is no such file" : std::strerror(errno));
  std::string content;
  const auto size = fs::file_size(native, status);
  if (!status) content.reserve(size);
  char buffer[1 << 16];
  while (const size_t got = std::fread(buffer, 1, sizeof buffer, file.get())) {
    content.append(buffer, got);
    if (maxBytes > 0 && content.size() > maxBytes) failOn(path, "it is too large");
  }
  if (std::ferror(file.get())) failOn(path, std::strerror(errno));
  return content;
}

void writeFileWhole(std::string_view path, const std::function<void(const fs::path&)>& fill) {
  std::error_code ignored;
  fs::path target = nativePath(path);
  // A symbolic link stays one: its target gets the content.
  if (fs::is_symlink(target, ignored)) {
    const fs::path linked = fs::weakly_canonical(target, ignored);
    if (!ignored) target = linked;
  }
  const fs::file_status before = fs::status(target, ignored);
  const PrivateFolder folder(path, target);
  const fs::path temporary = folder.path() / target.filename();
  fill(temporary);
  std::error_code failed;
  if (fs::is_regular_file(before)) fs::permissions(temporary, before.permissions(), failed);
  fs::rename(temporary, target, failed);
  if (failed) failToWrite(path, failed.message());
}

void writeFileWhole(std::string_view path, std::string_view content) {
  writeFileWhole(path, [&](const fs::path& temporary) {
    FileHandle file(std::fopen(temporary.c_str(), "wbx"));
    if (!file || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size() ||
        std::fflush(file.get()) != 0) {
      failToWrite(path, std::strerror(errno));
    }
  });
}

}  // namespace lodex
