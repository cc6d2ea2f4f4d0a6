#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calc/SourceSheet.h"
#include "chem/CompoundConverter.h"

/// The item-source map F1Ref: which columns feed which element, in order of preference. It has a
/// sheet "-ALL-" for all methods and may have a sheet per method, named after it. Row n belongs to
/// atomic number n: column 1 holds the number of sources, then come pairs of sheet and column.
namespace lodex {

inline constexpr std::string_view allItems = "-ALL-";
/// Rows of the map.
inline constexpr int sourceRows = 113;

struct ItemSource {
  int sheet = 0;
  int column = 0;

  bool operator==(const ItemSource&) const = default;
};

/// The sheet of the map that holds for an item: its own, else "-ALL-" or the first.
int mapSheetOf(const Worksheet& F1Ref, std::string_view item);

/// The sources of an element; rows outside of the map have none.
std::vector<ItemSource> sourcesOf(const Worksheet& F1Ref, int mapSheet, int element);
/// True when the map says where an element comes from, be it from nowhere because the user wants
/// it so; false where nothing was found for it.
bool isDecided(const Worksheet& F1Ref, int mapSheet, int element);
void setSources(Worksheet& F1Ref, int mapSheet, int element,
                const std::vector<ItemSource>& sources);

/// What a source is called in lists: "[table].[field]" for a field of a database, else caption,
/// column number and heading between " , ".
std::string sourceText(const SourceSheets& sheets, const ItemSource& source);

/// Asks which sources to use: positions (from 1) of `offers` in order of preference, none to use
/// none; empty when cancelled, which keeps what there was.
using AskSources = std::function<std::optional<std::vector<int>>(
    const std::string& caption, const std::vector<std::string>& offers)>;

/// The sources that the positions name, in their order; other numbers are left out.
std::vector<ItemSource> chosenSources(const std::vector<ItemSource>& offered,
                                      const std::vector<int>& positions);

struct SourceRequest {
  std::string item{allItems};  // the sheet of the map that is built
  AskSources ask{};            // where an element has several sources; not asked when empty
  /// Called with the symbol of every element that has no source.
  std::function<void(const std::string& symbol)> missing{};
};

/// Builds a sheet of the map anew from the selected sheets.
void buildSources(Worksheet& F1Ref, const SourceSheets& sheets, const CompoundConverter& converter,
                  const SourceRequest& request);

}  // namespace lodex
