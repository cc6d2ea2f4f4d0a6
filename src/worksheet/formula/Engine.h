#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "worksheet/formula/ChangeMap.h"
#include "worksheet/formula/Evaluator.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/RecalcReport.h"

namespace lodex {

/// Keeps the formulas of one workbook up to date.
///
/// The first recalculation compiles all formulas and puts them in an order in which every formula
/// comes after those it reads. From then on changed cells are marked in a bit map, and a
/// recalculation walks the order and evaluates the formulas that read a marked cell; a result that
/// differs marks its cell in turn. References that are known only when computed (INDIRECT, OFFSET)
/// may point ahead in the order: such a formula waits, what it needs is evaluated first, and a
/// formula that ends up waiting for itself is circular.
///
/// The workbook reports every change before it happens.
class FormulaEngine {
 public:
  FormulaEngine() = default;
  FormulaEngine(const FormulaEngine&) = delete;

  /// Brings all formulas up to date.
  void recalc(Worksheet& book);

  /// Calculates only the formulas that have no value yet, from the values that all others have.
  void calculateMissing(Worksheet& book);

  /// Formulas, sheets or names change: all is compiled and evaluated anew next time.
  void invalidate() { planned_ = false; }

  /// The content of a cell changes; `isFormula` says whether it held or will hold a formula.
  void cellChanges(int sheet, int row, int column, bool isFormula) {
    if (!planned_) return;
    if (isFormula || !changes_.mark(sheet, row, column)) planned_ = false;
  }

  RecalcReport report(const Worksheet& book) const;

  /// Why a formula could not be computed; "" for one that could or was not tried yet.
  static std::string problemOf(const Worksheet& book, int sheet, int row, int column);

 private:
  struct Entry {
    FormulaCell* cell = nullptr;
    std::uint64_t row : 21 = 0, column : 15 = 0, sheet : 28 = 0;
  };
  struct Frame;

  void plan(Worksheet& book);
  void startPass(Worksheet& book);
  void collect(Worksheet& book);
  void compile(const Worksheet& book, Entry& entry, const Entry& above);
  void order(Worksheet& book);
  bool precedentsChanged(const Entry& entry);
  void evaluate(Worksheet& book, size_t index);
  void evaluateNow(Worksheet& book, size_t index);
  void endCircle(Worksheet& book, size_t from);
  void store(Worksheet& book, const Entry& entry, const formula::Operand& result, bool unknown);
  void storeValue(const Entry& place, FormulaCell& cell, const formula::Operand& result);
  void passBy(Worksheet& book, const Entry& entry);
  template <typename Visit>
  void forBlock(Worksheet& book, const Entry& entry, Visit visit);
  formula::Place placeOf(const Entry& entry) const;

  bool planned_ = false;
  std::uint32_t pass_ = 0;
  size_t changedFromFile_ = 0;
  size_t withoutValue_ = 0;
  std::vector<Entry> entries_;  // in the order of evaluation
  std::unordered_map<std::string, std::unique_ptr<formula::Code>> codes_;
  formula::ChangeMap changes_;
  std::vector<size_t> waiting_;
  std::vector<bool> isWaiting_;
  std::unique_ptr<formula::Evaluator> evaluator_;
};

}  // namespace lodex
