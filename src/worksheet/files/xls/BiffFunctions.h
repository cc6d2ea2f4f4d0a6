#pragma once

#include <cstdint>
#include <string_view>

/// The worksheet functions as .xls files number them.
namespace lodex::biff {

/// One function. `classes` holds a letter per argument, the last one standing for all further
/// arguments: what the function wants its argument to be, "R" a reference, "V" a value, "A" an
/// array. `result` is such a letter for what it gives.
struct Function {
  std::uint16_t index;
  std::string_view name;
  std::uint8_t minArguments;
  std::uint8_t maxArguments;  // 30 where any number is allowed
  char result;
  std::string_view classes;

  bool fixedArguments() const { return minArguments == maxArguments; }
  /// The class of an argument, counted from 0.
  char argumentClass(size_t argument) const;
};

/// The number under which a function is called whose name stands in its first argument.
inline constexpr int userFunctionIndex = 255;

/// Null for a number nobody gave.
const Function* functionByIndex(int index);
/// By its name in upper case; null when the format has no such function of its own.
const Function* functionByName(std::string_view name);

/// Functions that files before 2007 take from the add-in "Analysis ToolPak".
bool isToolPakFunction(std::string_view name);
/// Functions of later programs, which files keep under a name with "_xlfn." in front.
bool isLaterFunction(std::string_view name);

}  // namespace lodex::biff
