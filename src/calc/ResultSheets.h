#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "calc/CalculationGroup.h"
#include "import/SystemRows.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// The rows of a result sheet. The identifier is in column 2, and column 1 holds the captions
/// by which a saved result is known again.
namespace resultrow {
inline constexpr int heading = 1;
inline constexpr int table = 2;
inline constexpr int field = 3;
inline constexpr int type = 4;
inline constexpr int index = 5;
inline constexpr int firstData = 6;
}  // namespace resultrow
inline constexpr int resultIdColumn = 2;

/// The structure of every new result sheet, as a data sheet has it.
SheetStructure resultStructure();

/// The structure for results that are added to a sheet with this one, which identification or the
/// user has changed meanwhile: the same, with its first data row below the system rows. Without a
/// row of headings or an identifier nothing can be added to it, and it is that of a new sheet.
SheetStructure resultStructureFrom(SheetStructure structure);

/// The field of the sample identifier in a result.
struct KeyField {
  std::string name;
  std::string type;
};

/// Collects results sample by sample: a sheet per method, a row per sample and a column per output.
/// An output named "Sheet.Field" goes to the sheet of that name, in a row of its own that all
/// methods share.
class ResultSheets {
 public:
  /// Rows go below what the workbook holds already. All its sheets have this structure.
  ResultSheets(Worksheet& book, KeyField key, const SheetStructure& structure);

  /// Makes the workbook empty, with one sheet per name.
  void reset(const std::vector<std::string>& sheets);
  /// Adds a sheet for every name that has none.
  void addSheets(const std::vector<std::string>& names);

  void startSample(const Value& sampleId);
  /// Appends the outputs of a computed method. Rows without a name are passed over; numbers and
  /// numeric texts arrive as numbers, all else as the text it shows.
  /// `valueOf` gives the value in a row of the Output sheet.
  void WriteResults(const MethodBook& method, const std::function<Value(int row)>& valueOf);

  /// Types the columns whose methods gave no type.
  void finish();

 private:
  struct Sheet {
    std::unordered_map<std::string, int> columns;  // by field
    int lastRow = 0;
    int lastColumn = 0;
    int ownRow = 0;     // of the sample in work, for the method that the sheet is named after
    int sharedRow = 0;  // the same, for outputs that name the sheet
  };
  struct Output {
    int row = 0;  // of the Output sheet
    std::string name;
    int sheet = 0;  // result sheet, 0 while not known
    int column = 0;
    bool shared = false;
  };
  struct Outputs {
    bool planned = false;
    bool fixedNames = true;
    int ownSheet = 0;
    std::vector<Output> rows;
  };

  Outputs& outputsOf(const MethodBook& method);
  void place(const MethodBook& method, Outputs& outputs, Output& output);
  Sheet& sheet(int number);
  int sheetNamed(std::string_view name);
  int columnFor(int number, const std::string& field, const MethodBook& method, int outputRow);
  int rowFor(int number, bool shared, const std::string& methodName);
  void writeSystemRows(int number, const std::string& methodName);
  void describe(int number, int systemRow, int column, std::string_view text);
  int idColumn() const { return structure_.idColumn; }

  Worksheet& book_;
  KeyField key_;
  SheetStructure structure_;
  Value sampleId_;
  std::vector<Sheet> sheets_;  // by number, from 0
  std::unordered_map<const MethodBook*, Outputs> outputs_;
};

}  // namespace lodex
