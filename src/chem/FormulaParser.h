#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace lodex {

/// Atomic numbers and numbers of atoms per formula unit, each element once, in order of first
/// appearance.
using AtomCounts = std::vector<std::pair<int, double>>;

/// Reads a chemical formula; empty when the text is none. The grammar:
///
///     formula = part { dot part } [charge]        dot = "." | "·" | "•" | "*"
///     part    = [number] group { group }
///     group   = ( symbol | bracket part { dot part } bracket ) [number]
///     number  = digits [ "." digits ] [ "/" digits ]
///
/// A "." between digits is either a decimal point or the dot of a hydrate. It is the dot when water
/// follows ("CuSO4.5H2O"), when an oxygen or a bracket with at least two units goes before and an
/// oxygen compound follows ("Al2O3.2SiO2"), and when another decimal or a fraction begins with it
/// ("CaSO4.0.5H2O", "CaSO4.1/2H2O").
std::optional<AtomCounts> parseFormula(std::string_view text);

}  // namespace lodex
