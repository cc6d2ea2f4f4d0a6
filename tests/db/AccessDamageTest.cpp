// Damaged Access files: whatever can be read is copied, and whatever is lost is reported.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "AccessFixture.h"
#include "basic/Files.h"

namespace lodex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Long = AccessMaker::Long;
using Place = AccessMaker::Place;
using AccessDamageTest = AccessFixture;

TEST_F(AccessDamageTest, DamagedPagesAreReported) {
  AccessMaker maker;
  maker.addTable({"T", {{"t", AccessType::Text, 400}}});
  for (int i = 0; i < 30; ++i) maker.addRecord({storedWide(std::string(150, 'x'))});
  maker.write(access_);
  const std::string sound = readFile(access_);
  // The first records fill page 4; that many do not fit on it.
  for (const auto& wrong : {std::string(4096, '\0'), "\x01\x01" + sound.substr(4 * 4096 + 2, 10) +
                                                         std::string(4084, '\xFF')}) {
    std::string damaged = sound;
    damaged.replace(4 * 4096, 4096, wrong);
    writeFileWhole(access_, damaged);
    copy();
    EXPECT_THAT(noticed_, ElementsAre("Error T: A page of records could not be read and was left "
                                      "out"));
    EXPECT_EQ(value("SELECT Count(*) FROM T"), FieldValue(std::int64_t{17}));
  }
}

TEST_F(AccessDamageTest, DamageInTheListOfTablesIsReported) {
  AccessMaker maker;
  for (int i = 0; i < 200; ++i) {
    maker.addTable({"T" + std::to_string(i), {{"n", AccessType::LongInteger}}});
  }
  maker.write(access_);
  const std::string sound = readFile(access_);
  // The records of the list say on which table's page they lie: that of the list itself is 2.
  std::vector<size_t> pages;
  for (size_t at = 0; at < sound.size(); at += 4096) {
    if (sound.substr(at, 2) == "\x01\x01" &&
        sound.substr(at + 4, 4) == std::string("\2\0\0\0", 4)) {
      pages.push_back(at);
    }
  }
  ASSERT_GE(pages.size(), 2u);
  std::string damaged = sound;
  damaged.replace(pages[0], 4096, 4096, '\0');
  writeFileWhole(access_, damaged);
  copy();
  EXPECT_THAT(noticed_, ElementsAre(HasSubstr("Error MSysObjects: A record could not be read: "
                                              "tables may be missing")));
  for (const size_t page : pages) damaged.replace(page, 4096, 4096, '\0');
  writeFileWhole(access_, damaged);
  try {
    copy();
    ADD_FAILURE() << "a file without a list of tables was copied";
  } catch (const FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr("list of tables is damaged"));
  }
}

TEST_F(AccessDamageTest, DamageTakesOnlyWhatItHits) {
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
  EXPECT_THAT(noticed_,
              ElementsAre("Error T: A record could not be read and was left out (2 times)",
                          "Error T: A value of field m could not be read and is empty here (4 "
                          "times)"));
}

TEST_F(AccessDamageTest, MissingRecordsAreNoticed) {
  AccessMaker maker;
  maker.addTable({"T", {{"n", AccessType::LongInteger}}});
  for (int i = 0; i < 3; ++i) maker.addRecord({storedAs(i)});
  maker.write(access_);
  std::string bytes = readFile(access_);
  bytes[4 * 4096 + 12] = 2;  // the page says that it holds two records
  writeFileWhole(access_, bytes);
  copy();
  EXPECT_THAT(noticed_, ElementsAre("Warning T: The table counts 3 records, but only 2 were "
                                    "found"));
}

// Whatever the bytes say, the copy ends, with an error or with what could be read, and records that
// are gone leave a trace.
TEST_F(AccessDamageTest, NothingIsLostInSilence) {
  constexpr int kRecords = 300;
  AccessMaker maker;
  maker.addTable(
      {"Samples",
       {{"No", AccessType::LongInteger, 0, 0, true},
        {"Name", AccessType::Text, 100},
        {"Cu", AccessType::Numeric, 0, 2},
        {"Note", AccessType::Memo}},
       {{"PrimaryKey", {0}, true, true}, {"Name", {1}}},
       storedProperties({{"Name", {{"ValidationRule", "<>\"x\""}, {"DefaultValue", "1"}}}})});
  for (int i = 0; i < kRecords; ++i) {
    maker.addRecord({storedAs(i), storedNarrow("sample"), storedNumeric(false, 1234),
                     maker.longField(std::string(40u * static_cast<size_t>(i) + 2, 'n'),
                                     i < 50 ? Long::OnePage : Long::Chain)},
                    i % 9 ? Place::Here : Place::Moved);
  }
  maker.write(access_);
  const std::string sound = readFile(access_);
  std::mt19937 random(20);
  const auto place = [&](size_t before) { return random() % (sound.size() - before); };
  int copies = 0, losses = 0;
  for (int round = 0; round < 60; ++round) {
    std::string damaged = sound;
    switch (round % 5) {
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
      case 3:
        damaged.resize(place(0));
        break;
      default:  // in the definitions, which lie at the start
        for (int i = 0; i < 10; ++i) damaged[8192 + random() % 4500] = static_cast<char>(random());
    }
    writeFileWhole(access_, damaged);
    try {
      copy();
    } catch (const FileError&) {
      continue;
    }
    ++copies;
    const bool hasTable = !rows("SELECT 1 FROM sqlite_master WHERE name = 'Samples'").empty();
    const FieldValue count =
        hasTable ? value("SELECT Count(*) FROM Samples") : FieldValue(std::int64_t{0});
    if (fieldNumber(count) == kRecords) continue;
    ++losses;
    EXPECT_THAT(noticed_, Not(IsEmpty())) << "round " << round << ": " << fieldText(count);
  }
  EXPECT_GT(copies, 10);
  EXPECT_GT(losses, 0);
}

}  // namespace
}  // namespace lodex
