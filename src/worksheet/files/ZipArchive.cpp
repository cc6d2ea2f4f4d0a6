#include "worksheet/files/ZipArchive.h"

#include <zip.h>

#include <algorithm>
#include <deque>
#include <new>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/files/XmlReader.h"

namespace lodex {
namespace {

// No real part of a workbook is larger. One beyond `suspicious` that shrank to less than a
// `strongest`-th of its size is a trap; sheets shrink to a tenth, to a hundredth at most.
constexpr std::uint64_t largestPart = std::uint64_t{1} << 30;
constexpr std::uint64_t suspicious = std::uint64_t{32} << 20;
constexpr std::uint64_t strongest = 128;

struct CloseArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;

struct CloseFile {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

[[noreturn]] void failPart(std::string_view path, const std::string& reason) {
  throw FileError("the part " + std::string(path) + " of the file " + reason);
}

// An archive over bytes that stay where they are; null when they are not one.
Archive openArchive(std::string_view bytes) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
  Archive archive(source != nullptr ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr);
  if (!archive && source != nullptr) zip_source_free(source);
  zip_error_fini(&error);
  return archive;
}

}  // namespace

struct ZipArchive::Impl {
  Archive archive;

  // The number of a part; -1 if there is none.
  zip_int64_t find(std::string_view path) const {
    const std::string name(path);
    // Some writers separate folders by "\\".
    for (const std::string& spelling : {name, replaceAll(path, "/", "\\")}) {
      const zip_int64_t exact = zip_name_locate(archive.get(), spelling.c_str(), 0);
      if (exact >= 0) return exact;
      const zip_int64_t anyCase = zip_name_locate(archive.get(), spelling.c_str(), ZIP_FL_NOCASE);
      if (anyCase >= 0) return anyCase;
    }
    return -1;
  }
};

ZipArchive::ZipArchive(std::string_view bytes) : impl_(std::make_unique<Impl>()) {
  impl_->archive = openArchive(bytes);
  if (!impl_->archive) throw FileError("the file is damaged: its zip directory cannot be read");
}

ZipArchive::~ZipArchive() = default;

bool ZipArchive::has(std::string_view path) const {
  return impl_->find(path) >= 0;
}

bool ZipArchive::hasFolder(std::string_view name) const {
  const zip_int64_t count = zip_get_num_entries(impl_->archive.get(), 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    const char* part = zip_get_name(impl_->archive.get(), static_cast<zip_uint64_t>(i), 0);
    if (part == nullptr) continue;
    const std::string path = part;
    const size_t end = path.find_first_of("/\\");
    if (end != std::string::npos && equalsNoCase(path.substr(0, end), name)) return true;
  }
  return false;
}

std::string ZipArchive::read(std::string_view path) const {
  zip_t* archive = impl_->archive.get();
  const zip_int64_t number = impl_->find(path);
  if (number < 0) failPart(path, "is missing");
  const auto index = static_cast<zip_uint64_t>(number);
  zip_stat_t sizes;
  if (zip_stat_index(archive, index, 0, &sizes) != 0) failPart(path, "is damaged");
  if (sizes.size > largestPart ||
      (sizes.size > suspicious && sizes.size / strongest > sizes.comp_size)) {
    failPart(path, "is too large to be true");
  }
  const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(archive, index, 0));
  if (!file) failPart(path, "is damaged: " + std::string(zip_strerror(archive)));
  // In steps, so that memory follows what is really there and not what the directory announces.
  constexpr std::uint64_t step = 1 << 20;
  std::string content;
  for (;;) {
    const size_t before = content.size();
    content.resize(before + std::min(step, sizes.size + 1 - before));
    const zip_int64_t got = zip_fread(file.get(), content.data() + before, content.size() - before);
    // The library compares the checksum when it comes to the end.
    if (got < 0) failPart(path, "is damaged: " + std::string(zip_file_strerror(file.get())));
    content.resize(before + static_cast<size_t>(got));
    if (got == 0) break;
    if (content.size() > sizes.size) failPart(path, "is damaged: it is longer than it should be");
  }
  if (content.size() != sizes.size) failPart(path, "is damaged: it is shorter than it should be");
  return content;
}

void readXml(const ZipArchive& archive, std::string_view path, XmlHandler& handler) {
  readXml(archive.read(path), handler);
}

// --- Writing ---

struct ZipWriter::Impl {
  zip_source_t* memory = nullptr;  // ours until the bytes have been taken out of it
  Archive archive;
  std::deque<std::string> contents;  // what the archive reads when it is closed

  ~Impl() {
    archive.reset();
    if (memory != nullptr) zip_source_free(memory);
  }
};

ZipWriter::ZipWriter() : impl_(std::make_unique<Impl>()) {
  zip_error_t error;
  zip_error_init(&error);
  impl_->memory = zip_source_buffer_create(nullptr, 0, 0, &error);
  if (impl_->memory != nullptr) {
    zip_source_keep(impl_->memory);
    impl_->archive.reset(zip_open_from_source(impl_->memory, ZIP_TRUNCATE, &error));
  }
  zip_error_fini(&error);
  if (!impl_->archive) throw std::bad_alloc();
}

ZipWriter::~ZipWriter() = default;

void ZipWriter::add(const std::string& path, std::string content) {
  zip_t* archive = impl_->archive.get();
  const std::string& kept = impl_->contents.emplace_back(std::move(content));
  zip_source_t* source = zip_source_buffer(archive, kept.data(), kept.size(), 0);
  const zip_int64_t index =
      source == nullptr ? -1 : zip_file_add(archive, path.c_str(), source, ZIP_FL_ENC_UTF_8);
  if (index < 0) {
    zip_source_free(source);
    failPart(path, "cannot be written");
  }
  // The usual level: the library's own is three times slower for a tenth of the size.
  constexpr zip_uint32_t level = 6;
  zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, level);
  // Equal workbooks make equal files: every part carries the first day of the calendar.
  constexpr zip_uint16_t firstDay = 1 << 5 | 1;
  zip_file_set_dostime(archive, static_cast<zip_uint64_t>(index), 0, firstDay, 0);
}

std::string ZipWriter::finish() {
  const auto fail = [] { throw FileError("the zip file cannot be put together"); };
  if (zip_close(impl_->archive.get()) != 0) fail();
  impl_->archive.release();
  zip_stat_t sizes;
  zip_stat_init(&sizes);
  if (zip_source_stat(impl_->memory, &sizes) != 0 || zip_source_open(impl_->memory) != 0) fail();
  std::string bytes(sizes.size, '\0');
  const zip_int64_t got = zip_source_read(impl_->memory, bytes.data(), bytes.size());
  zip_source_close(impl_->memory);
  if (got != static_cast<zip_int64_t>(bytes.size())) fail();
  return bytes;
}

bool looksLikeZip(std::string_view bytes) {
  return bytes.substr(0, 4) == "PK\x03\x04";
}

}  // namespace lodex
