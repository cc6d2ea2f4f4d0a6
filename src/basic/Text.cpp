#include "basic/Text.h"

#include <algorithm>
#include <array>

namespace lodex {
namespace {

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x80; });
}

char upperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool between(char32_t c, char32_t low, char32_t high) {
  return c >= low && c <= high;
}

char32_t upperOf(char32_t c) {
  if (c < 0x80) return static_cast<char32_t>(upperAscii(static_cast<char>(c)));
  if (between(c, 0xE0, 0xFE) && c != 0xF7) return c - 0x20;
  if (c == 0xFF) return 0x178;
  if (between(c, 0x100, 0x137) || between(c, 0x14A, 0x177)) return c & ~char32_t{1};
  if (between(c, 0x139, 0x148) || between(c, 0x179, 0x17E)) return c % 2 == 0 ? c - 1 : c;
  if (between(c, 0x3B1, 0x3CB) && c != 0x3C2) return c - 0x20;
  if (between(c, 0x430, 0x44F)) return c - 0x20;
  if (between(c, 0x450, 0x45F)) return c - 0x50;
  return c;
}

char32_t lowerOf(char32_t c) {
  if (c < 0x80) return static_cast<char32_t>(lowerAscii(static_cast<char>(c)));
  if (between(c, 0xC0, 0xDE) && c != 0xD7) return c + 0x20;
  if (c == 0x178) return 0xFF;
  if (between(c, 0x100, 0x137) || between(c, 0x14A, 0x177)) return c | 1;
  if (between(c, 0x139, 0x148) || between(c, 0x179, 0x17E)) return c % 2 == 1 ? c + 1 : c;
  if (between(c, 0x391, 0x3AB) && c != 0x3A2) return c + 0x20;
  if (between(c, 0x410, 0x42F)) return c + 0x20;
  if (between(c, 0x400, 0x40F)) return c + 0x50;
  return c;
}

template <typename OneAscii, typename One>
std::string mapped(std::string_view text, OneAscii ascii, One one) {
  std::string out;
  out.reserve(text.size());
  if (isAscii(text)) {
    for (char c : text) out.push_back(ascii(c));
    return out;
  }
  for (char32_t c : decodeUtf8(text)) appendUtf8(out, one(c));
  return out;
}

// One code point from `pos` on, which moves past it. Malformed input gives U+FFFD and moves by
// one byte.
char32_t nextCodePoint(std::string_view text, size_t& pos) {
  constexpr char32_t bad = 0xFFFD;
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(pos++);
  if (lead < 0x80) return lead;
  const int extra = lead >= 0xF0 && lead < 0xF5   ? 3
                    : lead >= 0xE0 && lead < 0xF0 ? 2
                    : lead >= 0xC2 && lead < 0xE0 ? 1
                                                  : 0;
  if (extra == 0 || pos + extra > text.size()) return bad;
  char32_t c = lead & (0x3F >> extra);
  for (int i = 0; i < extra; ++i) {
    if ((byte(pos + i) & 0xC0) != 0x80) return bad;
    c = (c << 6) | (byte(pos + i) & 0x3F);
  }
  constexpr std::array<char32_t, 4> smallest{0, 0x80, 0x800, 0x10000};
  if (c < smallest[extra] || c > 0x10FFFF || between(c, 0xD800, 0xDFFF)) return bad;
  pos += extra;
  return c;
}

}  // namespace

std::string toUpper(std::string_view text) {
  return mapped(text, upperAscii, upperOf);
}
std::string toLower(std::string_view text) {
  return mapped(text, lowerAscii, lowerOf);
}

int compareNoCase(std::string_view a, std::string_view b) {
  size_t i = 0;
  size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const char32_t x = upperOf(nextCodePoint(a, i));
    const char32_t y = upperOf(nextCodePoint(b, j));
    if (x != y) return x < y ? -1 : 1;
  }
  return i < a.size() ? 1 : j < b.size() ? -1 : 0;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
  return compareNoCase(a, b) == 0;
}

bool startsWithNoCase(std::string_view text, std::string_view start) {
  size_t i = 0;
  size_t j = 0;
  while (j < start.size()) {
    if (i >= text.size()) return false;
    if (upperOf(nextCodePoint(text, i)) != upperOf(nextCodePoint(start, j))) return false;
  }
  return true;
}

size_t findNoCase(std::string_view text, std::string_view part, size_t from) {
  for (size_t pos = from; pos <= text.size(); ++pos) {
    if (startsWithNoCase(text.substr(pos), part)) return pos;
  }
  return std::string_view::npos;
}

std::string_view trimBlanksRight(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return trimBlanksRight(text);
}

std::string_view trimWhite(std::string_view text) {
  constexpr std::string_view white = " \t\r\n\v\f";
  const size_t first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  for (size_t hit = text.find(separator); hit != std::string_view::npos;
       hit = text.find(separator, start)) {
    pieces.emplace_back(text.substr(start, hit - start));
    start = hit + separator.size();
  }
  pieces.emplace_back(text.substr(start));
  return pieces;
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
  std::string out;
  for (size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) out += separator;
    out += pieces[i];
  }
  return out;
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
  if (what.empty()) return std::string(text);
  return join(split(text, what), with);
}

size_t characterCount(std::string_view text) {
  size_t count = 0;
  for (size_t pos = 0; pos < text.size(); ++count) nextCodePoint(text, pos);
  return count;
}

std::u32string decodeUtf8(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) out.push_back(nextCodePoint(text, pos));
  return out;
}

void appendUtf8(std::string& out, char32_t c) {
  if (c > 0x10FFFF || between(c, 0xD800, 0xDFFF)) c = 0xFFFD;
  const auto tail = [&](int shift) {
    out.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3F)));
  };
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    tail(0);
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    tail(6);
    tail(0);
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::string encodeUtf8(std::u32string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char32_t c : text) appendUtf8(out, c);
  return out;
}

bool isValidUtf8(std::string_view text) {
  for (size_t pos = 0; pos < text.size();) {
    const size_t start = pos;
    if (nextCodePoint(text, pos) == 0xFFFD && text.substr(start, 3) != "\xEF\xBF\xBD") return false;
  }
  return true;
}

std::string fromUtf16(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    const bool pair =
        between(c, 0xD800, 0xDBFF) && i + 1 < text.size() && between(text[i + 1], 0xDC00, 0xDFFF);
    if (pair) c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
    appendUtf8(out, c);
  }
  return out;
}

std::u16string toUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) {
    char32_t c = nextCodePoint(text, pos);
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
  }
  return out;
}

std::string fromWindows1252(std::string_view bytes) {
  // The code points of the bytes 0x80 to 0x9F.
  static constexpr std::array<char16_t, 32> c1{
      0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (char b : bytes) {
    const auto c = static_cast<unsigned char>(b);
    appendUtf8(out, c >= 0x80 && c < 0xA0 ? c1[c - 0x80] : c);
  }
  return out;
}

}  // namespace lodex
