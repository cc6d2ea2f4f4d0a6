#include "worksheet/files/xls/BiffFunctions.h"

#include <algorithm>
#include <vector>

namespace lodex::biff {
namespace {

struct TokenClasses {
  int number;
  char result;
  std::string_view classes;  // a letter per argument, the last one for all further arguments
};

// Where what a function gives or wants differs from what follows from its parameters. After "The
// Microsoft Excel File Format" by Daniel Rentz and [MS-XLS], section on Ftab values.
constexpr TokenClasses exceptions[] = {
    {1, 'R', "VR"},      // IF
    {28, 'V', "VR"},     // LOOKUP
    {29, 'R', "RV"},     // INDEX
    {49, 'A', "RRV"},    // LINEST
    {50, 'A', "RRRV"},   // TREND
    {51, 'A', "RRV"},    // LOGEST
    {52, 'A', "RRRV"},   // GROWTH
    {64, 'V', "VR"},     // MATCH
    {76, 'V', "R"},      // ROWS
    {77, 'V', "R"},      // COLUMNS
    {78, 'R', "RV"},     // OFFSET
    {79, 'R', "VR"},     // ABSREF
    {83, 'A', "A"},      // TRANSPOSE
    {86, 'V', "V"},      // TYPE
    {89, 'R', ""},       // CALLER
    {94, 'R', ""},       // ACTIVE.CELL
    {95, 'R', ""},       // SELECTION
    {100, 'R', "VR"},    // CHOOSE
    {101, 'V', "VRRV"},  // HLOOKUP
    {102, 'V', "VRRV"},  // VLOOKUP
    {147, 'R', "V"},     // TEXTREF
    {148, 'R', "V"},     // INDIRECT
    {164, 'A', "A"},     // MINVERSE
    {165, 'A', "A"},     // MMULT
    {252, 'A', "R"},     // FREQUENCY
    {257, 'R', "V"},     // EVALUATE
    {285, 'V', "V"},     // FLOOR
    {288, 'V', "V"},     // CEILING
    {354, 'V', "V"},     // ROMAN
    {358, 'A', "VAV"},   // GETPIVOTDATA
    {379, 'A', "V"},     // RTD
};

constexpr int highestNumber = 379;

std::vector<Function> makeFunctions() {
  std::vector<Function> functions(highestNumber + 1);
  for (const formula::FunctionInfo* info : formula::allFunctions()) {
    if (info->stored < 0) continue;
    Function& function = functions[static_cast<size_t>(info->stored)];
    function.info = info;
    function.arguments = static_cast<size_t>(info->minArguments);
    function.hasFixedArguments = info->minArguments == info->maxArguments;
  }
  for (const TokenClasses& exception : exceptions) {
    Function& function = functions[static_cast<size_t>(exception.number)];
    function.result = exception.result;
    function.classes = exception.classes;
  }
  // These may leave out more arguments here than in .xls files.
  for (const char* name : {"CEILING", "FLOOR", "FIXED"}) {
    Function& function = functions[static_cast<size_t>(formula::findFunction(name)->stored)];
    function.arguments = 2;
    function.hasFixedArguments = function.info->maxArguments == 2;
  }
  return functions;
}

}  // namespace

char Function::argumentClass(size_t argument) const {
  if (!classes.empty()) return classes[std::min(argument, classes.size() - 1)];
  const char letter = formula::parameterLetter(*info, static_cast<int>(argument));
  return letter == 'R' || letter == 'A' ? letter : 'V';
}

const Function* functionByIndex(int index) {
  static const std::vector<Function> functions = makeFunctions();
  if (index < 0 || index > highestNumber) return nullptr;
  const Function& function = functions[static_cast<size_t>(index)];
  return function.info == nullptr ? nullptr : &function;
}

}  // namespace lodex::biff
