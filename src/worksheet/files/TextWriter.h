#pragma once

#include <string>

namespace lodex {

class Worksheet;

/// The current sheet as displayed: fields between separators, lines ended by CR LF, in UTF-8 (with
/// a byte order mark if there is more than ASCII in it). Fields that hold the separator, a line end
/// or a quote stand in double quotes with their quotes doubled.
std::string writeText(const Worksheet& sheet, char separator = '\t');

}  // namespace lodex
