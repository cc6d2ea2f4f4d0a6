#include "modal/ModalSheets.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "chem/ReferenceTables.h"
#include "modal/AmountFormula.h"
#include "modal/RetAndCalc.h"

namespace lodex {
namespace {

// The element rows of F1Min in which any mineral has a value.
std::vector<int> usedElements(const Worksheet& F1Min, int minerals, int elements) {
  std::vector<int> rows;
  for (int e = 1; e <= elements; ++e) {
    for (int mineral = 1; mineral <= minerals; ++mineral) {
      if (!F1Min.HasContent(e, mineral)) continue;
      rows.push_back(e);
      break;
    }
  }
  return rows;
}

void writeSampleIds(Worksheet& sheet, const ModalLists& lists) {
  sheet.ColText(1, "SampleNo");
  int row = 0;
  for (const std::string& id : lists.SampleIDs) {
    if (lists.SampleIDsAreNumbers) {
      sheet.NumberRC(++row, 1, numberOf(id));
    } else {
      sheet.TextRC(++row, 1, id);
    }
  }
}

}  // namespace

void clearSheet(Worksheet& sheet) {
  sheet = Worksheet();
}

void writeMineralHeadings(frmResult& result, const ModalLists& lists) {
  int column = 1;
  for (const std::string& label : lists.MinLabels) {
    result.F1MC.ColText(++column, symbolOrText(label) + " %");
  }
}

void fillMinMax(frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc) {
  const int minerals = static_cast<int>(lists.MinLabels.size());
  result.F1MinMax.ColText(1, "Element");
  for (int i = 1; i <= minerals; ++i) {
    result.F1MinMax.ColText(i + 1, lists.MinLabels[static_cast<size_t>(i) - 1]);
  }
  int row = 0;
  for (const int e : usedElements(result.F1Min, minerals, F1ELoc.LastRow())) {
    result.F1MinMax.TextRC(++row, 1, F1ELoc.TextRC(e, eloc::MineralField));
    for (int i = 1; i <= minerals; ++i) {
      result.F1MinMax.ValueSRC(1, row, i + 1, result.F1Min.ValueRC(e, i));
    }
  }
}

ResultWriter::ResultWriter(frmResult& result, const ModalData& data, const ModalLists& lists,
                           const Worksheet& F1ELoc, const Texts& texts)
    : result_(result),
      data_(data),
      texts_(texts),
      elementRows_(usedElements(result.F1Min, data.minerals(), F1ELoc.LastRow())),
      totalColumn_(data.minerals() + 2) {
  for (Worksheet* sheet : {&result.F1R, &result.F1MC, &result.F1N, &result.F1BulkC}) {
    writeSampleIds(*sheet, lists);
  }
  for (int k = 0; k < data.assays(); ++k) {
    result.F1R.ColText(k + 2, data.assayNames[static_cast<size_t>(k)]);
  }
  result.F1MC.ColText(totalColumn_, "Total");
  result.F1N.ColText(2, "Note");
  int column = 1;
  for (const int e : elementRows_) {
    result.F1BulkC.ColText(++column, F1ELoc.TextRC(e, eloc::Form));
    const double multiplier = F1ELoc.NumberRC(e, eloc::Multiplier);
    multipliers_.push_back(multiplier == 0 ? 1 : multiplier);
  }
}

void ResultWriter::write(int first, int last) {
  writeResiduals(first, last);
  writeAmounts(first, last);
  for (int s = first; s < last; ++s) {
    result_.F1N.TextRC(s + 1, 2, texts_.setUpName + texts_.messages[static_cast<size_t>(s)]);
  }
  writeBulkChemistry(first, last);
}

void ResultWriter::writeResiduals(int first, int last) {
  CellStore& cells = result_.F1R.cellsForReader(1);
  for (int k = 0; k < data_.assays(); ++k) {
    for (int s = first; s < last; ++s) {
      const double residual = data_.residuals[static_cast<size_t>(k)][static_cast<size_t>(s)];
      if (!std::isnan(residual)) cells.setNumber(s + 1, k + 2, residual);
    }
  }
}

void ResultWriter::writeAmounts(int first, int last) {
  Worksheet& mode = result_.F1MC;
  for (int s = first; s < last; ++s) {
    double total = 0;
    for (int i = 0; i < data_.minerals(); ++i) {
      const double amount = data_.amounts[static_cast<size_t>(i)][static_cast<size_t>(s)];
      if (std::isnan(amount)) continue;
      total += amount;
      mode.TextRC(s + 1, i + 2, FormatRounded(amount, texts_.digits));
    }
    mode.TextRC(s + 1, totalColumn_, FormatRounded(total, texts_.digits));
  }
}

// From the rounded amounts, so that the sheets agree.
void ResultWriter::writeBulkChemistry(int first, int last) {
  CellStore& cells = result_.F1BulkC.cellsForReader(1);
  std::vector<double> sums(static_cast<size_t>(last - first));
  for (size_t k = 0; k < elementRows_.size(); ++k) {
    std::fill(sums.begin(), sums.end(), 0.0);
    for (int i = 1; i <= data_.minerals(); ++i) {
      const double content = result_.F1Min.NumberRC(elementRows_[k], i);
      if (content == 0) continue;
      for (int s = first; s < last; ++s) {
        sums[static_cast<size_t>(s - first)] +=
            result_.F1MC.NumberRC(s + 1, i + 1) * (content / 100) / multipliers_[k];
      }
    }
    for (int s = first; s < last; ++s) {
      cells.setNumber(s + 1, static_cast<int>(k) + 2, sums[static_cast<size_t>(s - first)]);
    }
  }
}

void ResultWriter::finish() {
  result_.F1MC.MaxCol(totalColumn_);
  result_.F1MC.MaxRow(std::max(result_.F1MC.LastRow(), 1));
}

void perturb(const Worksheet& original, int firstColumn, double percent, Worksheet& target,
             const Watch& watch) {
  target.CopyAll(original);
  for (int row = 1; row <= original.LastRow(); ++row) {
    if (row % 64 == 0) watch.poll();
    for (int column = firstColumn; column <= original.LastCol(); ++column) {
      if (!original.HasContent(row, column)) continue;
      const double value = original.NumberRC(row, column);
      target.NumberRC(row, column, GaussianDeviate(value, value * percent / 100));
    }
  }
}

void restoreColumns(const Worksheet& source, const std::vector<bool>& marked, Worksheet& target) {
  for (size_t i = 0; i < marked.size(); ++i) {
    if (!marked[i]) continue;
    const int column = static_cast<int>(i) + 1;
    const int last = std::max(source.LastRow(), target.LastRow());
    for (int row = 1; row <= last; ++row) {
      target.ValueSRC(1, row, column, source.ValueRC(row, column));
    }
  }
}

MineralChemistryWriter::MineralChemistryWriter(frmResult& result, const ModalLists& lists,
                                               const Worksheet& F1ELoc)
    : result_(result), lists_(lists), elements_(F1ELoc.LastRow()) {
  result_.F1MinChemPerSample.ColText(1, "SampleNo");
  result_.F1MinChemPerSample.ColText(2, "Mineral");
  for (int e = 1; e <= elements_; ++e) {
    result_.F1MinChemPerSample.ColText(e + 2, F1ELoc.TextRC(e, eloc::Element));
  }
}

void MineralChemistryWriter::write(const std::string& sampleId) {
  Worksheet& sheet = result_.F1MinChemPerSample;
  for (size_t i = 0; i < lists_.MinLabels.size() && row_ < maxRows; ++i) {
    ++row_;
    sheet.TextRC(row_, 1, sampleId);
    sheet.TextRC(row_, 2, symbolOrText(lists_.MinLabels[i]));
    for (int e = 1; e <= elements_; ++e) {
      const Value value = result_.F1Min.ValueRC(e, static_cast<int>(i) + 1);
      if (!value.isEmpty()) sheet.ValueSRC(1, row_, e + 2, value);
    }
  }
}

void keepChemistryOf(frmResult& result, const ModalLists& lists, int samples) {
  Worksheet& sheet = result.F1MinChemPerSample;
  const int kept = samples * static_cast<int>(lists.MinLabels.size());
  if (kept >= sheet.LastRow()) return;
  sheet.ClearRange(kept + 1, 1, sheet.LastRow(), sheet.LastCol());
}

}  // namespace lodex
