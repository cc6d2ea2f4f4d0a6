// Access files made here, byte by byte, and what becomes of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <random>

#include "AccessMaker.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "db/Driver.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/sqlite/SqliteDriver.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Column = AccessMaker::Column;
using Long = AccessMaker::Long;
using Place = AccessMaker::Place;

class AccessFileTest : public testing::Test, public AccessCopyReport {
 protected:
  AccessFileTest() { fs::create_directories(folder_); }
  ~AccessFileTest() override { fs::remove_all(folder_); }
  void warning(const std::string& text) override { warnings_.push_back(text); }

  void copy(AccessMaker& maker) {
    const std::string access = (folder_ / "a.mdb").string();
    const std::string target = (folder_ / "a.sqlite").string();
    fs::remove(target);
    warnings_.clear();
    maker.write(access);
    driver_.reset();
    copyAccessFile(access, target, *this);
    driver_ = openSqliteFile(target);
  }

  std::vector<Row> rows(const std::string& sql) {
    const auto source = driver_->query(sql, {});
    std::vector<Row> all;
    for (Row row; source->next(row);) all.push_back(row);
    return all;
  }
  FieldValue value(const std::string& sql) {
    const auto all = rows(sql);
    return all.empty() || all[0].empty() ? FieldValue("(no record)") : all[0][0];
  }
  std::string refusalOf(const std::string& sql) {
    try {
      driver_->execute(sql, {});
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  }

  const fs::path folder_ =
      fs::temp_directory_path() / ("lodex_access_" + std::to_string(::getpid()));
  std::vector<std::string> warnings_;
  std::unique_ptr<Driver> driver_;
};

bool sameBits(const FieldValue& left, const FieldValue& right) {
  const auto* a = std::get_if<double>(&left);
  const auto* b = std::get_if<double>(&right);
  if (!a || !b) return left == right;
  return std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(*b);
}

std::string numeric(bool negative, std::uint64_t low) {
  std::string bytes(17, '\0');
  bytes[0] = negative ? '\x80' : '\0';
  std::memcpy(&bytes[9], reinterpret_cast<const char*>(&low) + 4, 4);
  std::memcpy(&bytes[13], &low, 4);
  return bytes;
}

std::string calculated(const std::string& content) {
  return std::string(16, '\x01') + storedAs(static_cast<std::uint32_t>(content.size())) + content +
         std::string(3, '\0');
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
      {"decimal", {"v", T::Numeric, 0, 3}, numeric(true, 12345), -12.345},
      {"long decimal",
       {"v", T::Numeric, 0, 1},
       numeric(false, UINT64_MAX),
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
      {"calculated text", {"v", T::Text, 40, 0, false, true}, calculated(storedNarrow("c")), "c"},
      {"calculated truth",
       {"v", T::Boolean, 40, 0, false, true},
       calculated("\x01"),
       std::int64_t{-1}},
      {"calculated decimal",
       {"v", T::Numeric, 40, 0, false, true},
       calculated(std::string("\x0E\0\x02\x80\x01\0\0\0\x05\0\0\0\0\0\0\0", 16)),
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
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("1 values that are no numbers"),
                                     HasSubstr("1 dates beyond the calendar")));
  EXPECT_EQ(value("PRAGMA integrity_check"), FieldValue("ok"));
}

TEST_F(AccessFileTest, DecimalsKeepTheirDigits) {
  AccessMaker maker;
  maker.addTable({"T",
                  {{"short", AccessType::Numeric, 0, 2},
                   {"long", AccessType::Numeric, 0, 3},
                   {"big", AccessType::BigInteger}}});
  maker.addRecord({numeric(true, 150), numeric(false, UINT64_MAX), storedAs(std::int64_t{1})});
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
    EXPECT_THAT(warnings_, IsEmpty());
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
  maker.addTable({"sqlite_x", {{"rowid", AccessType::Byte}, {"_rowid_", AccessType::Byte}}});
  copy(maker);
  auto source = driver_->schema(SchemaKind::Columns);
  std::vector<std::string> names;
  for (Row row; source->next(row);) names.push_back(fieldText(row[0]) + "/" + fieldText(row[1]));
  EXPECT_THAT(
      names, ElementsAre("_sqlite_x/rowid", "_sqlite_x/_rowid_", name + "/x [y", name + "/select"));
  EXPECT_THAT(warnings_, testing::UnorderedElementsAre(
                             "Table sqlite_x is called _sqlite_x here",
                             "Table Far lies in another database, C:\\back.mdb, and was "
                             "left out"));
}

// Properties as the catalogue stores them: names first, then the values of each field.
std::string properties(
    const std::vector<std::pair<std::string, std::vector<std::array<std::string, 2>>>>& fields) {
  std::string names, rest;
  std::vector<std::string> known;
  const auto text = [](const std::string& ascii) {
    return storedAs(static_cast<std::uint16_t>(2 * ascii.size())) + storedWide(ascii);
  };
  for (const auto& [field, list] : fields) {
    std::string chunk = std::string(4, '\0') + text(field);
    for (const auto& [name, content] : list) {
      const bool isTruth = name == "Required";
      const std::string stored = isTruth ? std::string(1, content == "Yes") : storedWide(content);
      chunk += storedAs(static_cast<std::uint16_t>(8 + stored.size())) + '\0' +
               static_cast<char>(isTruth ? 1 : 10) +
               storedAs(static_cast<std::uint16_t>(known.size())) +
               storedAs(static_cast<std::uint16_t>(stored.size())) + stored;
      known.push_back(name);
      names += text(name);
    }
    rest += storedAs(static_cast<std::uint32_t>(6 + chunk.size())) +
            storedAs(static_cast<std::uint16_t>(field.empty() ? 0 : 1)) + chunk;
  }
  return std::string("MR2\0", 4) + storedAs(static_cast<std::uint32_t>(6 + names.size())) +
         storedAs(std::uint16_t{0x80}) + names + rest;
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
       properties(
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
  EXPECT_THAT(warnings_,
              testing::UnorderedElementsAre(
                  "Table T: the default of field Day works in Access only: DMax(\"x\")",
                  "Table T: the rule of field Day works in Access only: <=Date()",
                  HasSubstr("field Loose is required but empty in some records"),
                  "Table T: the rule of field Loose is broken by some records and does not hold "
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
                  properties({{"No", {{"DefaultValue", "(SELECT 1)"}}},
                              {"Kind", {{"DefaultValue", "?"}}},
                              {"Part", {{"ValidationRule", "(SELECT 1) > 0"}}},
                              {"Day", {{"ValidationRule", ">?"}}},
                              {"Loose", {{"ValidationRule", ">>("}}}})});
  copy(maker);
  EXPECT_EQ(warnings_.size(), 5u);
  EXPECT_EQ(refusalOf("INSERT INTO T (Part) VALUES (1)"), "");

  maker = AccessMaker();
  maker.addTable({"T", columns, {}, "MR2 with something else behind it"});
  copy(maker);
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("descriptions, defaults and rules are damaged")));
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
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("primary key is not unique"),
                                     HasSubstr("index key holds equal values"),
                                     HasSubstr("index unique holds equal values")));
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
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("Colours, which holds several, stand in table T_"),
                                     HasSubstr("Files, which holds several, were not found")));
}

TEST_F(AccessFileTest, DamagedPagesAreTold) {
  AccessMaker maker;
  maker.addTable({"T", {{"t", AccessType::Text, 400}}});
  for (int i = 0; i < 30; ++i) maker.addRecord({storedWide(std::string(150, 'x'))});
  const std::string path = (folder_ / "pages.mdb").string();
  maker.write(path);
  const std::string sound = readFile(path);
  // The first records fill page 4; that many do not fit on it.
  for (const auto& wrong : {std::string(4096, '\0'), "\x01\x01" + sound.substr(4 * 4096 + 2, 10) +
                                                         std::string(4084, '\xFF')}) {
    std::string damaged = sound;
    damaged.replace(4 * 4096, 4096, wrong);
    writeFileWhole(path, damaged);
    const std::string target = (folder_ / "pages.sqlite").string();
    fs::remove(target);
    warnings_.clear();
    copyAccessFile(path, target, *this);
    EXPECT_THAT(warnings_, ElementsAre(HasSubstr("1 damaged pages were left out")));
    driver_ = openSqliteFile(target);
    EXPECT_EQ(value("SELECT Count(*) FROM T"), FieldValue(std::int64_t{17}));
  }
}

TEST_F(AccessFileTest, DamageInTheListOfTablesIsAnErrorOrTold) {
  AccessMaker maker;
  for (int i = 0; i < 200; ++i) {
    maker.addTable({"T" + std::to_string(i), {{"n", AccessType::LongInteger}}});
  }
  const std::string path = (folder_ / "list.mdb").string();
  maker.write(path);
  const std::string sound = readFile(path);
  // The records of the list say on which table's page they lie: that of the list itself is 2.
  std::vector<size_t> pages;
  for (size_t at = 0; at < sound.size(); at += 4096) {
    if (sound.substr(at, 2) == "\x01\x01" &&
        sound.substr(at + 4, 4) == std::string("\2\0\0\0", 4)) {
      pages.push_back(at);
    }
  }
  ASSERT_GE(pages.size(), 2u);
  const std::string target = (folder_ / "list.sqlite").string();
  std::string damaged = sound;
  damaged.replace(pages[0], 4096, 4096, '\0');
  writeFileWhole(path, damaged);
  copyAccessFile(path, target, *this);
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("damaged at 1 places: tables may be missing")));
  for (const size_t page : pages) damaged.replace(page, 4096, 4096, '\0');
  writeFileWhole(path, damaged);
  fs::remove(target);
  try {
    copyAccessFile(path, target, *this);
    ADD_FAILURE() << "a file without a list of tables was copied";
  } catch (const FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr("list of tables is damaged"));
  }
}

TEST_F(AccessFileTest, DamageTakesOnlyWhatItHits) {
  AccessMaker maker;
  maker.addTable({"T", {{"n", AccessType::LongInteger}, {"m", AccessType::Memo}}});
  const auto memo = [](std::uint32_t size, std::uint32_t pointer) {
    return storedAs(size) + storedAs(pointer) + std::string(4, '\0');
  };
  const std::uint32_t first = maker.addLongRow(storedAs(0) + "ab");
  const std::uint32_t circle = maker.addLongRow(storedAs(first + 1) + "c");
  ASSERT_EQ(circle, first + 1);
  maker.addRecord({storedAs(1), maker.longField("\xFF\xFEok", Long::OnePage)});
  maker.addRecord({storedAs(2), memo(1000, first)});
  maker.addRecord({storedAs(3), memo(0x3FFFFFFF, circle)});
  maker.addRecord({storedAs(4), memo(0x40000010, 0xFFFFFF00)});
  maker.addRecord({storedAs(5), memo(10, circle)});
  maker.addRecord({storedAs(6), "short"});
  maker.addRaw("\xFF\xFFsome bytes that make no record");
  maker.addRaw(storedAs(0xFFFFFF00), 0x4000);
  copy(maker);
  EXPECT_EQ(rows("SELECT n, m FROM T WHERE m IS NOT NULL"),
            (std::vector<Row>{{std::int64_t{1}, "ok"}, {std::int64_t{5}, "捣捣捣捣捣"}}));
  EXPECT_EQ(value("SELECT Count(*) FROM T"), FieldValue(std::int64_t{6}));
  EXPECT_THAT(warnings_, ElementsAre(HasSubstr("2 damaged records"), HasSubstr("4 damaged memos")));
}

// Whatever the bytes say, the copy ends, with an error or with what could be read.
TEST_F(AccessFileTest, DamageOfAnyKindComesToAnEnd) {
  AccessMaker maker;
  maker.addTable({"Samples",
                  {{"No", AccessType::LongInteger, 0, 0, true},
                   {"Name", AccessType::Text, 100},
                   {"Cu", AccessType::Numeric, 0, 2},
                   {"Note", AccessType::Memo}},
                  {{"PrimaryKey", {0}, true, true}, {"Name", {1}}},
                  properties({{"Name", {{"ValidationRule", "<>\"x\""}, {"DefaultValue", "1"}}}})});
  for (int i = 0; i < 300; ++i) {
    maker.addRecord({storedAs(i), storedNarrow("sample"), numeric(false, 1234),
                     maker.longField(std::string(40u * static_cast<size_t>(i) + 2, 'n'),
                                     i < 50 ? Long::OnePage : Long::Chain)},
                    i % 9 ? Place::Here : Place::Moved);
  }
  const std::string path = (folder_ / "damaged.mdb").string();
  maker.write(path);
  const std::string sound = readFile(path);
  std::mt19937 random(20);
  const auto place = [&](size_t before) { return random() % (sound.size() - before); };
  for (int round = 0; round < 60; ++round) {
    std::string damaged = sound;
    switch (round % 4) {
      case 0:
        for (int i = 0; i < 200; ++i) damaged[place(0)] = static_cast<char>(random());
        break;
      case 1:
        for (int i = 0; i < 40; ++i) damaged.replace(place(4), 4, round % 8 == 1 ? 4 : 3, '\xFF');
        break;
      case 2:
        damaged.replace(place(4096) / 4096 * 4096, 4096,
                        sound.substr(place(4096) / 4096 * 4096, 4096));
        break;
      default:  // in the definitions, which lie at the start
        for (int i = 0; i < 10; ++i) damaged[8192 + random() % 4500] = static_cast<char>(random());
    }
    writeFileWhole(path, damaged);
    const std::string target = (folder_ / "damaged.sqlite").string();
    fs::remove(target);
    try {
      copyAccessFile(path, target, *this);
    } catch (const FileError&) {
    }
  }
}

}  // namespace
}  // namespace lodex
