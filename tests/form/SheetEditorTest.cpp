#include "form/SheetEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "SheetEditorSheets.h"
#include "basic/Error.h"
#include "form/SheetEditorMoves.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

using test::enterRows;
using test::rowsOf;
using testing::HasSubstr;

class SheetEditorTest : public testing::Test {
 protected:
  Worksheet sheet;
  EditHistory history;
  SheetEditor editor{sheet, history};
  MemoryClipboard clipboard;

  std::string refusal(const std::function<void()>& edit) {
    try {
      edit();
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  }
};

// Every edit, what it leaves, and that undo and redo pass over it exactly.
TEST_F(SheetEditorTest, EditsCanBeUndoneAndRedone) {
  struct Case {
    const char* name;
    const char* before;
    std::function<void(SheetEditor&, Clipboard&)> edit;
    const char* after;
  };
  const Case cases[] = {
      {"type a number", "1,2|=A1+B1", [](auto& e, auto&) { e.enter(1, 1, "5"); }, "5,2|=A1+B1,"},
      {"type a formula", "1,2", [](auto& e, auto&) { e.enter(1, 3, "=A1*B1"); }, "1,2,=A1*B1"},
      {"type over a formula", "1|=A1", [](auto& e, auto&) { e.enter(2, 1, "x"); }, "1|x"},
      {"empty a cell", "1,2", [](auto& e, auto&) { e.enter(1, 2, ""); }, "1"},
      {"type into several", "1,2|3,4",
       [](auto& e, auto&) {
         e.enterAll({1, 3, 2, 3}, "=A1");
       },
       "1,2,=A1|3,4,=A2"},
      {"clear contents", "1,2|3,4",
       [](auto& e, auto&) {
         e.clearContents({1, 2, 9, 9});
       },
       "1|3"},
      {"clear all", "1,2|3,4",
       [](auto& e, auto&) {
         e.clearAll({2, 1, 2, 2});
       },
       "1,2"},
      {"cut", "1,2|3,4",
       [](auto& e, auto& c) {
         e.cut({1, 1, 1, 2}, c);
       },
       ",|3,4"},
      {"insert rows", "1|2|=A1+A2", [](auto& e, auto&) { e.insertRows(2, 3); }, "1|||2|=A1+A4"},
      {"delete rows", "1|2|=A1+A2", [](auto& e, auto&) { e.deleteRows(2, 2); }, "1|=A1+#REF!"},
      {"insert columns", "1,=A1", [](auto& e, auto&) { e.insertColumns(1, 1); }, ",1,=B1"},
      {"delete columns", "1,2,=A1", [](auto& e, auto&) { e.deleteColumns(1, 2); }, "=#REF!"},
      {"insert cells down", "1,2|3,4",
       [](auto& e, auto&) {
         e.insertCells({1, 2, 1, 2}, Shift::Down);
       },
       "1,|3,2|,4"},
      {"delete cells left", "1,2|3,4",
       [](auto& e, auto&) {
         e.deleteCells({1, 1, 1, 1}, Shift::Right);
       },
       "2,|3,4"},
      {"sort", "b,1|a,2|c,3",
       [](auto& e, auto&) {
         e.sort({1, 1, 3, 2}, {{1, false}});
       },
       "a,2|b,1|c,3"},
      {"sort descending", "1,x|3,y|2,z",
       [](auto& e, auto&) {
         e.sort({1, 1, maxRows, maxColumns}, {{1, true}});
       },
       "3,y|2,z|1,x"},
      {"fill down", "1,=A1|2|3",
       [](auto& e, auto&) {
         e.fillDown({1, 2, 3, 2});
       },
       "1,=A1|2,=A2|3,=A3"},
      {"fill down from above", "1,=A1|2",
       [](auto& e, auto&) {
         e.fillDown({2, 2, 2, 2});
       },
       "1,=A1|2,=A2"},
      {"fill right", "1,2|=A1",
       [](auto& e, auto&) {
         e.fillRight({2, 1, 2, 2});
       },
       "1,2|=A1,=B1"},
      {"move", "1,2|=A1",
       [](auto& e, auto&) {
         e.moveRange({1, 1, 1, 2}, 3, 2);
       },
       ",,|=B3,,|,1,2"},
      {"move over its own place", "1,2,3,=B1",
       [](auto& e, auto&) {
         e.moveRange({1, 1, 1, 2}, 1, 2);
       },
       ",1,2,=C1"},
      {"replace all", "ab,b|=B1&\"b\",x", [](auto& e, auto&) { e.replaceAll("b", "c", {}); },
       "ac,c|=c1&\"c\",x"},
      {"recorded command", "1",
       [](auto& e, auto&) {
         e.record("Command", [&] {
           e.sheet().InsertRange(1, 1, 1, 1, Shift::Rows);
           e.enter(1, 1, "new");
         });
       },
       "new|1"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Worksheet book;
    enterRows(book, row.before);
    book.Recalc();
    const std::string before = rowsOf(book, true);
    const std::string valuesBefore = rowsOf(book);
    EditHistory steps;
    SheetEditor one(book, steps);
    row.edit(one, clipboard);
    EXPECT_EQ(rowsOf(book, true), row.after);
    const std::string valuesAfter = rowsOf(book);
    steps.undo();
    EXPECT_EQ(rowsOf(book, true), before);
    EXPECT_EQ(rowsOf(book), valuesBefore) << "formulas are recalculated";
    EXPECT_FALSE(steps.canUndo()) << "one edit is one step";
    steps.redo();
    EXPECT_EQ(rowsOf(book, true), row.after);
    EXPECT_EQ(rowsOf(book), valuesAfter);
    steps.undo();
    EXPECT_EQ(rowsOf(book, true), before);
  }
}

// What a user sees of a small sheet.
std::string pictureOf(const Worksheet& sheet) {
  std::string picture = rowsOf(sheet, true) + "\n" + rowsOf(sheet);
  for (int i = 1; i <= 12; ++i) {
    picture += "\n" + sheet.ColText(i) + "/" + sheet.RowText(i) + "/" +
               std::to_string(sheet.columnWidth(1, i)) + (sheet.rowHidden(1, i) ? "h" : "") +
               (sheet.columnHidden(1, i) ? "H" : "");
    for (int column = 1; column <= 12; ++column) {
      picture += sheet.formatOf(1, i, column).bold ? 'B' : '.';
    }
  }
  return picture;
}

TEST_F(SheetEditorTest, AnyRowOfEditsCanBeUndoneAndRedone) {
  std::mt19937 random(20260101);
  const auto upTo = [&](int last) { return static_cast<int>(random() % last) + 1; };
  const auto anyBlock = [&] { return CellBlock::between(upTo(8), upTo(6), upTo(8), upTo(6)); };
  const char* entries[] = {"1", "2.5", "text", "=A1+B2", "=SUM(A1:C4)", "=$B$2*C3", "", "S-01"};
  const std::function<void()> edits[] = {
      [&] { editor.enter(upTo(8), upTo(6), entries[upTo(8) - 1]); },
      [&] { editor.enterAll(anyBlock(), entries[upTo(8) - 1]); },
      [&] { editor.clearContents(anyBlock()); },
      [&] { editor.clearAll(anyBlock()); },
      [&] { editor.copy(anyBlock(), clipboard); },
      [&] { editor.cut(anyBlock(), clipboard); },
      [&] { editor.paste(anyBlock(), clipboard); },
      [&] { editor.fillDown(anyBlock()); },
      [&] { editor.fillRight(anyBlock()); },
      [&] {
        const CellBlock block = anyBlock();
        editor.fillSeries(block, {1, block.column1, 8, block.column2}, upTo(2) == 1);
      },
      [&] { editor.moveRange(anyBlock(), upTo(4), upTo(4)); },
      [&] { editor.insertRows(upTo(4), 4 + upTo(2)); },
      [&] { editor.deleteRows(upTo(4), 3 + upTo(2)); },
      [&] { editor.insertColumns(upTo(3), 2 + upTo(2)); },
      [&] { editor.deleteColumns(upTo(3), 2 + upTo(2)); },
      [&] { editor.insertCells(anyBlock(), upTo(2) == 1 ? Shift::Down : Shift::Right); },
      [&] { editor.deleteCells(anyBlock(), upTo(2) == 1 ? Shift::Down : Shift::Right); },
      [&] {
        editor.sort(anyBlock(), {{upTo(6), upTo(2) == 1}});
      },
      [&] { editor.replaceAll("2", "3", {}); },
      [&] { editor.setBold(anyBlock(), upTo(2) == 1); },
      [&] { editor.setColumnWidth(upTo(3), 3 + upTo(3), upTo(20)); },
      [&] { editor.hideRows(upTo(3), 2 + upTo(3), upTo(2) == 1); },
      [&] { editor.setColumnHeading(upTo(6), "heading"); },
      [&] { editor.record("Command", [&] { sheet.InsertRange(1, 1, 1, 1, Shift::Rows); }); },
  };
  std::vector<std::string> pictures{pictureOf(sheet)};
  int steps = 0;
  keep(history.onChange([&] { ++steps; }));
  for (int i = 0; i < 400; ++i) {
    const int before = steps;
    edits[random() % std::size(edits)]();
    if (steps > before) pictures.push_back(pictureOf(sheet));
  }
  ASSERT_GT(pictures.size(), 200u);
  for (size_t i = pictures.size() - 1; i > 0; --i) {
    const std::string text = history.undoText();
    history.undo();
    ASSERT_EQ(pictureOf(sheet), pictures[i - 1]) << "undo of step " << i << ", " << text;
  }
  EXPECT_FALSE(history.canUndo());
  for (size_t i = 1; i < pictures.size(); ++i) {
    const std::string text = history.redoText();
    history.redo();
    ASSERT_EQ(pictureOf(sheet), pictures[i]) << "redo of step " << i << ", " << text;
  }
}

TEST_F(SheetEditorTest, RecalculatesAfterEveryEdit) {
  enterRows(sheet, "1|2|=A1+A2");
  editor.enter(1, 1, "10");
  EXPECT_EQ(sheet.TextRC(3, 1), "12");
  editor.clearContents({2, 1, 2, 1});
  EXPECT_EQ(sheet.TextRC(3, 1), "10");
  history.undo();
  history.undo();
  EXPECT_EQ(sheet.TextRC(3, 1), "3");
}

TEST_F(SheetEditorTest, FillsSeries) {
  struct Case {
    const char* name;
    std::vector<std::string> source;
    int further;
    bool turned;
    std::string after;
    const char* format = "General";
  };
  const Case cases[] = {
      {"one number repeats", {"5"}, 2, false, "5|5|5"},
      {"one number counts on when turned", {"5"}, 2, true, "5|6|7"},
      {"two numbers make a line", {"1", "3"}, 3, false, "1|3|5|7|9"},
      {"decimals stay decimals", {"0.1", "0.2"}, 2, false, "0.1|0.2|0.3|0.4"},
      {"two numbers repeat when turned", {"1", "3"}, 3, true, "1|3|1|3|1"},
      {"uneven numbers follow the best line", {"1", "2", "4"}, 1, false, "1|2|4|5.33333333333333"},
      {"a text with a number counts on", {"S-009"}, 2, false, "S-009|S-010|S-011"},
      {"texts count on by their step", {"A2", "A4"}, 2, false, "A2|A4|A6|A8"},
      {"unlike texts count on each", {"A1", "B7"}, 3, false, "A1|B7|A2|B8|A3"},
      {"a text repeats", {"x"}, 2, false, "x|x|x"},
      {"a mixture repeats", {"x", "2"}, 3, false, "x|2|x|2|x"},
      {"digits without end repeat",
       {"1234567890123456789x1234567890123456789"},
       1,
       false,
       "1234567890123456789x1234567890123456789|1234567890123456789x1234567890123456789"},
      {"a formula follows its place", {"=B1"}, 2, false, "=B1|=B2|=B3"},
      {"a date counts days", {"45000"}, 2, false, "45000|45001|45002", "yyyy-mm-dd"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Worksheet book;
    EditHistory steps;
    SheetEditor one(book, steps);
    const int count = static_cast<int>(row.source.size());
    for (int i = 0; i < count; ++i) one.enter(i + 1, 1, row.source[static_cast<size_t>(i)]);
    one.setNumberFormat({1, 1, count, 1}, row.format);
    one.fillSeries({1, 1, count, 1}, {1, 1, count + row.further, 1}, row.turned);
    EXPECT_EQ(rowsOf(book, true), row.after);
    EXPECT_EQ(one.formatAt(count + row.further, 1).numberFormat, row.format);
    steps.undo();
    EXPECT_EQ(book.LastRow(), count);
  }
  // Upwards, and to the side.
  struct Upwards {
    const char* name;
    std::vector<std::string> source;
    std::string after;
  };
  const Upwards upwards[] = {
      {"a number repeats", {"5"}, "5|5|5"},
      {"numbers go on below their first", {"1", "3"}, "-3|-1|1|3"},
      {"a text counts back", {"S-009"}, "S-007|S-008|S-009"},
      {"a mixture repeats from its end", {"x", "2", "y"}, "2|y|x|2|y"},
      {"a formula follows its place", {"=B3+$B$1"}, "=B1+$B$1|=B2+$B$1|=B3+$B$1"},
  };
  for (const Upwards& row : upwards) {
    SCOPED_TRACE(row.name);
    Worksheet book;
    EditHistory steps;
    SheetEditor one(book, steps);
    const int last = static_cast<int>(row.source.size()) + 2;
    for (int i = 3; i <= last; ++i) one.enter(i, 1, row.source[static_cast<size_t>(i) - 3]);
    one.fillSeries({3, 1, last, 1}, {1, 1, last, 1});
    EXPECT_EQ(rowsOf(book, true), row.after);
    steps.undo();
    EXPECT_FALSE(book.HasContent(1, 1) || book.HasContent(2, 1));
  }
  enterRows(sheet, ",,|,,|,3,5");
  editor.fillSeries({3, 2, 3, 3}, {1, 2, 3, 3});
  EXPECT_EQ(rowsOf(sheet), ",3,5|,3,5|,3,5") << "single numbers repeat";
  editor.fillSeries({3, 2, 3, 3}, {3, 1, 3, 3});
  EXPECT_EQ(sheet.TextRC(3, 1), "1");
  EXPECT_THAT(refusal([&] {
                editor.fillSeries({1, 1, 1, 1}, {1, 1, 2, 2});
              }),
              HasSubstr("one direction"));
}

TEST_F(SheetEditorTest, PastesItsOwnCellsWithFormulasAndFormats) {
  enterRows(sheet, "1,=A1*2");
  editor.setBold({1, 1, 1, 1}, true);
  editor.copy({1, 1, 1, 2}, clipboard);
  EXPECT_EQ(clipboard.text(), "1\t2\r\n");
  EXPECT_EQ(editor.paste({2, 1, 2, 1}, clipboard), (CellBlock{2, 1, 2, 2}));
  editor.paste({4, 1, 5, 4}, clipboard);
  EXPECT_EQ(rowsOf(sheet, true), "1,=A1*2,,|1,=A2*2,,|,,,|1,=A4*2,1,=C4*2|1,=A5*2,1,=C5*2");
  EXPECT_TRUE(editor.formatAt(4, 3).bold);
  editor.paste({6, 1, 6, 1}, clipboard, PasteKind::Values);
  EXPECT_EQ(sheet.EntryRC(6, 2), "2");
  EXPECT_FALSE(editor.formatAt(6, 1).bold);

  // Another sheet, through a clipboard that changes line ends on the way.
  Worksheet other;
  EditHistory steps;
  SheetEditor second(other, steps);
  clipboard.setText("1\t2\n");
  second.paste({1, 1, 1, 1}, clipboard);
  EXPECT_EQ(rowsOf(other, true), "1,=A1*2");
  // What others put on the clipboard is plain text.
  clipboard.setText("7\t=1+1\n007\t'x\n");
  second.paste({1, 1, 1, 1}, clipboard);
  EXPECT_EQ(rowsOf(other), "7,2|007,'x");
  second.paste({1, 1, 1, 1}, clipboard, PasteKind::Values);
  EXPECT_EQ(rowsOf(other), "7,=1+1|007,'x");
}

TEST_F(SheetEditorTest, CutCellsKeepWhatTheyRead) {
  enterRows(sheet, "1|=A1");
  editor.cut({2, 1, 2, 1}, clipboard);
  EXPECT_EQ(sheet.LastRow(), 1);
  editor.paste({4, 3, 4, 3}, clipboard);
  EXPECT_EQ(sheet.EntryRC(4, 3), "=A1");
  editor.paste({6, 3, 6, 3}, clipboard);
  EXPECT_EQ(sheet.EntryRC(6, 3), "=C5") << "from then on it is a copy";
}

TEST_F(SheetEditorTest, WholeRowsAndColumnsCostOnlyWhatIsStored) {
  enterRows(sheet, "a,1|b,2");
  editor.copy(editor.wholeSheet(), clipboard);
  EXPECT_EQ(clipboard.text(), "a\t1\r\nb\t2\r\n");
  editor.setBold({1, 2, maxRows, 2}, true);
  EXPECT_TRUE(editor.formatAt(2, 2).bold);
  EXPECT_TRUE(editor.formatAt(10, 2).bold) << "cells to come look the same";
  EXPECT_EQ(editor.formatAt(maxRows, 2).bold, false);
  editor.clearContents(editor.wholeSheet());
  EXPECT_EQ(sheet.LastRow(), 0);
  history.undo();
  EXPECT_EQ(rowsOf(sheet), "a,1|b,2");
  const SelectionSummary sum = editor.summary(editor.wholeSheet());
  EXPECT_EQ(sum.count, 4);
  EXPECT_EQ(sum.numbers, 2);
  EXPECT_EQ(sum.sum, 3);
  EXPECT_EQ(sum.average(), 1.5);
}

TEST_F(SheetEditorTest, ObeysThePermissions) {
  struct Case {
    const char* name;
    bool GridPermissions::*permission;
    std::function<void(SheetEditor&, Clipboard&)> edit;
  };
  const Case cases[] = {
      {"typing", &GridPermissions::AllowInCellEditing, [](auto& e, auto&) { e.enter(1, 1, "x"); }},
      {"pasting", &GridPermissions::AllowInCellEditing,
       [](auto& e, auto& c) {
         e.paste({1, 1, 1, 1}, c);
       }},
      {"inserting", &GridPermissions::AllowInCellEditing,
       [](auto& e, auto&) { e.insertRows(1, 1); }},
      {"sorting", &GridPermissions::AllowInCellEditing,
       [](auto& e, auto&) {
         e.sort({1, 1, 2, 1}, {{1, true}});
       }},
      {"replacing", &GridPermissions::AllowInCellEditing,
       [](auto& e, auto&) { e.replaceAll("1", "2", {}); }},
      {"formulas", &GridPermissions::AllowFormulas, [](auto& e, auto&) { e.enter(1, 1, "=1"); }},
      {"clearing", &GridPermissions::AllowDelete,
       [](auto& e, auto&) {
         e.clearContents({1, 1, 1, 1});
       }},
      {"cutting", &GridPermissions::AllowDelete,
       [](auto& e, auto& c) {
         e.cut({1, 1, 1, 1}, c);
       }},
      {"deleting", &GridPermissions::AllowDelete, [](auto& e, auto&) { e.deleteColumns(1, 1); }},
      {"moving", &GridPermissions::AllowMoveRange,
       [](auto& e, auto&) {
         e.moveRange({1, 1, 1, 1}, 2, 2);
       }},
      {"filling", &GridPermissions::AllowAutoFill,
       [](auto& e, auto&) {
         e.fillSeries({1, 1, 1, 1}, {1, 1, 3, 1});
       }},
      {"headings", &GridPermissions::AllowEditHeaders,
       [](auto& e, auto&) { e.setColumnHeading(1, "x"); }},
      {"formats", &GridPermissions::AllowDesigner,
       [](auto& e, auto&) {
         e.setBold({1, 1, 1, 1}, true);
       }},
  };
  clipboard.setText("1\t2");
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Worksheet book;
    enterRows(book, "1|2");
    EditHistory steps;
    SheetEditor one(book, steps);
    book.permissions().*row.permission = false;
    EXPECT_NE(refusal([&] { row.edit(one, clipboard); }), "");
    EXPECT_EQ(rowsOf(book), "1|2");
    EXPECT_FALSE(steps.canUndo());
    book.permissions().*row.permission = true;
    EXPECT_EQ(refusal([&] { row.edit(one, clipboard); }), "") << "permissions are read live";
    EXPECT_TRUE(steps.canUndo());
    steps.undo();
    one.setReadOnly(true);
    EXPECT_NE(refusal([&] { row.edit(one, clipboard); }), "");
  }
}

TEST_F(SheetEditorTest, RefusesWhatDoesNotFit) {
  enterRows(sheet, "1,2");
  sheet.MaxRow(3);
  sheet.MaxCol(3);
  clipboard.setText("1\n2\n3\n4");
  EXPECT_THAT(refusal([&] { editor.paste({1, 1, 1, 1}, clipboard); }), HasSubstr("ends at row 3"));
  EXPECT_THAT(refusal([&] { editor.moveRange({1, 1, 1, 2}, 1, 3); }), HasSubstr("column 3"));
  EXPECT_NE(refusal([&] { editor.enter(4, 1, "x"); }), "");
  EXPECT_NE(refusal([&] { editor.freezeRows(4); }), "");
  EXPECT_FALSE(history.canUndo());
  EXPECT_EQ(rowsOf(sheet), "1,2");
  // A narrowed sheet grows by inserted rows and is as before after undo.
  editor.insertRows(1, 2);
  EXPECT_EQ(sheet.MaxRow(), 5);
  history.undo();
  EXPECT_EQ(sheet.MaxRow(), 3);
}

TEST_F(SheetEditorTest, DoesNotFillWholeSheets) {
  enterRows(sheet, "1,2|3,4");
  editor.copy({1, 1, 1, 1}, clipboard);
  const CellBlock all = editor.wholeSheet();
  for (const auto& edit : std::initializer_list<std::function<void()>>{
           [&] { editor.enterAll(all, "x"); }, [&] { editor.paste(all, clipboard); },
           [&] { editor.fillDown(all); }, [&] { editor.fillRight(all); },
           [&] {
             editor.fillSeries({1, 1, 2, maxColumns}, all);
           }}) {
    EXPECT_THAT(refusal(edit), HasSubstr("too many"));
  }
  EXPECT_FALSE(history.canUndo());
  editor.paste({1, 3, maxRows, 3}, clipboard);
  EXPECT_EQ(sheet.LastRow(), maxRows) << "a column is fine";
}

TEST_F(SheetEditorTest, KeepsArrayFormulasWhole) {
  sheet.setArrayFormula(1, 1, 1, 2, 1, "{1;2}");
  sheet.Recalc();
  EXPECT_THAT(refusal([&] { editor.enter(1, 1, "x"); }), HasSubstr("array"));
  EXPECT_THAT(refusal([&] { editor.clearContents({2, 1, 9, 9}); }), HasSubstr("array"));
  editor.clearContents({1, 1, 2, 1});
  EXPECT_EQ(sheet.LastRow(), 0);
  history.undo();
  EXPECT_EQ(rowsOf(sheet), "1|2");
  EXPECT_TRUE(sheet.arrayBlock(1, 2, 1));
}

TEST_F(SheetEditorTest, DeletedLinesComeBackWithHeadingsAndSizes) {
  enterRows(sheet, "1,2,3|4,5,6|7,8,9");
  sheet.ColText(2, "-ID-");
  sheet.RowText(2, "-Hdr-");
  sheet.columnWidth(1, 2, 20);
  sheet.columnHidden(1, 3, true);
  sheet.rowHidden(1, 2, true);
  editor.setFill({2, 2, 2, 2}, 0x00FF00);
  editor.deleteColumns(2, 3);
  editor.deleteRows(2, 2);
  EXPECT_EQ(rowsOf(sheet), "1|7");
  EXPECT_EQ(sheet.ColText(2), "");
  history.undo();
  history.undo();
  EXPECT_EQ(rowsOf(sheet), "1,2,3|4,5,6|7,8,9");
  EXPECT_EQ(sheet.ColText(2), "-ID-");
  EXPECT_EQ(sheet.RowText(2), "-Hdr-");
  EXPECT_EQ(sheet.columnWidth(1, 2), 20);
  EXPECT_TRUE(sheet.columnHidden(1, 3));
  EXPECT_TRUE(sheet.rowHidden(1, 2));
  EXPECT_EQ(editor.formatAt(2, 2).patternColor, 0x00FF00);
}

// The cells of a column are stored in blocks of rows.
TEST_F(SheetEditorTest, LinesMoveAcrossTheEdgesOfStoredBlocks) {
  constexpr int edge = static_cast<int>(CellStore::blockRows);
  std::vector<std::string> rows;
  for (int row = 1; row <= 3 * edge + 2; ++row) {
    rows.push_back(std::to_string(row));
    sheet.NumberRC(row, 1, row);
  }
  const std::string before = rowsOf(sheet);
  EXPECT_EQ(before, join(rows, "|"));
  for (const int row : {1, edge - 1, edge, edge + 1, 2 * edge, 3 * edge + 2}) {
    SCOPED_TRACE(row);
    std::vector<std::string> expected = rows;
    expected.erase(expected.begin() + row - 1);
    editor.deleteRows(row, row);
    EXPECT_EQ(rowsOf(sheet), join(expected, "|"));
    history.undo();
    EXPECT_EQ(rowsOf(sheet), before);
    editor.insertRows(row, row);
    EXPECT_EQ(sheet.TextRC(row, 1), "");
    EXPECT_EQ(sheet.TextRC(row + 1, 1), std::to_string(row));
    editor.deleteRows(row, row);
    EXPECT_EQ(rowsOf(sheet), before);
  }
}

TEST_F(SheetEditorTest, DrawsLinesAroundBlocks) {
  const auto lines = [this](int row, int column) {
    const CellFormat& format = editor.formatAt(row, column);
    return std::string(format.borderLeft ? "l" : "") + (format.borderRight ? "r" : "") +
           (format.borderTop ? "t" : "") + (format.borderBottom ? "b" : "");
  };
  editor.setBorders({1, 1, 2, 2}, Borders::Outline);
  EXPECT_EQ(lines(1, 1) + " " + lines(1, 2) + " " + lines(2, 1) + " " + lines(2, 2), "lt rt lb rb");
  editor.setBorders({1, 1, 1, 1}, Borders::All);
  EXPECT_EQ(lines(1, 1), "lrtb");
  editor.setBorders({1, 1, 2, 2}, Borders::None);
  EXPECT_EQ(lines(1, 1) + lines(2, 2), "");
  editor.setBorders({1, 1, 2, 1}, Borders::Bottom);
  EXPECT_EQ(lines(1, 1) + lines(2, 1), "b");
}

TEST_F(SheetEditorTest, LayoutAndHeadingsCanBeUndone) {
  editor.setColumnWidth(2, 3, 15);
  editor.hideRows(4, 5, true);
  editor.freezeRows(2);
  editor.setRowHeading(1, "-Hdr-");
  EXPECT_EQ(sheet.FixedRows(), 2);
  for (int i = 0; i < 4; ++i) history.undo();
  EXPECT_EQ(sheet.columnWidth(1, 3), 0);
  EXPECT_FALSE(sheet.rowHidden(1, 5));
  EXPECT_EQ(sheet.FixedRows(), 0);
  EXPECT_EQ(sheet.RowText(1), "");
  for (int i = 0; i < 4; ++i) history.redo();
  EXPECT_EQ(sheet.columnWidth(1, 3), 15);
  EXPECT_TRUE(sheet.rowHidden(1, 5));
  EXPECT_EQ(sheet.RowText(1), "-Hdr-");
}

TEST_F(SheetEditorTest, TheOwnerMayMoveItsLinesItself) {
  enterRows(sheet, "a|b");
  std::string structure = "1";
  history.setExtraState([&] { return structure; },
                        [&](const std::string& text) { structure = text; });
  std::vector<StructureCommand> commands;
  editor.setStructureCommands([&](StructureCommand command) {
    commands.push_back(command);
    sheet.InsertRange(sheet.SelStartRow(), 1, sheet.SelEndRow(), 1, Shift::Rows);
    structure = "3";
  });
  editor.insertRows(1, 2);
  EXPECT_EQ(commands, std::vector<StructureCommand>{StructureCommand::InsertRows});
  EXPECT_EQ(rowsOf(sheet), "||a|b");
  EXPECT_EQ(history.undoText(), "Insert rows");
  std::string seen;
  keep(editor.onChange([&](const CellBlock*) { seen = rowsOf(sheet) + " " + structure; }));
  history.undo();
  EXPECT_EQ(seen, "a|b 1") << "cells and structure are back when observers hear of it";
  history.redo();
  EXPECT_EQ(structure, "3");
}

TEST_F(SheetEditorTest, RecordedCommandsAreUndoneWholeButForThePermissions) {
  enterRows(sheet, "1");
  sheet.Title("before");
  EXPECT_THROW(editor.record("Command",
                             [&] {
                               sheet.InsertSheets(2, 1);
                               sheet.TextSRC(2, 1, 1, "x");
                               sheet.Title("after");
                               sheet.MaxRow(5);
                               throw Error("half way");
                             }),
               Error);
  sheet.permissions().AllowDelete = false;
  EXPECT_EQ(history.undoText(), "Command") << "what a failed command has done can be undone, too";
  history.undo();
  EXPECT_EQ(sheet.NumSheets(), 1);
  EXPECT_EQ(sheet.Title(), "before");
  EXPECT_EQ(sheet.MaxRow(), maxRows);
  EXPECT_FALSE(sheet.permissions().AllowDelete);
  history.redo();
  EXPECT_EQ(sheet.TextSRC(2, 1, 1), "x");
}

TEST_F(SheetEditorTest, ForgetsStepsThatNoLongerFit) {
  enterRows(sheet, "1|2");
  editor.enter(1, 1, "x");
  sheet.TextRC(2, 1, "written by others");
  editor.changedOutside();
  EXPECT_TRUE(history.canUndo()) << "the rows are where they were";
  sheet.InsertRange(1, 1, 1, 1, Shift::Rows);
  editor.changedOutside();
  EXPECT_FALSE(history.canUndo());
}

TEST_F(SheetEditorTest, SheetsCanBeAddedRenamedAndDeleted) {
  enterRows(sheet, "1");
  editor.insertSheet(2);
  EXPECT_EQ(sheet.Sheet(), 2);
  editor.enter(1, 1, "=Sheet1!A1");
  editor.renameSheet(1, "Data");
  EXPECT_EQ(sheet.EntryRC(1, 1), "=Data!A1");
  EXPECT_NE(refusal([&] { editor.renameSheet(2, "DATA"); }), "");
  editor.deleteSheet(1);
  EXPECT_NE(refusal([&] { editor.deleteSheet(1); }), "") << "the last one stays";
  while (history.canUndo()) history.undo();
  EXPECT_EQ(sheet.NumSheets(), 1);
  EXPECT_EQ(sheet.SheetName(1), "Sheet1");
}

TEST_F(SheetEditorTest, FindsInBothDirections) {
  enterRows(sheet, "Fe,cu|FE2O3,1.5|=\"f\"&\"e\",15");
  sheet.Recalc();
  struct Case {
    const char* name;
    const char* text;
    CellPlace from;
    SearchOptions options;
    std::optional<CellPlace> hit;
  };
  const SearchOptions any;
  const Case cases[] = {
      {"next", "fe", {1, 1}, any, CellPlace{2, 1}},
      {"from elsewhere", "fe", {2, 2}, any, CellPlace{3, 1}},
      {"round the end", "fe", {3, 1}, any, CellPlace{1, 1}},
      {"backwards", "fe", {2, 1}, {false, false, false, true}, CellPlace{1, 1}},
      {"backwards round the start", "fe", {1, 1}, {false, false, false, true}, CellPlace{3, 1}},
      {"with case", "FE", {1, 1}, {true, false, false, false}, CellPlace{2, 1}},
      {"whole cells", "fe", {1, 1}, {false, true, false, false}, CellPlace{3, 1}},
      {"in numbers", "5", {2, 2}, any, CellPlace{3, 2}},
      {"as entered", "&", {1, 1}, {false, false, true, false}, CellPlace{3, 1}},
      {"as shown there is none", "&", {1, 1}, any, std::nullopt},
      {"only where it starts", "cu", {1, 2}, any, CellPlace{1, 2}},
      {"from outside the used cells", "cu", {500, 9}, any, CellPlace{1, 2}},
      {"nothing", "", {1, 1}, any, std::nullopt},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const auto hit = editor.findNext(row.text, row.from, row.options);
    EXPECT_EQ(hit.has_value(), row.hit.has_value());
    if (hit && row.hit) {
      EXPECT_EQ(*hit, *row.hit) << hit->row << "," << hit->column;
    }
  }
  EXPECT_FALSE(editor.replace("zz", "y", {1, 1}, any));
  EXPECT_TRUE(editor.replace("fe", "Mg", {2, 1}, any));
  EXPECT_EQ(sheet.TextRC(2, 1), "Mg2O3");
}

TEST_F(SheetEditorTest, JumpsToTheEdgesOfData) {
  enterRows(sheet, "1,2,,4|5|6||9");
  sheet.rowHidden(1, 3, true);
  const CellPlace end{maxRows, 1};
  struct Case {
    CellPlace from;
    Direction direction;
    CellPlace to;
  };
  for (const Case& row : std::initializer_list<Case>{{{1, 1}, Direction::Right, {1, 2}},
                                                     {{1, 2}, Direction::Right, {1, 4}},
                                                     {{1, 4}, Direction::Right, {1, maxColumns}},
                                                     {{1, 1}, Direction::Down, {2, 1}},
                                                     {{2, 1}, Direction::Down, {5, 1}},
                                                     {{5, 1}, Direction::Down, end},
                                                     {end, Direction::Up, {5, 1}},
                                                     {{1, maxColumns}, Direction::Left, {1, 4}},
                                                     {{1, 1}, Direction::Up, {1, 1}},
                                                     {{7, 3}, Direction::Left, {7, 1}}}) {
    const CellPlace to = jump(sheet, row.from, row.direction);
    EXPECT_EQ(to, row.to) << row.from.row << "," << row.from.column << " goes to " << to.row << ","
                          << to.column;
  }
  EXPECT_EQ(neighbour(sheet, {2, 1}, Direction::Down), (CellPlace{4, 1})) << "over a hidden row";
  EXPECT_EQ(nextInBlock(sheet, {1, 1, 2, 2}, {2, 2}, true, false), (CellPlace{1, 1}));
  EXPECT_EQ(nextInBlock(sheet, {1, 1, 4, 2}, {2, 1}, false, false), (CellPlace{4, 1}));
  EXPECT_EQ(nextInBlock(sheet, {1, 1, 2, 2}, {1, 1}, false, true), (CellPlace{2, 2}));
}

}  // namespace
}  // namespace lodex
