#pragma once

#include <string>
#include <string_view>

/// Ini files: sections and keys without regard to case, values of at most 1,023 bytes.
namespace lodex {

/// The value of a key, with %ENVIRONMENT% marks expanded unless it begins with "SELECT". "" for a
/// missing file, section or key; never fails.
std::string GetIni(std::string_view file, std::string_view section, std::string_view key);

/// Sets a key, adding section and file where missing; the rest of the file stays as it is. Throws
/// FileError when the file cannot be written.
void PutIni(std::string_view file, std::string_view section, std::string_view key,
            std::string_view value);

/// The user file's value if not empty, else the main file's, else the default.
std::string GetIni2(std::string_view userFile, std::string_view mainFile, std::string_view section,
                    std::string_view key, std::string_view otherwise);

/// Replaces each pair of "%" marks, from the left, by the environment variable named between them;
/// an unknown variable gives nothing (but %HOME% the home folder of the account), and a single "%"
/// stays.
std::string ExpandEnv(std::string_view text);

}  // namespace lodex
