#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "worksheet/formula/Parser.h"

/// How the references of a formula follow when the sheets they point to change.
namespace lodex::formula {

/// Rows or columns `at`, `at` + 1, ... are opened (count > 0) or removed (count < 0). Only areas
/// that lie within the cross range, `first` to `last`, move: all columns when whole rows move.
struct Movement {
  bool ofRows = true;
  int at = 1;
  int count = 0;
  int first = 1, last = 1;
};

/// Applies a movement to a reference into the sheet where it happens; false when nothing changes.
/// What is removed altogether leaves a Dead reference.
bool move(Reference& reference, const Movement& movement);

/// The formula with its references and names (nodes of kind Reference and Name) changed; `change`
/// returns true for those it has changed. All other text stays as it was written, and so does a
/// text that is not a formula.
std::string rewriteFormula(std::string_view formula, const std::function<bool(Node&)>& change);

}  // namespace lodex::formula
