#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "chem/CompoundConverter.h"
#include "import/SystemRows.h"
#include "import/ThesaurusStep.h"

/// Turns a foreign table into a described one. Everything that is found is written as text into the
/// system rows of the sheet; nothing here asks or fails, what stays unknown is left empty.
namespace lodex {

/// The steps of a run over one sheet.
struct IdentifyRequest {
  bool automatic = true;  // system rows, ID column, headings, thesaurus
  bool useThesaurus = true;
  bool columns = true;             // elements and items: table, field, type
  bool unidentifiedToUser = true;  // name a table for columns that stay unidentified
  bool onlyNonX = false;           // leave marked columns alone
};

/// What differs between the kinds of sheets, and what the shell is set to.
struct IdentifyRules {
  bool defaultTables = true;  // write "ANALYSES" or "MINERAL" where a column has no table
  bool alwaysSingle = false;  // do not look at the content of item columns
  Descriptions descriptions = Descriptions::Rewrite;
  std::string unidentifiedTable = "USERX";
  std::string fileMethod;  // method for columns without one; empty for none
};

/// An entry of the periodic table or one of the items after it: number and symbol.
struct KnownItem {
  int number = 0;
  std::string symbol;
};

inline constexpr int lastElementItem = 92;
inline constexpr int firstFormulaItem = 120;

/// Items `first` to `last` of F1Data that have a symbol. Row n + 1 holds item n.
std::vector<KnownItem> knownItems(const Worksheet& F1Data, int first, int last);

/// Looks for the captions in the whole sheet and notes the first row of each. A sheet
/// that was described and saved before also gets its ID column back. Returns how many were found.
int findSystemRows(const DescribedSheet& sheet);

/// Locates and builds the system rows, the ID column and the mineral column, splits the headings
/// of a bare table and applies the thesaurus (null for none).
void autoIdentify(const DescribedSheet& sheet, const ThesaurusIndex* thesaurus,
                  std::string_view fileMethod, LogLines& log,
                  Descriptions descriptions = Descriptions::Rewrite);

/// The table of columns that have none of their own.
std::string defaultTable(const DescribedSheet& sheet, const IdentifyRules& rules);

/// Finds the columns of elements and items, marks them and fills table, field and type. F1Ref is
/// filled again: the row of an element holds its number of columns and then pairs of sheet and
/// column, the row of a formula item its columns. Columns whose description is kept are only
/// marked.
class ColumnIdentification {
 public:
  ColumnIdentification(const DescribedSheet& sheet, Worksheet& F1Ref, const Worksheet& F1Data,
                       const CompoundConverter& converter, const IdentifyRules& rules,
                       LogLines& log);

  void identifyElements(int sheetNumber, bool onlyNonX);
  void identifyFormulaItems(bool onlyNonX);

  /// Mineral formula items of a mineral: names and values.
  using FormulaLookup =
      std::function<std::vector<std::pair<std::string, std::string>>(const std::string& mineral)>;
  /// Adds the formula items of every row's mineral as columns at the right.
  void addMineralFormulas(const FormulaLookup& lookup);

 private:
  void markHit(const KnownItem& item, size_t hit, size_t hits, int column,
               std::string_view type) const;
  int columnOfItem(const KnownItem& item) const;

  const DescribedSheet& sheet_;
  Worksheet& F1Ref_;
  const Worksheet& F1Data_;
  const CompoundConverter& converter_;
  const IdentifyRules& rules_;
  LogLines& log_;
};

/// The unit as the tables of units know it ("%", "ppm" or "ppb") for a word such as "wt%" or
/// "mg/kg"; "" for anything but a unit of concentration.
std::string unitOfWord(std::string_view word);

/// True for a row that has no text in `idColumn`, and units in most of its other filled cells.
bool looksLikeUnits(const Worksheet& sheet, int row, int idColumn);

/// Reports an error when no column after the ID column was understood.
void reportUnknownHeadings(const DescribedSheet& sheet, LogLines& log);

/// Sends columns with a heading and without a mark to the table for unidentified ones. A column
/// that was given table, field and type by somebody else, as the results of a calculation are, goes
/// where these say.
void placeUnidentified(const DescribedSheet& sheet, const IdentifyRules& rules, LogLines& log);

/// Field name of the ID column: what is there, else its header, else "SampleNo".
void nameIdField(const DescribedSheet& sheet);

/// Types and marks the ID column; `oldColumn` (0 for none) loses its marks. Does nothing without a
/// first data row, a new column or a TYPE row. `window` is the name that the log gives.
void CheckIDCOL(const DescribedSheet& sheet, int newColumn, int oldColumn, std::string_view window,
                LogLines& log);

/// Replaces characters of table and field names that a database cannot hold.
void cleanNames(const DescribedSheet& sheet, LogLines& log);

}  // namespace lodex
