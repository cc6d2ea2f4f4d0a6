#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/XmlReader.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/ods/OdsReader.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/files/xlsx/XlsxReader.h"

// Any bytes as a zipped workbook. Compression hides the documents from the fuzzer, so the first
// byte may also send the rest straight to the reader of one document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  lodex::Worksheet book;
  try {
    switch (data[0] % 4) {
      case 0: {
        const lodex::ZipArchive archive(bytes);
        if (lodex::looksLikeXlsx(archive)) {
          lodex::readXlsx(archive, size, book);
        } else if (lodex::looksLikeOds(archive)) {
          lodex::readOds(archive, size, book);
        }
        break;
      }
      case 1: {
        lodex::XlsxBook file{
            book, lodex::ReadBudget(size), {lodex::Value::text("a")}, {0, 0}, false};
        lodex::readXml(bytes, *lodex::xlsxSheetHandler(file, 1));
        break;
      }
      case 2:
        lodex::readXlsxStyles(bytes, {0, 1, 2, 3}, book);
        break;
      default:
        lodex::readOdsContent(bytes, book);
        break;
    }
  } catch (const lodex::Error&) {
    // Refused in words: what bad input deserves.
  }
  return 0;
}
