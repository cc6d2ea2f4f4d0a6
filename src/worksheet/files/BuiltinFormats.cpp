#include "worksheet/files/BuiltinFormats.h"

namespace lodex {
namespace {

struct NumberedFormat {
  int id;
  std::string_view text;
};
// The formats of an English program; currency signs and the order of dates differ by country, and
// files that need another text bring it along.
constexpr NumberedFormat builtinFormats[] = {
    {0, "General"},
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {5, "\"$\"#,##0_);(\"$\"#,##0)"},
    {6, "\"$\"#,##0_);[Red](\"$\"#,##0)"},
    {7, "\"$\"#,##0.00_);(\"$\"#,##0.00)"},
    {8, "\"$\"#,##0.00_);[Red](\"$\"#,##0.00)"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, "# ?\?/??"},
    {14, "m/d/yyyy"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "m/d/yyyy h:mm"},
    {37, "#,##0_);(#,##0)"},
    {38, "#,##0_);[Red](#,##0)"},
    {39, "#,##0.00_);(#,##0.00)"},
    {40, "#,##0.00_);[Red](#,##0.00)"},
    {41, "_(* #,##0_);_(* (#,##0);_(* \"-\"_);_(@_)"},
    {42, "_(\"$\"* #,##0_);_(\"$\"* (#,##0);_(\"$\"* \"-\"_);_(@_)"},
    {43, "_(* #,##0.00_);_(* (#,##0.00);_(* \"-\"?\?_);_(@_)"},
    {44, "_(\"$\"* #,##0.00_);_(\"$\"* (#,##0.00);_(\"$\"* \"-\"?\?_);_(@_)"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mm:ss.0"},
    {48, "##0.0E+0"},
    {49, "@"}};

}  // namespace

// The first eight of the 64 indexes name the first eight colours as well.
const Color defaultPalette[56] = {
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x9999FF, 0x993366, 0xFFFFCC, 0xCCFFFF, 0x660066, 0xFF8080, 0x0066CC, 0xCCCCFF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CCFF, 0xCCFFFF, 0xCCFFCC, 0xFFFF99, 0x99CCFF, 0xFF99CC, 0xCC99FF, 0xFFCC99,
    0x3366FF, 0x33CCCC, 0x99CC00, 0xFFCC00, 0xFF9900, 0xFF6600, 0x666699, 0x969696,
    0x003366, 0x339966, 0x003300, 0x333300, 0x993300, 0x993366, 0x333399, 0x333333};

std::string_view builtinNumberFormat(int id) {
  for (const NumberedFormat& format : builtinFormats) {
    if (format.id == id) return format.text;
  }
  // Numbers of the Far Eastern editions, all of them dates.
  if ((id >= 27 && id <= 36) || (id >= 50 && id <= 58)) return "m/d/yyyy";
  return {};
}

int builtinNumberFormatId(std::string_view format) {
  for (const NumberedFormat& builtin : builtinFormats) {
    const bool sameEverywhere = builtin.text.find('$') == std::string_view::npos;
    if (sameEverywhere && builtin.text == format) return builtin.id;
  }
  return -1;
}

Color indexedColor(int index) {
  if (index >= 8) index -= 8;
  return index >= 0 && index < 56 ? defaultPalette[index] : automaticColor;
}

}  // namespace lodex
