#include "modal/ModalData.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lodex {
namespace {

constexpr int rowsPerPoll = 4096;
constexpr double empty = std::numeric_limits<double>::quiet_NaN();

double numberOrEmpty(const Worksheet& sheet, int row, int column) {
  return sheet.HasContent(row, column) ? sheet.NumberRC(row, column) : empty;
}

}  // namespace

ModalData::ModalData(const frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc,
                     const Watch& watch)
    : samples_(static_cast<int>(lists.SampleIDs.size())),
      minerals_(static_cast<int>(lists.MinIDs.size())),
      elements_(F1ELoc.LastRow()) {
  const Worksheet& ini = result.F1Ini;
  for (int column = 2; column <= ini.LastCol() || !ini.ColText(column).empty(); ++column) {
    assayNames.push_back(ini.ColText(column));
    std::vector<double> values(static_cast<size_t>(samples_));
    for (int s = 0; s < samples_; ++s) {
      if (s % rowsPerPoll == 0) watch.poll();
      values[static_cast<size_t>(s)] = numberOrEmpty(ini, s + 1, column);
    }
    residuals.push_back(std::move(values));
  }
  for (int k = 1; !result.F1Kirja.ColText(k).empty(); ++k) {
    methodNames.push_back(result.F1Kirja.ColText(k));
  }

  assayOf_.resize(at(elements_, 0, methods()));
  composition_.resize(at(elements_, 0, minerals_));
  extracted_.resize(at(elements_, 0, minerals_ * methods()));
  for (int e = 0; e < elements_; ++e) {
    for (int k = 0; k < methods(); ++k) {
      const int column = static_cast<int>(result.F1Kirja.NumberRC(e + 1, k + 1));
      assayOf_[at(e, k, methods())] = column >= 2 && column - 2 < assays() ? column - 2 : -1;
    }
    for (int c = 0; c < minerals_ * methods(); ++c) {
      extracted_[at(e, c, minerals_ * methods())] = result.F1Disso.NumberRC(e + 1, c + 1);
    }
  }
  for (int mineral = 0; mineral < minerals_; ++mineral) readComposition(result.F1Min, mineral);
  amounts.assign(static_cast<size_t>(minerals_),
                 std::vector<double>(static_cast<size_t>(samples_), empty));
}

int ModalData::assayOf(int element, int method) const {
  if (element < 0 || element >= elements_ || method < 0 || method >= methods()) return -1;
  return assayOf_[at(element, method, methods())];
}

bool ModalData::isAssay(int assay) const {
  return std::find(assayOf_.begin(), assayOf_.end(), assay) != assayOf_.end();
}

void ModalData::readComposition(const Worksheet& F1Min, int mineral) {
  for (int e = 0; e < elements_; ++e) {
    composition_[at(e, mineral, minerals_)] = numberOrEmpty(F1Min, e + 1, mineral + 1);
  }
}

void ModalData::subtract(int mineral, int amountsOf, int firstSample, int lastSample) {
  const std::vector<double>& amount = amounts[static_cast<size_t>(amountsOf)];
  for (int e = 0; e < elements_; ++e) {
    const double content = composition(e, mineral);
    if (std::isnan(content)) continue;
    for (int k = 0; k < methods(); ++k) {
      const int assay = assayOf(e, k);
      if (assay < 0) continue;
      const double dissolved = extracted(e, mineral, k) * content;
      std::vector<double>& residual = residuals[static_cast<size_t>(assay)];
      for (int s = firstSample; s < lastSample; ++s) {
        const auto i = static_cast<size_t>(s);
        if (!std::isnan(amount[i])) residual[i] -= dissolved * amount[i] / 100;
      }
    }
  }
}

}  // namespace lodex
