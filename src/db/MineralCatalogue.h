#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/Servers.h"

namespace lodex {

class Connection;
class Recordset;

/// The look-up of a mineral's formula in the table Minerals of the mineral database. The first
/// question opens a connection and a recordset, which stay open.
class MineralCatalogue {
 public:
  explicit MineralCatalogue(std::string_view databasePath, ServerIni servers = {});
  ~MineralCatalogue();

  /// The formula items of a mineral: names and values of the fields whose name begins with "MF" and
  /// that are not Null, in the order of the fields. Both lists are empty for an unknown mineral.
  /// Throws Error when the database cannot be read.
  void HaeMinTieto(std::string_view mineral, std::vector<std::string>& elements,
                   std::vector<std::string>& values);

 private:
  std::string path_;
  ServerIni servers_;
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<Recordset> records_;
};

}  // namespace lodex
