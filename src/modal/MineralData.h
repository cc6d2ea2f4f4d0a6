#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "worksheet/Worksheet.h"

namespace lodex {

class Connection;
class Recordset;

/// The lists that the forms of the modal calculation share. A mineral's place in MinIDs (from 1) is
/// its number in all result columns.
struct ModalLists {
  std::vector<std::string> MinIDs;     // numeric id of each mineral or phase
  std::vector<std::string> MinLabels;  // full identifier, such as "M/Py/123"
  std::vector<std::string> SampleIDs;
  bool SampleIDsAreNumbers = false;  // of a database whose samples have numbers
};

/// Splits a mineral identifier: "M/Py/123", "P/Gangue/7", "M/123", "Py/123" or "123". What cannot
/// be converted leaves the outputs as they were.
void ParseMineralID(std::string_view text, std::string& kind, std::string& symbol, std::string& id);

/// The place (from 1) of a numeric id in MinIDs, compared as numbers; 0 if absent.
int MineralIndex(const ModalLists& lists, std::string_view id);

/// The result column of a mineral on a sheet: the first column from 2 on whose heading begins with
/// the identifier's symbol and " %"; 0 if none, searching ends at the first empty heading.
int MineralColumn(std::string_view identifier, const Worksheet& sheet);

/// The text of a value rounded half up in single precision to a number of decimals, padded with
/// zeros: "0.00" for 0 with 2 digits.
std::string FormatRounded(double value, int digits);

/// Atomic number of the symbol at the head of a text, 0 if none; "_" and "/" end no symbol.
int AtomicNumberOf(std::string_view text);

/// The atomic number, whether there is one, and the unit factor named in the text: "%" 1, "PPM" or
/// "G/T" 10000, "PPB" 10000000, none 0.
int ElementAndFactor(std::string_view text, bool& isElement, double& factor);

/// 100 over the sum of weight/density, in single precision: -1 for arrays of different length or a
/// density of 0, and 0 for empty arrays or a sum of 0.
float AverageDensity(const std::vector<float>& weights, const std::vector<float>& densities);

/// Fills F1Min (element row of F1ELoc x mineral number) with compositions in per cent from
/// <MineralChemistry and <PhaseChemistry; a Null or missing field leaves the cell empty. Headings
/// of F1Min are the ids. `progress` gets each mineral's number before it is fetched. Reports
/// identifiers whose symbol is not that of the record. Throws Error("Error in retrieving mineral
/// chemistry") or Error("Error in retrieving phase chemistry") for an id that the tables do not
/// have.
void RetrieveMineralChemistry(Connection& connection, const ModalLists& lists,
                              const Worksheet& F1ELoc, Worksheet& F1Min,
                              const std::function<void(int mineral)>& progress, Findings& noticed);

/// Compositions that belong to one sample, from <MineralChemistryQ and <PhaseChemistryQ.
class SampleChemistry {
 public:
  explicit SampleChemistry(Connection& connection);
  ~SampleChemistry();
  /// Overwrites column `column` of F1Min with the composition of this mineral in this sample; false
  /// and nothing written when there is no record.
  bool overwrite(std::string_view kind, std::string_view symbol, std::string_view id,
                 std::string_view sample, const Worksheet& F1ELoc, Worksheet& F1Min, int column);

 private:
  std::unique_ptr<Recordset> minerals_;
  std::unique_ptr<Recordset> phases_;
};

/// The fraction of a mineral that an analytical method extracts, from MineralsDissolution#.
class Dissolution {
 public:
  explicit Dissolution(Connection& connection);
  ~Dissolution();
  /// The first hit in the order: id, symbol, for phases the mineral's symbol, "000" for minerals,
  /// "D00"; 1 when there is none or it is Null.
  double fraction(std::string_view kind, std::string_view symbol, std::string_view id,
                  std::string_view method);

 private:
  std::unique_ptr<Recordset> records_;
};

}  // namespace lodex
