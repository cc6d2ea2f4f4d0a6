#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace lodex {

class XmlHandler;

/// The parts of a zip file in memory. `bytes` must outlive the archive.
class ZipArchive {
 public:
  /// Throws FileError when the bytes are not a readable zip file.
  explicit ZipArchive(std::string_view bytes);
  ~ZipArchive();
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;

  /// Whether there is a part of that path ("xl/workbook.xml"), without regard to case.
  bool has(std::string_view path) const;

  /// Whether any part is in the folder of that name at the root.
  bool hasFolder(std::string_view name) const;

  /// The content of a part. Throws FileError when it is missing or damaged (its size and checksum
  /// are compared), or so large that the file must be a trap.
  std::string read(std::string_view path) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Walks through a part that is an XML document. Throws FileError as `read` and `readXml` do.
void readXml(const ZipArchive& archive, std::string_view path, XmlHandler& handler);

/// Puts a zip file together in memory.
class ZipWriter {
 public:
  ZipWriter();
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  /// Adds a part under a path such as "xl/workbook.xml".
  void add(const std::string& path, std::string content);
  /// The bytes of the file; nothing can be added afterwards.
  std::string finish();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// True for the first bytes of any zip file.
bool looksLikeZip(std::string_view bytes);

}  // namespace lodex
