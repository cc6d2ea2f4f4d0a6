// Recalculation: what is evaluated when, and how formulas follow moving cells and sheets.
#include <gtest/gtest.h>

#include <cmath>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/FormulaCopy.h"
#include "worksheet/formula/Parser.h"

namespace lodex {
namespace {

double number(const Worksheet& book, int sheet, int row, int column) {
  const Value value = book.ValueSRC(sheet, row, column);
  EXPECT_TRUE(value.isNumber()) << value.asText();
  return value.asNumber();
}

TEST(FormulaEngine, ChangesReachEverythingThatDependsOnThem) {
  Worksheet book;
  book.NumSheets(3);
  // Written against the order of evaluation, across sheets.
  book.FormulaSRC(3, 1, 1, "Sheet2!B2*2");
  book.FormulaSRC(2, 2, 2, "SUM(Sheet1!A1:A100)+Sheet1!C3");
  book.FormulaSRC(1, 3, 3, "IF(A1>10,Sheet2!A1,0)");
  book.NumberSRC(1, 1, 1, 5);
  book.NumberSRC(2, 1, 1, 1000);
  book.Recalc();
  EXPECT_EQ(number(book, 3, 1, 1), 10);
  book.NumberSRC(1, 1, 1, 20);
  book.NumberSRC(1, 77, 1, 1);
  book.Recalc();
  EXPECT_EQ(number(book, 3, 1, 1), 2042);
  book.TextSRC(1, 77, 1, "");
  book.Recalc();
  EXPECT_EQ(number(book, 3, 1, 1), 2040);
  book.ClearRange(1, 1, 200, 1);
  book.Recalc();
  EXPECT_EQ(number(book, 3, 1, 1), 0);
  // A cell far outside of what was in use when the order was made.
  book.FormulaSRC(3, 1, 2, "SUM(Sheet1!Z:Z)");
  book.Recalc();
  book.NumberSRC(1, 90000, 26, 7);
  book.Recalc();
  EXPECT_EQ(number(book, 3, 1, 2), 7);
}

TEST(FormulaEngine, OverwritingAFormulaEndsIt) {
  Worksheet book;
  book.NumberRC(1, 1, 1);
  book.FormulaRC(2, 1, "A1+1");
  book.FormulaRC(3, 1, "A2+1");
  book.Recalc();
  book.NumberRC(2, 1, 50);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(3, 1), 51);
  book.FormulaRC(2, 1, "A1*3");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(3, 1), 4);
}

TEST(FormulaEngine, LongChainsNeedNoDeepStack) {
  constexpr int length = 200000;
  Worksheet book;
  book.NumberRC(length, 1, 1);
  for (int row = 1; row < length; ++row)
    book.FormulaRC(row, 1, "A" + std::to_string(row + 1) + "+1");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), length);
  book.NumberRC(length, 1, 11);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), length + 10);
}

TEST(FormulaEngine, CirclesShowAnErrorAndEnd) {
  Worksheet book;
  book.FormulaRC(1, 1, "B1+1");
  book.FormulaRC(1, 2, "A1+1");
  book.FormulaRC(1, 3, "C1");
  book.FormulaRC(1, 4, "A1*2");
  book.FormulaRC(1, 5, "IF(TRUE,7,E1)");  // never reads itself
  book.FormulaRC(1, 6, "ROW(F1)+COLUMNS(A1:F1)");
  book.FormulaRC(1, 7, "SUM(A:G)");
  book.FormulaRC(1, 8, "INDIRECT(\"I1\")");
  book.FormulaRC(1, 9, "OFFSET(A1,0,7)");
  book.Recalc();
  for (const int column : {1, 2, 3, 4, 7, 8, 9})
    EXPECT_EQ(book.TextRC(1, column), "#CIRC!") << column;
  EXPECT_EQ(book.NumberRC(1, 5), 7);
  EXPECT_EQ(book.NumberRC(1, 6), 7);
  book.NumberRC(1, 2, 1);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 2);
}

TEST(FormulaEngine, ComputedReferencesWaitForWhatTheyRead) {
  Worksheet book;
  book.TextRC(1, 2, "A4");
  book.FormulaRC(1, 1, "INDIRECT(B1)+1");
  book.FormulaRC(2, 1, "SUM(OFFSET(A1,2,0,2,1))");
  book.FormulaRC(3, 1, "A4*10");
  book.FormulaRC(4, 1, "C1+1");
  book.NumberRC(1, 3, 1);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 3);
  EXPECT_EQ(book.NumberRC(2, 1), 22);
  book.NumberRC(1, 3, 5);
  book.TextRC(1, 2, "A3");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 61);
  EXPECT_EQ(book.NumberRC(2, 1), 66);
}

TEST(FormulaEngine, ArrayFormulasFillTheirBlock) {
  Worksheet book;
  for (int row = 1; row <= 3; ++row) book.NumberRC(row, 1, row);
  book.setArrayFormula(1, 1, 3, 3, 4, "=A1:A3*{1,10}");
  book.FormulaRC(1, 6, "SUM(C1:D3)");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(3, 3), 3);
  EXPECT_EQ(book.NumberRC(3, 4), 30);
  EXPECT_EQ(book.NumberRC(1, 6), 66);
  EXPECT_EQ(book.FormulaRC(2, 3), "A1:A3*{1,10}");
  book.NumberRC(2, 1, 100);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(2, 4), 1000);
  EXPECT_EQ(book.NumberRC(1, 6), 1144);
  // One cell of the block overwritten: the others go on.
  book.NumberRC(1, 3, -1);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(2, 4), 1000);
  book.InsertRange(1, 1, 2, 1, Shift::Rows);
  ASSERT_TRUE(book.arrayBlock(1, 5, 4));
  EXPECT_EQ(book.arrayBlock(1, 5, 4)->row, 3);
  book.NumberRC(3, 1, 7);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(3, 4), 70);
}

TEST(FormulaEngine, NamesStandForReferencesAndValues) {
  Worksheet book;
  book.NumSheets(2);
  book.NumberRC(1, 1, 4);
  book.NumberRC(2, 1, 5);
  book.setDefinedNames({{"Total", "SUM(Sheet1!$A$1:$A$2)"},
                        {"Above", "Sheet1!A1048576"},  // the cell above, as seen from A1
                        {"Rate", "0.5", 0},
                        {"Rate", "0.25", 2},
                        {"Self", "Self+1"}});
  book.FormulaRC(1, 2, "Total*Rate");
  book.FormulaRC(3, 1, "Above+1");
  book.FormulaSRC(2, 1, 1, "RATE*8");
  book.FormulaRC(1, 3, "Self");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 2), 4.5);
  EXPECT_EQ(book.NumberRC(3, 1), 6);
  EXPECT_EQ(number(book, 2, 1, 1), 2);
  EXPECT_EQ(book.TextRC(1, 3), "#NAME?");
  book.InsertRange(1, 1, 1, 1, Shift::Rows);
  EXPECT_EQ(book.definedNames()[0].formula, "SUM(Sheet1!$A$2:$A$3)");
  book.DeleteSheets(1, 1);
  EXPECT_EQ(book.definedNames()[0].formula, "SUM(#REF!)");
  EXPECT_EQ(book.definedNames()[3].sheet, 1);
}

TEST(FormulaEngine, WhatCannotBeComputedKeepsItsValueAndSaysWhy) {
  Worksheet book;
  book.setFormulaWithValue(1, 1, 1, "[Other.xls]Sheet1!A1", Value(42.0));
  book.setFormulaWithValue(1, 2, 1, "MYFUNCTION(1)", Value::text("kept"));
  book.setFormulaWithValue(1, 3, 1, "A1*2", Value(84.0));
  book.setFormulaWithValue(1, 4, 1, "A1*3", Value(100.0));
  book.FormulaRC(5, 1, "MYFUNCTION(1)");
  book.FormulaRC(6, 1, "1+");
  book.FormulaRC(7, 1, "IF(TRUE,1,MYFUNCTION(1))");
  book.FormulaRC(8, 1, "PRICE(1)");
  EXPECT_EQ(book.TextRC(3, 1), "84");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 42);
  EXPECT_EQ(book.TextRC(2, 1), "kept");
  EXPECT_EQ(book.NumberRC(4, 1), 126);
  EXPECT_EQ(book.TextRC(5, 1), "#NAME?");
  EXPECT_EQ(book.TextRC(6, 1), "#NAME?");
  EXPECT_EQ(book.NumberRC(7, 1), 1);
  EXPECT_EQ(book.formulaProblem(1, 1, 1), "a reference to another workbook: [Other.xls]Sheet1!A1");
  EXPECT_EQ(book.formulaProblem(1, 5, 1), "an unknown function: MYFUNCTION");
  EXPECT_EQ(book.formulaProblem(1, 8, 1), "a function that is not calculated: PRICE");
  EXPECT_EQ(book.formulaProblem(1, 6, 1), "not a formula: an operand is missing at position 3");
  EXPECT_EQ(book.formulaProblem(1, 3, 1), "");
  const RecalcReport report = book.recalcReport();
  EXPECT_EQ(report.formulas, 8u);
  EXPECT_EQ(report.changed, 1u);
  EXPECT_EQ(report.notComputed, 5u);
  EXPECT_EQ(report.problems.at("an unknown function: MYFUNCTION"), 2u);
}

struct MoveCase {
  const char* name;
  const char* before;
  const char* after;
  void (*edit)(Worksheet&);
};

TEST(FormulaEngine, ReferencesFollowCellsAndSheets) {
  const auto rowsIn = [](Worksheet& b) { b.InsertRange(3, 1, 4, 1, Shift::Rows); };
  const auto rowsOut = [](Worksheet& b) { b.DeleteRange(3, 1, 4, 1, Shift::Rows); };
  const auto columnsOut = [](Worksheet& b) { b.DeleteRange(1, 2, 1, 2, Shift::Columns); };
  const auto cellsDown = [](Worksheet& b) { b.InsertRange(1, 1, 1, 2, Shift::Down); };
  const MoveCase cases[] = {
      {"after", "A5+$A$5+A2", "A7+$A$7+A2", rowsIn},
      {"area grows", "SUM(A1:A9)", "SUM(A1:A11)", rowsIn},
      {"area moves", "SUM(A3:B4)", "SUM(A5:B6)", rowsIn},
      {"text stays", "A5 & \"A5\" + if( A5;1 )", "A7 & \"A5\" + if( A7;1 )", rowsIn},
      {"other sheet stays", "Sheet2!A5", "Sheet2!A5", rowsIn},
      {"own sheet by name", "Sheet1!A5", "Sheet1!A7", rowsIn},
      {"whole columns stay", "SUM(A:B)", "SUM(A:B)", rowsIn},
      {"whole rows move", "SUM(5:6)", "SUM(7:8)", rowsIn},
      {"cell lost", "A3+A5", "#REF!+A3", rowsOut},
      {"area shrinks", "SUM(A1:A3)+SUM(A4:A9)", "SUM(A1:A2)+SUM(A3:A7)", rowsOut},
      {"area lost", "SUM(A3:A4)", "SUM(#REF!)", rowsOut},
      {"sheet kept with the loss", "Sheet1!A3", "Sheet1!#REF!", rowsOut},
      {"column lost", "B1+C1", "#REF!+B1", columnsOut},
      {"only the block's columns", "A1+C1+SUM(A1:C1)", "A2+C1+SUM(A1:C1)", cellsDown},
      {"renamed", "Sheet2!A1+'Sheet3'!A1", "'New data'!A1+'Sheet3'!A1",
       [](Worksheet& b) { b.SheetName(2, "New data"); }},
      {"sheet gone", "Sheet2!A1+Sheet3!A1", "#REF!+Sheet3!A1",
       [](Worksheet& b) { b.DeleteSheets(2, 1); }},
      {"sheets drawn in", "SUM(Sheet2:Sheet3!A1)", "SUM(Sheet3!A1)",
       [](Worksheet& b) { b.DeleteSheets(2, 1); }},
  };
  for (const MoveCase& one : cases) {
    SCOPED_TRACE(one.name);
    Worksheet book;
    book.NumSheets(3);
    book.FormulaRC(1, 20, one.before);
    one.edit(book);
    std::string text;
    for (int row = 1; row <= 3; ++row) {
      for (int column = 19; column <= 20; ++column) {
        if (book.HasFormula(1, row, column)) text = book.FormulaRC(row, column);
      }
    }
    EXPECT_EQ(text, one.after);
  }
}

TEST(FormulaEngine, CopiesReadRelativeCells) {
  Worksheet book;
  for (int row = 1; row <= 4; ++row) {
    book.NumberRC(row, 1, 10 - row);
    book.FormulaRC(row, 2, "A" + std::to_string(row) + "*$A$1");
  }
  book.CopyRange(1, 4, 4, 4, book.SS(), 1, 2, 4, 2);
  EXPECT_EQ(book.FormulaRC(2, 4), "C2*$A$1");
  book.CopyRange(5, 2, 8, 2, book.SS(), 4, 2, 4, 2);
  EXPECT_EQ(book.FormulaRC(8, 2), "A8*$A$1");
  book.CopyRange(1, 1, 1, 1, book.SS(), 2, 2, 2, 2);
  EXPECT_EQ(book.FormulaRC(1, 1), "#REF!*$A$1");
  book.NumberRC(1, 1, 9);
  book.Recalc();
  // Sorted rows take their formulas along, which read their own row.
  book.Sort(1, 1, 4, 2, true, {{1, false}});
  EXPECT_EQ(book.FormulaRC(1, 2), "A1*$A$1");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 2), 36);
  Worksheet other;
  other.CopyAll(book);
  other.NumberRC(1, 1, 1);
  other.Recalc();
  book.Recalc();
  EXPECT_EQ(other.NumberRC(1, 2), 1);
  EXPECT_EQ(book.NumberRC(1, 2), 36);
}

TEST(FormulaEngine, TextThatIsANumberCountsWhereItWasEnteredAsSuch) {
  Worksheet book;
  book.TextRC(1, 1, "0012");
  book.ValueSRC(1, 2, 1, Value::text("12"));
  book.FormulaRC(1, 2, "SUM(A1:A2)");
  book.FormulaRC(2, 2, "A1+A2");
  book.FormulaRC(3, 2, "A1&\"\"");
  book.FormulaRC(4, 2, "A1");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 2), 12);
  EXPECT_EQ(book.NumberRC(2, 2), 24);
  EXPECT_EQ(book.TextRC(3, 2), "0012");
  EXPECT_EQ(book.TextRC(4, 2), "12");
}

TEST(FormulaEngine, DatesCountFrom1904WhereTheWorkbookSaysSo) {
  Worksheet book;
  book.FormulaRC(1, 1, "DATE(2004,1,1)");
  book.FormulaRC(1, 2, "YEAR(A1)*100+WEEKDAY(A1)");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 37987);
  EXPECT_EQ(book.NumberRC(1, 2), 200405);
  book.dates1904(true);
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 1), 36525);
  EXPECT_EQ(book.NumberRC(1, 2), 200405);
}

struct CopyCase {
  const char* above;
  const char* text;
  bool copy;
};

TEST(FormulaCopy, KnowsACopyAndNothingElse) {
  const CopyCase cases[] = {
      {"A1*$B$1+C$1+$D1", "A3*$B$1+C$1+$D3", true},
      {"A1*$B$1", "A3*$B$3", false},
      {"A1", "A1", false},
      {"A1+1.5E3", "A3+1.5E3", true},
      {"LOG10(A1)", "LOG10(A3)", true},
      {"LOG10(A1)", "LOG12(A3)", false},
      {"Q1!A1", "Q1!A3", true},
      {"Q1!A1", "Q3!A3", false},
      {"\"A1\"&A1", "\"A1\"&A3", true},
      {"\"A1\"&A1", "\"A3\"&A3", false},
      {"'A1'!A1", "'A3'!A3", false},
      {"SUM(A1:B9)", "SUM(A3:B11)", true},
      {"SUM(A:B)", "SUM(A:B)", true},
      {"SUM(1:2)", "SUM(1:2)", false},
      {"SUM($1:$2)", "SUM($3:$4)", false},
      {"SUM(S1:S2!A1)", "SUM(S3:S2!A3)", false},
      {"ZZZ1", "ZZZ3", false},
      {"A1+", "A3", false},
      {"A1", "A3+1", false},
      {"name1+A1", "name1+A3", true},
  };
  for (const CopyCase& one : cases) {
    EXPECT_EQ(formula::isCopyBelow(one.above, one.text, 2), one.copy)
        << one.above << " | " << one.text;
  }
}

// By hand hidden rows count for the numbers below 100, rows that the filter hides never do.
TEST(FormulaEngine, SubtotalsLeaveOutHiddenRows) {
  Worksheet book;
  for (int row = 1; row <= 6; ++row) book.NumberRC(row, 1, std::pow(10, row - 1));
  book.rowHidden(1, 3, true);
  book.rowHidden(1, 6, true);
  for (const auto& [row, entry] : {std::pair(1, "=SUBTOTAL(9,A1:A6)"),
                                   {2, "=SUBTOTAL(109,A1:A6)"},
                                   {3, "=AGGREGATE(9,5,A1:A6)"}}) {
    book.EntryRC(row, 2, entry);
  }
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 2), 111111);
  EXPECT_EQ(book.NumberRC(2, 2), 11011);
  EXPECT_EQ(book.NumberRC(3, 2), 11011);
  book.setDefinedNames({{"_xlnm._FilterDatabase", "Sheet1!$A$1:$A$4", 1, true}});
  book.EntryRC(1, 2, "=SUBTOTAL(9,A1:A6)");
  book.Recalc();
  EXPECT_EQ(book.NumberRC(1, 2), 111011) << "row 3 is filtered out, row 6 hidden by hand";
}

TEST(FormulaParser, PrintsWhatItHasRead) {
  const char* texts[] = {"A1+$B$2*C$3-$D4",
                         "SUM(A1:B2,'My sheet'!C:C,3:$5)",
                         "Sheet1:Sheet3!A1",
                         "'It''s'!A1:B2",
                         "[1]Sheet1!A1",
                         "'C:\\data\\[Book 1.xls]Sheet 1'!A1",
                         "[1]!Name",
                         "-(A1%)^2&\"a\"\"b\"",
                         "{1,-2.5;\"x\",TRUE;#N/A,#DIV/0!}",
                         "IF(A1<=B1,,\"\")",
                         "A1:INDEX(B1:B9,3)",
                         "(A1,B2 C3)",
                         "Sheet1!#REF!",
                         "1E+300*0.1",
                         "TRUE<>FALSE",
                         "_XLWS.0A(1)",
                         "Table1[[#All],[Cu]]",
                         "'2010'!A1+'R1'!A1+Data.1!A1"};
  for (const char* text : texts) {
    std::string problem;
    const auto node = formula::parseFormula(text, problem);
    ASSERT_TRUE(node) << text << ": " << problem;
    EXPECT_EQ(formula::formulaText(*node), text);
  }
  // Blanks around a colon are not part of a name.
  std::string problem;
  EXPECT_EQ(formula::formulaText(*formula::parseFormula("H:z:z :z", problem)), "H:Z:Z:Z");
  EXPECT_EQ(formula::formulaText(*formula::parseFormula("SUM(a1 : b2)", problem)), "SUM(A1:B2)");
}

TEST(FormulaParser, RefusesWhatIsNoFormula) {
  const std::string deep(5000, '(');
  std::string wide = "1";
  for (int i = 0; i < 6000; ++i) wide += "+1";
  for (const std::string& text :
       {std::string(), std::string("A1+"), std::string("SUM(A1"), std::string("\"a"),
        std::string("A1 B1 +"), std::string("{1,2;3}"), std::string("#WHAT"), std::string("1 2"),
        std::string("'a'"), std::string(")"), deep, wide}) {
    std::string problem;
    EXPECT_FALSE(formula::parseFormula(text, problem)) << text.substr(0, 20);
    EXPECT_FALSE(problem.empty());
  }
}

}  // namespace
}  // namespace lodex
