#include "AccessMaker.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace lodex {

namespace {

constexpr std::uint32_t kHeaderKey = 0x6B39DAC7;
constexpr std::uint32_t kCatalogPage = 2;

int fixedSize(AccessType type) {
  switch (type) {
    case AccessType::Byte:
      return 1;
    case AccessType::Integer:
      return 2;
    case AccessType::LongInteger:
    case AccessType::Single:
    case AccessType::Complex:
      return 4;
    case AccessType::Currency:
    case AccessType::Double:
    case AccessType::Date:
    case AccessType::BigInteger:
      return 8;
    case AccessType::Guid:
      return 16;
    case AccessType::Numeric:
      return 17;
    case AccessType::ExtendedDate:
      return 42;
    default:
      return 0;
  }
}

bool isFixed(const AccessMaker::Column& column) {
  return !column.calculated && (column.type == AccessType::Boolean || fixedSize(column.type) > 0);
}

int sizeOf(const AccessMaker::Column& column) {
  return column.size > 0 ? column.size : fixedSize(column.type);
}

template <typename T>
void put(std::string& bytes, size_t at, T value) {
  if (bytes.size() < at + sizeof(T)) bytes.resize(at + sizeof(T));
  std::memcpy(bytes.data() + at, &value, sizeof(T));
}

std::uint16_t get16(const std::string& bytes, size_t at) {
  std::uint16_t value;
  std::memcpy(&value, bytes.data() + at, sizeof(value));
  return value;
}

// RC4, which encodes and decodes alike.
void applyCipher(std::uint32_t key, char* bytes, size_t count) {
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (size_t i = 0; i < 256; ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + (key >> (8 * (i % 4)) & 0xFF));
    std::swap(state[i], state[j]);
  }
  j = 0;
  for (size_t at = 0; at < count; ++at) {
    const auto i = static_cast<std::uint8_t>(at + 1);
    j = static_cast<std::uint8_t>(j + state[i]);
    std::swap(state[i], state[j]);
    bytes[at] ^= static_cast<char>(state[static_cast<std::uint8_t>(state[i] + state[j])]);
  }
}

}  // namespace

std::string storedWide(std::string_view ascii) {
  std::string bytes;
  for (const char c : ascii) bytes += {c, '\0'};
  return bytes;
}

std::string storedNarrow(std::string_view latin1) {
  return "\xFF\xFE" + std::string(latin1);
}

std::string storedNumeric(bool negative, std::uint64_t low) {
  const auto high = static_cast<std::uint32_t>(low >> 32);
  return (negative ? "\x80" : std::string(1, '\0')) + std::string(8, '\0') + storedAs(high) +
         storedAs(static_cast<std::uint32_t>(low));
}

std::string storedCalculated(const std::string& value) {
  return std::string(16, '\x01') + storedAs(static_cast<std::uint32_t>(value.size())) + value +
         std::string(3, '\0');
}

// The names of all properties come first, then the values of each field.
std::string storedProperties(
    const std::vector<std::pair<std::string, std::vector<std::array<std::string, 2>>>>& fields) {
  const auto size = [](size_t count) { return storedAs(static_cast<std::uint16_t>(count)); };
  const auto text = [&](const std::string& ascii) {
    return size(2 * ascii.size()) + storedWide(ascii);
  };
  std::string names, rest;
  size_t known = 0;
  for (const auto& [field, list] : fields) {
    std::string chunk = std::string(4, '\0') + text(field);
    for (const auto& [name, content] : list) {
      AccessType type = AccessType::Text;
      std::string stored = storedWide(content);
      if (name == "Required") {
        type = AccessType::Boolean;
        stored = std::string(1, content == "Yes");
      } else if (name == "ResultType") {
        type = AccessType::Byte;
        stored = std::string(1, static_cast<char>(std::stoi(content)));
      }
      chunk += size(8 + stored.size()) + '\0' + static_cast<char>(type) + size(known++) +
               size(stored.size()) + stored;
      names += text(name);
    }
    rest += storedAs(static_cast<std::uint32_t>(6 + chunk.size())) + size(!field.empty()) + chunk;
  }
  return std::string("MR2\0", 4) + storedAs(static_cast<std::uint32_t>(6 + names.size())) +
         storedAs(std::uint16_t{0x80}) + names + rest;
}

AccessMaker::AccessMaker(bool isJet3, int codePage) : isJet3_(isJet3), codePage_(codePage) {
  for (std::uint32_t i = 0; i <= kCatalogPage; ++i) newPage("");
}

std::uint32_t AccessMaker::newPage(std::string_view start) {
  pages_.emplace_back(pageSize(), '\0');
  std::copy(start.begin(), start.end(), pages_.back().begin());
  return static_cast<std::uint32_t>(pages_.size() - 1);
}

std::string AccessMaker::nameBytes(const std::string& name) const {
  if (isJet3_) return static_cast<char>(name.size()) + name;
  return storedAs(static_cast<std::uint16_t>(2 * name.size())) + storedWide(name);
}

// Puts a row into a page, or into a new one when that is full, and returns a pointer to it.
std::uint32_t AccessMaker::addRow(std::uint32_t& page, std::string_view row, std::uint16_t flags,
                                  std::string_view owner) {
  const size_t countAt = isJet3_ ? 8 : 12;
  const auto place = [&](const std::string& bytes) {
    const size_t count = get16(bytes, countAt);
    return count == 0 ? bytes.size() : get16(bytes, countAt + 2 * count) & 0x1FFFu;
  };
  const auto fits = [&] {
    const size_t count = get16(pages_[page], countAt);
    return count < 255 && countAt + 2 * (count + 2) + row.size() <= place(pages_[page]);
  };
  if (page == 0 || !fits()) {
    page = newPage("\x01\x01");
    std::copy(owner.begin(), owner.end(), pages_[page].begin() + 4);
    if (!fits()) throw std::invalid_argument("a row does not fit a page");
  }
  std::string& bytes = pages_[page];
  const auto start = place(bytes) - row.size();
  std::copy(row.begin(), row.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start));
  const std::uint16_t count = get16(bytes, countAt);
  put(bytes, countAt, static_cast<std::uint16_t>(count + 1));
  put(bytes, countAt + 2 + 2u * count, static_cast<std::uint16_t>(start | flags));
  return page << 8 | count;
}

std::uint32_t AccessMaker::addTable(Table table) {
  closeTable();
  const std::uint32_t page = newPage("");
  open_ = Open{std::move(table), page};
  return page;
}

void AccessMaker::addRaw(const std::string& record, std::uint16_t flags) {
  const std::uint32_t before = open_->filling;
  addRow(open_->filling, record, flags, storedAs(open_->definitionPage));
  if (open_->filling != before) open_->pages.push_back(open_->filling);
}

void AccessMaker::addRecord(const std::vector<StoredCell>& cells, Place place, int known) {
  const std::string record = recordOf(cells, known);
  if (place != Place::Deleted) ++open_->records;
  if (place != Place::Moved) return addRaw(record, place == Place::Deleted ? 0x8000 : 0);
  // The record's own page belongs to the table too, but there it is hidden.
  addRaw(record, 0x8000);
  const std::string& bytes = pages_[open_->filling];
  const std::uint32_t row = get16(bytes, isJet3_ ? 8 : 12) - 1u;
  addRaw(storedAs(open_->filling << 8 | row), 0x4000);
}

std::string AccessMaker::recordOf(const std::vector<StoredCell>& cells, int known) const {
  const Table& table = open_->table;
  const size_t count = known < 0 ? table.columns.size() : static_cast<size_t>(known);
  const size_t numbers = static_cast<size_t>(table.firstNumber) + count;
  std::string record = isJet3_ ? std::string(1, static_cast<char>(numbers))
                               : storedAs(static_cast<std::uint16_t>(numbers));
  std::string mask((numbers + 7) / 8, '\0');
  for (size_t i = 0; i < count; ++i) {
    const size_t bit = static_cast<size_t>(table.firstNumber) + i;
    if (cells[i]) mask[bit / 8] = static_cast<char>(mask[bit / 8] | 1 << bit % 8);
    if (!isFixed(table.columns[i])) continue;
    std::string field = cells[i].value_or("");
    field.resize(table.columns[i].type == AccessType::Boolean
                     ? 0
                     : static_cast<size_t>(sizeOf(table.columns[i])));
    record += field;
  }
  std::vector<size_t> offsets;
  for (size_t i = 0; i < count; ++i) {
    if (isFixed(table.columns[i])) continue;
    offsets.push_back(record.size());
    record += cells[i].value_or("");
  }
  if (offsets.empty()) return record + mask;
  const size_t end = record.size();
  offsets.push_back(end);
  if (!isJet3_) {
    for (size_t i = offsets.size(); i-- > 0;) {
      record += storedAs(static_cast<std::uint16_t>(offsets[i]));
    }
    return record + storedAs(static_cast<std::uint16_t>(offsets.size() - 1)) + mask;
  }
  for (size_t i = offsets.size(); i-- > 0;) record += static_cast<char>(offsets[i] % 256);
  const size_t others = record.size() + 1 + mask.size();
  size_t jumps = (others - 1) / 256;
  jumps = (others + jumps - 1) / 256;
  for (size_t jump = jumps; jump > 0; --jump) {
    const auto first = std::find_if(offsets.begin(), offsets.end(),
                                    [&](size_t offset) { return offset >= jump * 256; });
    record += first == offsets.end() ? '\xFF' : static_cast<char>(first - offsets.begin());
  }
  return record + static_cast<char>(offsets.size() - 1) + mask;
}

std::uint32_t AccessMaker::addLongRow(const std::string& row) {
  return addRow(longPage_, row, 0, "LVAL");
}

std::string AccessMaker::longField(const std::string& content, Long where) {
  const auto size = static_cast<std::uint32_t>(content.size());
  if (where == Long::Inline) return storedAs(size | 0x80000000u) + std::string(8, '\0') + content;
  std::uint32_t pointer = 0;
  std::uint32_t flags = 0;
  if (where == Long::OnePage) {
    pointer = addLongRow(content);
    flags = 0x40000000u;
  } else {
    const size_t piece = pageSize() / 2;
    for (size_t at = (content.size() - 1) / piece * piece;; at -= piece) {
      pointer = addLongRow(storedAs(pointer) + content.substr(at, piece));
      if (at == 0) break;
    }
  }
  return storedAs(size | flags) + storedAs(pointer) + std::string(4, '\0');
}

// A short map lists its pages as bits, a long one as pages of bits.
std::uint32_t AccessMaker::usageMap(const std::vector<std::uint32_t>& pages) {
  const auto setBit = [](std::string& bytes, size_t from, std::uint32_t bit) {
    bytes[from + bit / 8] = static_cast<char>(bytes[from + bit / 8] | 1 << bit % 8);
  };
  const std::uint32_t first = pages.empty() ? 0 : pages.front();
  std::string map(69, '\0');
  if (pages.empty() || pages.back() - first < 512) {
    put(map, 1, first);
    for (const std::uint32_t page : pages) setBit(map, 5, page - first);
  } else {
    map[0] = 1;
    const auto covered = static_cast<std::uint32_t>((pageSize() - 4) * 8);
    for (const std::uint32_t page : pages) {
      const size_t at = 1 + 4 * (page / covered);
      std::uint32_t bits = 0;
      std::memcpy(&bits, map.data() + at, 4);
      if (bits == 0) put(map, at, bits = newPage("\x05\x01"));
      setBit(pages_[bits], 4, page % covered);
    }
  }
  return addRow(mapPage_, map, 0, std::string(4, '\0'));
}

std::string AccessMaker::definition(const Open& open, std::uint32_t map) const {
  const Table& table = open.table;
  const auto columnCount = static_cast<std::uint16_t>(table.columns.size());
  const auto indexCount = static_cast<std::uint32_t>(table.indexes.size());
  const size_t columnAt = isJet3_ ? 25 : 45;
  std::string bytes("\x02\x01", 2);
  bytes.resize(isJet3_ ? 43 : 63);
  const auto variable = static_cast<std::uint16_t>(std::count_if(
      table.columns.begin(), table.columns.end(), [](const auto& one) { return !isFixed(one); }));
  put(bytes, isJet3_ ? 12 : 16, open.records);
  bytes[isJet3_ ? 20 : 40] = 'N';
  put(bytes, columnAt - 4, static_cast<std::uint16_t>(table.firstNumber + columnCount));
  put(bytes, columnAt - 2, variable);
  put(bytes, columnAt, columnCount);
  put(bytes, columnAt + 2, indexCount);
  put(bytes, columnAt + 6, indexCount);
  put(bytes, columnAt + 10, map);
  put(bytes, columnAt + 14, map);  // of pages with room, which nobody looks for
  bytes.append(indexCount * (isJet3_ ? 8 : 12), '\0');
  std::uint16_t number = static_cast<std::uint16_t>(table.firstNumber);
  std::uint16_t varIndex = 0;
  std::uint16_t fixedOffset = 0;
  for (const Column& column : table.columns) {
    const bool fixed = isFixed(column);
    const auto size = static_cast<std::uint16_t>(sizeOf(column));
    const char flags = static_cast<char>(2 | (fixed ? 1 : 0) | (column.counter ? 4 : 0));
    std::string entry(isJet3_ ? 18 : 25, '\0');
    entry[0] = static_cast<char>(column.type);
    put(entry, isJet3_ ? 1 : 5, number);
    put(entry, isJet3_ ? 3 : 7, varIndex);
    put(entry, isJet3_ ? 5 : 9, number++);
    if (!isJet3_) {
      if (column.type == AccessType::Numeric)
        entry[11] = 28, entry[12] = static_cast<char>(column.scale);
      if (column.calculated) entry[16] = '\xC0';
    }
    entry[isJet3_ ? 13 : 15] = flags;
    if (fixed) put(entry, isJet3_ ? 14 : 21, fixedOffset);
    put(entry, isJet3_ ? 16 : 23, size);
    if (fixed && column.type != AccessType::Boolean) {
      fixedOffset = static_cast<std::uint16_t>(fixedOffset + size);
    }
    if (!fixed) ++varIndex;
    bytes += entry;
  }
  for (const Column& column : table.columns) bytes += nameBytes(column.name);
  for (const Index& index : table.indexes) {
    std::string entry(isJet3_ ? 39 : 52, '\0');
    for (size_t i = 0; i < 10; ++i) {
      const size_t at = (isJet3_ ? 0 : 4) + 3 * i;
      const bool used = i < index.places.size();
      put(entry, at,
          static_cast<std::uint16_t>(used ? table.firstNumber + index.places[i] : 0xFFFF));
      entry[at + 2] = used ? 1 : 0;
    }
    entry[isJet3_ ? 38 : 42] = static_cast<char>(index.unique || index.primary);
    bytes += entry;
  }
  for (std::uint32_t i = 0; i < indexCount; ++i) {
    std::string entry(isJet3_ ? 20 : 28, '\0');
    put(entry, isJet3_ ? 4 : 8, i);
    entry[isJet3_ ? 19 : 23] = table.indexes[i].primary ? 1 : 0;
    bytes += entry;
  }
  for (const Index& index : table.indexes) bytes += nameBytes(index.name);
  bytes += "\xFF\xFF";
  put(bytes, 8, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

std::string AccessMaker::text(const std::string& ascii) const {
  return isJet3_ ? ascii : storedWide(ascii);
}

void AccessMaker::addLink(const std::string& name, const std::string& file) {
  catalog_.push_back({storedAs(0x10000000 + static_cast<int>(catalog_.size())),
                      storedAs(std::uint16_t{6}),
                      storedAs(0),
                      text(name),
                      {},
                      longField(text(file), Long::Inline)});
}

std::int32_t AccessMaker::addQuery(const std::string& name) {
  const auto id = static_cast<std::int32_t>(0x80000000 + catalog_.size());
  catalog_.push_back({storedAs(id), storedAs(std::uint16_t{5}), storedAs(0), text(name), {}, {}});
  return id;
}

void AccessMaker::closeTable() {
  if (!open_) return;
  std::string rest = definition(*open_, usageMap(open_->pages));
  // What does not fit the first page goes on in others, after a header of eight bytes.
  std::uint32_t page = open_->definitionPage;
  while (true) {
    std::string piece = rest.substr(0, pageSize());
    rest.erase(0, piece.size());
    const std::uint32_t next = rest.empty() ? 0 : newPage("");
    put(piece, 4, next);
    std::copy(piece.begin(), piece.end(), pages_[page].begin());
    if (rest.empty()) break;
    rest.insert(0, std::string("\x02\x01\0\0\0\0\0\0", 8));
    page = next;
  }
  const Table& table = open_->table;
  StoredCell properties;
  if (!table.properties.empty()) properties = longField(table.properties, Long::OnePage);
  catalog_.push_back({storedAs(open_->definitionPage),
                      storedAs(std::uint16_t{1}),
                      storedAs(table.flags),
                      text(table.name),
                      properties,
                      {}});
  open_.reset();
}

void AccessMaker::write(const std::string& path) {
  closeTable();
  constexpr std::uint32_t kSystemTable = 0x80000000;
  auto rows = std::exchange(catalog_, {});
  rows.push_back({storedAs(kCatalogPage),
                  storedAs(std::uint16_t{1}),
                  storedAs(kSystemTable),
                  text("MSysObjects"),
                  {},
                  {}});
  open_ = Open{{"MSysObjects",
                {{"Id", AccessType::LongInteger},
                 {"Type", AccessType::Integer},
                 {"Flags", AccessType::LongInteger},
                 {"Name", AccessType::Text, 128},
                 {"LvProp", AccessType::Ole},
                 {"Database", AccessType::Memo}}},
               kCatalogPage};
  for (const auto& row : rows) addRecord(row);
  closeTable();
  std::string& header = pages_[0];
  header.replace(0, 4, std::string("\0\1\0\0", 4));
  header.replace(4, 15, isAce_ ? "Standard ACE DB" : "Standard Jet DB");
  header[0x14] = isAce_ ? 3 : isJet3_ ? 0 : 1;
  put(header, 0x3C, static_cast<std::uint16_t>(codePage_));
  put(header, 0x3E, key_);
  applyCipher(kHeaderKey, header.data() + 0x18, isJet3_ ? 126 : 128);
  for (size_t i = 1; key_ != 0 && i < pages_.size(); ++i) {
    applyCipher(key_ ^ static_cast<std::uint32_t>(i), pages_[i].data(), pages_[i].size());
  }
  std::ofstream file(path, std::ios::binary);
  for (const std::string& page : pages_) file << page;
}

}  // namespace lodex
