#include "db/Servers.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "session/Ini.h"

namespace lodex {

namespace {

using Keys = std::initializer_list<std::string_view>;

bool isOneOf(const ConnectionItem& item, Keys keys) {
  return std::any_of(keys.begin(), keys.end(),
                     [&](std::string_view key) { return equalsNoCase(item.key, key); });
}

bool hasItem(std::string_view text, Keys keys) {
  const auto items = connectionItems(text);
  return std::any_of(items.begin(), items.end(),
                     [&](const ConnectionItem& item) { return isOneOf(item, keys); });
}

// %NAME% is no secret: it says where the environment has it.
bool isPlainSecret(const ConnectionItem& item) {
  const std::string& value = item.value;
  const bool isMark =
      value.size() > 2 && value.front() == '%' && value.find('%', 1) == value.size() - 1;
  return isSecret(item) && !value.empty() && !isMark;
}

std::string valueInText(std::string_view value) {
  if (value.find_first_of(";{}=") == std::string_view::npos) return std::string(value);
  return "{" + replaceAll(value, "}", "}}") + "}";
}

// Where the item ends that begins at `start`: at a ";" outside of braces.
size_t itemEnd(std::string_view text, size_t start) {
  const size_t equals = text.find_first_of("=;", start);
  if (equals == std::string_view::npos || text[equals] == ';') {
    return std::min(equals, text.size());
  }
  size_t at = text.find_first_not_of(' ', equals + 1);
  if (at != std::string_view::npos && text[at] == '{') {
    for (++at; at < text.size(); ++at) {
      if (text[at] != '}') continue;
      if (at + 1 == text.size() || text[at + 1] != '}') break;
      ++at;  // two braces are one of the value
    }
  }
  return std::min(text.find(';', std::min(at, text.size())), text.size());
}

}  // namespace

bool namesService(std::string_view name) {
  const bool isMdb =
      name.find(".mdb") != std::string_view::npos || name.find(".MDB") != std::string_view::npos;
  return !isMdb && !isConnectionText(name) && toUpper(name).ends_with(".ORA");
}

bool isConnectionText(std::string_view name) {
  const auto items = connectionItems(name);
  return !items.empty() && isOneOf(items.front(), {"Driver", "DSN", "FILEDSN"});
}

std::vector<ConnectionItem> connectionItems(std::string_view text) {
  std::vector<ConnectionItem> items;
  for (size_t start = 0, end = 0; start < text.size(); start = end + 1) {
    end = itemEnd(text, start);
    const std::string_view written = text.substr(start, end - start);
    const size_t equals = written.find('=');
    if (equals == std::string_view::npos) continue;
    std::string value(trimBlanks(written.substr(equals + 1)));
    if (value.size() > 1 && value.front() == '{' && value.back() == '}') {
      value = replaceAll(value.substr(1, value.size() - 2), "}}", "}");
    }
    items.push_back(
        {std::string(trimBlanks(written.substr(0, equals))), value, std::string(written)});
  }
  return items;
}

bool isSecret(const ConnectionItem& item) {
  return isOneOf(item, {"PWD", "Password"});
}

std::string shownName(std::string_view database) {
  if (!isConnectionText(database)) return std::string(database);
  std::string shown;
  for (const ConnectionItem& item : connectionItems(database)) {
    shown += (shown.empty() ? "" : ";") + (isPlainSecret(item) ? item.key + "=..." : item.written);
  }
  return shown;
}

std::string withLogin(std::string_view connectionText, std::string_view user,
                      std::string_view password) {
  std::string text(connectionText);
  if (!user.empty() && !hasItem(text, {"UID", "User ID", "Username"})) {
    text += ";UID=" + valueInText(user);
  }
  if (!password.empty() && !hasItem(text, {"PWD", "Password"})) {
    text += ";PWD=" + valueInText(password);
  }
  return text;
}

bool holdsSecret(std::string_view database) {
  if (!isConnectionText(database)) return false;
  const auto items = connectionItems(database);
  return std::any_of(items.begin(), items.end(), isPlainSecret);
}

ServerLogin serverLogin(const ServerIni& ini, std::string_view name, std::string_view user,
                        std::string_view password) {
  if (trimBlanks(name).empty()) {
    throw Error("The database server has no name", dberror::BadArgument);
  }
  if (isConnectionText(name)) return {shownName(name), withLogin(ExpandEnv(name), user, password)};
  std::string text = GetIni2(ini.user, ini.main, "Servers", name, name);
  if (text.find('=') == std::string::npos) text = "DSN=" + valueInText(text);
  return {std::string(name), withLogin(text, user, password)};
}

}  // namespace lodex
