#pragma once

#include <string_view>

#include "worksheet/Worksheet.h"

namespace lodex {

/// True for the bytes of an .xls file of any version: a container with a workbook in it, or the
/// bare records of the versions before 5.
bool looksLikeXls(std::string_view bytes);

/// Fills a fresh worksheet from the bytes of an .xls file, versions 2 to 8. Sheets that are charts,
/// macros or dialogs are left out; references to them stay in the formulas' text. A formula that
/// cannot be read leaves its last value. Formulas whose value is only a placeholder, because the
/// program that wrote the file does not calculate, have none. A file that is cut short or damaged
/// gives what is left of it when its general part is complete, and an Error in the findings of
/// `into` for each sheet that is not whole. Throws FileError when nothing can be read, and for a
/// workbook that only a password opens; `into` may then be half filled.
void readXls(std::string_view bytes, Worksheet& into);

}  // namespace lodex
