#include "worksheet/formula/Functions.h"

#include <unordered_map>

#include "basic/Text.h"

namespace lodex::formula {
namespace {

constexpr FunctionList (*lists[])() = {
    mathFunctions,         aggregateFunctions,   conditionalFunctions, statisticalFunctions,
    distributionFunctions, regressionFunctions,  lookupFunctions,      textFunctions,
    logicalFunctions,      informationFunctions, dateFunctions,        matrixFunctions,
    engineeringFunctions,  databaseFunctions,    financialFunctions,   uncalculatedFunctions};

}  // namespace

const FunctionInfo* findFunction(std::string_view name) {
  static const auto byName = [] {
    std::unordered_map<std::string_view, const FunctionInfo*> functions;
    for (const FunctionInfo* function : allFunctions()) functions.emplace(function->name, function);
    return functions;
  }();
  const auto hit = byName.find(name);
  return hit == byName.end() ? nullptr : hit->second;
}

std::vector<const FunctionInfo*> allFunctions() {
  std::vector<const FunctionInfo*> all;
  for (const auto list : lists) {
    for (const FunctionInfo& function : list()) all.push_back(&function);
  }
  return all;
}

Operand notCalculated(Evaluator&, Arguments) {
  return ErrorCode::Name;
}

std::string_view xlsPrefix(const FunctionInfo& function) {
  return function.stored == since2007 ? "_xlfn." : xlsxPrefix(function);
}

std::string_view xlsxPrefix(const FunctionInfo& function) {
  if (function.stored == newerSheet) return "_xlfn._xlws.";
  return function.stored == newer ? "_xlfn." : "";
}

std::string_view withoutPrefix(std::string_view nameInFile) {
  std::string_view name = nameInFile;
  for (const std::string_view prefix : {"_xlfn.", "_xlws."}) {
    if (startsWithNoCase(name, prefix)) name.remove_prefix(prefix.size());
  }
  return findFunction(toUpper(name)) == nullptr ? nameInFile : name;
}

char parameterLetter(const FunctionInfo& function, int index) {
  const std::string_view letters = function.parameters;
  if (letters.empty()) return 'V';
  const size_t star = letters.find('*');
  const auto place = static_cast<size_t>(index);
  if (star == std::string_view::npos)
    return letters[place < letters.size() ? place : letters.size() - 1];
  if (place < star) return letters[place];
  const std::string_view repeated = letters.substr(star + 1);
  return repeated[(place - star) % repeated.size()];
}

}  // namespace lodex::formula
