#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace lodex {

/// The parts of a zip file in memory. `bytes` must outlive the archive.
class ZipArchive {
 public:
  /// Throws FileError when the bytes are no readable zip file.
  explicit ZipArchive(std::string_view bytes);
  ~ZipArchive();
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;

  /// Whether there is a part of that path ("xl/workbook.xml"), without regard to case.
  bool has(std::string_view path) const;

  /// The content of a part. Throws FileError when it is missing, damaged, or so large that the
  /// file must be a trap.
  std::string read(std::string_view path) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Puts a zip file together in memory.
class ZipWriter {
 public:
  ZipWriter();
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  /// Adds a part under a path such as "xl/workbook.xml".
  void add(const std::string& path, std::string_view content);
  /// The bytes of the file; nothing can be added afterwards.
  std::string finish();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// True for the first bytes of any zip file.
bool looksLikeZip(std::string_view bytes);

}  // namespace lodex
