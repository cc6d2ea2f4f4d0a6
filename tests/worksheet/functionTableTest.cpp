// The table of functions agrees with itself, and files bring every function back.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "basic/Files.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/BiffFunctions.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/formula/Functions.h"

namespace lodex::formula {
namespace {

std::string callOf(const FunctionInfo& function) {
  std::string out = std::string(function.name) + "(";
  const int count = std::min(function.maxArguments, std::max(2, function.minArguments));
  for (int i = 0; i < count; ++i) {
    const char letter = parameterLetter(function, i);
    out += (i > 0 ? "," : "") + std::string(letter == 'R' || letter == 'A' ? "A1:B3" : "A1");
  }
  return out + ")";
}

std::vector<std::string> writtenAndRead(const std::vector<std::string>& formulas, FileType type) {
  const auto path = pathText(std::filesystem::temp_directory_path() /
                             ("lodex_all_functions_" + std::to_string(::getpid())));
  Worksheet book;
  for (size_t i = 0; i < formulas.size(); ++i)
    book.FormulaSRC(1, static_cast<int>(i) + 1, 4, formulas[i]);
  book.Write(path, type);
  Worksheet back;
  back.Read(path);
  std::filesystem::remove(path);
  std::vector<std::string> out;
  for (size_t i = 0; i < formulas.size(); ++i)
    out.push_back(back.FormulaSRC(1, static_cast<int>(i) + 1, 4));
  return out;
}

TEST(FunctionTable, HasEachNameAndNumberOnce) {
  std::map<std::string_view, int> names;
  std::map<int, std::string_view> numbers;
  for (const FunctionInfo* function : allFunctions()) {
    SCOPED_TRACE(std::string(function->name));
    EXPECT_EQ(++names[function->name], 1);
    EXPECT_EQ(findFunction(function->name), function);
    EXPECT_EQ(function->name, toUpper(function->name));
    EXPECT_LE(function->minArguments, function->maxArguments);
    EXPECT_EQ(function->parameters.empty(), function->maxArguments == 0);
    if (function->stored < 0) continue;
    EXPECT_TRUE(numbers.emplace(function->stored, function->name).second)
        << numbers[function->stored] << " has the number " << function->stored << ", too";
    ASSERT_NE(biff::functionByIndex(function->stored), nullptr);
    EXPECT_EQ(biff::functionByIndex(function->stored)->info, function);
  }
}

TEST(FunctionTable, ComesBackFromFiles) {
  std::vector<std::string> formulas;
  for (const FunctionInfo* function : allFunctions()) formulas.push_back(callOf(*function));
  for (const FileType type : {FileType::Xlsx, FileType::Excel}) {
    const auto back = writtenAndRead(formulas, type);
    for (size_t i = 0; i < formulas.size(); ++i) EXPECT_EQ(back[i], formulas[i]);
  }
}

// Names in .xlsx files as other programs expect them, which a round trip alone would not show.
TEST(FunctionTable, PutsPrefixesBeforeNewerFunctions) {
  for (const char* inFile :
       {"SUM(A1)", "SUMIFS(A1,B1,1)", "NETWORKDAYS(A1,B1)", "NETWORKDAYS.INTL(A1,B1)",
        "ERROR.TYPE(A1)", "_xlfn.AGGREGATE(9,4,A1)", "_xlfn.XLOOKUP(1,A1,B1)",
        "ROUND(_xlfn.STDEV.S(A1),2)", "_xlfn._xlws.FILTER(A1,B1)", "_xlfn.LET(_xlpm.x,1,_xlpm.x)",
        "_xlfn.NOTKNOWN(1)", "\"IFS(\"&SUM(1.5)", "'IFS('!A1", "\"_xlfn.IFS(\"&_xlfn.IFS(A1,1)"}) {
    const std::string read = xlsxFormula(inFile);
    EXPECT_EQ(xlsxFileFormula(read), inFile) << read;
  }
  EXPECT_EQ(xlsxFormula("_xlfn._xlws.SORT(_xlfn.xlookup(A1,B1,C1))"), "SORT(xlookup(A1,B1,C1))");
}

}  // namespace
}  // namespace lodex::formula
