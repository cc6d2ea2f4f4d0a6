#pragma once

#include <string>
#include <vector>

#include "modal/ModalData.h"
#include "modal/frmResult.h"
#include "worksheet/Worksheet.h"

/// How the results of a modal calculation are laid out in the sheets of frmResult.
namespace lodex {

/// Empties a sheet with its headings and gives it its full size again.
void clearSheet(Worksheet& sheet);

/// Headings of F1MC: column n + 1 is mineral n, its symbol (or identifier) and " %".
void writeMineralHeadings(frmResult& result, const ModalLists& lists);

/// F1MinMax from F1Min: the element rows in which any mineral has a value.
void fillMinMax(frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc);

/// F1R with the headings of F1Ini.
void writeResiduals(frmResult& result, const ModalData& data, const ModalLists& lists);

/// F1MC: amounts and total as text with `digits` decimals. Minerals that no round has solved stay
/// empty. MaxRow and MaxCol become the used size.
void writeAmounts(frmResult& result, const ModalData& data, const ModalLists& lists, int digits);

/// F1N: the name of the set-up followed by what the solver had to say.
void writeNotes(frmResult& result, const ModalLists& lists, const std::string& setUpName,
                const std::vector<std::string>& messages);

/// F1BulkC: the assays that the amounts of F1MC make up.
void writeBulkChemistry(frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc);

/// Copies `original` into `target`, from column `firstColumn` on each number with a normal error of
/// `percent` per cent of it.
void perturb(const Worksheet& original, int firstColumn, double percent, Worksheet& target);

/// Copies those columns of `source` whose mark is set (mark n is column n + 1) into `target`.
void restoreColumns(const Worksheet& source, const std::vector<bool>& marked, Worksheet& target);

/// Fills F1MinChemPerSample, a row per sample and mineral, until the sheet is full.
class MineralChemistryWriter {
 public:
  MineralChemistryWriter(frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc);
  /// The compositions in F1Min as those used for a sample.
  void write(const std::string& sampleId);

 private:
  frmResult& result_;
  const ModalLists& lists_;
  int elements_;
  int row_ = 0;
};

}  // namespace lodex
