#pragma once

#include <string_view>

#include "worksheet/Worksheet.h"

namespace lodex {

/// True for the bytes of an .xls file of any version: a container with a workbook in it, or the
/// bare records of the versions before 5.
bool looksLikeXls(std::string_view bytes);

/// Fills a fresh worksheet from the bytes of an .xls file, versions 2 to 8. Sheets that are charts,
/// macros or dialogs are left out; references to them stay in the formulas' text. A formula that
/// cannot be understood leaves its last value; when no formula has a value at all, because the
/// program that wrote the file does not compute, all are computed. A file that was cut short gives
/// what is left of it when its general part is complete. Throws FileError for anything else that is
/// damaged, and for a workbook that only a password opens; `into` may then be half filled.
void readXls(std::string_view bytes, Worksheet& into);

}  // namespace lodex
