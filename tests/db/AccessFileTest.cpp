// Access files made here, byte by byte, and what becomes of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "AccessFixture.h"
#include "basic/Error.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Column = AccessMaker::Column;
using Long = AccessMaker::Long;
using Place = AccessMaker::Place;

using AccessFileTest = AccessFixture;

bool sameBits(const FieldValue& left, const FieldValue& right) {
  const auto* a = std::get_if<double>(&left);
  const auto* b = std::get_if<double>(&right);
  if (!a || !b) return left == right;
  return std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(*b);
}

TEST_F(AccessFileTest, ValuesStayWhatTheyAre) {
  using T = AccessType;
  AccessMaker maker;
  const std::string pages(70'000, 'x');
  const struct {
    std::string name;
    Column column;
    StoredCell cell;
    FieldValue expected;
  } cases[] = {
      {"truth", {"v", T::Boolean}, "", std::int64_t{-1}},
      {"no truth", {"v", T::Boolean}, {}, std::int64_t{0}},
      {"byte", {"v", T::Byte}, "\xFF", std::int64_t{255}},
      {"integer", {"v", T::Integer}, storedAs(std::int16_t{-32768}), std::int64_t{-32768}},
      {"long", {"v", T::LongInteger}, storedAs(INT32_MIN), std::int64_t{INT32_MIN}},
      {"big", {"v", T::BigInteger}, storedAs(INT64_MAX), INT64_MAX},
      {"currency", {"v", T::Currency}, storedAs(std::int64_t{-1}), -0.0001},
      {"most currency", {"v", T::Currency}, storedAs(INT64_MAX), "922337203685477.5807"},
      {"decimal", {"v", T::Numeric, 0, 3}, storedNumeric(true, 12345), -12.345},
      {"long decimal",
       {"v", T::Numeric, 0, 1},
       storedNumeric(false, UINT64_MAX),
       "1844674407370955161.5"},
      {"single", {"v", T::Single}, storedAs(0.1f), double{0.1f}},
      {"least double", {"v", T::Double}, storedAs(5e-324), 5e-324},
      {"minus zero", {"v", T::Double}, storedAs(-0.0), -0.0},
      {"endless", {"v", T::Single}, storedAs(-HUGE_VALF), -HUGE_VAL},
      {"no number", {"v", T::Double}, storedAs(std::nan("")), {}},
      {"date", {"v", T::Date}, storedAs(-1.75), "1899-12-29 18:00:00"},
      {"date beyond", {"v", T::Date}, storedAs(1e7), "10000000"},
      {"extended date",
       {"v", T::ExtendedDate},
       "0000000000000737592:0000000432001234567:7" + std::string(1, '\0'),
       "2020-06-17 12:00:00.1234567"},
      {"first extended date",
       {"v", T::ExtendedDate},
       "0000000000000000000:0000000000000000000:7" + std::string(1, '\0'),
       "0001-01-01"},
      {"guid",
       {"v", T::Guid},
       "\x78\x56\x34\x12\xBC\x9A\xF0\xDE\x01\x02\x03\x04\x05\x06\x07\x08",
       "{12345678-9ABC-DEF0-0102-030405060708}"},
      {"plain text", {"v", T::Text, 20}, storedWide("Py"), "Py"},
      {"narrow text", {"v", T::Text, 20}, storedNarrow("\xC5s"), "Ås"},
      {"switching text",
       {"v", T::Text, 40},
       storedNarrow(std::string("ab\0\x10\x04\x3D\xD8\x01\xDE\0c", 12)),
       "abА😁c"},
      {"empty text", {"v", T::Text, 20}, "", ""},
      {"nothing", {"v", T::Text, 20}, {}, {}},
      {"binary", {"v", T::Binary, 20}, std::string("\0\1\0", 3), "0x000100"},
      {"short memo", {"v", T::Memo}, maker.longField(storedNarrow("m"), Long::Inline), "m"},
      {"page memo", {"v", T::Memo}, maker.longField(storedWide("page"), Long::OnePage), "page"},
      {"long memo", {"v", T::Memo}, maker.longField(storedNarrow(pages), Long::Chain), pages},
      {"empty memo", {"v", T::Memo}, std::string(12, '\0'), ""},
      {"memo without a byte", {"v", T::Memo}, "", ""},
      {"object", {"v", T::Ole}, maker.longField("\x01\x02", Long::OnePage), "0x0102"},
      {"calculated text",
       {"v", T::Text, 40, 0, false, true},
       storedCalculated(storedNarrow("c")),
       "c"},
      {"calculated truth",
       {"v", T::Boolean, 40, 0, false, true},
       storedCalculated("\x01"),
       std::int64_t{-1}},
      {"calculated decimal",
       {"v", T::Numeric, 40, 0, false, true},
       storedCalculated(std::string("\x0E\0\x02\x80\x01\0\0\0\x05\0\0\0\0\0\0\0", 16)),
       "-184467440737095516.21"},
  };
  int number = 0;
  for (const auto& row : cases) {
    maker.addTable({"T" + std::to_string(++number), {row.column}});
    maker.addRecord({row.cell});
  }
  copy(maker);
  number = 0;
  for (const auto& row : cases) {
    const FieldValue found = value("SELECT v FROM T" + std::to_string(++number));
    EXPECT_TRUE(sameBits(found, row.expected))
        << row.name << ": " << fieldText(found).substr(0, 80);
  }
  EXPECT_THAT(noticed_, UnorderedElementsAre(HasSubstr("field v is not a number"),
                                             HasSubstr("field v is outside the years 100 to 9999"),
                                             HasSubstr("type of the calculated field v"),
                                             HasSubstr("type of the calculated field v"),
                                             HasSubstr("type of the calculated field v")));
  EXPECT_EQ(value("PRAGMA integrity_check"), FieldValue("ok"));
}

// The definition of a table may give a calculated field another type than its values have.
TEST_F(AccessFileTest, CalculatedFieldsKeepTheirLastValues) {
  using T = AccessType;
  AccessMaker maker;
  maker.makeAce();
  const std::string wide = storedCalculated(storedWide("Doe, John"));
  const struct {
    std::string name;
    T declared, actual;
    StoredCell cell;
    FieldValue expected;
  } fields[] = {
      {"truth", T::Integer, T::Boolean, storedCalculated("\xFF"), std::int64_t{-1}},
      {"untruth", T::Integer, T::Boolean, storedCalculated(std::string(1, '\0')), std::int64_t{0}},
      {"currency", T::Double, T::Currency, storedCalculated(storedAs(std::int64_t{12500})), 1.25},
      {"single", T::Numeric, T::Single, storedCalculated(storedAs(0.5f)), 0.5},
      {"double", T::Double, T::Double, storedCalculated(storedAs(0.1)), 0.1},
      {"byte", T::Integer, T::Byte, storedCalculated("\x07"), std::int64_t{7}},
      {"long", T::LongInteger, T::LongInteger, storedCalculated(storedAs(-9)), std::int64_t{-9}},
      {"decimal", T::Double, T::Numeric,
       storedCalculated(std::string("\x0E\0\x02\x80\0\0\0\0\x39\x30\0\0\0\0\0\0", 16)), -123.45},
      {"date", T::Date, T::Date, storedCalculated(storedAs(36526.5)), "2000-01-01 12:00:00"},
      {"moment", T::ExtendedDate, T::ExtendedDate,
       storedCalculated("0000000000000737592:0000000432000000000:7"), "2020-06-17 12:00:00"},
      {"guid", T::Guid, T::Guid, storedCalculated(std::string(16, '\x11')),
       "{11111111-1111-1111-1111-111111111111}"},
      {"text", T::Text, T::Text, storedCalculated(storedNarrow("ab")), "ab"},
      {"no text", T::Text, T::Text, storedCalculated(""), ""},
      {"memo", T::Text, T::Memo, maker.longField(wide, Long::OnePage), "Doe, John"},
      {"short memo", T::Text, T::Memo, maker.longField(wide, Long::Inline), "Doe, John"},
      {"no number", T::Double, T::Double, storedCalculated(""), {}},
      {"nothing", T::Double, T::Double, {}, {}},
  };
  AccessMaker::Table table{"T", {{"id", T::LongInteger}}};
  std::vector<StoredCell> record{storedAs(1)};
  std::vector<std::pair<std::string, std::vector<std::array<std::string, 2>>>> types;
  for (const auto& field : fields) {
    table.columns.push_back({field.name, field.declared, 39, 0, false, true});
    types.push_back({field.name, {{"ResultType", std::to_string(static_cast<int>(field.actual))}}});
    record.push_back(field.cell);
  }
  table.properties = storedProperties(types);
  maker.addTable(table);
  maker.addRecord(record);
  copy(maker);
  EXPECT_THAT(noticed_, IsEmpty());
  for (const auto& field : fields) {
    const FieldValue found = value("SELECT [" + field.name + "] FROM T");
    EXPECT_TRUE(sameBits(found, field.expected)) << field.name << ": " << fieldText(found);
  }
}

// A record is not lost with a value of it; a field that cannot be read is reported once.
TEST_F(AccessFileTest, ValuesThatCannotBeReadAreNull) {
  using T = AccessType;
  AccessMaker maker;
  maker.addTable({"T",
                  {{"id", T::LongInteger}, {"c", T::Text, 40, 0, false, true}, {"m", T::Memo}},
                  {},
                  storedProperties({{"c", {{"ResultType", "7"}}}})});
  for (int i = 1; i <= 4; ++i) {
    maker.addRecord({storedAs(i), storedCalculated("abc"), i > 2 ? "short" : ""});
  }
  copy(maker);
  EXPECT_EQ(rows("SELECT Count(*), Sum(id), Count(c) FROM T")[0],
            (Row{std::int64_t{4}, std::int64_t{10}, std::int64_t{0}}));
  EXPECT_THAT(noticed_, ElementsAre("Error T: A value of calculated field c could not be read and "
                                    "is empty here (4 times)",
                                    "Error T: A value of field m could not be read and is empty "
                                    "here (2 times)"));
}

TEST_F(AccessFileTest, DecimalsKeepTheirDigits) {
  AccessMaker maker;
  maker.addTable({"T",
                  {{"short", AccessType::Numeric, 0, 2},
                   {"long", AccessType::Numeric, 0, 3},
                   {"big", AccessType::BigInteger}}});
  maker.addRecord(
      {storedNumeric(true, 150), storedNumeric(false, UINT64_MAX), storedAs(std::int64_t{1})});
  copy(maker);
  auto source = driver_->query("SELECT * FROM T", {});
  std::string types;
  for (const Field& field : source->fields()) types += jetTypeName(field.type) + ";";
  EXPECT_EQ(types, "DECIMAL (28, 2);DECIMAL (28, 3);DECIMAL (19, 0);");
  EXPECT_THAT(refusalOf("INSERT INTO T ([short]) VALUES (1E26)"), HasSubstr("26 digits"));
  EXPECT_EQ(refusalOf("INSERT INTO T ([big]) VALUES (9007199254740993)"), "");
  EXPECT_EQ(value("SELECT big FROM T WHERE big > 1"), FieldValue(std::int64_t{9007199254740993}));
}

TEST_F(AccessFileTest, RecordsAreFoundWhereverTheyLie) {
  for (const bool isJet3 : {false, true}) {
    const auto text = [&](const std::string& ascii) { return isJet3 ? ascii : storedWide(ascii); };
    AccessMaker maker(isJet3);
    // One column was deleted; the record of before the texts were added knows the number only.
    maker.addTable({"Old",
                    {{"n", AccessType::LongInteger},
                     {"t", AccessType::Text, 400},
                     {"b", AccessType::Boolean},
                     {"u", AccessType::Text, 400}},
                    {},
                    "",
                    0,
                    1});
    const std::string wide(isJet3 ? 300 : 150, 'w');
    maker.addRecord({storedAs(1)}, Place::Here, 1);
    maker.addRecord({storedAs(2), text("moved"), "", text("b")}, Place::Moved);
    maker.addRecord({storedAs(3), text("gone"), "", text("b")}, Place::Deleted);
    maker.addRecord({storedAs(4), text(wide), {}, text(wide + "!")});
    maker.addTable({"None", {{"n", AccessType::LongInteger}}});
    std::vector<Column> many;
    for (int i = 0; i < 250; ++i) many.push_back({"c" + std::to_string(i), AccessType::Byte});
    maker.addTable({"Many", many});
    maker.addRecord(std::vector<StoredCell>(250, "\x07"));
    maker.addTable({"Long", {{"n", AccessType::LongInteger}, {"t", AccessType::Text, 510}}});
    const int count = isJet3 ? 9000 : 18000;  // beyond what a short map of pages can tell
    for (int i = 1; i <= count; ++i) maker.addRecord({storedAs(i), text(std::string(120, 'x'))});
    copy(maker);
    EXPECT_THAT(rows("SELECT n, t, b, u FROM Old ORDER BY n"),
                ElementsAre(Row{std::int64_t{1}, {}, std::int64_t{0}, {}},
                            Row{std::int64_t{2}, "moved", std::int64_t{-1}, "b"},
                            Row{std::int64_t{4}, wide, std::int64_t{0}, wide + "!"}))
        << isJet3;
    EXPECT_EQ(value("SELECT Count(*) FROM None"), FieldValue(std::int64_t{0}));
    EXPECT_EQ(value("SELECT c249 FROM Many"), FieldValue(std::int64_t{7}));
    EXPECT_EQ(rows("SELECT Count(*), Sum(n) FROM Long")[0],
              (Row{std::int64_t{count}, std::int64_t{count} * (count + 1) / 2}));
    EXPECT_THAT(noticed_, IsEmpty());
  }
}

TEST_F(AccessFileTest, OldFilesAreReadInTheirCodePage) {
  const struct {
    int page;
    std::string stored, expected;
  } cases[] = {
      {1252, "\xC5\x80\x81", "Å€\xC2\x81"},
      {1251, "\xCF\xE8\xF0", "Пир"},
      {932, "\x8D\x7A", "鉱"},
  };
  for (const auto& row : cases) {
    AccessMaker maker(true, row.page);
    maker.addTable({"T", {{"v", AccessType::Text, 50}}});
    maker.addRecord({row.stored});
    copy(maker);
    EXPECT_EQ(value("SELECT v FROM T"), FieldValue(row.expected)) << row.page;
  }
}

TEST_F(AccessFileTest, TheSimpleCipherIsDecoded) {
  AccessMaker maker;
  maker.encodeWith(0x12345678);
  maker.addTable({"T", {{"v", AccessType::Text, 50}}});
  maker.addRecord({storedWide("plain")});
  copy(maker);
  EXPECT_EQ(value("SELECT v FROM T"), FieldValue("plain"));
}

TEST_F(AccessFileTest, NamesMayHoldAnyLetters) {
  AccessMaker maker;
  const std::string name = "A \"b\" 'c'; --|`!";
  maker.addTable({name,
                  {{"x [y", AccessType::Byte}, {"select", AccessType::Byte}},
                  {{"i\"1", {0, 1}, true, true}}});
  maker.addRecord({"\x01", "\x02"});
  maker.addLink("Far", "C:\\back.mdb");
  maker.addTable({"Marked", {{"n", AccessType::Byte}}, {}, "", 0x80000000});
  maker.addTable({"sqlite_x", {{"rowid", AccessType::Byte}, {"_rowid_", AccessType::Byte}}});
  copy(maker);
  auto source = driver_->schema(SchemaKind::Columns);
  std::vector<std::string> names;
  for (Row row; source->next(row);) names.push_back(fieldText(row[0]) + "/" + fieldText(row[1]));
  EXPECT_THAT(
      names, ElementsAre("_sqlite_x/rowid", "_sqlite_x/_rowid_", name + "/x [y", name + "/select"));
  EXPECT_THAT(noticed_, UnorderedElementsAre(
                            HasSubstr("Warning Marked: The table is marked as one of Access's"),
                            "Note sqlite_x: The table is called _sqlite_x in the copy",
                            "Warning Far: The table is in another database, C:\\back.mdb, and was "
                            "left out"));
}

TEST_F(AccessFileTest, PropertiesBecomeDemandsUnlessTheRecordsBreakThem) {
  AccessMaker maker;
  const std::vector<Column> columns{{"No", AccessType::LongInteger},
                                    {"Kind", AccessType::Text, 20},
                                    {"Part", AccessType::Double},
                                    {"Day", AccessType::Date},
                                    {"Loose", AccessType::Double}};
  maker.addTable(
      {"T",
       columns,
       {},
       storedProperties(
           {{"", {{"ValidationRule", "[Part] <= [No]"}, {"Description", "all parts"}}},
            {"No", {{"Required", "Yes"}, {"Description", "its number"}}},
            {"Kind", {{"DefaultValue", "\"ore\""}, {"ValidationRule", "\"ore\" Or \"waste\""}}},
            {"Part",
             {{"DefaultValue", "=0.5"},
              {"ValidationRule", "Is Null Or (>=0 And Between 0 And 100)"},
              {"ValidationText", "A part of 100."}}},
            {"Day", {{"ValidationRule", "<=Date()"}, {"DefaultValue", "DMax(\"x\")"}}},
            {"Loose", {{"Required", "Yes"}, {"ValidationRule", ">1"}}}})});
  maker.addRecord({storedAs(1), storedWide("waste"), storedAs(0.25), {}, storedAs(1.0)});
  maker.addRecord({storedAs(2), storedWide("ore"), {}, {}, {}});
  copy(maker);
  EXPECT_THAT(noticed_,
              UnorderedElementsAre(
                  "Note T: The default of field Day works in Access only: DMax(\"x\")",
                  "Note T: The rule of field Day works in Access only: <=Date()",
                  HasSubstr("Field Loose is required but empty in some records"),
                  "Note T: The rule of field Loose is broken by some records and does not hold "
                  "here: >1"));
  EXPECT_EQ(rows("SELECT Count(*) FROM T")[0][0], FieldValue(std::int64_t{2}));
  EXPECT_EQ(refusalOf("INSERT INTO T ([No]) VALUES (3)"), "");
  EXPECT_EQ(rows("SELECT Kind, Part FROM T WHERE [No] = 3")[0], (Row{"ore", 0.5}));
  EXPECT_THAT(refusalOf("INSERT INTO T (Kind) VALUES ('ore')"), HasSubstr("is required"));
  EXPECT_THAT(refusalOf("INSERT INTO T ([No], Kind) VALUES (4, 'x')"), HasSubstr("\"waste\""));
  EXPECT_THAT(refusalOf("INSERT INTO T ([No], Part) VALUES (400, 101)"),
              HasSubstr("A part of 100"));
  EXPECT_THAT(refusalOf("INSERT INTO T ([No], Part) VALUES (4, 5)"), HasSubstr("[Part] <= [No]"));
  EXPECT_THAT(refusalOf("INSERT INTO T ([No]) VALUES (3000000000)"), HasSubstr("whole numbers"));
  EXPECT_EQ(rows("SELECT description FROM MSysLodexFields WHERE field_name = ''")[0],
            (Row{"all parts"}));
  Row column;
  ASSERT_TRUE(driver_->schema(SchemaKind::Columns)->next(column));
  EXPECT_EQ(column.back(), FieldValue("its number"));

  // What the engine refuses in a table, though it understands it.
  maker = AccessMaker();
  maker.addTable({"T",
                  columns,
                  {},
                  storedProperties({{"No", {{"DefaultValue", "(SELECT 1)"}}},
                                    {"Kind", {{"DefaultValue", "?"}}},
                                    {"Part", {{"ValidationRule", "(SELECT 1) > 0"}}},
                                    {"Day", {{"ValidationRule", ">?"}}},
                                    {"Loose", {{"ValidationRule", ">>("}}}})});
  copy(maker);
  EXPECT_EQ(noticed_.size(), 5u);
  EXPECT_EQ(refusalOf("INSERT INTO T (Part) VALUES (1)"), "");

  maker = AccessMaker();
  maker.addTable({"T", columns, {}, "MR2 with something else after it"});
  copy(maker);
  EXPECT_THAT(noticed_, ElementsAre("Error T: Descriptions, defaults and rules cannot be read and "
                                    "were left out"));
}

TEST_F(AccessFileTest, KeysGiveWayToTheRecords) {
  AccessMaker maker;
  maker.addTable({"T",
                  {{"id", AccessType::LongInteger, 0, 0, true}, {"u", AccessType::Byte}},
                  {{"key", {0}, true, true}, {"unique", {1}, true}}});
  maker.addRecord({storedAs(7), "\x01"});
  maker.addRecord({storedAs(7), "\x01"});
  copy(maker);
  EXPECT_EQ(value("SELECT Count(*) FROM T"), FieldValue(std::int64_t{2}));
  EXPECT_THAT(noticed_, ElementsAre(HasSubstr("primary key is empty or not unique"),
                                    HasSubstr("Index key has equal values"),
                                    HasSubstr("Index unique has equal values")));
  EXPECT_EQ(refusalOf("INSERT INTO T (u) VALUES (5)"), "");
  EXPECT_EQ(value("SELECT id FROM T WHERE u = 5"), FieldValue(std::int64_t{8}));
}

TEST_F(AccessFileTest, FieldsWithSeveralValuesBringTheirTable) {
  constexpr std::uint32_t kSystem = 0x80000000;
  AccessMaker maker;
  const std::uint32_t flat =
      maker.addTable({"f_1",
                      {{"T_Colours", AccessType::LongInteger}, {"Value", AccessType::Text, 20}},
                      {},
                      "",
                      kSystem});
  maker.addRecord({storedAs(1), storedWide("red")});
  maker.addRecord({storedAs(1), storedWide("grey")});
  const std::uint32_t owner =
      maker.addTable({"T", {{"Colours", AccessType::Complex}, {"Files", AccessType::Complex}}});
  maker.addRecord({storedAs(1), storedAs(1)});
  maker.addTable({"MSysComplexColumns",
                  {{"ColumnName", AccessType::Text, 100},
                   {"ConceptualTableID", AccessType::LongInteger},
                   {"FlatTableID", AccessType::LongInteger}},
                  {},
                  "",
                  kSystem});
  maker.addRecord({storedWide("Colours"), storedAs(owner), storedAs(flat)});
  copy(maker);
  EXPECT_EQ(rows("SELECT Value FROM T INNER JOIN T_Colours ON T.Colours = T_Colours.T_Colours "
                 "ORDER BY Value"),
            (std::vector<Row>{{"grey"}, {"red"}}));
  EXPECT_THAT(
      noticed_,
      ElementsAre(HasSubstr("Note T: The values of field Colours, which holds several, are"),
                  HasSubstr("Error T: The values of field Files, which holds several, were "
                            "not found")));
}

}  // namespace
}  // namespace lodex
