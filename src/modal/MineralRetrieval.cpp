#include <unordered_map>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/ReferenceTables.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "modal/MineralData.h"

namespace lodex {

namespace {

// For each element row of F1ELoc (the first at index 0) the field that holds it; -1 for none.
std::vector<int> elementFields(const Recordset& records, const Worksheet& F1ELoc, int nameColumn) {
  std::vector<int> fields;
  for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
    const std::string name = F1ELoc.TextRC(row, nameColumn);
    fields.push_back(name.empty() ? -1 : records.FieldIndex(name));
  }
  return fields;
}

// Writes the current record's elements into a column of F1Min.
void writeComposition(const Recordset& records, const std::vector<int>& fields, Worksheet& F1Min,
                      int column) {
  for (size_t i = 0; i < fields.size(); ++i) {
    const int row = static_cast<int>(i) + 1;
    F1Min.TextRC(row, column, fields[i] < 0 ? "" : records.Text(fields[i]));
  }
}

// The chemistry of minerals or of phases, with the place of each id.
class Chemistry {
 public:
  Chemistry(Connection& connection, const std::string& table, const std::string& alias,
            const std::string& idField, const std::string& symbolField,
            const std::vector<std::string>& ids, std::string error)
      : error_(std::move(error)) {
    if (ids.empty()) return;
    const std::string id = quoteName(alias) + "." + quoteName(idField);
    records_ =
        connection.OpenRecordset("SELECT * FROM " + quoteName(table) + " AS " + quoteName(alias) +
                                 " WHERE " + id + " IN (" + join(ids, ",") + ") ORDER BY " + id);
    const int field = records_->FieldIndex(idField);
    symbolField_ = records_->FieldIndex(symbolField);
    for (; !records_->Eof(); records_->MoveNext()) {
      places_.emplace(records_->Text(field), records_->AbsolutePosition());
    }
  }

  /// Returns the symbol of the record; "" when it has none.
  std::string write(const std::string& id, const Worksheet& F1ELoc, int nameColumn,
                    Worksheet& F1Min, int column) {
    const auto place = places_.find(id);
    if (place == places_.end()) throw Error(error_);
    if (fields_.empty()) fields_ = elementFields(*records_, F1ELoc, nameColumn);
    records_->Move(place->second);
    writeComposition(*records_, fields_, F1Min, column);
    return symbolField_ < 0 ? "" : records_->Text(symbolField_);
  }

 private:
  std::string error_;
  int symbolField_ = -1;
  std::unique_ptr<Recordset> records_;
  std::unordered_map<std::string, int> places_;
  std::vector<int> fields_;
};

// Only whole numbers can be ids; anything else finds nothing and stays out of the statement.
bool isId(std::string_view text) {
  return !text.empty() && text.size() <= 18 &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

// A filter's text or number: a sample may be known by either.
std::string filterValue(std::string_view value) {
  return isNumericText(value) ? std::string(trimBlanks(value)) : quoteText(value);
}

}  // namespace

void RetrieveMineralChemistry(Connection& connection, const ModalLists& lists,
                              const Worksheet& F1ELoc, Worksheet& F1Min,
                              const std::function<void(int mineral)>& progress, Findings& noticed) {
  const size_t count = lists.MinIDs.size();
  std::vector<bool> isMineral(count);
  std::vector<std::string> symbols(count);
  std::vector<std::string> mineralIds;
  std::vector<std::string> phaseIds;
  for (size_t i = 0; i < count; ++i) {
    std::string kind;
    std::string symbol;
    std::string id;
    ParseMineralID(i < lists.MinLabels.size() ? lists.MinLabels[i] : lists.MinIDs[i], kind, symbol,
                   id);
    isMineral[i] = kind == "M";
    symbols[i] = symbol;
    if (isId(lists.MinIDs[i])) (isMineral[i] ? mineralIds : phaseIds).push_back(lists.MinIDs[i]);
  }
  Chemistry minerals(connection, "<MineralChemistry", "<MineralChemistry", "MineralID", "MinSymbol",
                     mineralIds, "Error in retrieving mineral chemistry");
  Chemistry phases(connection, "PhaseChemistry", "<PhaseChemistry", "PCID", "PhaseSymbol", phaseIds,
                   "Error in retrieving phase chemistry");
  for (size_t i = 0; i < count; ++i) {
    const int column = static_cast<int>(i) + 1;
    if (progress) progress(column);
    F1Min.ColText(column, lists.MinIDs[i]);
    const std::string found =
        isMineral[i] ? minerals.write(lists.MinIDs[i], F1ELoc, eloc::MineralField, F1Min, column)
                     : phases.write(lists.MinIDs[i], F1ELoc, eloc::PhaseField, F1Min, column);
    if (!symbols[i].empty() && !found.empty() && symbols[i] != found) {
      noticed.warn("Mineral " + lists.MinLabels[i] + " has the composition of number " +
                   lists.MinIDs[i] + ", which is " + found);
    }
  }
}

SampleChemistry::SampleChemistry(Connection& connection)
    : minerals_(connection.OpenRecordset("SELECT * FROM [<MineralChemistryQ]")),
      phases_(connection.OpenRecordset("SELECT * FROM [<PhaseChemistryQ]")) {
  for (const auto* records : {minerals_.get(), phases_.get()}) {
    if (records->Fields().size() < 2) {
      throw Error("The chemistry per sample has no field for the symbol");
    }
  }
}

SampleChemistry::~SampleChemistry() = default;

bool SampleChemistry::overwrite(std::string_view kind, std::string_view symbol, std::string_view id,
                                std::string_view sample, const Worksheet& F1ELoc, Worksheet& F1Min,
                                int column) {
  const bool isPhase = kind == "P";
  Recordset& records = isPhase ? *phases_ : *minerals_;
  const std::string ofSample = "SampleNo = " + filterValue(sample);
  records.Filter("[" + records.Fields()[1].name + "]=" + quoteText(symbol) + " AND " + ofSample);
  if (records.Eof()) return false;
  if (isPhase) {
    records.Filter("[PCID] = " + filterValue(id));
    if (records.Eof()) return false;
    records.Find(ofSample);
    if (records.Eof()) records.MoveFirst();
  }
  const int nameColumn = isPhase ? eloc::PhaseField : eloc::MineralField;
  writeComposition(records, elementFields(records, F1ELoc, nameColumn), F1Min, column);
  return true;
}

Dissolution::Dissolution(Connection& connection)
    : records_(connection.OpenRecordset("SELECT * FROM [MineralsDissolution#]")) {}

Dissolution::~Dissolution() = default;

double Dissolution::fraction(std::string_view kind, std::string_view symbol, std::string_view id,
                             std::string_view method) {
  const std::string ofMethod = " AND Method = " + quoteText(method);
  const auto ofSymbol = [&](std::string_view text) {
    return "MinSymbol =" + quoteText(text) + ofMethod;
  };
  std::vector<std::string> filters;
  if (isId(id)) filters.push_back("MineralID=" + std::string(id) + ofMethod);
  if (kind == "P") {
    filters.push_back(ofSymbol(symbol) + " AND MinPhase Like 'P'");
    filters.push_back(ofSymbol(symbol) + " AND MinPhase Like 'M'");
  } else {
    filters.push_back(ofSymbol(symbol));
  }
  if (kind == "M") filters.push_back(ofSymbol("000"));
  filters.push_back(ofSymbol("D00"));
  for (const auto& filter : filters) {
    records_->Filter(filter);
    if (records_->Eof()) continue;
    const FieldValue& extracted = records_->Value("FractionExtracted");
    return isNull(extracted) ? 1 : fieldNumber(extracted);
  }
  return 1;
}

}  // namespace lodex
