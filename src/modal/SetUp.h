#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modal/MineralData.h"
#include "worksheet/Worksheet.h"

/// A set-up says which minerals and equations each round of a modal calculation has. It lives in
/// the sheet F1CalcOpt, one row per line of a round, and on disk as the sheet F1OpenSave.
namespace lodex {

/// Columns of F1CalcOpt. The k-th row of a round carries its k-th mineral and its k-th equation.
namespace setup {
enum Column {
  Round = 1,
  MineralId,       // the number after the last "/"
  MineralHead,     // the identifier up to the last "/"
  Mineral,         // the full identifier; empty when the row has no mineral
  SampleSpecific,  // 1: composition of the sample at hand, else 0
  Special,         // 1: marked in lstSpec, else 0
  ElementRow,      // row in F1ELoc
  Method,
  Equation,  // the item as listed; empty when the row has no equation
  Model,     // EstimationModel, in the first row of a round
  XKind,     // X lines: 0 from a file, 1 calculated
  XFile,
  XSampleColumn,
  XValueColumn,
  Text,  // coefficients or calculation of an X line; in row 1 of a file the decimals
};
}

/// An equation that takes its right-hand side from a file or from a calculation.
struct XLine {
  int kind = 0;  // 0 from a file, 1 calculated
  std::string file;
  int sampleColumn = 0;
  int valueColumn = 0;
  std::string text;
};

struct RoundMineral {
  std::string identifier;
  bool sampleSpecific = false;
  bool special = false;
};

struct RoundEquation {
  std::string item;
  XLine x;
};

struct SetUpRound {
  std::vector<RoundMineral> minerals;
  std::vector<RoundEquation> equations;
  int model = 0;
};

enum class EquationKind { Assay, XFile, XCalculated, Formula };

/// What an equation item is, by its head: "X-", "X:", "###" or none of them.
EquationKind equationKind(std::string_view item);

/// The item of an assay line: "SiO2 (14) / XRF".
std::string assayItem(std::string_view element, int elementRow, std::string_view method);

/// Rows of a round in F1CalcOpt: the first one and how many; 0 rows when there is no such round.
struct RoundRows {
  int first = 0;
  int count = 0;
};
RoundRows findRound(const Worksheet& F1CalcOpt, int round);

/// Number of rounds: the round number in the last row, 0 for an empty sheet.
int roundCount(const Worksheet& F1CalcOpt);

/// The numbers of the rounds that have rows, in their order.
std::vector<int> roundNumbers(const Worksheet& F1CalcOpt);

/// Writes a round into F1CalcOpt in the place of what it held for that number, in the order of the
/// rounds; a round without minerals and equations is removed. `digits` goes into row 1.
void storeRound(Worksheet& F1CalcOpt, int round, const SetUpRound& content,
                std::string_view digits);

/// The round of that number; empty when there is none.
std::optional<SetUpRound> readRound(const Worksheet& F1CalcOpt, int round);

/// Builds F1CalcOpt from the file image.
void ValmistaF1CalcOpt(const Worksheet& F1OpenSave, Worksheet& F1CalcOpt);

/// What a user should know about a file image that was loaded: rows after an empty round, which
/// are not read, and decimals that are not a number.
std::vector<std::string> loadingRemarks(const Worksheet& F1OpenSave, const Worksheet& F1CalcOpt);

/// Builds rows 3 and on of the file image from F1CalcOpt, the rounds numbered from 1 without gaps;
/// rows 1 and 2, the sources and the minerals, stay, but an empty row 2 takes `labels`.
void ValmistaF1OpenSave(const Worksheet& F1CalcOpt, const std::vector<std::string>& labels,
                        Worksheet& F1OpenSave);

/// The minerals of all rounds in order; one of two rounds appears twice.
void collectMinerals(const Worksheet& F1CalcOpt, ModalLists& lists);

/// The minerals of row 2 of the file image that are in no round.
std::vector<std::string> mineralsInNoRound(const Worksheet& F1OpenSave, const ModalLists& lists);

/// Adds a mineral to the lists by its identifier.
void addToLists(const std::string& identifier, ModalLists& lists);

/// The captions of the estimation models in a set-up, by their number.
const std::vector<std::string>& modelCaptions();

/// The set-up as a text for a report, lines ended by CR LF.
std::string setUpReport(const Worksheet& F1CalcOpt, std::string_view samples);

}  // namespace lodex
