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

/// Writes what was found for the samples, some of them at a time, so that all sheets end with the
/// same sample.
class ResultWriter {
 public:
  struct Texts {
    int digits = 3;                            // decimals of the amounts
    std::string setUpName;                     // begins every note
    const std::vector<std::string>& messages;  // per sample: what the solver had to say
  };
  /// Writes the headings and the identifiers of all samples. F1Min must be complete.
  ResultWriter(frmResult& result, const ModalData& data, const ModalLists& lists,
               const Worksheet& F1ELoc, const Texts& texts);

  /// The samples first .. last - 1, from 0: F1R, F1MC, F1N and F1BulkC. Amounts and total are text;
  /// minerals that no round has solved stay empty.
  void write(int first, int last);
  /// Sets MaxRow and MaxCol of F1MC to what is used.
  void finish();

 private:
  void writeResiduals(int first, int last);
  void writeAmounts(int first, int last);
  void writeBulkChemistry(int first, int last);

  frmResult& result_;
  const ModalData& data_;
  Texts texts_;
  std::vector<int> elementRows_;     // of F1Min, those with data: the columns of F1BulkC
  std::vector<double> multipliers_;  // parallel
  int totalColumn_;
};

/// Copies `original` into `target`, from column `firstColumn` on each number with a normal error of
/// `percent` per cent of it.
void perturb(const Worksheet& original, int firstColumn, double percent, Worksheet& target,
             const Watch& watch);

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

/// Leaves only the rows of the first samples in F1MinChemPerSample.
void keepChemistryOf(frmResult& result, const ModalLists& lists, int samples);

}  // namespace lodex
