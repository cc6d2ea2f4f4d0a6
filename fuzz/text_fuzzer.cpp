#include <cstddef>
#include <cstdint>
#include <string_view>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"

// Any bytes as a text file: decoding and splitting must neither crash nor read outside.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (!lodex::looksLikeText(bytes)) return 0;
  lodex::Worksheet sheet;
  try {
    lodex::readText(bytes, sheet);
  } catch (const lodex::Error&) {
    // Refused in words: what bad input deserves.
  }
  return 0;
}
