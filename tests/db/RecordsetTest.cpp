#include "db/Recordset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "basic/Error.h"
#include "db/Errors.h"

namespace lodex {
namespace {

using testing::HasSubstr;

Recordset makeRecords() {
  return Recordset(
      std::make_unique<StoredRows>(std::vector<Field>{{"ID", {FieldCode::Integer, 0}, ""},
                                                      {"Mineral", {FieldCode::VarText, 50}, ""},
                                                      {"Cu %", {FieldCode::Double, 0}, ""},
                                                      {"Code", {FieldCode::VarText, 10}, ""},
                                                      {"Opaque", {FieldCode::Boolean, 0}, ""}},
                                   std::vector<Row>{{1, "Pyrite", {}, "007", -1},
                                                    {2, "Chalcopyrite", 34.63, "7", -1},
                                                    {3, "O'Brien", 0.5, "A*b", 0},
                                                    {4, "Åkermanite", {}, {}, 0},
                                                    {5, "pyrrhotite", 0.0, "12", -1}}),
      CursorKind::Client);
}

std::string idsOf(Recordset& records) {
  std::string ids;
  for (; !records.Eof(); records.MoveNext()) ids += records.Text("id");
  return ids;
}

TEST(Filter, SelectsRecords) {
  const struct {
    std::string condition, ids;
  } rows[] = {
      {"", "12345"},
      {"ID=3", "3"},
      {"ID = '3'", "3"},
      {"[Mineral] = 'PYRITE'", "1"},
      {"Mineral = 'O''Brien'", "3"},
      {"Mineral = \"O'Brien\"", "3"},
      {"Mineral = 'åkermanite'", "4"},
      {"[Cu %] = 0", "5"},
      {"[Cu %] <> 0", "23"},
      {"[Cu %] = Null", "14"},
      {"[Cu %] IS NOT NULL", "235"},
      {"[Cu %] >= 0.5 AND [Cu %] < 34.63", "3"},
      {"Code = '7'", "2"},
      {"Code = 7", "12"},
      {"Code > 6 AND Code < 12", "12"},
      {"Mineral LIKE 'py*'", "15"},
      {"Mineral Like '%PYR%'", "125"},
      {"Mineral LIKE '?kermanite'", "4"},
      {"Mineral LIKE 'P'", ""},
      {"[Mineral] Not Like '%rite'", "345"},
      {"Code LIKE '%a*b%'", "3"},
      {"Opaque = True", "125"},
      {"Opaque = false AND NOT ID = 3", "4"},
      {"ID=1 OR ID=2 AND Mineral LIKE 'P%'", "1"},
      {"(ID=1 or ID=2) and (Mineral like 'c%')", "2"},
      {"[Minerals].[Mineral]='Pyrite'", "1"},
  };
  auto records = makeRecords();
  for (const auto& row : rows) {
    records.Filter(row.condition);
    EXPECT_EQ(records.RecordCount(), static_cast<int>(row.ids.size())) << row.condition;
    EXPECT_EQ(idsOf(records), row.ids) << row.condition;
  }
}

TEST(Filter, RefusesWhatItCannotReadAndKeepsTheOldOne) {
  auto records = makeRecords();
  records.Filter("ID > 3");
  const std::string conditions[] = {
      "ID",         "ID =",           "ID = 1 AND",    "ID = 1)",     "(ID = 1",
      "[ID = 1",    "Mineral = 'x",   "Mineral = x",   "Nothing = 1", "ID > Null",
      "ID NOT = 1", "Mineral IS 'x'", "ID = 1 ID = 2", "= 1",         std::string(100000, '(')};
  for (const auto& condition : conditions) {
    EXPECT_THROW(records.Filter(condition), Error) << condition.substr(0, 40);
  }
  EXPECT_EQ(records.Filter(), "ID > 3");
  EXPECT_EQ(idsOf(records), "45");
}

TEST(LikeNoCase, IsNotSlowOnManyWildcards) {
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "*a";
  EXPECT_FALSE(likeNoCase(std::string(5000, 'a'), pattern + "b"));
}

TEST(Sort, OrdersByTheFieldsInTheirOrder) {
  const struct {
    std::string order, ids;
  } rows[] = {
      {"[Mineral]", "23154"}, {"Mineral DESC", "45132"},
      {"[Cu %]", "14532"},    {"[Opaque] ASC,[Cu %] DESC", "25134"},
      {"", "12345"},
  };
  auto records = makeRecords();
  for (const auto& row : rows) {
    records.Sort(row.order);
    EXPECT_EQ(idsOf(records), row.ids) << row.order;
  }
  EXPECT_THROW(records.Sort("[Zn %]"), Error);
  records.Sort("ID DESC");
  records.Filter("ID <> 4");
  EXPECT_EQ(idsOf(records), "5321");
}

TEST(Recordset, MovesAndFinds) {
  auto records = makeRecords();
  records.Find("Mineral LIKE '%pyrite'");
  EXPECT_EQ(records.AbsolutePosition(), 1);
  records.MoveNext();
  records.Find("Mineral LIKE '%pyrite'");
  EXPECT_EQ(records.AbsolutePosition(), 2);
  records.MovePrevious();
  records.MovePrevious();
  EXPECT_TRUE(records.Bof());
  records.Find("ID = 99");
  EXPECT_TRUE(records.Eof());
  EXPECT_THROW(records.Value(0), Error);
  EXPECT_THROW(records.MoveNext(), Error);
  records.MoveFirst();
  EXPECT_EQ(records.Text("Cu %"), "");
  EXPECT_EQ(records.Text("Opaque"), "True");
  try {
    records.Value("Zn %");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), dberror::NoSuchItem);
    EXPECT_THAT(error.what(), HasSubstr("Zn %"));
  }
}

TEST(FieldType, ReadsDeclarations) {
  const struct {
    std::string text;
    FieldType type;
  } rows[] = {
      {"TEXT (50)", {FieldCode::VarText, 50}}, {"text(250)", {FieldCode::VarText, 250}},
      {"TEXT", {FieldCode::VarText, 255}},     {"MEMO", {FieldCode::Memo, 0}},
      {"LONG", {FieldCode::Integer, 0}},       {" single ", {FieldCode::Single, 0}},
      {"DATE TEXT", {FieldCode::Date, 0}},     {"TEXT (x)", {FieldCode::VarText, 255}},
      {"", {FieldCode::VarText, 255}},         {"TEXT (-5)", {FieldCode::VarText, 255}},
  };
  for (const auto& row : rows) EXPECT_EQ(parseFieldType(row.text), row.type) << row.text;
}

}  // namespace
}  // namespace lodex
