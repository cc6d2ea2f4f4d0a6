#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Text.h"
#include "chem/Elements.h"
#include "cli/Commands.h"
#include "db/Connection.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

struct MineralsRequest {
  std::string database;
  std::vector<std::string> elements;
  std::string find;
};

// The symbol as it is written; throws Error for what is no element.
std::string elementSymbol(const std::string& text) {
  for (const auto& symbol : ElementSymbols()) {
    if (!symbol.empty() && equalsNoCase(symbol, text)) return symbol;
  }
  throw Error("There is no element " + text);
}

void listMinerals(const MineralsRequest& request, std::ostream& out) {
  std::string sql =
      "SELECT c.[MineralID], c.[MinSymbol], c.[Mineral], c.[Formula], c.[Density] "
      "FROM [<MineralChemistry] AS c INNER JOIN [Minerals] AS m ON c.[Mineral] = m.[Mineral]";
  std::string joint = " WHERE ";
  for (const auto& element : request.elements) {
    sql += joint + "m.[Elements] LIKE " + quoteText("%\\" + elementSymbol(element) + "\\%");
    joint = " AND ";
  }
  Connection connection;
  connection.Open(ConnectionString(request.database, "", ""));
  const auto records = connection.OpenRecordset(sql + " ORDER BY c.[MineralID]");
  const auto& fields = records->Fields();
  for (size_t i = 0; i < fields.size(); ++i) out << (i ? "\t" : "") << fields[i].name;
  out << '\n';
  for (; !records->Eof(); records->MoveNext()) {
    bool found = request.find.empty();
    for (const auto* field : {"MinSymbol", "Mineral", "Formula"}) {
      found = found || findNoCase(records->Text(field), request.find) != std::string::npos;
    }
    if (!found) continue;
    for (int i = 0; i < static_cast<int>(fields.size()); ++i) {
      out << (i ? "\t" : "") << records->Text(i);
    }
    out << '\n';
  }
}

}  // namespace

void addMineralsCommand(CLI::App& app, CommandContext& context) {
  auto request = std::make_shared<MineralsRequest>();
  request->database = context.appFolder + "/Geo/System/LODEXGeo.mdb";
  CLI::App* command =
      app.add_subcommand("minerals", "List minerals: id, symbol, name, formula, density");
  command
      ->add_option("--element", request->elements,
                   "only minerals with this element; may be repeated")
      ->allow_extra_args(false);
  command->add_option("--find", request->find,
                      "only minerals whose symbol, name or formula holds this text");
  command->add_option("--db", request->database, "the mineral database instead of the shipped one");
  command->callback([request, &context] { listMinerals(*request, context.out); });
}

}  // namespace lodex
