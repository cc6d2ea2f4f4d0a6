#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/XlsReader.h"
#include "worksheet/files/xls/XlsWriter.h"

/// Puts .xls streams together by hand, independent of the writer.
namespace lodex::xlstest {

inline std::string u8(unsigned value) {
  return std::string(1, static_cast<char>(value));
}
inline std::string u16(unsigned value) {
  return u8(value & 0xFF) + u8(value >> 8 & 0xFF);
}
inline std::string u32(unsigned value) {
  return u16(value & 0xFFFF) + u16(value >> 16);
}
inline std::string f64(double value) {
  std::string raw(8, '\0');
  std::memcpy(raw.data(), &value, 8);
  return raw;
}
inline std::string bytes(std::initializer_list<unsigned> values) {
  std::string out;
  for (unsigned value : values) out += u8(value);
  return out;
}
inline std::string record(unsigned id, std::string_view data = {}) {
  return u16(id) + u16(static_cast<unsigned>(data.size())) + std::string(data);
}
inline std::string head(unsigned row, unsigned column, unsigned style = 0) {
  return u16(row) + u16(column) + u16(style);
}
/// Text with one or two bytes of length.
inline std::string text8(std::string_view text) {
  return u8(static_cast<unsigned>(text.size())) + std::string(text);
}
inline std::string text16(std::string_view text) {
  return u16(static_cast<unsigned>(text.size())) + std::string(text);
}
/// The same with the flag byte of version 8, eight bits per character.
inline std::string flagged8(std::string_view text) {
  return u8(static_cast<unsigned>(text.size())) + u8(0) + std::string(text);
}
inline std::string flagged16(std::string_view text) {
  return u16(static_cast<unsigned>(text.size())) + u8(0) + std::string(text);
}

inline Worksheet readBytes(std::string_view stream) {
  Worksheet sheet;
  readXls(stream, sheet);
  return sheet;
}

/// A version 5 or 8 stream of sheets with the given records; `globals` come before the list of
/// sheets.
struct Tab {
  std::string name;
  std::string records;
  unsigned kind = 0;  // 2 is a chart
  unsigned visibility = 0;
};
inline std::string workbook(int version, std::initializer_list<Tab> tabs,
                            const std::string& globals = {}, const std::string& links = {}) {
  const unsigned word = version == 8 ? 0x0600 : 0x0500;
  const std::string bof = record(0x0809, u16(word) + u16(0x0005) + u32(0));
  const auto boundSheet = [&](const Tab& tab, unsigned start) {
    const std::string name = version == 8 ? flagged8(tab.name) : text8(tab.name);
    return record(0x0085, u32(start) + u8(tab.visibility) + u8(tab.kind) + name);
  };
  const auto substream = [&](const Tab& tab) {
    const unsigned type = tab.kind == 2 ? 0x0020 : 0x0010;
    return record(0x0809, u16(word) + u16(type) + u32(0)) + tab.records + record(0x000A);
  };
  size_t start = bof.size() + globals.size() + links.size() + record(0x000A).size();
  for (const Tab& tab : tabs) start += boundSheet(tab, 0).size();
  std::string list, sheets;
  for (const Tab& tab : tabs) {
    list += boundSheet(tab, static_cast<unsigned>(start + sheets.size()));
    sheets += substream(tab);
  }
  return bof + globals + list + links + record(0x000A) + sheets;
}

}  // namespace lodex::xlstest
