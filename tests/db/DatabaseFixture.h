#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "basic/Error.h"
#include "db/Connection.h"
#include "db/Recordset.h"

namespace lodex {

/// A test with an empty database of its own.
class DatabaseFixture : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '_');
    folder_ = std::filesystem::temp_directory_path() /
              ("lodex_" + name + "_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    createDatabase(path());
    connection_.Open(ConnectionString(path(), "", ""));
  }
  void TearDown() override {
    connection_.Close();
    std::filesystem::remove_all(folder_);
  }

  std::string path() const { return (folder_ / "test.mdb").string(); }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  void run(const std::string& sql) { connection_.Execute(sql); }

  /// Headings and records: fields parted by "|", records by "\n".
  std::string show(const std::string& sql) {
    const auto records = connection_.OpenRecordset(sql);
    std::string text;
    const int count = static_cast<int>(records->Fields().size());
    for (int i = 0; i < count; ++i) text += (i ? "|" : "") + records->Fields()[i].name;
    for (; !records->Eof(); records->MoveNext()) {
      text += '\n';
      for (int i = 0; i < count; ++i) text += (i ? "|" : "") + records->Text(i);
    }
    return text;
  }

  /// The records alone, behind one another with ";".
  std::string records(const std::string& sql) {
    std::string text = show(sql);
    text.erase(0, text.find('\n') == std::string::npos ? text.size() : text.find('\n') + 1);
    for (char& c : text) c = c == '\n' ? ';' : c;
    return text;
  }

  template <typename Action>
  static std::string errorOf(const Action& action) {
    try {
      action();
    } catch (const Error& error) {
      return error.what();
    }
    return "(no error)";
  }
  std::string errorOfSql(const std::string& sql) {
    return errorOf([&] { connection_.OpenRecordset(sql); });
  }

  /// The structure of the database: a line per record of a schema question.
  std::string structure(SchemaKind kind) {
    std::string text;
    const auto records = connection_.OpenSchema(kind);
    for (; !records->Eof(); records->MoveNext()) {
      for (size_t i = 0; i < records->Fields().size(); ++i) {
        text += (i ? "|" : "") + records->Text(static_cast<int>(i));
      }
      text += '\n';
    }
    return text;
  }

  std::filesystem::path folder_;
  Connection connection_;
};

}  // namespace lodex
