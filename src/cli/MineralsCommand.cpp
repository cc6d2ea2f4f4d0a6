#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Text.h"
#include "chem/CompoundConverter.h"
#include "chem/Elements.h"
#include "cli/CliSession.h"
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

// The symbol as it is written; throws Error for anything else.
std::string elementSymbol(const std::string& text) {
  for (const auto& symbol : ElementSymbols()) {
    if (!symbol.empty() && equalsNoCase(symbol, text)) return symbol;
  }
  throw Error("There is no element " + text);
}

bool holdsElements(const std::string& formula, const std::vector<std::string>& symbols) {
  std::vector<CompoundElement> elements;
  CompoundConverter().SolveCompound(formula, elements);
  const auto has = [&](const std::string& symbol) {
    for (const auto& element : elements) {
      if (element.symbol == symbol) return true;
    }
    return false;
  };
  return std::all_of(symbols.begin(), symbols.end(), has);
}

bool holdsText(const Recordset& records, const std::string& text) {
  if (text.empty()) return true;
  for (const auto* field : {"MinSymbol", "Mineral", "Formula"}) {
    if (findNoCase(records.Text(field), text) != std::string::npos) return true;
  }
  return false;
}

std::string databaseOf(const MineralsRequest& request, CommandContext& context) {
  if (!request.database.empty()) return request.database;
  CliSession console(context);
  const std::string path = console.session().record.MineralDbPath;
  if (path.empty()) throw Error("There is no mineral database; name one with --minerals");
  return path;
}

void listMinerals(const MineralsRequest& request, CommandContext& context) {
  std::ostream& out = context.out;
  std::vector<std::string> symbols;
  for (const auto& element : request.elements) symbols.push_back(elementSymbol(element));
  Connection connection;
  openPlainly(context, connection, databaseOf(request, context));
  const auto records = connection.OpenRecordset(
      "SELECT [MineralID], [MinSymbol], [Mineral], [Formula], [Density] FROM [<MineralChemistry] "
      "ORDER BY [MineralID]");
  out << "MineralID\tMinSymbol\tMineral\tFormula\tDensity\n";
  for (; !records->Eof(); records->MoveNext()) {
    if (!holdsText(*records, request.find)) continue;
    if (!holdsElements(records->Text("Formula"), symbols)) continue;
    for (int i = 0; i < 5; ++i) out << (i ? "\t" : "") << records->Text(i);
    out << '\n';
  }
}

}  // namespace

void addMineralsCommand(CLI::App& app, CommandContext& context) {
  auto request = std::make_shared<MineralsRequest>();
  CLI::App* command =
      app.add_subcommand("minerals", "list minerals: id, symbol, name, formula, density");
  command
      ->add_option("--element", request->elements,
                   "only minerals with this element; may be repeated")
      ->allow_extra_args(false);
  command->add_option("--find", request->find,
                      "only minerals whose symbol, name or formula holds this text");
  command->add_option("--minerals,--db", request->database,
                      "mineral database instead of the one of the settings");
  command->callback([request, &context] { listMinerals(*request, context); });
}

}  // namespace lodex
