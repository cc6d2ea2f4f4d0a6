#include "worksheet/CellFormat.h"

#include <array>

namespace lodex {

Color paletteColor(int index) {
  static constexpr std::array<Color, 16> colors{
      0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
      0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
  return index >= 0 && index < 16 ? colors[index] : automaticColor;
}

FormatTable::FormatTable() {
  indexOf(CellFormat());
}

std::uint32_t FormatTable::indexOf(const CellFormat& format) {
  auto& candidates = byNumberFormat_[format.numberFormat];
  for (std::uint32_t index : candidates) {
    if (formats_[index] == format) return index;
  }
  const auto index = size();
  formats_.push_back(format);
  candidates.push_back(index);
  return index;
}

}  // namespace lodex
