#pragma once

#include <string>
#include <vector>

#include "modal/MineralData.h"
#include "modal/Watch.h"
#include "modal/frmResult.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// What a calculation works on, out of the sheets of frmResult. Samples, minerals, methods and
/// element rows count from 0 here; an empty cell is NaN.
class ModalData {
 public:
  /// Reads F1Ini, F1Kirja, F1Min and F1Disso.
  ModalData(const frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc,
            const Watch& watch);

  int samples() const { return samples_; }
  int minerals() const { return minerals_; }
  int elements() const { return elements_; }
  int methods() const { return static_cast<int>(methodNames.size()); }
  int assays() const { return static_cast<int>(residuals.size()); }

  std::vector<std::string> methodNames;
  std::vector<std::string> assayNames;

  /// The F1Ini column of an element and method, as an index into residuals; -1 if not assayed.
  int assayOf(int element, int method) const;
  /// Whether an assay column belongs to some element and method.
  bool isAssay(int assay) const;

  double composition(int element, int mineral) const {
    return composition_[at(element, mineral, minerals_)];
  }
  double extracted(int element, int mineral, int method) const {
    return extracted_[at(element, mineral * methods() + method, minerals_ * methods())];
  }
  /// Takes a column of F1Min anew.
  void readComposition(const Worksheet& F1Min, int mineral);

  /// Per assay, per sample: what is not explained yet.
  std::vector<std::vector<double>> residuals;
  /// Per mineral, per sample: the amount in per cent of the sample; NaN until one was found.
  std::vector<std::vector<double>> amounts;

  /// Takes off what a mineral holds of every assay, for samples first .. last - 1. Its amounts are
  /// those found under the number `amountsOf`.
  void subtract(int mineral, int amountsOf, int firstSample, int lastSample);

 private:
  static size_t at(int row, int column, int columns) {
    return static_cast<size_t>(row) * static_cast<size_t>(columns) + static_cast<size_t>(column);
  }

  int samples_ = 0, minerals_ = 0, elements_ = 0;
  std::vector<int> assayOf_;         // element x method
  std::vector<double> composition_;  // element x mineral
  std::vector<double> extracted_;    // element x (mineral x method)
};

}  // namespace lodex
