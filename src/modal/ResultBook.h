#pragma once

#include <string>

#include "modal/MineralData.h"
#include "modal/frmResult.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// A calculation as a workbook to keep, headings in row 1 of each sheet: "Mode" (amounts),
/// "BulkChem", "Residual", "Assays", "Notes", "Chemistry" (compositions used), "Dissolution",
/// "SetUp" and "Log". `setUpReport` is the text of SetUp.h, `log` the text of the log pane,
/// `digits` the decimals of the amounts.
Worksheet resultBook(const frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc,
                     const std::string& setUpReport, const std::string& log, int digits);

}  // namespace lodex
