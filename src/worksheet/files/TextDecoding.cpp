// Which encoding a text file is in, and its conversion to UTF-8.
#include <iconv.h>
#include <uchardet/uchardet.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "basic/Text.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

enum class Utf16 { None, Little, Big };

constexpr size_t sampleBytes = 1 << 16;

bool startsWith(std::string_view bytes, std::string_view mark) {
  return bytes.substr(0, mark.size()) == mark;
}

// UTF-16 without a mark: in Western text nearly every second byte is NUL, always on one side.
Utf16 guessUtf16(std::string_view bytes) {
  const std::string_view sample = bytes.substr(0, sampleBytes);
  if (bytes.size() < 4 || bytes.size() % 2 != 0) return Utf16::None;
  std::array<size_t, 2> nuls{};
  for (size_t i = 0; i < sample.size(); ++i) nuls[i % 2] += sample[i] == '\0';
  const size_t units = sample.size() / 2;
  if (nuls[1] * 2 > units && nuls[0] * 20 < units) return Utf16::Little;
  if (nuls[0] * 2 > units && nuls[1] * 20 < units) return Utf16::Big;
  return Utf16::None;
}

std::string fromUtf16Bytes(std::string_view bytes, bool little) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(little ? first | second << 8 : first << 8 | second));
  }
  return fromUtf16(units);
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; });
}

// Everything converted, or "" when a byte does not belong to the encoding.
std::string convert(std::string_view bytes, const char* encoding) {
  const iconv_t converter = iconv_open("UTF-8", encoding);
  if (converter == reinterpret_cast<iconv_t>(-1)) return {};
  std::string out;
  std::array<char, 1 << 14> buffer;
  char* in = const_cast<char*>(bytes.data());
  size_t left = bytes.size();
  bool failed = false;
  while (left > 0 && !failed) {
    char* to = buffer.data();
    size_t room = buffer.size();
    failed = iconv(converter, &in, &left, &to, &room) == static_cast<size_t>(-1) && errno != E2BIG;
    out.append(buffer.data(), to - buffer.data());
  }
  iconv_close(converter);
  return failed ? std::string() : out;
}

// Units, degrees and umlauts in an otherwise Western file give a detector little to go by, and it
// then guesses wildly. Only a text in which other letters are common is worth asking about.
bool worthDetecting(std::string_view sample) {
  size_t high = 0;
  size_t letters = 0;
  std::array<bool, 256> seen{};
  for (char c : sample) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) {
      ++high;
      seen[byte] = true;
    } else if ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') {
      ++letters;
    }
  }
  const auto distinct = std::count(seen.begin(), seen.end(), true);
  return high >= 40 && distinct >= 8 && high * 10 >= letters;
}

std::string fromDetectedEncoding(std::string_view bytes) {
  const std::string_view sample = bytes.substr(0, sampleBytes);
  if (!worthDetecting(sample)) return {};
  const std::unique_ptr<uchardet, decltype(&uchardet_delete)> detector(uchardet_new(),
                                                                       &uchardet_delete);
  if (uchardet_handle_data(detector.get(), sample.data(), sample.size()) != 0) return {};
  uchardet_data_end(detector.get());
  const std::string_view name = uchardet_get_charset(detector.get());
  constexpr std::array<std::string_view, 6> western{"ASCII",       "ISO-8859-1",   "ISO-8859-15",
                                                    "ISO-8859-10", "WINDOWS-1252", ""};
  if (std::find(western.begin(), western.end(), name) != western.end()) return {};
  return convert(bytes, std::string(name).c_str());
}

// Whether more than a few characters, NULs aside, are such as no text holds.
bool hasManyControls(std::string_view bytes) {
  const std::string_view sample = bytes.substr(0, sampleBytes);
  const auto controls = std::count_if(sample.begin(), sample.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\0' &&
           std::string_view("\t\r\n\f\v\x1A").find(c) == std::string_view::npos;
  });
  return static_cast<size_t>(controls) * 50 > sample.size();
}

}  // namespace

bool looksLikeText(std::string_view bytes) {
  if (startsWith(bytes, "\xFF\xFE") || startsWith(bytes, "\xFE\xFF")) return true;
  if (guessUtf16(bytes) != Utf16::None) return true;
  return bytes.find('\0') == std::string_view::npos && !hasManyControls(bytes);
}

int lineOfNul(std::string_view bytes) {
  const size_t nul = bytes.find('\0');
  if (nul == std::string_view::npos || hasManyControls(bytes)) return 0;
  if (std::count(bytes.begin(), bytes.end(), '\0') * 4 > std::ssize(bytes)) return 0;
  return static_cast<int>(textLines(bytes.substr(0, nul + 1)).size());
}

std::string decodeText(std::string_view bytes) {
  if (startsWith(bytes, "\xFF\xFE")) return fromUtf16Bytes(bytes.substr(2), true);
  if (startsWith(bytes, "\xFE\xFF")) return fromUtf16Bytes(bytes.substr(2), false);
  if (startsWith(bytes, "\xEF\xBB\xBF")) return std::string(bytes.substr(3));
  const Utf16 wide = guessUtf16(bytes);
  if (wide != Utf16::None) return fromUtf16Bytes(bytes, wide == Utf16::Little);
  if (!bytes.empty() && bytes.back() == '\x1A') bytes.remove_suffix(1);
  if (isAscii(bytes) || isValidUtf8(bytes)) return std::string(bytes);
  const std::string detected = fromDetectedEncoding(bytes);
  return detected.empty() ? fromWindows1252(bytes) : detected;
}

}  // namespace lodex
