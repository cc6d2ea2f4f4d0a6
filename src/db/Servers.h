#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// The ini files that describe the database servers; the user's entries go before the main ones.
struct ServerIni {
  std::string user;
  std::string main;
};

/// True for the name of a service, such as "LAB.ORA" in any case.
bool namesService(std::string_view name);

/// True for a connection text such as "Driver=...;Servername=...;Pwd=%LAB_PASSWORD%" or "DSN=...".
bool isConnectionText(std::string_view name);

/// What is needed to reach a server.
struct ServerLogin {
  std::string shownName;       // for messages
  std::string connectionText;  // for the driver manager; it holds secrets and is never shown
};

/// The way to a server. The entry of a service in section "Servers", named like the service, is a
/// connection text or the name of a data source; without an entry the data source has the service's
/// name. A connection text takes the place of such an entry; %NAME% in it is replaced from the
/// environment. User and password are added as withLogin does.
ServerLogin serverLogin(const ServerIni& ini, std::string_view name, std::string_view user,
                        std::string_view password);

/// A connection text with user and password where they are given and the text has none.
std::string withLogin(std::string_view connectionText, std::string_view user,
                      std::string_view password);

/// One "key=value" of a connection text. A value with marks of its own is written in braces.
struct ConnectionItem {
  std::string key;
  std::string value;    // without its braces
  std::string written;  // the item as it is written
};
std::vector<ConnectionItem> connectionItems(std::string_view text);

/// True for the key of an item that is a secret.
bool isSecret(const ConnectionItem& item);

/// The name of a database for messages: without the passwords of a connection text.
std::string shownName(std::string_view database);
/// True for a connection text with a password of its own, which no list or file may keep.
bool holdsSecret(std::string_view database);

}  // namespace lodex
