#include "session/Ini.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr size_t longestValue = 1023;

// The lines of an ini file without their ends; none when the file cannot be read.
std::vector<std::string> linesOf(std::string_view file) {
  std::string content = readFile(file);
  if (content.starts_with("\xEF\xBB\xBF")) content.erase(0, 3);
  if (!isValidUtf8(content)) content = fromWindows1252(content);
  std::vector<std::string> lines = split(replaceAll(content, "\r\n", "\n"), "\n");
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

// The name of a "[section]" line; false for any other line.
bool sectionOf(std::string_view line, std::string_view& name) {
  line = trimWhite(line);
  if (line.empty() || line.front() != '[') return false;
  const size_t end = line.find(']');
  name = trimWhite(line.substr(1, end == std::string_view::npos ? end : end - 1));
  return true;
}

bool keyOf(std::string_view line, std::string_view& key, std::string_view& value) {
  line = trimWhite(line);
  const size_t equals = line.find('=');
  if (line.empty() || line.front() == ';' || equals == std::string_view::npos) return false;
  key = trimWhite(line.substr(0, equals));
  value = trimWhite(line.substr(equals + 1));
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == '"' || value.front() == '\'');
  if (quoted) value = value.substr(1, value.size() - 2);
  return true;
}

std::string rawValue(std::string_view file, std::string_view section, std::string_view key) {
  bool inside = false;
  for (const std::string& line : linesOf(file)) {
    std::string_view name;
    std::string_view value;
    if (sectionOf(line, name)) {
      inside = equalsNoCase(name, section);
    } else if (inside && keyOf(line, name, value) && equalsNoCase(name, key)) {
      return std::string(value);
    }
  }
  return {};
}

// At most `longestValue` bytes, never half a character.
std::string cutValue(std::string value) {
  if (value.size() <= longestValue) return value;
  size_t end = longestValue;
  while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0) == 0x80) --end;
  value.resize(end);
  return value;
}

// Users' data must not end up at the root of the disk where HOME is not set, as under a service.
std::string environmentValue(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value != nullptr && *value != '\0') return value;
  const passwd* entry = name == "HOME" ? ::getpwuid(::geteuid()) : nullptr;
  return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "";
}

}  // namespace

std::string GetIni(std::string_view file, std::string_view section, std::string_view key) {
  // The profile of the operating system has no counterpart here.
  if (file.empty() || equalsNoCase(file, "WIN.INI")) return {};
  try {
    std::string value = cutValue(rawValue(file, section, key));
    return value.starts_with("SELECT") ? value : ExpandEnv(value);
  } catch (const FileError&) {
    return {};  // a missing ini file means that every key has its default
  }
}

void PutIni(std::string_view file, std::string_view section, std::string_view key,
            std::string_view value) {
  std::vector<std::string> lines;
  if (pathExists(file)) lines = linesOf(file);
  const std::string entry = std::string(key) + "=" + std::string(value);
  bool inside = false;
  bool seen = false;
  size_t insertAt = lines.size();
  for (size_t i = 0; i < lines.size(); ++i) {
    std::string_view name;
    std::string_view old;
    if (sectionOf(lines[i], name)) {
      inside = !seen && equalsNoCase(name, section);
      seen = seen || inside;
      if (inside) insertAt = i + 1;
      continue;
    }
    if (!inside) continue;
    if (keyOf(lines[i], name, old) && equalsNoCase(name, key)) {
      lines[i] = entry;
      return writeFileWhole(file, join(lines, "\r\n") + "\r\n");
    }
    if (!trimWhite(lines[i]).empty()) insertAt = i + 1;
  }
  if (!seen) lines.push_back("[" + std::string(section) + "]");
  lines.insert(seen ? lines.begin() + static_cast<std::ptrdiff_t>(insertAt) : lines.end(), entry);
  writeFileWhole(file, join(lines, "\r\n") + "\r\n");
}

std::string GetIni2(std::string_view userFile, std::string_view mainFile, std::string_view section,
                    std::string_view key, std::string_view otherwise) {
  std::string value = GetIni(userFile, section, key);
  if (value.empty()) value = GetIni(mainFile, section, key);
  return value.empty() ? std::string(otherwise) : value;
}

std::string ExpandEnv(std::string_view text) {
  std::string out;
  size_t start = 0;
  while (true) {
    const size_t open = text.find('%', start);
    const size_t close = open == std::string_view::npos ? open : text.find('%', open + 1);
    if (close == std::string_view::npos) return out += text.substr(start);
    out += text.substr(start, open - start);
    out += environmentValue(std::string(text.substr(open + 1, close - open - 1)));
    start = close + 1;
  }
}

}  // namespace lodex
