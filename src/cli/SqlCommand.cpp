#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "cli/CliSession.h"
#include "cli/Commands.h"
#include "db/Connection.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

struct SqlRequest {
  std::string database;
  std::string statement;
  std::string format = "tsv";
};

// A tab or a line end inside a value would break the table.
std::string tsvText(const std::string& text) {
  std::string safe;
  for (const char c : text) {
    if (c == '\t') {
      safe += "\\t";
    } else if (c == '\n') {
      safe += "\\n";
    } else if (c == '\r') {
      safe += "\\r";
    } else if (c == '\\') {
      safe += "\\\\";
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string csvText(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  return "\"" + replaceAll(text, "\"", "\"\"") + "\"";
}

std::string jsonText(std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (byte < 0x20) {
      quoted += "\\u00";
      quoted += kHex[byte >> 4];
      quoted += kHex[byte & 15];
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string jsonValue(const Recordset& records, int field) {
  const FieldValue& value = records.Value(field);
  if (isNull(value)) return "null";
  if (records.Fields()[field].type.code == FieldCode::Boolean) {
    return fieldNumber(value) != 0 ? "true" : "false";
  }
  if (std::holds_alternative<std::string>(value)) return jsonText(std::get<std::string>(value));
  const auto* number = std::get_if<double>(&value);
  if (!number) return fieldText(value);
  // JSON has no word for it; every reader takes this for too large to hold.
  if (std::isinf(*number)) return *number < 0 ? "-1E999" : "1E999";
  return exactNumberText(*number);
}

void printTable(Recordset& records, std::ostream& out, char separator,
                std::string (*written)(const std::string&)) {
  const int count = static_cast<int>(records.Fields().size());
  const auto line = [&](const auto& cell) {
    for (int i = 0; i < count; ++i) {
      if (i) out << separator;
      out << written(cell(i));
    }
    out << '\n';
  };
  line([&](int i) { return records.Fields()[i].name; });
  for (; !records.Eof(); records.MoveNext()) {
    line([&](int i) { return records.Text(i); });
  }
}

void printJson(Recordset& records, std::ostream& out) {
  out << '[';
  for (bool first = true; !records.Eof(); records.MoveNext(), first = false) {
    out << (first ? "\n  {" : ",\n  {");
    for (size_t i = 0; i < records.Fields().size(); ++i) {
      out << (i ? ", " : "") << jsonText(records.Fields()[i].name) << ": "
          << jsonValue(records, static_cast<int>(i));
    }
    out << '}';
  }
  out << "\n]\n";
}

void runStatement(const SqlRequest& request, CommandContext& context) {
  Connection connection;
  openPlainly(context, connection, request.database);
  std::ostream& out = context.out;
  const auto records = connection.OpenRecordset(request.statement, CursorKind::ForwardOnly);
  if (records->Fields().empty()) return;
  if (request.format == "json") return printJson(*records, out);
  if (request.format == "csv") return printTable(*records, out, ',', csvText);
  printTable(*records, out, '\t', tsvText);
}

}  // namespace

void addSqlCommand(CLI::App& app, CommandContext& context) {
  auto request = std::make_shared<SqlRequest>();
  CLI::App* command =
      app.add_subcommand("sql", "run a statement on a database and print the records it gives");
  command
      ->add_option("DATABASE", request->database,
                   "database file, or NAME.ORA or a connection text for a server")
      ->required();
  command->add_option("STATEMENT", request->statement, "the statement, in the Jet dialect")
      ->required();
  command->add_option("--format", request->format, "how records are printed: tsv, csv or json")
      ->check(CLI::IsMember({"tsv", "csv", "json"}));
  command->callback([request, &context] { runStatement(*request, context); });
}

}  // namespace lodex
