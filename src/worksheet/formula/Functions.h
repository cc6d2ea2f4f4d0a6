#pragma once

#include <span>
#include <string_view>

#include "worksheet/formula/Operand.h"

namespace lodex::formula {

class Evaluator;

using Arguments = std::span<Operand>;
using Routine = Operand (*)(Evaluator&, Arguments);

inline constexpr int anyNumber = 255;

/// One worksheet function.
///
/// `parameters` has a letter for each argument; the last one repeats, or what follows a "*":
///   N number, T text, B truth value, V any single value: the evaluator has converted the
///     argument, and an error or a text that is no number never reaches the routine; an argument
///     left out is 0, "", FALSE or empty. In small letters, one left out stays Missing.
///   E any single value, errors too
///   R whatever was written: references, arrays or single values
///   A the same, and what stands inside is computed over whole areas, as in an array formula
/// A function of single values that meets an array is applied to each element.
struct FunctionInfo {
  std::string_view name;
  int minArguments;
  int maxArguments;
  int xlsNumber;  // of the function in .xls files; -1 where they know it as an add-in only
  std::string_view parameters;
  Routine routine;          // null for those that choose which arguments to evaluate
  bool isVolatile = false;  // its result may change though no argument does
  bool isDynamic = false;   // reads cells that its arguments do not name
};

/// The function of a name in upper case; null if there is none.
const FunctionInfo* findFunction(std::string_view name);

/// The function of a number in .xls files; null if there is none.
const FunctionInfo* findFunctionByXlsNumber(int number);

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

}  // namespace lodex::formula
