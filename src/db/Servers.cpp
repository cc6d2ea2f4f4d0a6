#include "db/Servers.h"

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "session/Ini.h"

namespace lodex {

namespace {

bool hasItem(std::string_view text, std::initializer_list<std::string_view> keys) {
  for (const std::string& piece : split(text, ";")) {
    const std::string_view key = trimBlanks(std::string_view(piece).substr(0, piece.find('=')));
    for (const auto wanted : keys) {
      if (equalsNoCase(key, wanted)) return true;
    }
  }
  return false;
}

// A value with marks of its own stands in braces.
std::string itemValue(std::string_view value) {
  if (value.find_first_of(";{}=") == std::string_view::npos) return std::string(value);
  return "{" + replaceAll(value, "}", "}}") + "}";
}

}  // namespace

std::string serverConnectionText(const ServerIni& ini, std::string_view service,
                                 std::string_view user, std::string_view password) {
  if (trimBlanks(service).empty()) {
    throw Error("The database server has no name", dberror::BadArgument);
  }
  std::string text = GetIni2(ini.user, ini.main, "Servers", service, std::string(service));
  if (text.find('=') == std::string::npos) text = "DSN=" + itemValue(text);
  if (!user.empty() && !hasItem(text, {"UID", "User ID", "Username"})) {
    text += ";UID=" + itemValue(user);
  }
  if (!password.empty() && !hasItem(text, {"PWD", "Password"})) {
    text += ";PWD=" + itemValue(password);
  }
  return text;
}

}  // namespace lodex
