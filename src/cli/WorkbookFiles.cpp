#include "cli/WorkbookFiles.h"

#include <algorithm>
#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"
#include "worksheet/files/TextWriter.h"

namespace lodex {
namespace {

// Programs of countries with a decimal comma separate by semicolons.
char separatorOf(std::string_view text) {
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  const auto count = [&](char c) { return std::count(line.begin(), line.end(), c); };
  return count(';') > count(',') ? ';' : ',';
}

}  // namespace

void readAnyFile(const std::string& path, Worksheet& into, Findings& found) {
  const FileType type = into.Read(path);
  found.append(into.ReadFindings());
  if (type != FileType::Text || extensionOf(path) != "csv") return;
  const std::string bytes = readFile(path);
  Worksheet book;
  readText(bytes, book, separatorOf(decodeText(bytes)));
  book.Title(into.Title());
  into = std::move(book);
}

void writeByEnding(const std::string& path, const Worksheet& book) {
  const std::string ending = extensionOf(path);
  if (ending == "txt" || ending == "tsv") return book.Write(path, FileType::Text);
  if (ending == "csv") return writeFileWhole(path, writeText(book, ','));
  if (ending == "xls") return book.Write(path, FileType::Excel);
  if (ending == "xlsx") return book.Write(path, FileType::Xlsx);
  if (ending == "vts") return book.Write(path, FileType::Native);
  throw Error("Cannot tell from " + path +
              " what to write: the ending must be txt, tsv, csv, xls, xlsx or vts");
}

void requireOtherFile(const std::string& target, const std::vector<std::string>& sources) {
  for (const std::string& source : sources) {
    std::error_code missing;
    if (!std::filesystem::equivalent(nativePath(target), nativePath(source), missing)) continue;
    throw Error(target + " is what the calculation reads; save under another name");
  }
}

}  // namespace lodex
