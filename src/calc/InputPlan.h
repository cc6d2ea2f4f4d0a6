#pragma once

#include <string>
#include <vector>

#include "calc/CalculationGroup.h"
#include "calc/InputNeed.h"
#include "calc/ItemHeading.h"
#include "calc/ItemSources.h"

namespace lodex {

/// A column that may feed an input, and the factor for its numbers.
struct InputSource {
  size_t sheet = 0;  // index into the source sheets
  int column = 0;
  double factor = 1;
};

/// One row of a method's Input sheet: what goes into its column 3.
struct InputRow {
  int row = 0;
  std::string name;  // of the item, without its unit
  InputNeed need;
  std::vector<InputSource> sources;  // the first one with a value is taken
  int referencedMethod = 0;          // or the value of an output of that method
  int referencedRow = 0;             // of its Output sheet
};

/// Resolves the rows of a method's Input sheet to columns, once for a whole run. Of its two names
/// an input goes by the second if it has one. "Method.Item" names an output of another method,
/// anything else an item.
///
/// The sources of an element are those of the item-source map, in its order, except that
/// - a heading with a method puts columns of that method first;
/// - an oxide puts columns of other oxides of its element last, and total iron those that hold one
/// state of it alone;
/// - where a method asks for several forms of one element (Cr and Cr2O3), columns of the very form
///   that an input names come first for it;
/// - where a method asks for several states of iron, a column feeds only one of them: the one that
///   it holds, else the first one. Iron that was analysed as Fe2O3 is not counted again as FeO;
/// - an input that takes what was analysed is fed by columns of its own form alone.
/// An item that names no element is looked for by its text in the ELEMENT and HEADER rows of the
/// selected sheets.
std::vector<InputRow> planInputs(const CalculationGroup& group, int method,
                                 const SourceSheets& sheets, const Worksheet& F1Ref,
                                 const CompoundConverter& converter);

}  // namespace lodex
