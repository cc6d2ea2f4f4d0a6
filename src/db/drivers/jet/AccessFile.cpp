#include "db/drivers/jet/AccessFile.h"

#include <fcntl.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <utility>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {

namespace {

constexpr std::uint32_t kHeaderKey = 0x6B39DAC7;
constexpr std::uint32_t kCatalogPage = 2;

// RC4, with the four bytes of the key in little-endian order.
void decode(std::uint32_t key, std::uint8_t* bytes, size_t count) {
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (size_t i = 0; i < 256; ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + (key >> (8 * (i % 4)) & 0xFF));
    std::swap(state[i], state[j]);
  }
  std::uint8_t i = 0;
  j = 0;
  for (size_t at = 0; at < count; ++at) {
    ++i;
    j = static_cast<std::uint8_t>(j + state[i]);
    std::swap(state[i], state[j]);
    bytes[at] ^= state[static_cast<std::uint8_t>(state[i] + state[j])];
  }
}

bool isTableDefinition(const AccessPage& page) {
  return page.content[0] == 0x02 && page.content[1] == 0x01;
}

// One UTF-16 unit after the other; halves of a character wait in `high` for each other.
void appendUnit(std::uint16_t unit, std::uint16_t& high, std::string& out) {
  if (unit < 0x80 && !high) {
    out += static_cast<char>(unit);
    return;
  }
  const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
  if (high) {
    appendUtf8(out, isLow ? 0x10000 + ((high - 0xD800u) << 10) + (unit - 0xDC00u) : 0xFFFD);
    high = 0;
    if (isLow) return;
  }
  if (unit >= 0xD800 && unit <= 0xDBFF) {
    high = unit;
  } else {
    appendUtf8(out, isLow ? 0xFFFD : unit);
  }
}

void decodeUnicode(AccessBytes stored, std::string& out) {
  const std::uint8_t* at = stored.data();
  const std::uint8_t* const end = at + stored.size();
  std::uint16_t high = 0;
  const bool isCompressed = stored.size() >= 2 && at[0] == 0xFF && at[1] == 0xFE;
  // A zero byte switches between one and two bytes a character.
  bool single = isCompressed;
  if (isCompressed) at += 2;
  while (at < end) {
    if (isCompressed && *at == 0) {
      single = !single;
      ++at;
    } else if (single) {
      const std::uint8_t* const start = at;
      while (at < end && *at != 0 && *at < 0x80 && !high) ++at;
      out.append(reinterpret_cast<const char*>(start), static_cast<size_t>(at - start));
      if (at < end && *at != 0) appendUnit(*at++, high, out);
    } else if (end - at >= 2) {
      appendUnit(static_cast<std::uint16_t>(at[0] | at[1] << 8), high, out);
      at += 2;
    } else {
      appendUtf8(out, 0xFFFD);
      break;
    }
  }
  if (high) appendUtf8(out, 0xFFFD);
}

}  // namespace

bool isAccessHeader(std::string_view start) {
  if (start.size() < 5) return false;
  const std::string_view name = start.substr(4);
  return name.starts_with("Standard Jet DB") || name.starts_with("Standard ACE DB");
}

AccessFile::AccessFile(const std::string& path) {
  descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) throw FileError("it cannot be read: " + std::string(std::strerror(errno)));
  try {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) throw FileError("it cannot be read");
    AccessPage header;
    header.content.resize(2048);
    if (::pread(descriptor_, header.content.data(), 2048, 0) != 2048 ||
        !isAccessHeader(header.bytes().chars().substr(0, 20))) {
      throw FileError("it is not an Access file, or it is cut short at its start");
    }
    const int version = header.bytes().u8(0x14);
    if (version > 6) throw FileError("it comes from a later version of Access");
    isJet3_ = version == 0;
    const auto pages = static_cast<std::uint64_t>(status.st_size) / pageSize();
    if (pages > 0xFFFFFF) throw FileError("it is larger than Access files can be");
    pageCount_ = static_cast<std::uint32_t>(pages);
    endsWithinPage_ = static_cast<std::uint64_t>(status.st_size) % pageSize() != 0;
    decode(kHeaderKey, header.content.data() + 0x18, isJet3_ ? 126 : 128);
    if (isJet3_) codePage_ = header.bytes().u16(0x3C);

    AccessPage catalog;
    readRaw(kCatalogPage, catalog);
    if (!isTableDefinition(catalog)) {
      key_ = header.bytes().u32(0x3E);
      read(kCatalogPage, catalog);
      if (!isTableDefinition(catalog)) throw FileError("it is encrypted or damaged at its start");
    }
    if (isJet3_ && codePage_ != 1252 && codePage_ != 0) {
      iconv_t converter = ::iconv_open("UTF-8", ("CP" + std::to_string(codePage_)).c_str());
      if (converter != reinterpret_cast<iconv_t>(-1)) converter_ = converter;
    }
  } catch (...) {
    ::close(descriptor_);
    throw;
  }
}

AccessFile::~AccessFile() {
  if (converter_) ::iconv_close(static_cast<iconv_t>(converter_));
  ::close(descriptor_);
}

void AccessFile::readRaw(std::uint32_t number, AccessPage& page) const {
  page.content.resize(pageSize());
  page.number = UINT32_MAX;
  const auto place = static_cast<off_t>(number) * pageSize();
  if (number >= pageCount_ || ::pread(descriptor_, page.content.data(), pageSize(), place) !=
                                  static_cast<ssize_t>(pageSize())) {
    throw FileError("page " + std::to_string(number) +
                    " is missing: the file is cut short or damaged");
  }
}

void AccessFile::read(std::uint32_t number, AccessPage& page) const {
  if (page.number == number) return;
  readRaw(number, page);
  if (key_ != 0 && number != 0) decode(key_ ^ number, page.content.data(), page.content.size());
  page.number = number;
}

int AccessFile::rowCount(AccessBytes page) const {
  const size_t place = isJet3_ ? 8 : 12;
  const int count = page.u16(place);
  if (place + 2 + 2 * static_cast<size_t>(count) > page.size()) {
    throw FileError("a page lists more records than it can hold");
  }
  return count;
}

AccessFile::Row AccessFile::row(AccessBytes page, int row) const {
  if (row < 0 || row >= rowCount(page)) throw FileError("a record is not where it should be");
  const size_t place = (isJet3_ ? 10 : 14) + 2 * static_cast<size_t>(row);
  const std::uint16_t entry = page.u16(place);
  // Rows fill the page from its end; each ends where the one before it starts.
  const size_t start = entry & 0x1FFF;
  const size_t end = row == 0 ? page.size() : page.u16(place - 2) & 0x1FFFu;
  if (start > end) throw FileError("a record ends before its start");
  return {(entry & 0x8000) != 0, (entry & 0x4000) != 0, page.part(start, end - start)};
}

AccessBytes AccessFile::pointedRow(std::uint32_t pointer, AccessPage& page) const {
  read(pointer >> 8, page);
  return row(page.bytes(), static_cast<int>(pointer & 0xFF)).bytes;
}

void AccessFile::decodeText(AccessBytes stored, std::string& out) const {
  out.clear();
  if (!isJet3_) return decodeUnicode(stored, out);
  if (!converter_) {
    out = fromWindows1252(stored.chars());
    return;
  }
  auto* const converter = static_cast<iconv_t>(converter_);
  ::iconv(converter, nullptr, nullptr, nullptr, nullptr);
  char* from = const_cast<char*>(stored.chars().data());
  size_t left = stored.size();
  while (left > 0) {
    std::array<char, 512> piece;
    char* to = piece.data();
    size_t room = piece.size();
    const size_t result = ::iconv(converter, &from, &left, &to, &room);
    out.append(piece.data(), piece.size() - room);
    if (result == static_cast<size_t>(-1) && errno != E2BIG) {
      appendUtf8(out, 0xFFFD);
      ++from;
      --left;
    }
  }
}

}  // namespace lodex
