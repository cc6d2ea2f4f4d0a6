#include "worksheet/files/xls/BiffStream.h"

#include <cassert>

namespace lodex::biff {

bool isBof(std::uint16_t id) {
  return id == idBof2 || id == idBof3 || id == idBof4 || id == idBof5;
}

int versionOf(const Record& bof, bool inWorkbookStream) {
  switch (bof.id) {
    case idBof2:
      return 2;
    case idBof3:
      return 3;
    case idBof4:
      return 4;
    default:
      break;
  }
  switch (ByteReader(bof.data).u16()) {
    case 0x0600:
      return 8;
    case 0x0500:
    case 0x0700:
      return 5;
    case 0x0400:
      return 4;
    case 0x0300:
      return 3;
    case 0x0200:
    case 0x0002:
    case 0x0007:
      return 2;
    default:
      return inWorkbookStream ? 8 : 5;
  }
}

void RecordWriter::begin(std::uint16_t id) {
  closeRecord();
  start_ = bytes_.size();
  open_ = true;
  u16(id);
  u16(0);
}

void RecordWriter::closeRecord() {
  if (!open_) return;
  const size_t size = recordSize();
  assert(size <= maxRecordSize);
  bytes_[start_ + 2] = static_cast<char>(size & 0xFF);
  bytes_[start_ + 3] = static_cast<char>(size >> 8);
  open_ = false;
}

void RecordWriter::patchU32(size_t position, std::uint32_t value) {
  std::memcpy(bytes_.data() + position, &value, sizeof value);
}

std::string RecordWriter::finish() {
  closeRecord();
  return std::move(bytes_);
}

}  // namespace lodex::biff
