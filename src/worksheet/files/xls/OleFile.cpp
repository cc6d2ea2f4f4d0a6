#include "worksheet/files/xls/OleFile.h"

#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-memory.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex::ole {
namespace {

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

// Layout after Microsoft's [MS-CFB], "Compound File Binary File Format".
constexpr std::string_view signature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
constexpr size_t headerSize = 512, entrySize = 128;
constexpr std::uint32_t freeSector = 0xFFFFFFFF, noEntry = 0xFFFFFFFF;
constexpr unsigned typeStream = 2, typeRoot = 5;

std::uint32_t u32At(std::string_view bytes, size_t at) {
  std::uint32_t value = 0;
  if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

unsigned u16At(std::string_view bytes, size_t at) {
  return u32At(bytes, at) & 0xFFFF;
}

// A container that is read in place. Chains of sectors end where they leave the file or grow longer
// than it, so that no damage makes them endless.
class Container {
 public:
  explicit Container(std::string_view bytes);

  bool isSound() const { return sound_; }
  bool has(std::string_view name) const { return find(name).type == typeStream; }
  Stream stream(std::string_view name) const;

 private:
  struct Entry {
    std::string name;
    unsigned type = 0;
    std::uint32_t left = noEntry, right = noEntry, child = noEntry;
    std::uint32_t start = 0, size = 0;
  };

  std::string_view sector(std::uint32_t number) const {
    const size_t at = (size_t{number} + 1) << sectorShift_;
    return at < bytes_.size() ? bytes_.substr(at, size_t{1} << sectorShift_) : std::string_view();
  }
  void readTable();
  void addTableSector(std::uint32_t number);
  std::string chain(std::uint32_t start, size_t size) const;
  std::string miniChain(std::uint32_t start, size_t size) const;
  Entry entry(size_t index) const;
  Entry find(std::string_view name) const;

  std::string_view bytes_;
  unsigned sectorShift_ = 9, miniShift_ = 6;
  std::vector<std::uint32_t> table_;  // by sector: the next one
  std::string directory_;
  bool sound_ = false;
};

Container::Container(std::string_view bytes) : bytes_(bytes) {
  if (!isContainer(bytes) || bytes.size() < headerSize) return;
  sectorShift_ = u16At(bytes, 0x1E);
  miniShift_ = u16At(bytes, 0x20);
  if (sectorShift_ < 7 || sectorShift_ > 16 || miniShift_ < 2 || miniShift_ > sectorShift_) return;
  readTable();
  directory_ = chain(u32At(bytes, 0x30), bytes.size());
  sound_ = directory_.size() >= entrySize && entry(0).type == typeRoot;
}

void Container::addTableSector(std::uint32_t number) {
  const std::string_view part = sector(number);
  const size_t count = (size_t{1} << sectorShift_) / 4;
  for (size_t i = 0; i < count; ++i) {
    table_.push_back(i * 4 + 4 <= part.size() ? u32At(part, i * 4) : freeSector);
  }
}

// The sectors that hold the table are listed in the header, and for large files in further sectors.
void Container::readTable() {
  const size_t sectors = (bytes_.size() >> sectorShift_) + 1;
  const auto wanted = [&](std::uint32_t number) {
    return number < sectors && table_.size() < sectors;
  };
  for (size_t i = 0; i < 109; ++i) {
    const std::uint32_t number = u32At(bytes_, 0x4C + i * 4);
    if (wanted(number)) addTableSector(number);
  }
  const size_t perSector = (size_t{1} << sectorShift_) / 4 - 1;
  std::uint32_t list = u32At(bytes_, 0x44);
  for (size_t turn = 0; turn < sectors && list < sectors && table_.size() < sectors; ++turn) {
    const std::string_view part = sector(list);
    for (size_t i = 0; i < perSector && i * 4 < part.size(); ++i) {
      const std::uint32_t number = u32At(part, i * 4);
      if (wanted(number)) addTableSector(number);
    }
    list = u32At(part, perSector * 4);
  }
}

std::string Container::chain(std::uint32_t start, size_t size) const {
  std::string out;
  size = std::min(size, bytes_.size());
  out.reserve(size);
  std::vector<bool> taken(table_.size(), false);
  for (std::uint32_t number = start; out.size() < size && number < table_.size();
       number = table_[number]) {
    const std::string_view part = sector(number);
    if (part.empty() || taken[number]) break;
    taken[number] = true;
    out += part.substr(0, size - out.size());
  }
  return out;
}

// Short streams share the root's stream, in smaller sectors with a table of their own.
std::string Container::miniChain(std::uint32_t start, size_t size) const {
  const Entry root = entry(0);
  const std::string shared = chain(root.start, root.size);
  const std::string next = chain(u32At(bytes_, 0x3C), bytes_.size());
  std::string out;
  size = std::min(size, bytes_.size());
  for (size_t number = start; out.size() < size;) {
    const size_t at = number << miniShift_;
    if (at >= shared.size()) break;
    out += shared.substr(at, std::min(size_t{1} << miniShift_, size - out.size()));
    if (number * 4 + 4 > next.size()) break;
    number = u32At(next, number * 4);
  }
  return out;
}

Container::Entry Container::entry(size_t index) const {
  Entry result;
  const std::string_view all = directory_;
  if (index >= all.size() / entrySize) return result;
  const std::string_view raw = all.substr(index * entrySize, entrySize);
  const size_t nameBytes = std::min<size_t>(u16At(raw, 64), 64);
  std::u16string name;
  for (size_t i = 0; i + 2 < nameBytes; i += 2)
    name.push_back(static_cast<char16_t>(u16At(raw, i)));
  result.name = fromUtf16(name);
  result.type = static_cast<unsigned char>(raw[66]);
  result.left = u32At(raw, 68);
  result.right = u32At(raw, 72);
  result.child = u32At(raw, 76);
  result.start = u32At(raw, 116);
  result.size = u32At(raw, 120);
  return result;
}

// A stream at the root, of type 0 when there is none. The entries of the root form a tree; embedded
// objects with streams of the same name stand deeper.
Container::Entry Container::find(std::string_view name) const {
  const size_t count = directory_.size() / entrySize;
  std::vector<bool> seen(count, false);
  std::vector<std::uint32_t> waiting{entry(0).child};
  while (!waiting.empty()) {
    const std::uint32_t index = waiting.back();
    waiting.pop_back();
    if (index >= count || seen[index]) continue;
    seen[index] = true;
    Entry here = entry(index);
    if (here.type == typeStream && equalsNoCase(here.name, name)) return here;
    waiting.push_back(here.left);
    waiting.push_back(here.right);
  }
  return {};
}

Stream Container::stream(std::string_view name) const {
  const Entry place = find(name);
  const std::uint32_t smallest = u32At(bytes_, 0x38);
  Stream result;
  result.name = name;
  result.bytes =
      place.size < smallest ? miniChain(place.start, place.size) : chain(place.start, place.size);
  result.complete = result.bytes.size() == place.size;
  return result;
}

}  // namespace

bool isContainer(std::string_view bytes) {
  return bytes.substr(0, signature.size()) == signature;
}

std::optional<Stream> readStream(std::string_view container,
                                 const std::vector<std::string_view>& names) {
  const Container file(container);
  if (!file.isSound()) throw FileError("The file is damaged: its container cannot be read");
  for (std::string_view name : names) {
    if (file.has(name)) return file.stream(name);
  }
  return std::nullopt;
}

bool hasStream(std::string_view container, const std::vector<std::string_view>& names) {
  const Container file(container);
  return file.isSound() && std::any_of(names.begin(), names.end(),
                                       [&](std::string_view name) { return file.has(name); });
}

std::string writeContainer(std::string_view streamName, std::string_view bytes) {
  const Owned<GsfOutput> memory(gsf_output_memory_new());
  {
    const Owned<GsfOutfile> root(gsf_outfile_msole_new(memory.get()));
    const Owned<GsfOutput> child(
        gsf_outfile_new_child(root.get(), std::string(streamName).c_str(), FALSE));
    const bool written = child &&
                         gsf_output_write(child.get(), bytes.size(),
                                          reinterpret_cast<const guint8*>(bytes.data())) &&
                         gsf_output_close(child.get()) && gsf_output_close(GSF_OUTPUT(root.get()));
    if (!written) throw FileError("The workbook cannot be packed into a file");
  }
  const auto size = static_cast<size_t>(gsf_output_size(memory.get()));
  const guint8* data = gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(memory.get()));
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace lodex::ole
