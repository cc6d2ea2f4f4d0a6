#include "worksheet/files/ZipArchive.h"

#include <gsf/gsf.h>

#include <algorithm>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {
namespace {

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
using Input = std::unique_ptr<GsfInput, Unref>;

// No honest part of a workbook is larger, and deflate cannot shrink anything further than this.
constexpr std::uint64_t largestPart = std::uint64_t{1} << 30;
constexpr std::uint64_t strongestDeflate = 1040;

// What libgsf would print about a damaged file, our exceptions already say.
void ignoreMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

void initialise() {
  static const bool done = [] {
    gsf_init();
    for (const char* domain : {"libgsf", "libgsf:zip", static_cast<const char*>(nullptr)}) {
      g_log_set_handler(domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK), ignoreMessage,
                        nullptr);
    }
    return true;
  }();
  (void)done;
}

[[noreturn]] void failPart(std::string_view path, const char* reason) {
  throw FileError("the part " + std::string(path) + " of the file " + reason);
}

// The child of that name, in any case.
Input child(GsfInfile* folder, const std::string& name) {
  if (GsfInput* exact = gsf_infile_child_by_name(folder, name.c_str())) return Input(exact);
  for (int i = 0; i < gsf_infile_num_children(folder); ++i) {
    const char* other = gsf_infile_name_by_index(folder, i);
    if (other != nullptr && equalsNoCase(other, name)) {
      return Input(gsf_infile_child_by_index(folder, i));
    }
  }
  return nullptr;
}

}  // namespace

struct ZipArchive::Impl {
  std::string_view bytes;
  Input root;

  Input open(std::string_view path) const {
    Input at(GSF_INPUT(g_object_ref(root.get())));
    for (const std::string& piece : split(path, "/")) {
      if (piece.empty()) continue;
      if (!at || !GSF_IS_INFILE(at.get())) {
        at.reset();
        break;
      }
      at = child(GSF_INFILE(at.get()), piece);
    }
    // Some writers part their folders by "\\", which makes one long name of a path.
    if (!at) at = child(GSF_INFILE(root.get()), replaceAll(path, "/", "\\"));
    return at;
  }
};

ZipArchive::ZipArchive(std::string_view bytes) : impl_(std::make_unique<Impl>()) {
  initialise();
  impl_->bytes = bytes;
  const Input memory(gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.data()),
                                          static_cast<gsf_off_t>(bytes.size()), FALSE));
  if (memory) impl_->root.reset(GSF_INPUT(gsf_infile_zip_new(memory.get(), nullptr)));
  if (!impl_->root) throw FileError("the file is damaged: its zip directory cannot be read");
}

ZipArchive::~ZipArchive() = default;

bool ZipArchive::has(std::string_view path) const {
  return impl_->open(path) != nullptr;
}

std::string ZipArchive::read(std::string_view path) const {
  const Input part = impl_->open(path);
  if (!part) failPart(path, "is missing");
  const auto size = static_cast<std::uint64_t>(std::max<gsf_off_t>(0, gsf_input_size(part.get())));
  if (size > largestPart || size > impl_->bytes.size() * strongestDeflate) {
    failPart(path, "claims an impossible size");
  }
  // In steps, so that memory follows what is really there and not what the directory claims.
  constexpr std::uint64_t step = 1 << 20;
  std::string content;
  std::vector<guint8> buffer(std::min(size, step));
  while (content.size() < size) {
    const auto count = std::min<std::uint64_t>(step, size - content.size());
    const guint8* got = gsf_input_read(part.get(), count, buffer.data());
    if (got == nullptr) failPart(path, "is damaged");
    content.append(reinterpret_cast<const char*>(got), count);
  }
  return content;
}

struct ZipWriter::Impl {
  std::unique_ptr<GsfOutput, Unref> memory;
  std::unique_ptr<GsfOutfile, Unref> zip;
};

ZipWriter::ZipWriter() : impl_(std::make_unique<Impl>()) {
  initialise();
  impl_->memory.reset(gsf_output_memory_new());
  impl_->zip.reset(gsf_outfile_zip_new(impl_->memory.get(), nullptr));
}

ZipWriter::~ZipWriter() = default;

void ZipWriter::add(const std::string& path, std::string_view content) {
  const std::unique_ptr<GsfOutput, Unref> part(
      gsf_outfile_new_child(impl_->zip.get(), path.c_str(), FALSE));
  const bool written =
      part && gsf_output_write(part.get(), content.size(),
                               reinterpret_cast<const guint8*>(content.data())) != FALSE;
  if (!written || gsf_output_close(part.get()) == FALSE) failPart(path, "cannot be written");
}

std::string ZipWriter::finish() {
  if (gsf_output_close(GSF_OUTPUT(impl_->zip.get())) == FALSE) {
    throw FileError("the zip directory cannot be written");
  }
  const auto* bytes = gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(impl_->memory.get()));
  const auto size = static_cast<size_t>(gsf_output_size(impl_->memory.get()));
  return std::string(reinterpret_cast<const char*>(bytes), size);
}

bool looksLikeZip(std::string_view bytes) {
  return bytes.substr(0, 4) == "PK\x03\x04";
}

}  // namespace lodex
