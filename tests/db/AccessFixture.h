#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "AccessMaker.h"
#include "basic/Error.h"
#include "db/Driver.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/sqlite/SqliteDriver.h"

namespace lodex {

/// Copies Access files made for a test into SQLite files and looks at what arrived.
class AccessFixture : public testing::Test {
 protected:
  AccessFixture() { std::filesystem::create_directories(folder_); }
  ~AccessFixture() override { std::filesystem::remove_all(folder_); }

  void copy(AccessMaker& maker) {
    maker.write(access_);
    copy();
  }
  // Copies the Access file and reads what that noticed: "Error T: text (2 times)".
  void copy() {
    driver_.reset();
    noticed_.clear();
    std::filesystem::remove(target_);
    copyAccessFile(access_, target_);
    driver_ = openSqliteFile(target_);
    for (const Row& row :
         rows("SELECT severity, table_name, text, [count] FROM MSysLodexLeftOut")) {
      const char* const severities[] = {"Note", "Warning", "Error"};
      std::string line = severities[static_cast<int>(fieldNumber(row[0]))];
      line += " " + fieldText(row[1]) + ": " + fieldText(row[2]);
      if (fieldNumber(row[3]) > 1) line += " (" + fieldText(row[3]) + " times)";
      noticed_.push_back(line);
    }
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

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("lodex_access_" + std::to_string(::getpid()));
  const std::string access_ = (folder_ / "a.mdb").string();
  const std::string target_ = (folder_ / "a.sqlite").string();
  std::vector<std::string> noticed_;
  std::unique_ptr<Driver> driver_;
};

}  // namespace lodex
