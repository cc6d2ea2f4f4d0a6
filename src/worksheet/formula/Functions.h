#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "worksheet/formula/Operand.h"

namespace lodex::formula {

class Evaluator;

using Arguments = std::span<Operand>;
using Routine = Operand (*)(Evaluator&, Arguments);

inline constexpr int anyNumber = 255;

/// How files store a function: by its number in .xls files, from 0, or by its name in one of these
/// ways.
enum Stored : int {
  addIn = -1,       ///< .xls: as a function of the add-in "Analysis ToolPak"; .xlsx: the bare name
  since2007 = -2,   ///< .xls: with "_xlfn." in front; .xlsx: the bare name
  newer = -3,       ///< .xls and .xlsx: with "_xlfn." in front
  newerSheet = -4,  ///< .xls and .xlsx: with "_xlfn._xlws." in front
};

/// One worksheet function: its row holds all that the program knows of it.
///
/// `parameters` has a letter for each argument; the last one repeats, or what follows a "*":
///   N number, T text, B truth value, V any single value: the evaluator has converted the
///     argument, and an error or a text that is not a number never reaches the routine; an argument
///     left out is 0, "", FALSE or empty. In small letters, one left out stays Missing.
///   E any single value, errors too
///   R whatever was written: references, arrays or single values
///   A the same, and what is inside is computed over whole areas, as in an array formula
/// A function of single values that meets an array is applied to each element.
struct FunctionInfo {
  std::string_view name;
  int minArguments;
  int maxArguments;
  int stored;  // a number in .xls files, or one of Stored
  std::string_view parameters;
  Routine routine;          // null for those that choose which arguments to evaluate
  bool isVolatile = false;  // its result may change though no argument does
  bool isDynamic = false;   // reads cells that its arguments do not name
};

/// The routine of a function that files may hold but that is not calculated.
Operand notCalculated(Evaluator&, Arguments);

/// The function of a name in upper case; null if there is none.
const FunctionInfo* findFunction(std::string_view name);

/// All functions, one class after the other.
std::vector<const FunctionInfo*> allFunctions();

/// What files put before the function's name; "" for most.
std::string_view xlsPrefix(const FunctionInfo& function);
std::string_view xlsxPrefix(const FunctionInfo& function);

/// A function's name as users write it, from its name in a file. The prefix of a function that is
/// not known here stays, so that a file written again keeps it.
std::string_view withoutPrefix(std::string_view nameInFile);

/// The parameter letter of argument `index`, from 0.
char parameterLetter(const FunctionInfo& function, int index);

/// The functions of one class each; together they are the table that findFunction searches.
using FunctionList = std::span<const FunctionInfo>;
FunctionList mathFunctions();
FunctionList aggregateFunctions();
FunctionList conditionalFunctions();
FunctionList statisticalFunctions();
FunctionList distributionFunctions();
FunctionList regressionFunctions();
FunctionList lookupFunctions();
FunctionList textFunctions();
FunctionList logicalFunctions();
FunctionList informationFunctions();
FunctionList dateFunctions();
FunctionList matrixFunctions();
FunctionList engineeringFunctions();
FunctionList databaseFunctions();
FunctionList financialFunctions();
FunctionList uncalculatedFunctions();

}  // namespace lodex::formula
