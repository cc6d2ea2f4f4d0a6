#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "AccessMaker.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/jet/AccessHelper.h"
#include "db/drivers/jet/AccessQueries.h"
#include "db/drivers/jet/AccessRows.h"
#include "db/drivers/jet/AccessTwin.h"
#include "db/drivers/sqlite/SqliteDriver.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(AccessDate, CountsTheTimeForwardFromEveryDay) {
  const struct {
    std::string name;
    double days;
    std::string expected;
  } rows[] = {
      {"day zero", 0, "1899-12-30"},
      {"noon of day zero", 0.5, "1899-12-30 12:00:00"},
      {"six in the morning before day zero", -1.25, "1899-12-29 06:00:00"},
      {"milliseconds", 36526 + 0.25 / 86400, "2000-01-01 00:00:00.250"},
      {"rounded up to the next day", 36526.99999999999, "2000-01-02"},
      {"earliest", -657434, "0100-01-01"},
      {"before the earliest", -657435, ""},
      {"latest", 2958465, "9999-12-31"},
      {"no number", std::nan(""), ""},
      {"far too large", 1e300, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(accessDateText(row.days), row.expected) << row.name;
}

TEST(AccessDecimal, KeepsEveryDigit) {
  const struct {
    std::int64_t stored;
    bool exact;
    std::string text;
  } currencies[] = {
      {12345, false, "1.2345"},
      {-500, false, "-0.05"},
      {INT64_MAX, true, "922337203685477.5807"},
      {INT64_MIN, true, "-922337203685477.5808"},
  };
  for (const auto& row : currencies) {
    AccessValue value;
    readCurrency(row.stored, value);
    EXPECT_EQ(value.exact, row.exact) << row.text;
    if (row.exact) {
      EXPECT_EQ(value.bytes, row.text);
    } else {
      EXPECT_EQ(value.number, std::stod(row.text));
    }
  }

  std::array<std::uint8_t, 17> bytes{0x80};
  bytes[13] = 0x39, bytes[14] = 0x30;  // 12345 in the lowest word
  AccessValue value;
  readNumeric({bytes.data(), bytes.size()}, 3, value);
  EXPECT_EQ(value.number, -12.345);
  bytes[1] = 1;  // and 2^96 in the highest
  readNumeric({bytes.data(), bytes.size()}, 0, value);
  EXPECT_TRUE(value.exact);
  EXPECT_EQ(value.bytes, "-79228162514264337593543962681");
  EXPECT_THROW(readNumeric({bytes.data(), 9}, 0, value), FileError);
}

TEST(AccessQueries, ArePutTogetherFromTheirParts) {
  // attribute, flag, expression, name 1, name 2, order
  const std::vector<AccessQueryPart> joined{
      {5, 0, "", "A", "", "1"},
      {5, 0, "", "B", "", "2"},
      {5, 0, "", "C", "", "3"},
      {7, 2, "A.x=B.x", "A", "B", "1"},
      {7, 1, "B.y=C.y", "B", "C", "2"},
      {7, 2, "A.z=B.z", "a", "b", "3"},
      {6, 0, "Sum(A.v)", "Total", "", "2"},
      {6, 0, "A.x", "", "", "1"},
      {9, 0, "A.x", "", "", "1"},
      {11, 0, "A.x", "D", "", "1"},
      {3, 16, "", "5", "", "1"},
  };
  EXPECT_EQ(buildAccessQuery("q", joined).sql,
            "SELECT TOP 5 A.x, Sum(A.v) AS [Total] FROM ([A] LEFT JOIN [B] ON (A.x=B.x) AND "
            "(A.z=B.z)) INNER JOIN [C] ON (B.y=C.y) GROUP BY A.x ORDER BY A.x DESC");

  const std::vector<AccessQueryPart> united{{1, 9, "", "", "", "0"},
                                            {5, 0, "SELECT 1;", "", "X1", "1"},
                                            {5, 0, "SELECT 2", "", "X2", "2"}};
  EXPECT_EQ(buildAccessQuery("q", united).sql, "SELECT 1 UNION ALL SELECT 2");

  const std::vector<AccessQueryPart> truths{
      {5, 0, "", "A", "", ""},
      {8, 0, "A.d = no And b=\"= Yes\" And No=Yes And [x]=[= No] And c=No.e Or f <> Yes", "", "",
       ""}};
  EXPECT_EQ(buildAccessQuery("q", truths).sql,
            "SELECT * FROM [A] WHERE A.d = False And b=\"= Yes\" And No=True And [x]=[= No] And "
            "c=No.e Or f <> True");

  EXPECT_THAT(buildAccessQuery("q", {{1, 5, "", "", "", ""}}).obstacle, HasSubstr("changes data"));
  EXPECT_THAT(
      buildAccessQuery("q", {{5, 0, "", "A", "", ""}, {7, 1, "A.x=B.x", "A", "B", ""}}).obstacle,
      HasSubstr("joins do not fit"));
  EXPECT_THAT(buildAccessQuery("q", {{2, 8, "", "p", "", ""}}).obstacle, HasSubstr("parameters"));
}

TEST(AccessHelper, IsStoppedWhenItHangsAndSurvivedWhenItCrashes) {
  EXPECT_TRUE(runHelper("/bin/sleep", {"60"}, 50).stalled);
  const HelperRun crashed = runHelper("/bin/sh", {"-c", "kill -SEGV $$"}, 5000);
  EXPECT_EQ(crashed.status, -1);
  EXPECT_FALSE(crashed.stalled);
  const HelperRun failed = runHelper("/bin/sh", {"-c", "echo a >&2; echo b >&2; exit 3"}, 5000);
  EXPECT_EQ(failed.status, 3);
  EXPECT_THAT(failed.lines, ElementsAre("a", "b"));
  EXPECT_THROW(runHelper("/no/such/program", {}, 100), Error);
}

// Whole files, opened as a user's database is.
class JetTest : public testing::Test {
 protected:
  JetTest() { fs::create_directories(folder_); }
  ~JetTest() override { fs::remove_all(folder_); }

  Connection open(AccessMaker& maker) const {
    maker.write(path_.string());
    return open(path_);
  }
  static Connection open(const fs::path& path) {
    Connection connection;
    connection.Open(ConnectionString(path.string(), "", ""));
    return connection;
  }
  static std::string first(Connection& connection, const std::string& sql) {
    const auto rows = connection.OpenRecordset(sql);
    std::string line;
    for (int i = 0; i < static_cast<int>(rows->Fields().size()); ++i) {
      line += (i ? "|" : "") + (isNull(rows->Value(i)) ? "NULL" : rows->Text(i));
    }
    return line;
  }
  size_t filesInFolder() const {
    return static_cast<size_t>(
        std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  const fs::path folder_ = fs::temp_directory_path() / ("lodex_jet_" + std::to_string(::getpid()));
  const fs::path path_ = folder_ / "ores.mdb";
};

TEST_F(JetTest, ValuesComeThroughInEveryFormat) {
  using T = AccessType;
  for (const std::string format : {"Access 97", "Access 2003", "Access 2010"}) {
    const bool isJet3 = format == "Access 97";
    AccessMaker maker(isJet3);
    if (format == "Access 2010") maker.makeAce();
    const auto text = [&](const std::string& ascii) { return isJet3 ? ascii : storedWide(ascii); };
    maker.addTable({"Ores",
                    {{"Name", T::Text, 100},
                     {"Grade", T::Byte},
                     {"Depth", T::Integer},
                     {"Number", T::LongInteger},
                     {"Cu", T::Double},
                     {"Day", T::Date},
                     {"Price", T::Currency},
                     {"Sold", T::Boolean},
                     {"Remark", T::Memo}}});
    maker.addRecord({text("pyrite"), "\x02", storedAs(std::int16_t{222}), storedAs(333333333),
                     storedAs(444.555), storedAs(27293.0), storedAs(std::int64_t{35000}), "",
                     maker.longField(text("fine"), AccessMaker::Long::OnePage)});
    Connection connection = open(maker);
    EXPECT_EQ(first(connection, "SELECT * FROM Ores"),
              "pyrite|2|222|333333333|444.555|1974-09-21|3.5|True|fine")
        << format;
    const auto rows = connection.OpenRecordset("SELECT * FROM Ores");
    const FieldCode codes[] = {FieldCode::VarText,  FieldCode::Byte,    FieldCode::SmallInt,
                               FieldCode::Integer,  FieldCode::Double,  FieldCode::Date,
                               FieldCode::Currency, FieldCode::Boolean, FieldCode::Memo};
    for (size_t i = 0; i < std::size(codes); ++i) {
      EXPECT_EQ(rows->Fields()[i].type.code, codes[i]) << format << " " << rows->Fields()[i].name;
    }
    connection.Close();
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
}

// A hole with its samples, a relationship between them, and saved queries.
AccessMaker holesAndSamples() {
  using T = AccessType;
  constexpr std::uint32_t kSystem = 0x80000000;
  AccessMaker maker;
  maker.addTable({"Holes", {{"Hole", T::Text, 40}}, {{"PrimaryKey", {0}, true, true}}});
  maker.addRecord({storedWide("DH-1")});
  maker.addTable({"Samples",
                  {{"Hole", T::Text, 40}, {"No", T::LongInteger}, {"Cu", T::Double}},
                  {{"PrimaryKey", {0, 1}, true, true}, {"Holes", {0}}}});
  for (int i = 1; i <= 40; ++i) {
    maker.addRecord({storedWide("DH-1"), storedAs(i), storedAs(i * 0.25)});
  }
  maker.addTable({"MSysRelationships",
                  {{"grbit", T::LongInteger},
                   {"szColumn", T::Text, 128},
                   {"szObject", T::Text, 128},
                   {"szReferencedColumn", T::Text, 128},
                   {"szReferencedObject", T::Text, 128},
                   {"szRelationship", T::Text, 128}},
                  {},
                  "",
                  kSystem});
  maker.addRecord({storedAs(256), storedWide("Hole"), storedWide("Samples"), storedWide("Hole"),
                   storedWide("Holes"), storedWide("HolesSamples")});
  const std::int32_t rich = maker.addQuery("Rich samples");
  const std::int32_t asked = maker.addQuery("Samples above");
  maker.addTable({"MSysQueries",
                  {{"ObjectId", T::LongInteger},
                   {"Attribute", T::Byte},
                   {"Flag", T::Integer},
                   {"Expression", T::Memo},
                   {"Name1", T::Text, 128},
                   {"Name2", T::Text, 128},
                   {"Order", T::Binary, 10}},
                  {},
                  "",
                  kSystem});
  const auto part = [&](std::int32_t query, char attribute, const std::string& expression,
                        const std::string& name) {
    StoredCell stored;
    if (!expression.empty()) {
      stored = maker.longField(storedWide(expression), AccessMaker::Long::Inline);
    }
    maker.addRecord({storedAs(query),
                     std::string(1, attribute),
                     storedAs(std::int16_t{0}),
                     stored,
                     storedWide(name),
                     {},
                     std::string(1, '\1')});
  };
  for (const std::int32_t query : {rich, asked}) {
    part(query, 5, "", "Samples");
    part(query, 6, "No", "");
    part(query, 8, "Cu > 5", "");
  }
  part(asked, 2, "", "Least Cu");
  return maker;
}

TEST_F(JetTest, KeysRelationshipsAndQueriesComeAlong) {
  AccessMaker maker = holesAndSamples();
  Connection connection = open(maker);
  EXPECT_EQ(first(connection, "SELECT COUNT(*), SUM(Cu) FROM Samples"), "40|205");
  EXPECT_EQ(first(connection,
                  "SELECT szReferencedObject, grbit FROM MSysRelationships "
                  "WHERE szRelationship = 'HolesSamples'"),
            "Holes|256");
  EXPECT_EQ(first(connection, "SELECT COUNT(*) FROM [Rich samples]"), "20");

  auto indexes = connection.OpenSchema(SchemaKind::Indexes);
  indexes->Filter("TABLE_NAME = 'Samples' AND PRIMARY_KEY = True");
  EXPECT_EQ(indexes->RecordCount(), 2);
  auto tables = connection.OpenSchema(SchemaKind::Tables);
  tables->Filter("TABLE_NAME LIKE 'MSys*'");
  EXPECT_EQ(tables->RecordCount(), 0);
  EXPECT_THROW(connection.Execute("INSERT INTO Samples (Hole, [No]) VALUES ('DH-1', 7)"), Error);
}

TEST_F(JetTest, AFileCutShortLeavesNothingBehind) {
  holesAndSamples().write(path_.string());
  const std::string whole = readFile(path_.string());
  for (const size_t size : {3000u, 9000u, 20000u, 25000u}) {
    ASSERT_LT(size, whole.size());
    writeFileWhole(path_.string(), whole.substr(0, size));
    EXPECT_THROW(open(path_), FileError) << size;
    EXPECT_EQ(filesInFolder(), 1u) << size;
  }
}

// Files made by Access are not part of the project; a folder of them can be named.
std::vector<fs::path> filesMadeByAccess() {
  std::vector<fs::path> files;
  const char* folder = std::getenv("LODEX_ACCESS_FILES");
  if (!folder) return files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (isAccessFile(entry.path().string())) files.push_back(entry.path());
  }
  return files;
}

class FileMadeByAccess : public testing::TestWithParam<fs::path> {};

TEST_P(FileMadeByAccess, IsCopiedWhole) {
  const fs::path copy =
      fs::temp_directory_path() / ("lodex_access_file_" + std::to_string(::getpid()));
  fs::remove(copy);
  copyAccessFile(GetParam().string(), copy.string());
  const auto driver = openSqliteFile(copy.string());
  const auto rows = driver->query("SELECT table_name, text FROM MSysLodexLeftOut", {});
  for (Row row; rows->next(row);) {
    EXPECT_THAT(fieldText(row[1]), Not(AnyOf(HasSubstr("could not be"), HasSubstr("but only"))))
        << fieldText(row[0]);
  }
  fs::remove(copy);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(FileMadeByAccess);
INSTANTIATE_TEST_SUITE_P(Given, FileMadeByAccess, testing::ValuesIn(filesMadeByAccess()));

}  // namespace
}  // namespace lodex
