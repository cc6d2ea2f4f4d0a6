#include "worksheet/files/xls/TextTable.h"

#include <algorithm>

#include "basic/Text.h"

namespace lodex::biff {
namespace {

// Length, flags and one character stay together.
constexpr size_t unsplitBytes = 5;

}  // namespace

std::uint32_t TextTable::indexOf(std::string_view text) {
  ++uses_;
  const auto [hit, isNew] = places_.try_emplace(text, static_cast<std::uint32_t>(texts_.size()));
  if (isNew) texts_.push_back(text);
  return hit->second;
}

void TextTable::write(RecordWriter& out) const {
  out.begin(idSst);
  out.u32(uses_);
  out.u32(static_cast<std::uint32_t>(texts_.size()));
  for (std::string_view text : texts_) writeContinuedText(out, text);
}

void writeContinuedText(RecordWriter& out, std::string_view text) {
  const std::u16string units = toUtf16(text);
  const bool wide = std::any_of(units.begin(), units.end(), [](char16_t c) { return c > 0xFF; });
  const size_t width = wide ? 2 : 1;
  if (out.recordSize() + unsplitBytes > maxRecordSize) out.begin(idContinue);
  out.u16(static_cast<unsigned>(units.size()));
  out.u8(wide ? 1 : 0);
  for (char16_t c : units) {
    if (out.recordSize() + width > maxRecordSize) {
      out.begin(idContinue);
      out.u8(wide ? 1 : 0);
    }
    if (wide) {
      out.u16(c);
    } else {
      out.u8(c);
    }
  }
}

}  // namespace lodex::biff
