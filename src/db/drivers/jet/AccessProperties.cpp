#include "db/drivers/jet/AccessProperties.h"

#include "basic/Error.h"
#include "basic/Numbers.h"

namespace lodex {

namespace {

// A chunk begins with its size and kind: 0x80 the names of all properties, 0 and 1 the values of a
// table and of a field.
constexpr size_t kChunkHeader = 6;
constexpr int kNames = 0x80;
constexpr int kFieldValues = 1;
constexpr size_t kEntryHeader = 8;

std::vector<std::string> readNames(const AccessFile& file, AccessBytes chunk) {
  std::vector<std::string> names;
  for (size_t at = 0; at < chunk.size();) {
    const size_t size = chunk.u16(at);
    names.emplace_back();
    file.decodeText(chunk.part(at + 2, size), names.back());
    at += 2 + size;
  }
  return names;
}

std::string valueText(const AccessFile& file, AccessType type, AccessBytes stored) {
  std::string text;
  switch (type) {
    case AccessType::Boolean:
      return stored.u8(0) ? "Yes" : "No";
    case AccessType::Byte:
      return std::to_string(stored.u8(0));
    case AccessType::Integer:
      return std::to_string(stored.i16(0));
    case AccessType::LongInteger:
      return std::to_string(stored.i32(0));
    case AccessType::Single:
      return exactNumberText(stored.single(0));
    case AccessType::Double:
      return exactNumberText(stored.number(0));
    case AccessType::Text:
    case AccessType::Memo:
      file.decodeText(stored, text);
      return text;
    default:
      return {};
  }
}

}  // namespace

std::map<std::string, AccessProperties> readAccessProperties(const AccessFile& file,
                                                             AccessBytes stored) {
  std::map<std::string, AccessProperties> result;
  std::vector<std::string> names;
  for (size_t at = 4; at + kChunkHeader <= stored.size();) {
    const std::uint32_t size = stored.u32(at);
    if (size < kChunkHeader) throw FileError("its properties are damaged");
    const int kind = stored.u16(at + 4);
    const AccessBytes chunk = stored.part(at, size).from(kChunkHeader);
    at += size;
    if (kind == kNames) names = readNames(file, chunk);
    if (kind > kFieldValues) continue;
    const size_t nameSize = chunk.u16(4);
    std::string owner;
    if (kind == kFieldValues) file.decodeText(chunk.part(6, nameSize), owner);
    AccessProperties& properties = result[owner];
    for (size_t entry = 6 + nameSize; entry + kEntryHeader <= chunk.size();) {
      const size_t entrySize = chunk.u16(entry);
      if (entrySize < kEntryHeader) throw FileError("its properties are damaged");
      const auto type = static_cast<AccessType>(chunk.u8(entry + 3));
      const size_t name = chunk.u16(entry + 4);
      if (name >= names.size()) throw FileError("its properties are damaged");
      const size_t valueSize = chunk.u16(entry + 6);
      properties[names[name]] = valueText(file, type, chunk.part(entry + kEntryHeader, valueSize));
      entry += entrySize;
    }
  }
  return result;
}

std::vector<std::string> setCalculatedTypes(
    const std::map<std::string, AccessProperties>& properties, AccessTable& table) {
  std::vector<std::string> unknown;
  for (AccessColumn& column : table.columns) {
    if (!column.calculated) continue;
    const auto own = properties.find(column.name);
    const auto type = own == properties.end() ? std::nullopt
                                              : parseInteger(propertyOf(own->second, "ResultType"));
    if (type && isAccessType(*type)) {
      column.type = static_cast<AccessType>(*type);
    } else {
      unknown.push_back(column.name);
    }
  }
  return unknown;
}

const std::string& propertyOf(const AccessProperties& properties, std::string_view name) {
  static const std::string none;
  const auto found = properties.find(name);
  return found == properties.end() ? none : found->second;
}

}  // namespace lodex
