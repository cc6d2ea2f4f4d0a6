#include <cstddef>
#include <cstdint>
#include <string_view>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/XlsReader.h"
#include "worksheet/files/xls/XlsWriter.h"

// Whatever is read must also be writable.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  lodex::looksLikeXls(bytes);
  try {
    lodex::Worksheet sheet;
    lodex::readXls(bytes, sheet);
    lodex::writeXls(sheet);
  } catch (const lodex::Error&) {
  }
  return 0;
}
