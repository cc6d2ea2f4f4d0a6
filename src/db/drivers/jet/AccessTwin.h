#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "basic/Findings.h"
#include "db/Driver.h"

namespace lodex {

/// True for a file that begins as those of Access do.
bool isAccessFile(std::string_view path);

/// Where twins of Access files go whose own folder cannot be written: a user's data folder. By
/// default $XDG_DATA_HOME/lodexgeo, or .local/share/lodexgeo in the home folder.
void setTwinFolder(std::string_view folder);

/// Opens an Access file through its twin: an SQLite database beside it, "<file name>.lodex.sqlite",
/// or in the twin folder. The twin is made by the program lodex-jet, which lies beside the running
/// one, and used again for as long as the content of the Access file stays as it is. The Access
/// file is never written: all changes go to the twin, and a twin with changes is kept under another
/// name when the Access file changed too. Saved queries become views where they can.
///
/// Adds to `found`, at every opening, what the twin lacks (errors and warnings), and when the twin
/// is made also where it is and how things are kept (notes). Throws FileError when the file cannot
/// be read; no half-made twin remains.
std::unique_ptr<Driver> openAccessTwin(std::string_view path, Findings& found);

}  // namespace lodex
