#pragma once

#include <string>
#include <string_view>

#include "form/Dialogs.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// Asks for a workbook or text file; the path stays as it was when cancelled.
bool OpenFileDlg(Dialogs& dialogs, std::string_view title, std::string& path);

/// Asks where to save; the file type follows from the ending of the name.
bool SaveFileDlg(Dialogs& dialogs, std::string_view title, std::string& path, FileType& type);

}  // namespace lodex
