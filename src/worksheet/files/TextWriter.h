#pragma once

#include <string>

namespace lodex {

class Worksheet;

/// Adds a field to a line. One that holds the separator, a line end or a quote is put in double
/// quotes with its quotes doubled.
void appendField(std::string& out, const std::string& field, char separator);

/// The current sheet as displayed: fields between separators, lines ended by CR LF, in UTF-8 with
/// a byte order mark if there is more than ASCII in it.
std::string writeText(const Worksheet& sheet, char separator = '\t');

}  // namespace lodex
