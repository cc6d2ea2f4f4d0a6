#pragma once

#include <cstddef>
#include <string_view>

#include "worksheet/formula/Functions.h"

/// The worksheet functions that .xls files know by number, and what their tokens need beyond the
/// table of functions.
namespace lodex::biff {

/// A class says what a function wants an argument to be, or what it gives: "R" a reference, "V" a
/// value, "A" an array.
struct Function {
  const formula::FunctionInfo* info = nullptr;
  size_t arguments = 0;            // of a token that does not hold their number
  bool hasFixedArguments = false;  // later files write such tokens for these functions only
  char result = 'V';
  std::string_view classes;  // where they do not follow from the parameters of the table

  /// The class of an argument, counted from 0.
  char argumentClass(size_t argument) const;
};

/// The number under which a function is called whose name is in its first argument.
inline constexpr int userFunctionIndex = 255;

/// Null for a number that no function has.
const Function* functionByIndex(int index);

}  // namespace lodex::biff
