#pragma once

#include <string>

#include "worksheet/Value.h"

namespace lodex {

/// A formula and the value last known for it.
struct FormulaCell {
  std::string text;  // without the leading "="
  Value cached;
};

}  // namespace lodex
