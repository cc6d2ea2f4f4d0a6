#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <random>

#include "basic/Error.h"
#include "basic/Files.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/jet/AccessHelper.h"
#include "db/drivers/jet/AccessQueries.h"
#include "db/drivers/jet/AccessRows.h"

namespace lodex {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

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

// With real files, which are no part of the project.
class JetTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(samples_)) GTEST_SKIP() << "there are no sample files at " << samples_;
    folder_ = fs::temp_directory_path() / ("lodex_jet_" + std::to_string(::getpid()));
    fs::create_directories(folder_);
  }
  void TearDown() override {
    if (!folder_.empty()) fs::remove_all(folder_);
  }

  fs::path take(const std::string& name) const {
    fs::copy_file(samples_ / name, folder_ / name, fs::copy_options::overwrite_existing);
    fs::permissions(folder_ / name, fs::perms::owner_write, fs::perm_options::add);
    return folder_ / name;
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

  const fs::path samples_ = fs::path(LODEX_SOURCE_DIR) / ".." / "shared" / "jet";
  fs::path folder_;
};

TEST_F(JetTest, ValuesComeThroughInEveryFormat) {
  for (const std::string name : {"testV1997.mdb", "testV2003.mdb", "testV2010.accdb"}) {
    Connection connection = open(take(name));
    EXPECT_EQ(first(connection, "SELECT * FROM Table1 WHERE A = 'abcdefg'"),
              "abcdefg|hijklmnop|2|222|333333333|444.555|1974-09-21|3.5|True")
        << name;
    const auto rows = connection.OpenRecordset("SELECT * FROM Table1");
    const FieldCode codes[] = {FieldCode::VarText,  FieldCode::VarText,  FieldCode::Byte,
                               FieldCode::SmallInt, FieldCode::Integer,  FieldCode::Double,
                               FieldCode::Date,     FieldCode::Currency, FieldCode::Boolean};
    for (size_t i = 0; i < std::size(codes); ++i) {
      EXPECT_EQ(rows->Fields()[i].type.code, codes[i]) << name << " " << rows->Fields()[i].name;
    }
  }
  Connection dates = open(take("DateTestDatabase.mdb"));
  EXPECT_EQ(first(dates, "SELECT DateTimeCol, DateCol FROM DateTest WHERE IDCol = 4"),
            "0632-01-01|0633-01-01");
}

TEST_F(JetTest, KeysRelationshipsAndQueriesComeAlong) {
  Connection connection = open(take("nwind.mdb"));
  EXPECT_EQ(first(connection, "SELECT COUNT(*), SUM(Quantity) FROM [Order Details]"), "2155|51317");
  EXPECT_EQ(first(connection,
                  "SELECT ShipName, ShipRegion, Freight FROM Orders "
                  "WHERE OrderID = 10249"),
            "Toms Spezialitäten|NULL|11.61");
  EXPECT_EQ(first(connection, "SELECT LENGTH(Picture) FROM Categories WHERE CategoryID = 1"),
            "10746");
  EXPECT_EQ(first(connection,
                  "SELECT szReferencedObject, grbit FROM MSysRelationships "
                  "WHERE szRelationship = 'CustomersOrders'"),
            "Customers|256");
  EXPECT_EQ(first(connection, "SELECT Subtotal FROM [Order Subtotals] WHERE OrderID = 10249"),
            "1863.4");

  auto indexes = connection.OpenSchema(SchemaKind::Indexes);
  indexes->Filter("TABLE_NAME = 'Order Details' AND PRIMARY_KEY = True");
  EXPECT_EQ(indexes->RecordCount(), 2);
  auto tables = connection.OpenSchema(SchemaKind::Tables);
  tables->Filter("TABLE_NAME LIKE 'MSys*'");
  EXPECT_EQ(tables->RecordCount(), 0);

  EXPECT_GT(std::stoi(first(connection, "SELECT COUNT(*) FROM [Current Product List]")), 0);
  EXPECT_THROW(connection.Execute("INSERT INTO Orders (OrderID) VALUES (10249)"), Error);
  EXPECT_THAT(connection.Warnings(), Contains(HasSubstr("Sales by Year")));
}

TEST_F(JetTest, AFileCutShortLeavesNothingBehind) {
  const fs::path path = take("nwind.mdb");
  for (const std::uintmax_t size : {3000u, 12000u, 400000u, 1000000u}) {
    fs::resize_file(path, size);
    EXPECT_THROW(open(path), FileError) << size;
    EXPECT_EQ(filesInFolder(), 1u) << size;
    take("nwind.mdb");
  }
}

TEST_F(JetTest, DamageNeverCrashes) {
  std::mt19937 random(20);
  for (const std::string name : {"testV1997.mdb", "testV2010.accdb", "indexTestV2003.mdb"}) {
    const std::string sound = readFile((samples_ / name).string());
    for (int round = 0; round < 12; ++round) {
      std::string damaged = sound;
      for (int i = 0; i < 400; ++i)
        damaged[random() % damaged.size()] = static_cast<char>(random());
      const fs::path path = folder_ / "damaged.mdb";
      std::ofstream(path, std::ios::binary) << damaged;
      const fs::path copy = folder_ / "copy.sqlite";
      fs::remove(copy);
      AccessCopyReport silent;
      try {
        copyAccessFile(path.string(), copy.string(), silent);
      } catch (const FileError&) {
      }
    }
  }
}

}  // namespace
}  // namespace lodex
