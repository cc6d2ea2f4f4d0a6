#pragma once

#include <string>
#include <string_view>

#include "worksheet/files/xls/BiffStream.h"

namespace lodex::biff {

/// Undoes the encryption that a FILEPASS record announces, with the password that programs use
/// when a workbook is merely protected against changes. Works on the whole record stream in place;
/// `version` is that of the file. Throws FileError when another password is needed or the kind of
/// encryption is unknown.
void decryptStream(std::string& stream, const Record& filePass, int version);

}  // namespace lodex::biff
