#include "worksheet/files/xls/OleFile.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-memory.h>

#include <algorithm>
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

constexpr std::string_view signature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
constexpr size_t headerSize = 512;

// What the library takes from the header without looking: sector sizes and counts that would make
// it allocate or shift beyond reason.
bool plausibleHeader(std::string_view bytes) {
  if (bytes.size() < headerSize) return false;
  const auto u16 = [&](size_t at) {
    return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8;
  };
  const int sectorShift = u16(0x1E);
  const int miniShift = u16(0x20);
  if (sectorShift < 6 || sectorShift > 15 || miniShift < 2 || miniShift > sectorShift) return false;
  const size_t sectors = bytes.size() >> sectorShift;
  const auto u32 = [&](size_t at) {
    return static_cast<size_t>(u16(at)) | static_cast<size_t>(u16(at + 2)) << 16;
  };
  return u32(0x2C) <= sectors + 1 && u32(0x40) <= sectors + 1 && u32(0x48) <= sectors + 1;
}

// What is wrong with a file is told to the user, not to the console.
void silenceLibrary() {
  [[maybe_unused]] static const guint handler = g_log_set_handler(
      "libgsf:msole", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_RECURSION),
      [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
}

Owned<GsfInfile> openContainer(std::string_view bytes) {
  if (!isContainer(bytes) || !plausibleHeader(bytes)) return nullptr;
  silenceLibrary();
  Owned<GsfInput> memory(gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.data()),
                                              static_cast<gsf_off_t>(bytes.size()), FALSE));
  if (!memory) return nullptr;
  return Owned<GsfInfile>(gsf_infile_msole_new(memory.get(), nullptr));
}

// The wanted child's name as the container spells it, null when it is not there.
const char* childNamed(GsfInfile* folder, std::string_view wanted) {
  const int children = gsf_infile_num_children(folder);
  for (int i = 0; i < children; ++i) {
    const char* name = gsf_infile_name_by_index(folder, i);
    if (name != nullptr && equalsNoCase(name, wanted)) return name;
  }
  return nullptr;
}

// In pieces, so that a container that was cut gives what is left of the stream.
Stream readAll(GsfInput* input, size_t limit) {
  Stream stream;
  const gsf_off_t declared = gsf_input_size(input);
  const size_t size = declared < 0 ? 0 : std::min(static_cast<size_t>(declared), limit);
  stream.complete = declared >= 0 && static_cast<size_t>(declared) == size;
  stream.bytes.resize(size);
  auto* out = reinterpret_cast<guint8*>(stream.bytes.data());
  if (size == 0 || gsf_input_read(input, size, out) != nullptr) return stream;
  stream.complete = false;
  size_t done = 0;
  constexpr size_t piece = 512;
  gsf_input_seek(input, 0, G_SEEK_SET);
  while (done < size) {
    const size_t count = std::min(piece, size - done);
    if (gsf_input_read(input, count, out + done) == nullptr) break;
    done += count;
  }
  stream.bytes.resize(done);
  return stream;
}

}  // namespace

bool isContainer(std::string_view bytes) {
  return bytes.substr(0, signature.size()) == signature;
}

std::optional<Stream> readStream(std::string_view container,
                                 const std::vector<std::string_view>& names) {
  const auto root = openContainer(container);
  if (!root) throw FileError("The file is damaged: its container cannot be read");
  for (std::string_view name : names) {
    const char* spelled = childNamed(root.get(), name);
    if (spelled == nullptr) continue;
    const Owned<GsfInput> child(gsf_infile_child_by_name(root.get(), spelled));
    if (!child) throw FileError("The file is damaged: its workbook cannot be read");
    Stream stream = readAll(child.get(), container.size());
    stream.name = name;
    return stream;
  }
  return std::nullopt;
}

bool hasStream(std::string_view container, const std::vector<std::string_view>& names) {
  const auto root = openContainer(container);
  return root && std::any_of(names.begin(), names.end(), [&](std::string_view name) {
           return childNamed(root.get(), name) != nullptr;
         });
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
