// Which reader a file needs, detected from its content, and which writer a file type needs.
#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/NativeSnapshot.h"
#include "worksheet/files/TextReader.h"
#include "worksheet/files/TextWriter.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/ods/OdsReader.h"
#include "worksheet/files/xls/OleFile.h"
#include "worksheet/files/xls/XlsReader.h"
#include "worksheet/files/xls/XlsWriter.h"
#include "worksheet/files/xlsx/XlsxReader.h"
#include "worksheet/files/xlsx/XlsxWriter.h"

namespace lodex {
namespace {

FileType readZip(std::string_view bytes, Worksheet& into) {
  const ZipArchive archive(bytes);
  if (looksLikeXlsx(archive)) {
    readXlsx(archive, bytes.size(), into);
    return FileType::Xlsx;
  }
  if (looksLikeOds(archive)) {
    readOds(archive, bytes.size(), into);
    return FileType::Ods;
  }
  throw FileError("it is a zip file without a workbook in it");
}

FileType readAny(std::string_view bytes, Worksheet& into) {
  if (bytes.empty()) throw FileError("the file is empty");
  if (looksLikeSnapshot(bytes)) {
    into.ReadFromBlob(bytes);
    return FileType::Native;
  }
  if (looksLikeZip(bytes)) return readZip(bytes, into);
  if (ole::isContainer(bytes) && ole::hasStream(bytes, {"EncryptedPackage"})) {
    throw FileError("the workbook is protected by a password");
  }
  if (looksLikeXls(bytes)) {
    readXls(bytes, into);
    return FileType::Excel;
  }
  if (ole::isContainer(bytes)) throw FileError("it is damaged, or holds no workbook");
  if (looksLikeText(bytes)) {
    readText(bytes, into);
    return FileType::Text;
  }
  if (const int line = lineOfNul(bytes)) failNul(line);
  throw FileError("it is not a workbook, and not a text");
}

std::string titleOf(std::string_view path) {
  const std::string name = fileNameOf(path);
  const size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace

FileType Worksheet::Read(std::string_view path) {
  const std::string bytes = readFile(path);
  Worksheet book;
  FileType type;
  try {
    type = readAny(bytes, book);
    if (type != FileType::Text) book.calculateMissing();
  } catch (const Error& failure) {
    throw FileError("Cannot read " + std::string(path) + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw FileError("Cannot read " + std::string(path) + ": it does not fit in memory");
  }
  book.readFindings_.nameFile(path);
  if (book.Title().empty()) book.Title(titleOf(path));
  // Only our own files say what the user may do in the grid.
  if (type != FileType::Native) book.permissions_ = permissions_;
  *this = std::move(book);
  return type;
}

void Worksheet::Write(std::string_view path, FileType type) const {
  switch (type) {
    case FileType::Text:
      return writeFileWhole(path, writeText(*this));
    case FileType::Excel:
      return writeFileWhole(path, writeXls(*this));
    case FileType::Native:
      return writeFileWhole(path, WriteToBlob());
    case FileType::Xlsx:
      return writeFileWhole(path, writeXlsx(*this));
    default:
      throw FileError("Cannot write " + std::string(path) +
                      ": this type of file cannot be written");
  }
}

}  // namespace lodex
