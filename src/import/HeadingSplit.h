#pragma once

#include <array>
#include <string>
#include <string_view>

#include "chem/CompoundConverter.h"
#include "import/ThesaurusStep.h"

namespace lodex {

/// The facts that a column title may hold, in the order of the system rows from ELEMENT on. The
/// last one, "Mineral", has no system row.
inline constexpr std::array<std::string_view, 11> titleFacts = {
    "Chemical element", "Method", "Unit",    "Table",      "Field",  "Type",
    "Length",           "Digits", "Indexed", "Multiplier", "Mineral"};
inline constexpr int titleFactCount = static_cast<int>(titleFacts.size());

/// How titles are built, as the split dialog reports it. Lists are separated by commas and hold one
/// entry per fact.
struct TitleParts {
  std::string strSep2;   // separator of the pieces
  std::string strSepNo;  // number of the piece that holds the fact; 0 for none
  std::string bSep;      // 1 for facts that are wanted, else 0
};

/// Splits every title of the HEADER row and writes the pieces into the system rows of their facts.
/// A missing system row is inserted right below the HEADER row. Titles with too few pieces stay as
/// they are. Nothing happens without a separator or a HEADER row.
void splitTitles(const DescribedSheet& sheet, const TitleParts& parts);

/// A second reader of titles, for row 1: adds the missing system rows below the HEADER row, then
/// fills each column from the thesaurus or, where that does not know the title, from the formula
/// and unit that the title reads as.
void examineHeadings(const DescribedSheet& sheet, const ThesaurusIndex& thesaurus,
                     const CompoundConverter& converter, LogLines& log);

}  // namespace lodex
