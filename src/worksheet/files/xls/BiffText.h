#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "worksheet/Value.h"
#include "worksheet/files/xls/BiffStream.h"

namespace lodex::biff {

/// Converts bytes of a Windows, DOS or Macintosh code page to UTF-8. An unknown code page counts
/// as Windows-1252, and so do bytes that the code page does not define.
class CodePage {
 public:
  explicit CodePage(int number = 1252) { set(number); }
  ~CodePage() { close(); }
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;

  void set(int number);
  std::string toUtf8(std::string_view bytes) const;

 private:
  void close();
  void* converter_ = nullptr;  // an iconv_t, null for Windows-1252
};

/// UTF-16 in little-endian bytes to UTF-8; an odd last byte is dropped.
std::string fromUtf16Bytes(std::string_view bytes);

/// Bytes that each are a character below U+0100.
std::string fromLatin1(std::string_view bytes);

/// How many bytes give the number of characters in front of a text.
enum class LengthBytes { One, Two };

/// A text as versions 2 to 7 store it: a length and bytes of the code page.
std::string readByteText(ByteReader& in, LengthBytes length, const CodePage& codePage);

/// A text as version 8 stores it, with its rich-text runs and phonetic part skipped.
std::string readUnicodeText(ByteReader& in, LengthBytes length);

/// The characters of a version 8 text whose number is known: a flag byte and the characters.
std::string readUnicodeCharacters(ByteReader& in, size_t count);

/// The texts of a shared string table that may be spread over continuation records, at whose start
/// the width of the characters may change. `complete` tells
/// whether there are as many as announced and nothing is left over.
std::vector<SharedText> readSharedTexts(const std::vector<std::string_view>& parts, bool& complete);

/// One version 8 text that may run on in continuation records. `complete` tells whether all of its
/// characters are there and nothing else.
std::string readContinuedText(const std::vector<std::string_view>& parts, bool& complete);

}  // namespace lodex::biff
