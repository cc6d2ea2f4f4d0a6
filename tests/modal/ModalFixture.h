#pragma once

#include <string>
#include <vector>

#include "chem/ReferenceTables.h"
#include "modal/RetAndCalc.h"
#include "modal/SetUp.h"

namespace lodex {

/// A small element table, a session without a screen and the sheets of a calculation. Element rows:
/// 1 Cu, 2 Fe, 3 S, 4 Si, 5 Ni, 6 Au, 7 Al, 8 Mg, 9 Ca, 10 Na, 11 K, 12 Ti, 13 P, 14 Zn, 15 Pb.
struct ModalFixture {
  ModalFixture() {
    add("Cu", "Cu %", 1, "CuO", "", 1, 0.7989, 0);
    add("Fe", "FeOtot %", 1, "FeO", "Fe2O3", 1.2865, 1, 0.8998);
    add("S", "S %", 1, "", "", 1, 0, 0);
    add("Si", "SiO2 %", 1, "SiO2", "", 2.1393, 1, 0);
    add("Ni", "Ni %", 1, "NiO", "", 0, 0.7858, 0);
    add("Au", "Au ppm", 10000, "", "", 1, 0, 0);
    for (const char* element : {"Al", "Mg", "Ca", "Na", "K", "Ti", "P", "Zn", "Pb"}) {
      add(element, std::string(element) + " %", 1, "", "", 1, 0, 0);
    }
    request.F1CalcOpt = &F1CalcOpt;
    request.F1ELoc = &F1ELoc;
    request.setUpName = "test";
  }

  void add(const std::string& element, const std::string& form, double multiplier,
           const char* oxide, const char* oxide2, double el, double ox, double ox2) {
    const int row = F1ELoc.LastRow() + 1;
    F1ELoc.TextRC(row, eloc::Element, element);
    F1ELoc.TextRC(row, eloc::Form, form);
    F1ELoc.TextRC(row, eloc::MineralField, element + " %");
    F1ELoc.NumberRC(row, eloc::Multiplier, multiplier);
    F1ELoc.TextRC(row, eloc::Oxide, oxide);
    F1ELoc.TextRC(row, eloc::Oxide2, oxide2);
    F1ELoc.NumberRC(row, eloc::MulitEl, el);
    F1ELoc.NumberRC(row, eloc::MultiOx, ox);
    F1ELoc.NumberRC(row, eloc::MultiOx2, ox2);
  }

  /// Adds a round: minerals and equations of which one may be longer than the other.
  void round(std::vector<RoundMineral> minerals, std::vector<RoundEquation> equations,
             int model = 2) {
    SetUpRound content{std::move(minerals), std::move(equations), model};
    storeRound(F1CalcOpt, roundCount(F1CalcOpt) + 1, content, "");
    collectMinerals(F1CalcOpt, lists);
  }

  /// Puts samples into F1Ini: one method "XRF", a column per element row; NaN leaves a cell empty.
  void assays(const std::vector<std::string>& ids, const std::vector<int>& elements,
              const std::vector<std::vector<double>>& values) {
    lists.SampleIDs = ids;
    result.F1Kirja.ColText(1, "XRF");
    for (size_t k = 0; k < elements.size(); ++k) {
      const int column = static_cast<int>(k) + 2;
      result.F1Ini.ColText(column, F1ELoc.TextRC(elements[k], eloc::Form));
      result.F1Kirja.NumberRC(elements[k], 1, column);
      for (size_t s = 0; s < ids.size(); ++s) {
        if (values[s][k] == values[s][k]) {
          result.F1Ini.NumberRC(static_cast<int>(s) + 1, column, values[s][k]);
        }
      }
    }
    for (size_t s = 0; s < ids.size(); ++s) {
      result.F1Ini.TextRC(static_cast<int>(s) + 1, 1, ids[s]);
    }
  }

  /// Composition of mineral `number`: pairs of element row and per cent; everything dissolves.
  void mineral(int number, const std::vector<std::pair<int, double>>& content,
               double dissolved = 1) {
    for (const auto& [row, percent] : content) result.F1Min.NumberRC(row, number, percent);
    for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
      result.F1Disso.NumberRC(row, number, dissolved);
    }
  }

  Outcome run(ModalMode mode = ModalMode::SolveAgain) {
    const Outcome outcome =
        RetAndCalc(request, mode, lists, result, solver, scratch, session, &simulation);
    session.notice(outcome.found);
    return outcome;
  }

  bool logged(const std::string& part) const {
    return session.log.txtLog.text().find(part) != std::string::npos;
  }

  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  Worksheet F1ELoc, F1CalcOpt;
  ModalRequest request;
  ModalLists lists;
  frmResult result;
  frmSolve solver{dialogs};
  ModalScratch scratch;
  ErrorSimulation simulation;
};

inline RoundEquation assayLine(const std::string& element, int row) {
  return {assayItem(element, row, "XRF"), {}};
}

}  // namespace lodex
