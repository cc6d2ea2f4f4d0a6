#include "modal/MineralDatabase.h"

#include <filesystem>
#include <map>
#include <set>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/CompoundConverter.h"
#include "chem/ReferenceTables.h"
#include "db/Connection.h"
#include "modal/TabbedText.h"

namespace lodex {

namespace {

constexpr int kStoredPhases = 30;
constexpr double kLeastShareOfAtoms = 0.02;

struct Column {
  std::string name;
  std::string type;  // the Jet declaration
};

bool contains(const std::vector<std::string>& names, std::string_view name) {
  for (const auto& known : names) {
    if (equalsNoCase(known, name)) return true;
  }
  return false;
}

// Where the element table stores elements.
struct ElementFields {
  struct Target {
    std::string field;
    double factor;  // from per cent of the element to the field
  };
  std::map<std::string, Target> mineral;  // by symbol
  std::vector<std::string> mineralFields;
  std::vector<std::string> phaseFields;

  explicit ElementFields(const Worksheet& F1ELoc) {
    for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
      const std::string field = F1ELoc.TextRC(row, eloc::MineralField);
      const std::string phaseField = F1ELoc.TextRC(row, eloc::PhaseField);
      if (!field.empty()) {
        const double factor = F1ELoc.NumberRC(row, eloc::MulitEl);
        mineral.try_emplace(F1ELoc.TextRC(row, eloc::Element),
                            Target{field, factor > 0 ? factor : 1});
        if (!contains(mineralFields, field)) mineralFields.push_back(field);
      }
      if (!phaseField.empty() && !contains(phaseFields, phaseField)) {
        phaseFields.push_back(phaseField);
      }
    }
  }
};

void createTable(Connection& connection, const std::string& name,
                 const std::vector<Column>& columns, const std::string& primaryKey) {
  std::vector<std::string> lines;
  for (const auto& column : columns) {
    lines.push_back(quoteName(column.name) + " " + columnDeclaration(parseFieldType(column.type)));
  }
  if (!primaryKey.empty()) lines.push_back("PRIMARY KEY (" + primaryKey + ")");
  connection.Execute("CREATE TABLE " + quoteName(name) + " (" + join(lines, ", ") + ")");
}

void createView(Connection& connection, const std::string& name, const std::string& table) {
  connection.Execute("CREATE VIEW " + quoteName(name) + " AS SELECT * FROM " + quoteName(table));
}

// Writes rows of one table whose columns are known beforehand.
class TableWriter {
 public:
  TableWriter(Connection& connection, const std::string& table, const std::vector<Column>& columns)
      : connection_(connection) {
    std::vector<std::string> names;
    for (const auto& column : columns) names.push_back(quoteName(column.name));
    const std::vector<std::string> marks(columns.size(), "?");
    sql_ = "INSERT INTO " + quoteName(table) + " (" + join(names, ", ") + ") VALUES (" +
           join(marks, ", ") + ")";
  }
  void write(const std::vector<FieldValue>& row) { connection_.Execute(sql_, row); }

 private:
  Connection& connection_;
  std::string sql_;
};

FieldValue textOrNull(const std::string& text) {
  if (text.empty()) return {};
  return text;
}

int requireId(const TabbedText& text, int record, int column, int least) {
  const std::string& cell = text.cell(record, column);
  const auto number = parseNumber(cell);
  const auto whole = parseInteger(cell);
  if (!whole || *number != *whole || *whole < least) {
    text.fail(record, text.headings()[column] + " must be a whole number of " +
                          std::to_string(least) + " or more, not \"" + cell + "\"");
  }
  return *whole;
}

std::string requireText(const TabbedText& text, int record, int column) {
  const std::string& cell = text.cell(record, column);
  if (cell.empty()) text.fail(record, text.headings()[column] + " is empty");
  return cell;
}

// A symbol is a part of identifiers such as "M/Py/123".
std::string requireSymbol(const TabbedText& text, int record, int column) {
  const std::string symbol = requireText(text, record, column);
  if (symbol.find('/') != std::string::npos) {
    text.fail(record, "the symbol " + symbol + " must not hold a \"/\"");
  }
  return symbol;
}

FieldValue numberOrNull(const TabbedText& text, int record, int column, double most) {
  const std::string& cell = text.cell(record, column);
  if (cell.empty()) return {};
  const auto number = parseNumber(cell);
  if (!number || *number < 0 || *number > most) {
    text.fail(record, text.headings()[column] + " must be a number from 0 to " + numberText(most) +
                          ", not \"" + cell + "\"");
  }
  return *number;
}

struct Species {
  std::string formula;
  std::string group;
  std::vector<std::string> elements;
};

// Elements of a species. The first composition is the ideal one; of the others, traces do not
// count, so that a search for minerals without arsenic still finds pyrite.
void addElements(Species& species, const std::vector<CompoundElement>& elements, bool isFirst) {
  double atoms = 0;
  for (const auto& element : elements) atoms += element.atoms;
  for (const auto& element : elements) {
    const bool counts = isFirst || element.atoms >= kLeastShareOfAtoms * atoms;
    if (counts && !contains(species.elements, element.symbol)) {
      species.elements.push_back(element.symbol);
    }
  }
}

class Builder {
 public:
  Builder(Connection& connection, const Worksheet& F1ELoc)
      : connection_(connection), fields_(F1ELoc) {}

  void addMinerals(const TabbedText& text);
  void addPhases(const TabbedText& text);
  void addDissolution(const TabbedText& text);
  void addSampleTables();

  MineralDatabaseReport report;

 private:
  std::vector<Column> mineralColumns(const TabbedText& text, std::vector<int>& extra) const;
  std::map<std::string, double> composition(const TabbedText& text, int record,
                                            const std::vector<CompoundElement>& elements);
  void writeSpecies();

  Connection& connection_;
  ElementFields fields_;
  std::set<int> mineralIds_;
  std::set<int> phaseIds_;
  std::vector<std::string> speciesOrder_;
  std::map<std::string, Species> species_;
};

// `extra` gets the text's columns beyond those that every mineral has.
std::vector<Column> Builder::mineralColumns(const TabbedText& text, std::vector<int>& extra) const {
  std::vector<Column> columns{{"MineralID", "LONG"},      {"MinSymbol", "TEXT (50)"},
                              {"Mineral", "TEXT (100)"},  {"Formula", "TEXT (255)"},
                              {"Density", "DOUBLE"},      {"Group", "TEXT (100)"},
                              {"Location", "TEXT (255)"}, {"PhaseID", "TEXT (50)"}};
  const size_t fixed = columns.size();
  for (int c = 0; c < static_cast<int>(text.headings().size()); ++c) {
    bool known = equalsNoCase(text.headings()[c], "MF");
    for (size_t i = 0; i < fixed; ++i) known |= equalsNoCase(text.headings()[c], columns[i].name);
    if (known) continue;
    extra.push_back(c);
    columns.push_back({text.headings()[c], "TEXT (255)"});
  }
  for (const auto& field : fields_.mineralFields) columns.push_back({field, "DOUBLE"});
  return columns;
}

// Content of the mineral fields, by field.
std::map<std::string, double> Builder::composition(const TabbedText& text, int record,
                                                   const std::vector<CompoundElement>& elements) {
  std::map<std::string, double> content;
  for (const auto& element : elements) {
    // Nobody assays oxygen, and the oxides hold theirs already.
    if (element.symbol == "O") continue;
    const auto target = fields_.mineral.find(element.symbol);
    if (target != fields_.mineral.end()) {
      content[target->second.field] += element.massFraction * 100 * target->second.factor;
    } else {
      report.warnings.push_back(text.place(record) + "no field holds the element " +
                                element.symbol);
    }
  }
  return content;
}

void Builder::addMinerals(const TabbedText& text) {
  const int id = text.required("MineralID");
  const int symbol = text.required("MinSymbol");
  const int mineral = text.required("Mineral");
  const int formula = text.required("Formula");
  const int density = text.required("Density");
  const int group = text.required("Group");
  const int location = text.required("Location");
  const int speciesFormula = text.column("MF");
  const int phaseId = text.column("PhaseID");
  std::vector<int> extra;
  const std::vector<Column> columns = mineralColumns(text, extra);
  createTable(connection_, "MineralChemistry", columns, "[MineralID]");
  std::vector<Column> perSample = columns;
  perSample.insert(perSample.begin() + 2, {"SampleNo", "LONG"});
  createTable(connection_, "MineralChemistryQ", perSample, "[MineralID], [SampleNo]");
  createView(connection_, "<MineralChemistry", "MineralChemistry");
  createView(connection_, "<MineralChemistryQ", "MineralChemistryQ");

  const CompoundConverter converter;
  TableWriter writer(connection_, "MineralChemistry", columns);
  for (int r = 0; r < text.recordCount(); ++r) {
    const int number = requireId(text, r, id, 1);
    if (!mineralIds_.insert(number).second) {
      text.fail(r, "the MineralID " + std::to_string(number) + " appears twice");
    }
    const std::string name = requireText(text, r, mineral);
    const std::string formulaText = requireText(text, r, formula);
    std::vector<CompoundElement> elements;
    if (!converter.SolveCompound(formulaText, elements)) {
      text.fail(r, "the formula " + formulaText + " cannot be read");
    }

    std::vector<FieldValue> row{number,
                                requireSymbol(text, r, symbol),
                                name,
                                formulaText,
                                numberOrNull(text, r, density, 100),
                                textOrNull(text.cell(r, group)),
                                textOrNull(text.cell(r, location)),
                                textOrNull(text.cell(r, phaseId))};
    for (const int column : extra) row.push_back(textOrNull(text.cell(r, column)));
    const auto content = composition(text, r, elements);
    for (const auto& field : fields_.mineralFields) {
      row.emplace_back();
      if (const auto found = content.find(field); found != content.end())
        row.back() = found->second;
    }
    writer.write(row);
    ++report.compositions;

    const auto [entry, isNew] = species_.try_emplace(toUpper(name));
    Species& species = entry->second;
    if (isNew) {
      speciesOrder_.push_back(name);
      species.formula = formulaText;
      species.group = text.cell(r, group);
    }
    if (const std::string& own = text.cell(r, speciesFormula); !own.empty()) species.formula = own;
    addElements(species, elements, isNew);
  }
  writeSpecies();
}

void Builder::writeSpecies() {
  const std::vector<Column> columns{{"ID", "LONG"},
                                    {"Mineral", "TEXT (100)"},
                                    {"MF", "TEXT (255)"},
                                    {"Elements", "TEXT (255)"},
                                    {"Class", "TEXT (100)"}};
  createTable(connection_, "Minerals", columns, "[Mineral]");
  TableWriter writer(connection_, "Minerals", columns);
  for (const auto& name : speciesOrder_) {
    const Species& species = species_.at(toUpper(name));
    writer.write({++report.species, name, species.formula,
                  "\\" + join(species.elements, "\\") + "\\", textOrNull(species.group)});
  }
}

void Builder::addPhases(const TabbedText& text) {
  const int id = text.required("PCID");
  const int symbol = text.required("PhaseSymbol");
  std::vector<Column> columns{{"PCID", "LONG"},
                              {"PhaseSymbol", "TEXT (50)"},
                              {"PhaseKey", "TEXT (100)"},
                              {"Location", "TEXT (255)"}};
  const size_t fixed = columns.size();
  for (size_t i = 0; i < fixed; ++i) text.required(columns[i].name);
  for (const auto& heading : text.headings()) {
    bool known = contains(fields_.phaseFields, heading);
    for (size_t i = 0; i < fixed; ++i) known |= equalsNoCase(heading, columns[i].name);
    if (known) continue;
    if (heading.ends_with('%')) {
      throw FileError("The column " + heading +
                      " of the phases is not a phase field of the element table");
    }
    columns.push_back({heading, "TEXT (255)"});
  }
  for (const auto& field : fields_.phaseFields) columns.push_back({field, "DOUBLE"});
  createTable(connection_, "PhaseChemistry", columns, "[PCID]");
  std::vector<Column> perSample = columns;
  perSample.insert(perSample.begin() + 2, {"SampleNo", "LONG"});
  createTable(connection_, "PhaseChemistryQ", perSample, "[PCID], [SampleNo]");
  createView(connection_, "<PhaseChemistry", "PhaseChemistry");
  createView(connection_, "<PhaseChemistryQ", "PhaseChemistryQ");

  TableWriter writer(connection_, "PhaseChemistry", columns);
  for (int r = 0; r < text.recordCount(); ++r) {
    const int number = requireId(text, r, id, 1);
    if (!phaseIds_.insert(number).second) {
      text.fail(r, "the PCID " + std::to_string(number) + " appears twice");
    }
    std::vector<FieldValue> row{number, requireSymbol(text, r, symbol)};
    for (size_t c = row.size(); c < columns.size(); ++c) {
      const int source = text.column(columns[c].name);
      if (columns[c].type == "DOUBLE") {
        // An element may come as its oxide, which weighs up to nine times as much.
        row.push_back(numberOrNull(text, r, source, 1000));
      } else {
        row.push_back(textOrNull(text.cell(r, source)));
      }
    }
    writer.write(row);
    ++report.phases;
  }
}

void Builder::addDissolution(const TabbedText& text) {
  const int id = text.required("MineralID");
  const int method = text.required("Method");
  const int symbol = text.required("MinSymbol");
  const int kind = text.required("MinPhase");
  const int fraction = text.required("FractionExtracted");
  const std::vector<Column> columns{{"MineralID", "LONG"},
                                    {"Method", "TEXT (50)"},
                                    {"MinSymbol", "TEXT (50)"},
                                    {"MinPhase", "TEXT (1)"},
                                    {"FractionExtracted", "DOUBLE"}};
  createTable(connection_, "MineralsDissolution#", columns, "");
  TableWriter writer(connection_, "MineralsDissolution#", columns);
  for (int r = 0; r < text.recordCount(); ++r) {
    const std::string& kindText = text.cell(r, kind);
    if (kindText != "M" && kindText != "P") text.fail(r, "MinPhase must be M or P");
    // Rows that hold for a symbol or for all minerals have the id 0.
    const int number = requireId(text, r, id, 0);
    const auto& known = kindText == "M" ? mineralIds_ : phaseIds_;
    if (number != 0 && known.count(number) == 0) {
      text.fail(r, "no mineral or phase has the id " + std::to_string(number));
    }
    writer.write({number, requireText(text, r, method), textOrNull(text.cell(r, symbol)), kindText,
                  numberOrNull(text, r, fraction, 1)});
    ++report.dissolutionRows;
  }
}

void Builder::addSampleTables() {
  createTable(connection_, "Sample",
              {{"SampleNo", "LONG"}, {"SampleName", "TEXT (100)"}, {"SampleNote", "MEMO"}},
              "[SampleNo]");
  createView(connection_, "@Samples", "Sample");
  // The pairs begin at the fifth field.
  std::vector<Column> columns{
      {"SampleNo", "LONG"}, {"SetUp", "TEXT (255)"}, {"CalcDate", "DATE"}, {"CalcNote", "MEMO"}};
  for (int i = 1; i <= kStoredPhases; ++i) {
    columns.push_back({"Phase" + std::to_string(i), "TEXT (100)"});
    columns.push_back({"Quantity" + std::to_string(i), "DOUBLE"});
  }
  createTable(connection_, "SamplePhases", columns, "[SampleNo]");
}

}  // namespace

MineralDatabaseReport buildMineralDatabase(const MineralSources& sources, const Worksheet& F1ELoc,
                                           std::string_view target) {
  const TabbedText minerals(sources.minerals);
  const TabbedText phases(sources.phases);
  const TabbedText dissolution(sources.dissolution);
  MineralDatabaseReport report;
  writeFileWhole(target, [&](const std::filesystem::path& temporary) {
    std::filesystem::remove(temporary);
    createDatabase(pathText(temporary));
    Connection connection;
    connection.Open(ConnectionString(pathText(temporary), "", ""));
    Transaction work(connection);
    Builder builder(connection, F1ELoc);
    builder.addMinerals(minerals);
    builder.addPhases(phases);
    builder.addDissolution(dissolution);
    builder.addSampleTables();
    work.commit();
    report = std::move(builder.report);
  });
  return report;
}

}  // namespace lodex
