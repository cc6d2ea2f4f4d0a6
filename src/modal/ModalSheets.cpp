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

void writeResiduals(frmResult& result, const ModalData& data, const ModalLists& lists) {
  writeSampleIds(result.F1R, lists);
  CellStore& cells = result.F1R.cellsForReader(1);
  for (int k = 0; k < data.assays(); ++k) {
    const auto assay = static_cast<size_t>(k);
    result.F1R.ColText(k + 2, data.assayNames[assay]);
    for (int s = 0; s < data.samples(); ++s) {
      const double residual = data.residuals[assay][static_cast<size_t>(s)];
      if (!std::isnan(residual)) cells.setNumber(s + 1, k + 2, residual);
    }
  }
}

void writeAmounts(frmResult& result, const ModalData& data, const ModalLists& lists, int digits) {
  Worksheet& mode = result.F1MC;
  writeSampleIds(mode, lists);
  const int totalColumn = data.minerals() + 2;
  mode.ColText(totalColumn, "Total");
  for (int s = 0; s < data.samples(); ++s) {
    double total = 0;
    for (int i = 0; i < data.minerals(); ++i) {
      const double amount = data.amounts[static_cast<size_t>(i)][static_cast<size_t>(s)];
      if (std::isnan(amount)) continue;
      total += amount;
      mode.TextRC(s + 1, i + 2, FormatRounded(amount, digits));
    }
    mode.TextRC(s + 1, totalColumn, FormatRounded(total, digits));
  }
  mode.MaxCol(totalColumn);
  mode.MaxRow(std::max(mode.LastRow(), 1));
}

void writeNotes(frmResult& result, const ModalLists& lists, const std::string& setUpName,
                const std::vector<std::string>& messages) {
  writeSampleIds(result.F1N, lists);
  result.F1N.ColText(2, "Note");
  for (size_t s = 0; s < messages.size(); ++s) {
    result.F1N.TextRC(static_cast<int>(s) + 1, 2, setUpName + messages[s]);
  }
}

void writeBulkChemistry(frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc) {
  const int minerals = static_cast<int>(lists.MinIDs.size());
  const int samples = static_cast<int>(lists.SampleIDs.size());
  writeSampleIds(result.F1BulkC, lists);
  CellStore& cells = result.F1BulkC.cellsForReader(1);
  int column = 1;
  std::vector<double> sums(static_cast<size_t>(samples));
  for (const int e : usedElements(result.F1Min, minerals, F1ELoc.LastRow())) {
    result.F1BulkC.ColText(++column, F1ELoc.TextRC(e, eloc::Form));
    double multiplier = F1ELoc.NumberRC(e, eloc::Multiplier);
    if (multiplier == 0) multiplier = 1;
    std::fill(sums.begin(), sums.end(), 0.0);
    for (int i = 1; i <= minerals; ++i) {
      const double content = result.F1Min.NumberRC(e, i);
      if (content == 0) continue;
      for (int s = 0; s < samples; ++s) {
        sums[static_cast<size_t>(s)] +=
            result.F1MC.NumberRC(s + 1, i + 1) * (content / 100) / multiplier;
      }
    }
    for (int s = 0; s < samples; ++s) {
      cells.setNumber(s + 1, column, sums[static_cast<size_t>(s)]);
    }
  }
}

void perturb(const Worksheet& original, int firstColumn, double percent, Worksheet& target) {
  target.CopyAll(original);
  for (int row = 1; row <= original.LastRow(); ++row) {
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

}  // namespace lodex
