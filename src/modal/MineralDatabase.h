#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "worksheet/Worksheet.h"

namespace lodex {

/// The texts from which a mineral database is built: tab-delimited, with a heading row.
struct MineralSources {
  /// MineralID, MinSymbol, Mineral, Formula, Density (g/cm3), Group, Location and any further
  /// columns, among them MF; a row per composition, of which a species may have several, the ideal
  /// one first.
  std::string minerals;
  /// PCID, PhaseSymbol, PhaseKey, Location, then columns named like the phase fields of the element
  /// table, in per cent; a row per phase.
  std::string phases;
  /// MineralID, Method, MinSymbol, MinPhase (M or P), FractionExtracted (0 to 1).
  std::string dissolution;
};

struct MineralDatabaseReport {
  int species = 0;
  int compositions = 0;
  int phases = 0;
  int dissolutionRows = 0;
  /// What a maintainer of the texts should know, such as an element that no field can hold.
  std::vector<std::string> warnings;
};

/// Builds the mineral database at `target`, whole or not at all; a database there is replaced. The
/// compositions follow from the formulas: the share in per cent of an element's mass, times its
/// factor to the field that F1ELoc names for it. What a formula lacks stays Null, and so does
/// oxygen, which the oxides hold already. Throws FileError naming file and line of what is wrong in
/// the texts.
MineralDatabaseReport buildMineralDatabase(const MineralSources& sources, const Worksheet& F1ELoc,
                                           std::string_view target);

}  // namespace lodex
