#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

/// Paths and files. Paths arrive from users, ini files and old set-ups with "\" or "/"; both work.
namespace lodex {

/// The path for this platform: every "\" counts as a separator.
std::filesystem::path nativePath(std::string_view text);

/// The text form of a path, UTF-8.
std::string pathText(const std::filesystem::path& path);

/// The part of a path after its last "\" or "/", and the part before it (without the separator).
std::string fileNameOf(std::string_view path);
std::string folderOf(std::string_view path);

/// The last extension in lower case, without the dot; empty if none.
std::string extensionOf(std::string_view path);

/// True when the path names an existing file or folder.
bool pathExists(std::string_view path);

/// The whole file as bytes. Throws FileError naming the path and the reason: missing, a folder, a
/// device, no permission, or larger than `maxBytes` when that is above 0. Pipes are read up to 1
/// GB.
std::string readFile(std::string_view path, size_t maxBytes = 0);

/// Writes a file as a whole or not at all: `fill` creates a temporary file, which then takes its
/// name. A file already there stays as it was until then, and when `fill` throws; its permissions
/// stay anyway. If the path is a symbolic link, the file that it points to is written. The
/// temporary is in a private folder beside the target, so nobody else can put a link in its place.
void writeFileWhole(std::string_view path,
                    const std::function<void(const std::filesystem::path& temporary)>& fill);
void writeFileWhole(std::string_view path, std::string_view content);

}  // namespace lodex
