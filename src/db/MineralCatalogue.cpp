#include "db/MineralCatalogue.h"

#include <utility>

#include "basic/Text.h"
#include "db/Connection.h"
#include "db/Recordset.h"

namespace lodex {

MineralCatalogue::MineralCatalogue(std::string_view databasePath, ServerIni servers)
    : path_(databasePath), servers_(std::move(servers)) {}
MineralCatalogue::~MineralCatalogue() = default;

void MineralCatalogue::HaeMinTieto(std::string_view mineral, std::vector<std::string>& elements,
                                   std::vector<std::string>& values) {
  elements.clear();
  values.clear();
  if (!records_) {
    auto connection = std::make_unique<Connection>();
    connection->Open(ConnectionString(path_, "", ""), servers_);
    records_ = connection->OpenRecordset("SELECT * FROM Minerals");
    connection_ = std::move(connection);
  }
  records_->Filter("Mineral = '" + replaceAll(mineral, "'", "''") + "'");
  if (records_->Eof()) return;
  const auto& fields = records_->Fields();
  for (int i = 0; i < static_cast<int>(fields.size()); ++i) {
    if (!fields[i].name.starts_with("MF") || isNull(records_->Value(i))) continue;
    elements.push_back(fields[i].name);
    values.push_back(records_->Text(i));
  }
}

}  // namespace lodex
