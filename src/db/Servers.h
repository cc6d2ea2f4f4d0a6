#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// The ini files that describe the database servers; the user's entries go before the main ones.
struct ServerIni {
  std::string user;
  std::string main;
};

/// The ODBC connection text for a service. Its entry in section "Servers", named like the service,
/// is a connection text such as "Driver=...;Server=...;Pwd=%LAB_PASSWORD%" or the name of a data
/// source; without an entry the data source has the service's name. User and password are added
/// where they are given and the entry has none. The result holds secrets: it is never shown.
std::string serverConnectionText(const ServerIni& ini, std::string_view service,
                                 std::string_view user, std::string_view password);

}  // namespace lodex
