#include "db/drivers/jet/AccessTable.h"

#include <algorithm>
#include <set>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {

namespace {

constexpr std::uint32_t kMostColumns = 2048;
constexpr std::uint32_t kMostIndexes = 1024;
constexpr size_t kMostDefinitionBytes = 16u << 20;
constexpr std::uint16_t kNoColumn = 0xFFFF;

// The offsets of a definition, which differ by the age of the format.
struct Layout {
  size_t recordCount, columnCount, indexCount, realIndexCount, usedPages, entries;
  size_t realIndexEntry;
  size_t columnEntry, number, varIndex, fixedOffset, size, flags, scale, moreFlags;
  size_t realIndex, realIndexStart, realIndexFlags;
  size_t index, indexReal, indexType;
};
constexpr Layout kJet3{12, 25, 27, 31, 35, 43, 8, 18, 1, 3, 14, 16, 13, 0, 0, 39, 0, 38, 20, 4, 19};
constexpr Layout kJet4{16, 45, 47, 51, 55, 63, 12, 25, 5, 7, 21,
                       23, 15, 12, 16, 52, 4,  42, 28, 8, 23};

// A definition longer than a page goes on in others.
std::vector<std::uint8_t> definitionBytes(const AccessFile& file, std::uint32_t first) {
  std::vector<std::uint8_t> all;
  std::set<std::uint32_t> visited;
  AccessPage page;
  for (std::uint32_t number = first; number != 0;) {
    if (!visited.insert(number).second || all.size() > kMostDefinitionBytes) {
      throw FileError("its definition runs in a circle");
    }
    file.read(number, page);
    const AccessBytes bytes = page.bytes();
    if (bytes.u8(0) != 0x02) throw FileError("its definition is not where it should be");
    all.insert(all.end(), page.content.begin() + (all.empty() ? 0 : 8), page.content.end());
    number = bytes.u32(4);
  }
  return all;
}

class Names {
 public:
  Names(const AccessFile& file, AccessBytes bytes, size_t& at)
      : file_(file), bytes_(bytes), at_(at) {}
  std::string next() {
    const size_t size = file_.isJet3() ? bytes_.u8(at_) : bytes_.u16(at_);
    at_ += file_.isJet3() ? 1 : 2;
    std::string name;
    file_.decodeText(bytes_.part(at_, size), name);
    at_ += size;
    return name;
  }

 private:
  const AccessFile& file_;
  AccessBytes bytes_;
  size_t& at_;
};

AccessColumn readColumn(AccessBytes entry, const Layout& layout) {
  AccessColumn column;
  column.type = static_cast<AccessType>(entry.u8(0));
  column.number = entry.u16(layout.number);
  column.varIndex = entry.u16(layout.varIndex);
  column.fixedOffset = entry.u16(layout.fixedOffset);
  column.size = entry.u16(layout.size);
  const int flags = entry.u8(layout.flags);
  column.fixed = (flags & 0x01) != 0;
  column.counter = (flags & 0x04) != 0 && column.type == AccessType::LongInteger;
  if (layout.scale && column.type == AccessType::Numeric) {
    column.precision = entry.u8(layout.scale - 1);
    column.scale = entry.u8(layout.scale);
  }
  if (layout.moreFlags) column.calculated = (entry.u8(layout.moreFlags) & 0xC0) == 0xC0;
  return column;
}

AccessIndex readIndex(AccessBytes entry, const Layout& layout, const AccessTable& table) {
  AccessIndex index;
  for (size_t i = 0; i < 10; ++i) {
    const std::uint16_t number = entry.u16(layout.realIndexStart + 3 * i);
    if (number == kNoColumn) continue;
    const bool ascending = entry.u8(layout.realIndexStart + 3 * i + 2) == 1;
    for (size_t place = 0; place < table.columns.size(); ++place) {
      if (table.columns[place].number == number) {
        index.columns.push_back({static_cast<int>(place), !ascending});
      }
    }
  }
  index.unique = (entry.u8(layout.realIndexFlags) & 0x01) != 0;
  return index;
}

// Several named indexes may share a stored one; those of a relationship give way to real names.
void readIndexes(const AccessFile& file, AccessBytes bytes, const Layout& layout, size_t at,
                 std::uint32_t realCount, std::uint32_t count, AccessTable& table) {
  std::vector<AccessIndex> stored;
  for (std::uint32_t i = 0; i < realCount; ++i, at += layout.realIndex) {
    stored.push_back(readIndex(bytes.part(at, layout.realIndex), layout, table));
  }
  size_t nameAt = at + count * layout.index;
  Names names(file, bytes, nameAt);
  for (std::uint32_t i = 0; i < count; ++i, at += layout.index) {
    const AccessBytes entry = bytes.part(at, layout.index);
    const std::string name = names.next();
    const std::uint32_t real = entry.u32(layout.indexReal);
    if (real >= stored.size()) continue;
    const int type = entry.u8(layout.indexType);
    AccessIndex& index = stored[real];
    if (index.name.empty() || type != 2) index.name = name;
    if (type == 1) index.primary = index.unique = true;
  }
  for (AccessIndex& index : stored) {
    if (!index.columns.empty() && !index.name.empty()) table.indexes.push_back(std::move(index));
  }
}

void addBits(AccessBytes bits, std::uint32_t first, std::uint32_t pageCount,
             std::vector<std::uint32_t>& pages) {
  for (size_t i = 0; i < bits.size(); ++i) {
    const int byte = bits.data()[i];
    for (int bit = 0; byte && bit < 8; ++bit) {
      if (!(byte & 1 << bit)) continue;
      const std::uint64_t page = std::uint64_t{first} + i * 8 + static_cast<unsigned>(bit);
      if (page >= pageCount)
        throw FileError("records lie beyond the end of the file: it is cut short or damaged");
      pages.push_back(static_cast<std::uint32_t>(page));
    }
  }
}

}  // namespace

bool isAccessType(int number) {
  constexpr int kFirst = static_cast<int>(AccessType::Boolean);
  constexpr int kLast = static_cast<int>(AccessType::ExtendedDate);
  return number >= kFirst && number <= kLast && number != 13 && number != 14 && number != 17;
}

int AccessTable::find(std::string_view column) const {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (equalsNoCase(columns[i].name, column)) return static_cast<int>(i);
  }
  return -1;
}

AccessTable readAccessTable(const AccessFile& file, std::uint32_t page, const std::string& name) {
  const std::vector<std::uint8_t> content = definitionBytes(file, page);
  const AccessBytes bytes(content.data(), content.size());
  const Layout& layout = file.isJet3() ? kJet3 : kJet4;
  const std::uint32_t columnCount = bytes.u16(layout.columnCount);
  const std::uint32_t indexCount = bytes.u32(layout.indexCount);
  const std::uint32_t realCount = bytes.u32(layout.realIndexCount);
  if (columnCount > kMostColumns || indexCount > kMostIndexes || realCount > kMostIndexes) {
    throw FileError("its definition is damaged");
  }
  AccessTable table;
  table.name = name;
  table.definitionPage = page;
  table.recordCount = bytes.u32(layout.recordCount);
  table.usedPages = bytes.u32(layout.usedPages);
  size_t at = layout.entries + realCount * layout.realIndexEntry;
  for (std::uint32_t i = 0; i < columnCount; ++i, at += layout.columnEntry) {
    table.columns.push_back(readColumn(bytes.part(at, layout.columnEntry), layout));
  }
  Names names(file, bytes, at);
  for (AccessColumn& column : table.columns) column.name = names.next();
  std::stable_sort(table.columns.begin(), table.columns.end(),
                   [](const auto& a, const auto& b) { return a.number < b.number; });
  readIndexes(file, bytes, layout, at, realCount, indexCount, table);
  return table;
}

std::vector<std::uint32_t> pagesOf(const AccessFile& file, const AccessTable& table) {
  std::vector<std::uint32_t> pages;
  AccessPage page;
  const AccessBytes map = file.pointedRow(table.usedPages, page);
  if (map.u8(0) == 0) {
    addBits(map.from(5), map.u32(1), file.pageCount(), pages);
  } else {
    const std::uint32_t covered = (file.pageSize() - 4) * 8;
    AccessPage bits;
    for (size_t i = 0; 1 + 4 * (i + 1) <= map.size(); ++i) {
      const std::uint32_t number = map.u32(1 + 4 * i);
      if (number == 0) continue;
      file.read(number, bits);
      addBits(bits.bytes().from(4), static_cast<std::uint32_t>(i) * covered, file.pageCount(),
              pages);
    }
  }
  return pages;
}

}  // namespace lodex
